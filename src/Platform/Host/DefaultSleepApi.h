#pragma once

#include <cstdint>

namespace Util {

/// A way of letting time pass.
class SleepApi {
public:
    virtual ~SleepApi() = default;

    /// Blocks the calling thread for that many milliseconds, any 32-bit count. May be called from any thread. An exception
    /// ends a scan's worker, with the receiver left where it is; the same holds for get below.
    virtual void sleepMs(std::uint32_t milliseconds) = 0;
};

/// The host's sleep service. Defined by the host.
class DefaultSleepApi {
public:
    /// The service in force at this moment. The host may exchange it between two calls, so fetch it anew for every delay.
    /// Any thread.
    static SleepApi& get();
};

} // namespace Util

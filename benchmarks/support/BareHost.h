#pragma once

/// The least that a host's trace facility and sleep service can be, in the place of the simulated host's: what is measured
/// is then the module and not its host. All levels are off, and a delay ends at once.

#include "Platform/Host/DefaultSleepApi.h"

namespace bench {

/// Another sleep service for as long as it lives. Make and end it while nothing sleeps.
class SleepInForce {
public:
    explicit SleepInForce(Util::SleepApi& service);
    ~SleepInForce();
    SleepInForce(const SleepInForce&) = delete;
    SleepInForce& operator=(const SleepInForce&) = delete;
};

} // namespace bench

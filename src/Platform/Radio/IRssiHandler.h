#pragma once

#include "Platform/Host/IInterface.h"

#include <cstdint>
#include <string>

/// Reads the received signal strength of one channel.
class IRssiHandler : public IInterface {
public:
    using IInterface::interfaceName;

    /// Unsigned form: "IRssiHandler" for channel 0, else "IRssiHandler_" and the channel.
    static std::string interfaceName(unsigned int channel) { return interfaceName("IRssiHandler", channel); }

    /// One reading into @p rssi, in the publisher's unit (a hundredth of a dBm where -9970 is the floor of a scan).
    /// Returns 0, or 32768 or more for a failure. Called on a scan's worker thread.
    virtual std::int32_t readRssi(std::int32_t& rssi) = 0;
};

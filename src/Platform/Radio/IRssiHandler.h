#pragma once

#include "Platform/Host/IInterface.h"

#include <cstdint>
#include <string>

/// Reads the received signal strength of one channel.
class IRssiHandler : public IInterface {
public:
    /// Unsigned form: "IRssiHandler" for channel 0, else "IRssiHandler_" and the channel.
    static std::string interfaceName(unsigned int channel) { return IInterface::interfaceName("IRssiHandler", channel); }

    /// One reading into @p rssi, in the publisher's unit; a scan raises readings below -9970 to that floor.
    /// Returns 0, or 32768 or more for a failure. A scan does not look at the result: it takes the value that @p rssi then
    /// has, 0 where nothing was written. Called on the worker thread, once per sample; an exception ends the worker, with
    /// the receiver left where it is.
    virtual std::int32_t readRssi(std::int32_t& rssi) = 0;
};

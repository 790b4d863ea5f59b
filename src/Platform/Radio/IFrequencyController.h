#pragma once

#include "Platform/Host/IInterface.h"

#include <cstdint>
#include <string>

/// Tunes the radio of one channel.
class IFrequencyController : public IInterface {
public:
    /// Unsigned form: "IFrequencyController" for channel 0, else "IFrequencyController_" and the channel.
    static std::string interfaceName(unsigned int channel)
    {
        return IInterface::interfaceName("IFrequencyController", channel);
    }

    /// The configured receive frequency in kHz, to which a scan puts the receiver back. Called once for each start, on
    /// its thread; an exception reaches the caller of the start.
    virtual std::uint32_t getRxFrequency() = 0;

    /// Tunes the receiver. The meaning of @p flag is the publisher's; a spectrum scan always passes true.
    /// Returns a result code: 32768 or more, compared signed, is a failure. Called on the worker thread, before each sample
    /// and once more to put the receiver back; an exception ends the worker.
    virtual std::int32_t setRxFrequency(std::uint32_t frequency_kHz, bool flag) = 0;
};

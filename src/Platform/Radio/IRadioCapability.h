#pragma once

#include "Platform/Host/IInterface.h"
#include "Platform/Host/RadioChannel.h"

#include <cstdint>
#include <string>

/// What a radio can tune to: thirteen consecutive words. Receive frequencies lie on a raster; that of step index k is
/// rxBaseFrequency_kHz + k * frequencyStepSize_kHz.
struct RadioFrequencyParameters {
    std::uint32_t frequencyBand_GHz;     ///< word 0: nominal band
    std::uint32_t transmitAndDuplex[3];  ///< words 1 to 3: the publisher's own
    std::uint32_t minRxFrequency_kHz;    ///< word 4: lowest receive frequency of the sub-band
    std::uint32_t maxRxFrequency_kHz;    ///< word 5: highest receive frequency of the sub-band
    std::uint32_t frequencyStepSize_kHz; ///< word 6: raster step
    std::uint32_t txBaseFrequency_kHz;   ///< word 7: the publisher's own
    std::uint32_t rxBaseFrequency_kHz;   ///< word 8: raster origin
    std::uint32_t txStepLimits[2];       ///< words 9 and 10: the publisher's own
    std::uint32_t stepLimitLow;          ///< word 11: lowest tunable step index
    std::uint32_t stepLimitHigh;         ///< word 12: highest tunable step index
};
static_assert(sizeof(RadioFrequencyParameters) == 13 * sizeof(std::uint32_t), "thirteen words, no padding");

/// What the radio of one channel is able to do.
class IRadioCapability : public IInterface {
public:
    /// RadioChannel form: "IRadioCapability_" and the channel, for every channel.
    static std::string interfaceName(RadioChannel channel) { return IInterface::interfaceName("IRadioCapability", channel); }

    /// Band, receive limits and raster as they are now, taken unchecked: a raster step of 0 divides by zero. Called once for
    /// each start, on its thread; an exception reaches the caller of the start.
    virtual RadioFrequencyParameters getFrequencyParameters() = 0;
};

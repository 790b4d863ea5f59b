#pragma once

#include "Platform/Host/RadioChannel.h"

#include <cstddef>
#include <cstdint>
#include <functional>

class IFrameFormat;
class IFrequencyController;
class IRadio;
class IRadioCapability;
class IRssiHandler;
class ISystemPowerController;

namespace terminal {

/// The six interfaces through which modules see the radio of one channel. Any thread calls them.
struct Peers {
    ISystemPowerController& systemPowerController;
    IFrameFormat& frameFormat;
    IFrequencyController& frequencyController;
    IRssiHandler& rssiHandler;
    IRadioCapability& radioCapability;
    IRadio& radio;
};

inline constexpr std::size_t mostChannels = 256; ///< of a terminal

/// A radio channel and the radio that serves it, of whatever kind. Whoever makes radios hands these out.
struct Channel {
    RadioChannel number{};
    Peers peers;
    std::function<std::uint32_t()> tunedTo_kHz; ///< where the receiver stands now, in a sweep, too; any thread asks
};

} // namespace terminal

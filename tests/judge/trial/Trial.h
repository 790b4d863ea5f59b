#pragma once

#include "apps/sdc/result/ScanResult.h"
#include "simulator/radio/Link.h"
#include "simulator/scenario/Scenario.h"

#include <cstdint>
#include <string>

namespace judge {

/// A link, how it is scanned, and what the user says of its far end.
struct Trial {
    std::uint64_t seed = 0;       ///< from which all of it follows
    simulator::Scenario scenario; ///< of one channel; that and nothing else decides what is measured
    sdc::ScanKind kind{};
    std::uint32_t sweeps = 1;
    bool isFarEndOn = false; ///< then its carrier is the first emitter
    sdc::FarEnd told{};      ///< never the contrary of what is so

    const simulator::TerminalChannel& channel() const { return scenario.channels.front(); }
    const simulator::Link& link() const { return channel().link; }

    /// Its readings are none: all at the floor, or one reading repeated.
    bool isReceiverDead() const { return !link().faults.empty(); }
};

/// The trial of a seed: neighbouring seeds have nothing in common. Takes nothing from the machine or the library.
Trial makeTrial(std::uint64_t seed);

/// The trial's scenario as a file, with which `sdc scan` takes the same readings.
std::string scenarioText(const Trial& trial);

/// The options of `sdc scan` that make the trial's scan, as in "sub-band --repeat 10 --far-end muted".
std::string scanOptions(const Trial& trial);

} // namespace judge

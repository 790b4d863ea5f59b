#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "Platform/Radio/IRadioCapability.h"
#include "simulator/radio/Air.h"
#include "simulator/radio/Fault.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// All that describes one radio channel of a simulated terminal: the unit, its receiver, and what is on the air.
struct Link {
    std::string name;
    std::string description; ///< for people
    std::string source;      ///< where the figures come from

    std::string unitTypeText;
    SDCProperties properties{};
    RadioFrequencyParameters frequencyParameters{};
    std::uint32_t channelSpacing_kHz = 0;
    std::uint32_t rxFrequency_kHz = 0; ///< the configured channel

    double filterWidth_kHz = 0.0;
    double noiseFigure_dB = 0.0;
    double ultimateRejection_dB = 200.0; ///< of what lies outside the filter; 50 to 60 typical
    double saturation_dBm = 60.0;        ///< where the readings level off; about -20 typical
    double settlingTime_ms = 0.0; ///< time constant of a reading after a tuning; it is settled after about five of them
    double jitter_dB = 0.0;       ///< standard deviation of one reading; 0 for none
    std::uint64_t seed = 0;       ///< of the jitter

    std::vector<Emitter> emitters;
    std::vector<Rain> rain;
    std::vector<Notch> notches;
    std::vector<Fault> faults;
};

/// The built-in links. The first is what a terminal gets that is told nothing else.
const std::vector<Link>& links();

/// A built-in link, or null when none has the name.
const Link* findLink(std::string_view name);

/// Why a terminal cannot work with a link: what is wrong and what would be right. Empty when nothing is.
std::string whyImpossible(const Link& link);

} // namespace simulator

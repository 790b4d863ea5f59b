#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "Platform/Radio/IRadioCapability.h"
#include "simulator/radio/Emitters.h"
#include "simulator/radio/Fading.h"
#include "simulator/radio/Fault.h"
#include "support/Fields.h"

#include <cstdint>
#include <string>
#include <vector>

namespace simulator {

inline constexpr double leastSettlingTime_ms = 0.01;

/// All that describes one radio channel of a simulated terminal: the unit, its receiver, and what is on the air.
struct Link {
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
    std::vector<Rain> rain;     ///< on the path, for the emitters that come over it
    std::vector<Notch> notches; ///< on the path too; at most mostNotches
    std::vector<Fault> faults;  ///< the first that matches a call decides it
};

/// The table of a link, as it stands in a channel of a scenario.
///
/// A controller takes the figures of its radio unchecked. With those of a link that has no errors, whatever its unit type,
/// each plan ends, takes at most a million samples, and divides by nothing that is 0; the answers of the link's faults
/// included.
const support::Record<Link>& linkRecord();

/// Returns the link.
/// @throws std::invalid_argument that says what is wrong, when a terminal cannot work with it
const Link& requirePossible(const Link& link);

} // namespace simulator

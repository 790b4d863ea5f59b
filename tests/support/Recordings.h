#pragma once

#include "simulator/radio/Emitters.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <vector>

namespace tests {

/// A recording of one stretch; a level that is not a number: nothing is known.
inline simulator::Recording recordingOf(double lowest_kHz, double step_kHz, const std::vector<double>& levels_dBm)
{
    simulator::RecordedBins::Stretch stretch{0.0, {}};
    for (const double level_dBm : levels_dBm) {
        stretch.powers_mW.push_back(std::isnan(level_dBm) ? 0.0 : std::pow(10.0, level_dBm / 10.0));
    }
    return {lowest_kHz, std::make_shared<simulator::RecordedBins>(step_kHz, std::vector{stretch})};
}

/// The levels in the bins of a recording, gaps included; not a number where nothing is known.
inline std::vector<double> levelsOf(const simulator::Recording& recording)
{
    const double step_kHz = recording.bins->step_kHz();
    const auto bins = static_cast<std::size_t>(std::lround(recording.bins->width_kHz() / step_kHz));
    std::vector<double> levels_dBm;
    for (std::size_t bin = 0; bin < bins; ++bin) {
        const auto below_mW = [&](std::size_t edge) {
            return recording.bins->powerBelow_mW(static_cast<double>(edge) * step_kHz);
        };
        const double power_mW = below_mW(bin + 1) - below_mW(bin);
        levels_dBm.push_back(power_mW > 1e-12 * recording.bins->total_mW() ? 10.0 * std::log10(power_mW)
                                                                           : std::numeric_limits<double>::quiet_NaN());
    }
    return levels_dBm;
}

} // namespace tests

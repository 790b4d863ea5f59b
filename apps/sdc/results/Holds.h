#pragma once

#include "apps/sdc/results/ScanResult.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace sdc {

/// What several sweeps found at one frequency. Levels in hundredths of a dBm.
struct Hold {
    std::uint32_t frequency_kHz = 0;
    std::int32_t max = 0;
    std::int32_t min = 0;
    std::int32_t average = 0; ///< of the powers, not of the levels in dB
    std::size_t readings = 0; ///< how many samples at this frequency there are
};

/// The holds of all frequencies that any sweep reached, ascending, each over the sweeps that reached it.
std::vector<Hold> holds(const std::vector<Sweep>& sweeps);

/// The one trace that stands for a channel: the samples of its sweep or, of several sweeps, the averages.
std::vector<SDCResult> traceOf(const ChannelResult& channel);

} // namespace sdc

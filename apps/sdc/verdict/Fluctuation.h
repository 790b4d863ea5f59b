#pragma once

#include "apps/sdc/result/Sweep.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <vector>

// What changes in a channel from sweep to sweep, on top of a carrier that is always there and may fade.

namespace sdc {

/// Readings of several sweeps at the same tunings.
struct Readings {
    std::vector<std::vector<double>> levels; ///< of each sweep, in its order; hundredths of a dBm
    std::vector<std::vector<double>> times_s;

    std::size_t sweeps() const { return levels.size(); }
    std::size_t tunings() const { return levels.empty() ? 0 : levels.front().size(); }
};

/// @param isWanted  whether a sample counts. Sweeps that did not reach all that the longest reached are left out.
Readings readingsOf(const std::deque<std::vector<Sample>>& sweeps, const std::function<bool(const Sample&)>& isWanted);

/// How readings move beyond their scatter; hundredths of a dB, 0 or less where they do not.
struct Fluctuation {
    double rises = 0.0; ///< one reading over what is usual at its tuning, against all others of its sweep
    double falls = 0.0; ///< the same downwards
    double jumps = 0.0; ///< from one reading to the next by more than rain changes a level, 1 dB in a second
    double comes = 0.0; ///< over a reading before, and over one after it at the same tuning
};

/// @param scatter  standard deviation of a reading, hundredths of a dB
Fluctuation fluctuationOf(const Readings& readings, double scatter);

} // namespace sdc

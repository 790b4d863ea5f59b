#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace simulator {

/// One row of a recorded sweep, checked for itself.
struct SweepRow {
    double lowest_Hz;
    double highest_Hz; ///< lowest_Hz + the number of levels * step_Hz, but for rounding
    double step_Hz;
    std::vector<double> levels_dBm; ///< without the one that stands twice; not a number where nothing is known
};

/// The recordings of a scenario have more bins than mostRecordedBins.
class TooManyBins : public std::runtime_error {
public:
    TooManyBins();
};

/// @param mostBins  how many levels it may have
/// @return nothing for a line that is empty
/// @throws TooManyBins, or std::runtime_error that says what is wrong and what would be right
std::optional<SweepRow> readSweepRow(std::string_view line, std::size_t mostBins);

} // namespace simulator

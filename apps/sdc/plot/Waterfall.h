#pragma once

#include "apps/sdc/plot/Axes.h"
#include "apps/sdc/plot/Chart.h"
#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace sdc {

/// The levels of sweeps, one below the other in the order of time.
struct Waterfall {
    static constexpr std::int32_t nothing = std::numeric_limits<std::int32_t>::min(); ///< a level that was not read

    struct Row {
        TimePoint start;                  ///< of its first sweep
        std::vector<std::int32_t> levels; ///< hundredths of a dBm, of columns from the lower to the upper end of the range
    };

    std::size_t sweeps = 0;
    std::size_t sweepsOfARow = 1; ///< each row shows the strongest levels of so many; the last one may have fewer
    std::vector<Row> rows;
};

/// @param range_kHz  its ends are the middles of the first and the last column
/// @param columns    at least 2
/// @param mostRows   at least 1
Waterfall gathered(const ChannelResult& channel, const Range& range_kHz, std::size_t columns, std::size_t mostRows);

/// From the weakest to the strongest level of a chart, in whole steps of 5 dB: dBm, at least one step.
Range waterfallScale(const Chart& chart);

/// The time of day of a row, or day and time where a waterfall takes a day or more: eight characters.
std::string timeLabel(const Waterfall& waterfall, std::size_t row);

/// What is beside the waterfall of a channel, and said of it, among that how many sweeps a row stands for.
Chart besideOf(const Waterfall& waterfall, Chart chart);

/// The commands of gnuplot that draw it.
/// @param chart  of the same channel
std::string waterfallProgram(const ChannelResult& channel, const Chart& chart, const PlotOptions& options);

/// The same as text: a sign for each level.
std::string waterfallText(const ChannelResult& channel, const Chart& chart, const PlotOptions& options);

} // namespace sdc

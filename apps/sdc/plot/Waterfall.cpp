#include "apps/sdc/plot/Waterfall.h"

#include "support/Time.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iterator>

namespace sdc {

namespace {

/// A sample stands for the slice of spectrum one step wide around it; the strongest of all that share a column is shown.
void enter(std::vector<std::int32_t>& levels, const Sample& sample, const Range& range_kHz, std::int64_t step_kHz)
{
    const double columns_per_kHz = static_cast<double>(levels.size() - 1) / static_cast<double>(range_kHz.span());
    const double middle = static_cast<double>(sample.frequency_kHz - range_kHz.lowest) * columns_per_kHz;
    const double half = static_cast<double>(step_kHz) / 2.0 * columns_per_kHz;
    const std::int64_t nearest = std::llround(middle);
    const std::int64_t first = std::min<std::int64_t>(nearest, std::llround(std::ceil(middle - half)));
    const std::int64_t last = std::max<std::int64_t>(nearest, std::llround(std::ceil(middle + half)) - 1);
    for (std::int64_t column = std::max<std::int64_t>(first, 0);
         column <= std::min<std::int64_t>(last, std::ssize(levels) - 1); ++column) {
        std::int32_t& level = levels[static_cast<std::size_t>(column)];
        level = std::max(level, sample.rssi);
    }
}

} // namespace

Waterfall gathered(const ChannelResult& channel, const Range& range_kHz, std::size_t columns, std::size_t mostRows)
{
    Waterfall waterfall;
    waterfall.sweeps = channel.sweeps.size();
    waterfall.sweepsOfARow = (waterfall.sweeps + mostRows - 1) / mostRows;
    for (std::size_t index = 0; index < channel.sweeps.size(); ++index) {
        const Sweep& sweep = channel.sweeps[index];
        if (index % waterfall.sweepsOfARow == 0) {
            waterfall.rows.push_back({sweep.start, std::vector<std::int32_t>(columns, Waterfall::nothing)});
        }
        for (const Sample& sample : sweep.samples) {
            enter(waterfall.rows.back().levels, sample, range_kHz, channel.plan.step_kHz);
        }
    }
    return waterfall;
}

Range waterfallScale(const Chart& chart)
{
    constexpr std::int64_t step_dB = 5;
    Range levels{highestShown, lowestShown};
    for (const Trace& trace : chart.traces) {
        for (const Point& point : trace.points) {
            const std::int64_t level = std::clamp(point.level, lowestShown, highestShown);
            levels = {std::min(levels.lowest, level), std::max(levels.highest, level)};
        }
    }
    const std::int64_t lowest = -roundedUp(-std::min(levels.lowest, levels.highest), step_dB * 100) / 100;
    return {lowest, std::max(lowest + step_dB, roundedUp(levels.highest, step_dB * 100) / 100)};
}

std::string timeLabel(const Waterfall& waterfall, std::size_t row)
{
    const bool isLong = waterfall.rows.back().start - waterfall.rows.front().start >= std::chrono::hours(24);
    const TimePoint time = waterfall.rows[row].start;
    const std::string clock = support::clockText(time);
    return isLong ? support::dateText(time).substr(8) + " " + clock.substr(0, 5) : clock;
}

Chart besideOf(const Waterfall& waterfall, Chart chart)
{
    if (waterfall.sweepsOfARow > 1) {
        chart.notes.insert(
            chart.notes.begin(), fmt::format("each row shows the strongest levels of {} sweeps", waterfall.sweepsOfARow));
    }
    return chart;
}

} // namespace sdc

#include "apps/sdc/plot/Waterfall.h"

#include "apps/sdc/result/History.h"
#include "support/Time.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iterator>

namespace sdc {

namespace {

/// A sample stands for a slice of spectrum around it; the strongest of all that share a column is shown.
void enter(std::vector<std::int32_t>& levels, const SDCResult& sample, const Range& range_kHz, std::int64_t width_kHz)
{
    const double columns_per_kHz = static_cast<double>(levels.size() - 1) / static_cast<double>(range_kHz.span());
    const auto columnsTo = [&](double kHz) { return kHz * columns_per_kHz; }; // one edge is the same for two neighbours
    const auto offset_kHz = static_cast<double>(sample.frequency_kHz - range_kHz.lowest);
    const double half_kHz = static_cast<double>(width_kHz) / 2.0;
    const std::int64_t nearest = std::llround(columnsTo(offset_kHz));
    const std::int64_t first = std::min<std::int64_t>(nearest, std::llround(std::ceil(columnsTo(offset_kHz - half_kHz))));
    const std::int64_t last = std::max<std::int64_t>(nearest, std::llround(std::ceil(columnsTo(offset_kHz + half_kHz))) - 1);
    for (std::int64_t column = std::max<std::int64_t>(first, 0);
         column <= std::min<std::int64_t>(last, std::ssize(levels) - 1); ++column) {
        std::int32_t& level = levels[static_cast<std::size_t>(column)];
        level = std::max(level, sample.rssi);
    }
}

/// One step; of a sweep that stays in one place, the channel.
std::int64_t widthOfASample(const ScanPlan& plan)
{
    return plan.step_kHz == 0 ? plan.channelSpacing_kHz : plan.step_kHz;
}

/// Of all sweeps where they are there, and otherwise what was kept of them.
History historyOf(const ChannelResult& channel)
{
    if (channel.sweeps.size() != channel.survey.sweeps()) {
        return channel.history;
    }
    History history(History::noLimit);
    for (const Sweep& sweep : channel.sweeps) {
        history.add(sweep, channel.receiver);
    }
    return history;
}

} // namespace

Waterfall gathered(const ChannelResult& channel, const Range& range_kHz, std::size_t columns, std::size_t mostRows)
{
    const History history = historyOf(channel);
    const std::size_t joined = (history.rows().size() + mostRows - 1) / mostRows;
    Waterfall waterfall{channel.survey.sweeps(), joined * history.sweepsOfARow(), {}};
    for (std::size_t index = 0; index < history.rows().size(); ++index) {
        const History::Row& row = history.rows()[index];
        if (index % joined == 0) {
            waterfall.rows.push_back({row.start, std::vector<std::int32_t>(columns, Waterfall::nothing)});
        }
        for (const SDCResult& level : row.levels) {
            enter(waterfall.rows.back().levels, level, range_kHz, widthOfASample(channel.plan));
        }
    }
    return waterfall;
}

Range waterfallScale(const Chart& chart)
{
    constexpr std::int64_t step_dB = 5;
    if (std::ranges::all_of(chart.traces, [](const Trace& trace) { return trace.points.empty(); })) {
        return {-100, -60};
    }
    Range levels{highestShown, lowestShown};
    for (const Trace& trace : chart.traces) {
        for (const Point& point : trace.points) {
            const std::int64_t level = std::clamp(point.level, lowestShown, highestShown);
            levels = {std::min(levels.lowest, level), std::max(levels.highest, level)};
        }
    }
    const std::int64_t lowest = -roundedUp(-levels.lowest, step_dB * 100) / 100;
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

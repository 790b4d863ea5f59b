#include "apps/sdc/results/Format.h"
#include "apps/sdc/results/Holds.h"
#include "apps/sdc/results/Outputs.h"
#include "apps/sdc/results/Summary.h"
#include "apps/sdc/results/SweepState.h"
#include "support/Text.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace sdc {

namespace {

// The bar begins at the floor of a reading, rounded, and has a character or more for every 2 dB.
constexpr std::int32_t barBegin = -10000;
constexpr std::int32_t barEnd = -2000;
constexpr std::int32_t barStep = 200;
constexpr int leastWidth = 80;
constexpr std::size_t column = 9;
constexpr std::size_t holdColumn = 8;

constexpr const char* bold = "\033[1m";
constexpr const char* red = "\033[1;31m";
constexpr const char* green = "\033[32m";
constexpr const char* yellow = "\033[33m";

/// How the rows of a channel look.
struct Layout {
    bool hasHolds;
    bool isColored;
    std::int32_t perStep; ///< characters of the bar for 2 dB
};

Layout layoutOf(const ChannelResult& channel, const TableOptions& options)
{
    const bool hasHolds = channel.sweeps.size() > 1;
    const int besideBar = static_cast<int>(2 * column + (hasHolds ? 2 * holdColumn : 0) + 5); // with the last label
    constexpr int steps = (barEnd - barBegin) / barStep;
    return {hasHolds, options.isColored, std::max(1, (std::max(options.width, leastWidth) - besideBar) / steps)};
}

std::string colored(const std::string& text, const char* color, const Layout& layout)
{
    return layout.isColored && !text.empty() ? color + text + "\033[0m" : text;
}

std::size_t barLength(std::int32_t level, const Layout& layout)
{
    const std::int32_t shown = std::clamp(level, barBegin, barEnd) - barBegin;
    return static_cast<std::size_t>((shown * layout.perStep + barStep / 2) / barStep);
}

/// The bar of the level and, of several sweeps, beyond it up to the strongest.
std::string bar(const Hold& row, const Layout& layout)
{
    const std::size_t level = barLength(row.average, layout);
    const std::size_t strongest = std::max(level, barLength(row.max, layout));
    return std::string(level, '#') + std::string(strongest - level, '+');
}

std::string header(const Layout& layout)
{
    std::string text = right("MHz", column) + right("dBm", column);
    text += (layout.hasHolds ? right("max", holdColumn) + right("min", holdColumn) : "") + "  ";
    const std::size_t labelWidth = 10 * static_cast<std::size_t>(layout.perStep);
    for (const char* const label : {"-100", "-80", "-60", "-40"}) {
        text += left(label, labelWidth);
    }
    return text + "-20";
}

bool isInChannel(const Hold& row, const terminal::ScanPlan& plan)
{
    return 2 * std::llabs(std::int64_t{row.frequency_kHz} - plan.rxFrequency_kHz) <= plan.channelSpacing_kHz;
}

void writeRow(
    std::ostream& stream, const Hold& row, const Analysis& analysis, const terminal::ScanPlan& plan, const Layout& layout)
{
    const bool isConfigured = isInChannel(row, plan);
    const bool isAboveFloor = analysis.floor && row.average >= *analysis.floor + leastProminence;
    std::string text = right(megahertz(row.frequency_kHz), column) + right(hundredths(row.average), column);
    if (layout.hasHolds) {
        text += right(hundredths(row.max), holdColumn) + right(hundredths(row.min), holdColumn);
    }
    const char* const color = isConfigured ? green : yellow;
    const std::string levels = bar(row, layout);
    stream << text << (isConfigured ? " *|" : "  |")
           << (isConfigured || isAboveFloor ? colored(levels, color, layout) : levels) << '\n';
}

/// Rows of several frequencies show the strongest of them, and the extremes of all.
Hold joined(const Hold& left, const Hold& right)
{
    Hold row = right.average > left.average ? right : left;
    row.max = std::max(left.max, right.max);
    row.min = std::min(left.min, right.min);
    return row;
}

/// In the order taken: of one sweep each sample, of several each frequency.
std::vector<Hold> rowsOf(const ChannelResult& channel)
{
    if (channel.sweeps.size() > 1) {
        return holds(channel.sweeps);
    }
    std::vector<Hold> rows;
    for (const SDCResult& sample : channel.sweeps.front().samples) {
        rows.push_back({sample.frequency_kHz, sample.rssi, sample.rssi, sample.rssi, 1});
    }
    return rows;
}

void writeRows(
    std::ostream& stream, const ChannelResult& channel, const Analysis& analysis, const Layout& layout, std::size_t mostRows)
{
    const std::vector<Hold> rows = rowsOf(channel);
    const std::size_t perRow = mostRows == 0 ? 1 : std::max<std::size_t>(1, (rows.size() + mostRows - 1) / mostRows);
    if (perRow > 1) {
        stream << "each row: the strongest of " << std::to_string(perRow) << " samples\n";
    }
    stream << colored(header(layout), bold, layout) << '\n';
    for (std::size_t first = 0; first < rows.size(); first += perRow) {
        Hold row = rows[first];
        for (std::size_t next = first + 1; next < std::min(first + perRow, rows.size()); ++next) {
            row = joined(row, rows[next]);
        }
        writeRow(stream, row, analysis, channel.plan, layout);
    }
}

void writeState(std::ostream& stream, const ChannelResult& channel, const Layout& layout)
{
    const std::size_t count = channel.sweeps.size();
    if (count > 1) {
        stream << std::to_string(count) << " sweeps: # average power, + up to the strongest (max hold)\n";
    }
    for (std::size_t index = 0; index < count; ++index) {
        const std::string state = stateOf(channel.sweeps[index], channel.plan);
        const std::string number = count > 1 ? "sweep " + std::to_string(index + 1) + ": " : std::string();
        stream << (state.empty() ? "" : colored(number + state, red, layout) + "\n");
    }
}

} // namespace

void writeTable(std::ostream& stream, const ScanResult& result, const TableOptions& options)
{
    for (const ChannelResult& channel : result.channels) {
        const Layout layout = layoutOf(channel, options);
        const Analysis analysis = analyse(traceOf(channel), channel.plan);
        if (result.channels.size() > 1) {
            stream << (&channel == &result.channels.front() ? "" : "\n")
                   << colored("channel " + std::to_string(channel.channel) + ": " + support::shown(channel.unitTypeText),
                          bold, layout)
                   << '\n';
        }
        writeState(stream, channel, layout);
        writeRows(stream, channel, analysis, layout, options.rows);
        writeSummary(stream, analysis, channel.plan);
    }
}

} // namespace sdc

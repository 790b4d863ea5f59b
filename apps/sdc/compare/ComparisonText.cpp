#include "apps/sdc/compare/ComparisonText.h"

#include "apps/sdc/compare/Places.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "support/Table.h"
#include "support/Text.h"
#include "support/Time.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

namespace sdc {

namespace {

constexpr std::size_t mostLines = 5; ///< of changes of one kind

using Rows = std::vector<support::Row>;

constexpr std::size_t whatWidth = 17; ///< at least

std::string indented(const std::string& what)
{
    return "  " + what;
}

/// As in "levels  103.000 MHz  -30.00 ->  -90.00 dBm  -60.00 dB".
support::Row changeRow(const std::string& what, const std::string& where, const Change& change)
{
    const std::int64_t difference = change.difference();
    return {indented(what), where, hundredths(change.before) + " ->", hundredths(change.after) + " dBm",
        fmt::format("{:>6} dB", (difference < 0 ? "" : "+") + hundredths(difference))};
}

std::string rangeText(std::uint32_t lowest_kHz, std::uint32_t highest_kHz)
{
    return megahertz(lowest_kHz) + (lowest_kHz == highest_kHz ? "" : " to " + megahertz(highest_kHz)) + " MHz";
}

/// The largest of many changes, in their order, each as a row.
template <typename Changes, typename RowOf>
void addLargest(Rows& rows, const Changes& changes, const std::string& what, RowOf rowOf)
{
    const auto size = [](const Change& change) { return std::llabs(change.difference()); };
    std::vector<std::int64_t> sizes;
    std::ranges::transform(changes, std::back_inserter(sizes), size);
    std::ranges::sort(sizes, std::greater<>());
    const std::int64_t least = sizes.size() > mostLines ? sizes[mostLines - 1] : 0;
    std::size_t shown = 0;
    for (const auto& change : changes) {
        if (size(change) >= least && shown < mostLines) {
            rows.push_back(rowOf(change));
            ++shown;
        }
    }
    if (const std::size_t others = changes.size() - shown; others > 0) {
        rows.push_back({indented(what), fmt::format("and {} smaller ones; --json tells all", others)});
    }
}

void addPeaks(Rows& rows, const std::vector<PeakChange>& peaks, const std::string& what)
{
    addLargest(rows, peaks, what, [&](const PeakChange& peak) {
        return changeRow(
            peak.comesAndGoes ? "comes and goes" : what, rangeText(peak.frequency_kHz, peak.frequency_kHz), peak);
    });
}

/// Neighbouring channels of the raster that changed the same way, with the largest of their changes.
struct RasterRange : Change {
    RasterChange first;
    RasterChange last;
};

bool isSameWay(const Change& left, const Change& right)
{
    return (left.difference() < 0) == (right.difference() < 0);
}

std::vector<RasterRange> changedRanges(const std::vector<RasterChange>& raster)
{
    std::vector<RasterRange> ranges;
    for (const RasterChange& channel : raster) {
        if (!channel.isChanged) {
            continue;
        }
        if (ranges.empty() || ranges.back().last.offset + 1 != channel.offset || !isSameWay(ranges.back(), channel)) {
            ranges.push_back({channel, channel, channel});
        }
        RasterRange& range = ranges.back();
        range.last = channel;
        if (std::llabs(channel.difference()) > std::llabs(range.difference())) {
            static_cast<Change&>(range) = channel;
        }
    }
    return ranges;
}

void addRaster(Rows& rows, const std::vector<RasterChange>& raster)
{
    addLargest(rows, changedRanges(raster), "raster", [](const RasterRange& range) {
        const bool isOne = range.first.offset == range.last.offset;
        const std::string offsets =
            range.first.offset == 0 && isOne ? "configured" : fmt::format("raster {:+}", range.first.offset);
        return changeRow(offsets + (isOne ? "" : fmt::format(" to {:+}", range.last.offset)),
            rangeText(range.first.centre_kHz, range.last.centre_kHz), range);
    });
}

void addRanges(Rows& rows, const std::vector<RangeChange>& ranges)
{
    addLargest(rows, ranges, "levels", [](const RangeChange& change) {
        return changeRow("levels", rangeText(change.range.lowest_kHz, change.range.highest_kHz), change);
    });
}

std::string changeLines(const ChannelComparison& channel)
{
    Rows rows;
    addPeaks(rows, channel.newPeaks, "new peak");
    addPeaks(rows, channel.vanishedPeaks, "vanished peak");
    addRaster(rows, channel.raster);
    addRanges(rows, channel.ranges);
    return support::table(rows, "llrrl", {whatWidth, 26, 9, 10});
}

void addMissing(Rows& rows, const std::vector<FrequencyRange>& ranges, const std::string& what)
{
    if (ranges.empty()) {
        return;
    }
    std::size_t frequencies = 0;
    for (const FrequencyRange& range : ranges) {
        frequencies += range.frequencies;
    }
    const std::string samples = support::counted(frequencies, "sample");
    rows.push_back({indented(what), rangeText(ranges.front().lowest_kHz, ranges.back().highest_kHz),
        ranges.size() == 1 ? samples : fmt::format("{} in {} ranges", samples, ranges.size())});
}

std::string missingLines(const ChannelComparison& channel)
{
    Rows rows;
    addMissing(rows, channel.onlyBefore, "only before");
    addMissing(rows, channel.onlyAfter, "only after");
    return support::table(rows, "lll", {whatWidth, 24});
}

std::string conditions(const ScanSide& side)
{
    return fmt::format("{}, filter {:.3f} MHz, on {} MHz, steps of {} MHz", support::shown(side.unitTypeText, 20),
        side.filterWidth_kHz / 1000.0, megahertz(side.rxFrequency_kHz), megahertz(side.step_kHz));
}

std::string sweepsText(const ScanSide& side)
{
    const std::string which = side.sweeps > 1 ? fmt::format("{} of them ", side.incompleteSweeps) : "";
    return support::counted(side.sweeps, "sweep") + (side.incompleteSweeps == 0 ? "" : ", " + which + "PARTIAL or failed");
}

/// How the two scans were made, as far as they differ, and what of them is no change.
std::string conditionLines(const ChannelComparison& channel)
{
    std::string lines;
    if (conditions(channel.before) != conditions(channel.after)) {
        lines += fmt::format("  before: {}\n  after:  {}\n", conditions(channel.before), conditions(channel.after));
    }
    const std::string sweeps = fmt::format("before {}; after {}", sweepsText(channel.before), sweepsText(channel.after));
    for (const std::string& line : support::wrapped({sweeps}, 78)) {
        lines += indented(line) + "\n";
    }
    return !channel.obstacle.empty() ? lines
                                     : lines
            + fmt::format("  no change is {:.2f} to +{:.2f} dB; readings scatter by {:.2f} dB\n",
                channel.tolerance.lowest_dB, channel.tolerance.highest_dB, channel.scatter_dB);
}

std::string verdictOn(const ChannelComparison& channel)
{
    if (!channel.obstacle.empty()) {
        return "cannot be compared, " + channel.obstacle;
    }
    return fmt::format("{}, {} {} compared", channel.isChanged() ? "different" : "same", channel.compared,
        channel.compared == 1 ? "frequency" : "frequencies");
}

std::string linesOf(const ChannelComparison& channel)
{
    return fmt::format("channel {}: {}\n", channel.channel, verdictOn(channel)) + conditionLines(channel)
        + missingLines(channel) + changeLines(channel);
}

std::string timesOf(const ResultSide& side)
{
    const std::string start = support::dateText(side.start) + " " + support::clockText(side.start);
    const std::string end = support::dateText(side.end) + " " + support::clockText(side.end);
    return start + " to "
        + (support::dateText(side.start) == support::dateText(side.end) ? support::clockText(side.end) : end) + " UTC";
}

std::string headerOf(const std::string& what, const ResultSide& side)
{
    return fmt::format("{:<8}{}\n        {}, {} scan, far end {}\n        {}\n", what, support::shown(side.file),
        support::shown(side.scenario, 40), toText(side.kind), toText(side.farEnd), timesOf(side));
}

/// "channels 1, 2, 3: only before"
std::string channelsOnly(const std::vector<std::uint32_t>& channels, const std::string& where)
{
    constexpr std::size_t mostChannels = 8;
    std::string numbers;
    for (std::size_t index = 0; index < std::min(channels.size(), mostChannels); ++index) {
        numbers += (index == 0 ? "" : ", ") + std::to_string(channels[index]);
    }
    numbers += channels.size() > mostChannels ? fmt::format(" and {} more", channels.size() - mostChannels) : "";
    return channels.empty() ? ""
                            : fmt::format("{} {}: only {}\n", channels.size() == 1 ? "channel" : "channels", numbers, where);
}

} // namespace

void writeComparison(std::ostream& stream, const Comparison& comparison)
{
    constexpr std::size_t mostSame = 8; ///< channels that are told one by one
    const auto changed = static_cast<std::size_t>(std::ranges::count_if(comparison.channels, &ChannelComparison::isChanged));
    const std::size_t same = comparison.channels.size() - changed;
    stream << (comparison.isDifferent() ? "different\n\n" : "same\n\n") << headerOf("before", comparison.before)
           << headerOf("after", comparison.after)
           << fmt::format("trace   {}{}\n\n", toText(comparison.trace),
                  comparison.threshold_dB ? "" : ", changes are what the scatter of readings does not explain");
    for (const ChannelComparison& channel : comparison.channels) {
        stream << (channel.isChanged() || same <= mostSame ? linesOf(channel) : "");
    }
    stream << (same > mostSame ? fmt::format("{} channels: same\n", same) : "")
           << channelsOnly(comparison.onlyBefore, "before") << channelsOnly(comparison.onlyAfter, "after");
}

} // namespace sdc

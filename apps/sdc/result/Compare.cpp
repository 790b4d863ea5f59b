#include "apps/sdc/result/Compare.h"

#include "apps/sdc/result/ResultFile.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <map>
#include <string>
#include <tuple>

namespace sdc {

namespace {

using Levels = std::map<std::uint32_t, std::int32_t>;

/// A channel that stayed in one place has several samples there: their mean power stands for them.
Levels levelsOf(const ChannelResult& channel)
{
    Levels levels;
    for (const Hold& hold : channel.survey.holds()) {
        levels.emplace(hold.frequency_kHz, hold.average);
    }
    return levels;
}

std::vector<std::uint32_t> missingIn(const Levels& levels, const Levels& others)
{
    std::vector<std::uint32_t> missing;
    for (const auto& [frequency_kHz, level] : levels) {
        if (!others.contains(frequency_kHz)) {
            missing.push_back(frequency_kHz);
        }
    }
    return missing;
}

bool exceeds(std::int32_t before, std::int32_t after, double threshold_dB)
{
    return static_cast<double>(std::llabs(std::int64_t{after} - before)) > threshold_dB * 100.0;
}

/// The peaks that the other trace could show, and does not within half a channel spacing: a hump as wide as a channel has
/// its strongest reading here in one sweep and there in the next. A trace can show peaks between its first and its last
/// sample.
std::vector<Peak> withoutMatch(
    const std::vector<Peak>& peaks, const std::vector<Peak>& others, const Levels& othersTrace, std::uint32_t spacing_kHz)
{
    std::vector<Peak> unmatched;
    std::ranges::copy_if(peaks, std::back_inserter(unmatched), [&](const Peak& peak) {
        const bool isInside = !othersTrace.empty() && peak.frequency_kHz > othersTrace.begin()->first
            && peak.frequency_kHz < othersTrace.rbegin()->first;
        return isInside && std::ranges::none_of(others, [&](const Peak& other) {
            return 2 * std::llabs(std::int64_t{other.frequency_kHz} - peak.frequency_kHz) <= spacing_kHz;
        });
    });
    return unmatched;
}

ChannelComparison compareChannels(const ChannelResult& before, const ChannelResult& after, double threshold_dB)
{
    const Levels levelsBefore = levelsOf(before);
    const Levels levelsAfter = levelsOf(after);
    ChannelComparison comparison;
    comparison.channel = before.channel;
    for (const auto& [frequency_kHz, level] : levelsBefore) {
        const auto other = levelsAfter.find(frequency_kHz);
        if (other == levelsAfter.end()) {
            continue;
        }
        ++comparison.compared;
        if (exceeds(level, other->second, threshold_dB)) {
            comparison.changes.push_back({frequency_kHz, level, other->second});
        }
    }
    comparison.onlyBefore_kHz = missingIn(levelsBefore, levelsAfter);
    comparison.onlyAfter_kHz = missingIn(levelsAfter, levelsBefore);
    const Analysis analysisBefore = analyse(traceOf(before, TraceKind::average), before.plan, resolutionOf(before));
    const Analysis analysisAfter = analyse(traceOf(after, TraceKind::average), after.plan, resolutionOf(after));
    comparison.floorBefore = analysisBefore.floor;
    comparison.floorAfter = analysisAfter.floor;
    const std::uint32_t spacing_kHz = before.plan.channelSpacing_kHz;
    comparison.newPeaks = withoutMatch(analysisAfter.peaks, analysisBefore.peaks, levelsBefore, spacing_kHz);
    comparison.vanishedPeaks = withoutMatch(analysisBefore.peaks, analysisAfter.peaks, levelsAfter, spacing_kHz);
    return comparison;
}

const ChannelResult* find(const ScanResult& result, std::uint32_t number)
{
    const auto found = std::ranges::find(result.channels, number, &ChannelResult::channel);
    return found == result.channels.end() ? nullptr : &*found;
}

/// "-45.12 -> -40.10 dBm   +5.02 dB"
std::string change(std::int32_t before, std::int32_t after)
{
    const std::int64_t difference = std::int64_t{after} - before;
    return fmt::format("{:>9} -> {:>8} dBm{:>10} dB", hundredths(before), hundredths(after),
        (difference < 0 ? "" : "+") + hundredths(difference));
}

/// "3 frequencies only in the first: 19164.750 to 19170.750 MHz"
std::string onlyIn(const std::vector<std::uint32_t>& frequencies_kHz, const std::string& which)
{
    if (frequencies_kHz.empty()) {
        return "";
    }
    const std::size_t count = frequencies_kHz.size();
    const std::string first = megahertz(frequencies_kHz.front());
    return fmt::format("  {} {} only in the {}: {} MHz\n", count, count == 1 ? "frequency" : "frequencies", which,
        count == 1 ? first : first + " to " + megahertz(frequencies_kHz.back()));
}

std::string peakLines(const std::vector<Peak>& peaks, const std::string& what)
{
    std::string lines;
    for (const Peak& peak : peaks) {
        lines += fmt::format("  {:<14}{:>11} MHz{:>9} dBm\n", what, megahertz(peak.frequency_kHz), hundredths(peak.level));
    }
    return lines;
}

std::string floorLine(const ChannelComparison& comparison, double threshold_dB)
{
    const auto& [before, after] = std::tie(comparison.floorBefore, comparison.floorAfter);
    return before && after && exceeds(*before, *after, threshold_dB)
        ? fmt::format("  {:<29}{}\n", "floor", change(*before, *after))
        : "";
}

std::string changesOf(const ChannelComparison& comparison, double threshold_dB)
{
    std::string lines = floorLine(comparison, threshold_dB) + peakLines(comparison.newPeaks, "new peak")
        + peakLines(comparison.vanishedPeaks, "vanished peak");
    for (const LevelChange& one : comparison.changes) {
        lines += fmt::format("  {:<14}{:>11} MHz{}\n", "level", megahertz(one.frequency_kHz), change(one.before, one.after));
    }
    return lines + onlyIn(comparison.onlyBefore_kHz, "first") + onlyIn(comparison.onlyAfter_kHz, "second");
}

void writeChannelsOnlyIn(std::ostream& stream, const std::vector<std::uint32_t>& channels, const std::string& which)
{
    for (const std::uint32_t channel : channels) {
        stream << fmt::format("channel {}: only in the {}\n", channel, which);
    }
}

} // namespace

Comparison compare(const ScanResult& before, const ScanResult& after, double threshold_dB)
{
    Comparison comparison;
    comparison.threshold_dB = threshold_dB;
    std::size_t compared = 0;
    for (const ChannelResult& channel : before.channels) {
        const ChannelResult* const other = find(after, channel.channel);
        if (other == nullptr) {
            comparison.channelsOnlyBefore.push_back(channel.channel);
            continue;
        }
        comparison.channels.push_back(compareChannels(channel, *other, threshold_dB));
        compared += comparison.channels.back().compared;
    }
    for (const ChannelResult& channel : after.channels) {
        if (find(before, channel.channel) == nullptr) {
            comparison.channelsOnlyAfter.push_back(channel.channel);
        }
    }
    if (compared == 0) {
        throw ResultError("the results cannot be compared: they have no frequency of the same radio channel in common");
    }
    return comparison;
}

void writeComparison(std::ostream& stream, const Comparison& comparison)
{
    for (const ChannelComparison& channel : comparison.channels) {
        const std::string changes = changesOf(channel, comparison.threshold_dB);
        stream << fmt::format("channel {}: {} frequencies compared, {} changed by more than {:.2f} dB\n{}", channel.channel,
            channel.compared, channel.changes.size(), comparison.threshold_dB,
            changes.empty() ? "  nothing changed\n" : changes);
    }
    writeChannelsOnlyIn(stream, comparison.channelsOnlyBefore, "first");
    writeChannelsOnlyIn(stream, comparison.channelsOnlyAfter, "second");
}

} // namespace sdc

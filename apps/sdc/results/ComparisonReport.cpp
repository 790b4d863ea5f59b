#include "apps/sdc/results/Compare.h"
#include "apps/sdc/results/Format.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

namespace sdc {

namespace {

std::string inMegahertz(std::uint32_t frequency_kHz)
{
    return right(megahertz(frequency_kHz), 11) + " MHz";
}

/// "-45.12 -> -40.10 dBm   +5.02 dB"
std::string change(std::int32_t before, std::int32_t after)
{
    const std::int64_t difference = std::int64_t{after} - before;
    return right(hundredths(before), 9) + " -> " + right(hundredths(after), 8) + " dBm"
        + right((difference < 0 ? "" : "+") + hundredths(difference), 10) + " dB";
}

/// As it is asked for, but no more than any difference can be.
std::string thresholdText(double threshold_dB)
{
    constexpr double highest_dB = 1e8;
    return hundredths(std::llround(std::min(threshold_dB, highest_dB) * 100.0));
}

/// "3 frequencies only in the first: 19164.750 to 19170.750 MHz"
std::string onlyIn(const std::vector<std::uint32_t>& frequencies_kHz, const std::string& which)
{
    if (frequencies_kHz.empty()) {
        return "";
    }
    const std::size_t count = frequencies_kHz.size();
    const std::string first = megahertz(frequencies_kHz.front());
    return "  " + std::to_string(count) + (count == 1 ? " frequency" : " frequencies") + " only in the " + which + ": "
        + (count == 1 ? first : first + " to " + megahertz(frequencies_kHz.back())) + " MHz\n";
}

std::string peakLines(const std::vector<Peak>& peaks, const std::string& what)
{
    std::string lines;
    for (const Peak& peak : peaks) {
        lines += "  " + left(what, 14) + inMegahertz(peak.frequency_kHz) + right(hundredths(peak.level), 9) + " dBm\n";
    }
    return lines;
}

std::string floorLine(const ChannelComparison& comparison, double threshold_dB)
{
    if (!comparison.floorBefore || !comparison.floorAfter) {
        return "";
    }
    const std::int64_t difference = std::int64_t{*comparison.floorAfter} - *comparison.floorBefore;
    if (static_cast<double>(std::llabs(difference)) <= threshold_dB * 100.0) {
        return "";
    }
    return "  " + left("floor", 29) + change(*comparison.floorBefore, *comparison.floorAfter) + "\n";
}

std::string changesOf(const ChannelComparison& comparison, double threshold_dB)
{
    std::string lines = floorLine(comparison, threshold_dB) + peakLines(comparison.newPeaks, "new peak")
        + peakLines(comparison.vanishedPeaks, "vanished peak");
    for (const LevelChange& one : comparison.changes) {
        lines += "  " + left("level", 14) + inMegahertz(one.frequency_kHz) + change(one.before, one.after) + "\n";
    }
    return lines + onlyIn(comparison.onlyBefore_kHz, "first") + onlyIn(comparison.onlyAfter_kHz, "second");
}

std::string channelLines(const std::vector<std::uint32_t>& channels, const std::string& which)
{
    std::string lines;
    for (const std::uint32_t channel : channels) {
        lines += "channel " + std::to_string(channel) + ": only in the " + which + "\n";
    }
    return lines;
}

} // namespace

void writeComparison(std::ostream& stream, const Comparison& comparison)
{
    const std::string threshold = thresholdText(comparison.threshold_dB);
    for (const ChannelComparison& channel : comparison.channels) {
        const std::string changes = changesOf(channel, comparison.threshold_dB);
        stream << "channel " << std::to_string(channel.channel) << ": " << std::to_string(channel.compared)
               << " frequencies compared, " << std::to_string(channel.changes.size()) << " changed by more than "
               << threshold << " dB\n"
               << (changes.empty() ? "  nothing changed\n" : changes);
    }
    stream << channelLines(comparison.channelsOnlyBefore, "first") << channelLines(comparison.channelsOnlyAfter, "second");
}

void writeComparison(std::ostream& stream, const ScanResult& before, const ScanResult& after, double threshold_dB)
{
    writeComparison(stream, compare(before, after, threshold_dB));
}

} // namespace sdc

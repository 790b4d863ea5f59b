#include "apps/sdc/results/Summary.h"

#include "apps/sdc/results/Format.h"

#include <algorithm>
#include <string>

namespace sdc {

namespace {

constexpr std::size_t mostPeaksShown = 5;
constexpr std::size_t mostChannelsShown = 3;

/// A name, a place that may be empty, a level and a remark, in columns.
std::string line(const std::string& name, const std::string& place, std::int32_t level, const std::string& remark)
{
    return left(name, 14) + right(place, 13) + right(hundredths(level), 10) + " dBm" + (remark.empty() ? "" : "  ") + remark
        + "\n";
}

std::string inMegahertz(std::uint32_t frequency_kHz)
{
    return megahertz(frequency_kHz) + " MHz";
}

std::string peakLines(const std::vector<Peak>& peaks)
{
    std::string lines;
    const std::size_t shown = std::min(peaks.size(), mostPeaksShown);
    for (std::size_t index = 0; index < shown; ++index) {
        const Peak& peak = peaks[index];
        lines += line("peak", inMegahertz(peak.frequency_kHz), peak.level, inMegahertz(peak.width_kHz) + " wide");
    }
    return lines
        + (shown < peaks.size() ? "              and " + std::to_string(peaks.size() - shown) + " weaker peaks\n" : "");
}

std::string channelLines(const std::vector<RasterChannel>& channels)
{
    std::string lines;
    for (std::size_t index = 0; index < std::min(channels.size(), mostChannelsShown); ++index) {
        const RasterChannel& channel = channels[index];
        lines += line("quietest", inMegahertz(channel.centre_kHz), channel.level,
            "strongest " + hundredths(channel.strongest) + " dBm");
    }
    return lines;
}

} // namespace

void writeSummary(std::ostream& stream, const Analysis& analysis, const terminal::ScanPlan& plan)
{
    std::string lines;
    if (analysis.floor) {
        lines +=
            line("floor", "", *analysis.floor, "lowest tenth, " + std::to_string(edgeSamples) + " at each end left out");
    }
    if (analysis.configured) {
        lines += line("configured *", inMegahertz(plan.rxFrequency_kHz), analysis.configured->level,
            inMegahertz(plan.channelSpacing_kHz) + " wide");
    }
    lines += peakLines(analysis.peaks) + channelLines(analysis.otherChannels);
    stream << (lines.empty() ? "" : "\n") << lines;
}

} // namespace sdc

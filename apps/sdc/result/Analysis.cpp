#include "apps/sdc/result/Analysis.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace sdc {

namespace {

/// Of an even number of levels, the mean of the two in the middle.
std::int32_t median(const std::vector<std::int32_t>& sorted)
{
    const std::int32_t upper = sorted[sorted.size() / 2];
    const std::int32_t lower = sorted[(sorted.size() - 1) / 2];
    return static_cast<std::int32_t>(std::lround((static_cast<double>(lower) + upper) / 2.0));
}

std::optional<std::int32_t> floorOf(const std::vector<SDCResult>& samples, const ScanPlan& plan)
{
    std::vector<std::int32_t> levels;
    bool isBandSeen = false;
    for (std::size_t index = edgeSamples; index + edgeSamples < samples.size(); ++index) {
        levels.push_back(samples[index].rssi);
        isBandSeen = isBandSeen || !isConfigured(samples[index].frequency_kHz, plan);
    }
    if (!isBandSeen) {
        return std::nullopt;
    }
    std::sort(levels.begin(), levels.end());
    levels.resize(std::max<std::size_t>(1, levels.size() / 10));
    return median(levels);
}

bool ascend(const std::vector<SDCResult>& samples)
{
    const auto falls = [](const SDCResult& left, const SDCResult& right) {
        return left.frequency_kHz >= right.frequency_kHz;
    };
    return std::adjacent_find(samples.begin(), samples.end(), falls) == samples.end();
}

} // namespace

bool isConfigured(std::uint32_t frequency_kHz, const ScanPlan& plan)
{
    return 2 * std::llabs(std::int64_t{frequency_kHz} - plan.rxFrequency_kHz) <= plan.channelSpacing_kHz;
}

const RasterChannel* Analysis::configured() const
{
    const auto found = std::ranges::find(raster, RasterState::own, &RasterChannel::state);
    return found == raster.end() ? nullptr : &*found;
}

Analysis analyse(const ChannelResult& channel, TraceKind trace)
{
    Analysis analysis{
        .floor = floorOf(traceOf(channel, TraceKind::average), channel.plan), .peaks = {}, .raster = rasterOf(channel)};
    const std::vector<SDCResult> samples = traceOf(channel, trace);
    if (ascend(samples)) {
        analysis.peaks = findPeaks(samples, resolutionOf(channel));
        analysis.peaks.resize(std::min(analysis.peaks.size(), mostPeaks));
    }
    return analysis;
}

} // namespace sdc

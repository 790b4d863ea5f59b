#include "apps/sdc/result/Analysis.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/PowerMean.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <tuple>

namespace sdc {

namespace {

/// Of an even number of levels, the mean of the two in the middle.
std::int32_t median(const std::vector<std::int32_t>& sorted)
{
    const std::int32_t upper = sorted[sorted.size() / 2];
    const std::int32_t lower = sorted[(sorted.size() - 1) / 2];
    return static_cast<std::int32_t>(std::lround((static_cast<double>(lower) + upper) / 2.0));
}

/// Of a quotient, the next whole number below or at it; the divisor is above 0.
std::int64_t floorOfQuotient(std::int64_t dividend, std::int64_t divisor)
{
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
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

/// The readings in the channels of the raster, by the channel's offset from the configured one.
std::map<std::int64_t, PowerMean> measureRaster(const std::vector<SDCResult>& samples, const ScanPlan& plan)
{
    const std::int64_t spacing_kHz = plan.channelSpacing_kHz;
    std::map<std::int64_t, PowerMean> raster;
    for (const SDCResult& sample : samples) {
        // Doubled, so that half a spacing is a whole number; above the configured channel's lower edge.
        const std::int64_t above = 2 * (std::int64_t{sample.frequency_kHz} - plan.rxFrequency_kHz) + spacing_kHz;
        const std::int64_t offset = floorOfQuotient(above, 2 * spacing_kHz);
        raster[offset].add(sample.rssi);
        if (above == offset * 2 * spacing_kHz) { // on the edge of two channels
            raster[offset - 1].add(sample.rssi);
        }
    }
    return raster;
}

RasterChannel describe(std::int64_t offset, const PowerMean& readings, const ScanPlan& plan)
{
    const std::int64_t centre_kHz = plan.rxFrequency_kHz + offset * plan.channelSpacing_kHz;
    return {offset, static_cast<std::uint32_t>(centre_kHz), readings.mean(), readings.strongest()};
}

bool isQuieter(const RasterChannel& left, const RasterChannel& right)
{
    const auto rank = [](const RasterChannel& channel) {
        return std::tuple(channel.level, channel.strongest, std::abs(channel.offset), channel.offset);
    };
    return rank(left) < rank(right);
}

/// Whether the channel lies in the slices of spectrum, a step wide, that the samples stand for.
bool isWhollySeen(const RasterChannel& channel, const std::vector<SDCResult>& samples, const ScanPlan& plan)
{
    const std::int64_t twiceCentre = 2 * std::int64_t{channel.centre_kHz};
    const std::int64_t twiceLowest = 2 * std::int64_t{samples.front().frequency_kHz} - plan.step_kHz;
    const std::int64_t twiceHighest = 2 * std::int64_t{samples.back().frequency_kHz} + plan.step_kHz;
    return twiceCentre - plan.channelSpacing_kHz >= twiceLowest && twiceCentre + plan.channelSpacing_kHz <= twiceHighest;
}

void analyseRaster(const std::vector<SDCResult>& samples, const ScanPlan& plan, Analysis& analysis)
{
    if (plan.channelSpacing_kHz == 0) {
        return;
    }
    const bool isTrace = ascend(samples) && plan.step_kHz != 0;
    for (const auto& [offset, readings] : measureRaster(samples, plan)) {
        const RasterChannel channel = describe(offset, readings, plan);
        if (offset == 0) {
            analysis.configured = channel;
        } else if (isTrace && isWhollySeen(channel, samples, plan)) {
            analysis.otherChannels.push_back(channel);
        }
    }
    std::sort(analysis.otherChannels.begin(), analysis.otherChannels.end(), isQuieter);
}

} // namespace

bool isConfigured(std::uint32_t frequency_kHz, const ScanPlan& plan)
{
    return 2 * std::llabs(std::int64_t{frequency_kHz} - plan.rxFrequency_kHz) <= plan.channelSpacing_kHz;
}

Analysis analyse(const std::vector<SDCResult>& samples, const ScanPlan& plan, double resolution_kHz)
{
    Analysis analysis;
    analysis.floor = floorOf(samples, plan);
    analyseRaster(samples, plan, analysis);
    if (ascend(samples)) {
        analysis.peaks = findPeaks(samples, resolution_kHz);
        analysis.peaks.resize(std::min(analysis.peaks.size(), mostPeaks));
    }
    return analysis;
}

} // namespace sdc

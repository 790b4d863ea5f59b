#include "apps/sdc/result/ChannelSamples.h"

#include <algorithm>
#include <cmath>

namespace sdc {

namespace {

/// Of the samples of a trace from one to before another, all in one channel.
ChannelSamples chosenFrom(const std::vector<SDCResult>& trace, std::size_t begin, std::size_t end, std::int64_t offset,
    const terminal::ScanPlan& plan, const ReceiverData& receiver)
{
    const double centre_kHz = centreOf_kHz(offset, plan);
    const auto distance_kHz = [&](std::size_t index) { return std::abs(trace[index].frequency_kHz - centre_kHz); };
    ChannelSamples chosen{.offset = offset, .distance_kHz = distance_kHz(begin)};
    for (std::size_t index = begin; index < end; ++index) {
        chosen.distance_kHz = std::min(chosen.distance_kHz, distance_kHz(index));
    }
    const double farthest_kHz = std::max(chosen.distance_kHz, (plan.channelSpacing_kHz - receiver.filterWidth_kHz) / 2.0);
    for (std::size_t index = begin; index < end; ++index) {
        if (distance_kHz(index) <= farthest_kHz) {
            chosen.first = chosen.count == 0 ? index : chosen.first;
            ++chosen.count;
        }
    }
    return chosen;
}

} // namespace

std::int64_t channelOf(std::uint32_t frequency_kHz, const terminal::ScanPlan& plan)
{
    const std::int64_t spacing_kHz = plan.channelSpacing_kHz;
    // Doubled, so that half a spacing is a whole number; above the configured channel's lower edge.
    const std::int64_t above = 2 * (std::int64_t{frequency_kHz} - plan.rxFrequency_kHz) + spacing_kHz;
    return above / (2 * spacing_kHz) - (above % (2 * spacing_kHz) < 0 ? 1 : 0);
}

double centreOf_kHz(std::int64_t offset, const terminal::ScanPlan& plan)
{
    return plan.rxFrequency_kHz + static_cast<double>(offset) * plan.channelSpacing_kHz;
}

std::vector<ChannelSamples> channelSamples(
    const std::vector<SDCResult>& trace, const terminal::ScanPlan& plan, const ReceiverData& receiver)
{
    std::vector<ChannelSamples> channels;
    if (plan.channelSpacing_kHz == 0) {
        return channels;
    }
    for (std::size_t begin = 0, end = 0; begin < trace.size(); begin = end) {
        const std::int64_t offset = channelOf(trace[begin].frequency_kHz, plan);
        for (end = begin; end < trace.size() && channelOf(trace[end].frequency_kHz, plan) == offset;) {
            ++end;
        }
        channels.push_back(chosenFrom(trace, begin, end, offset, plan, receiver));
    }
    return channels;
}

} // namespace sdc

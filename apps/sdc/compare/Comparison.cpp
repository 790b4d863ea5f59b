#include "apps/sdc/compare/Comparison.h"

#include "apps/sdc/compare/PlaceChanges.h"
#include "apps/sdc/result/ResultFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <utility>

namespace sdc {

namespace {

ScanSide sideOf(const ChannelResult& channel)
{
    const auto incomplete =
        std::ranges::count_if(channel.sweeps, [&](const Sweep& sweep) { return sweep.ending != Ending::complete; });
    return {.unitTypeText = channel.unitTypeText,
        .filterWidth_kHz = channel.receiver.filterWidth_kHz,
        .rxFrequency_kHz = channel.plan.rxFrequency_kHz,
        .channelSpacing_kHz = channel.plan.channelSpacing_kHz,
        .step_kHz = channel.plan.step_kHz,
        .sweeps = static_cast<std::uint32_t>(channel.survey.sweeps()),
        .incompleteSweeps = static_cast<std::uint32_t>(incomplete)};
}

ResultSide sideOf(const NamedResult& named)
{
    const ScanResult& result = named.result;
    ResultSide side{named.file, result.scenario, result.kind, result.farEnd, TimePoint::max(), TimePoint::min()};
    for (const ChannelResult& channel : result.channels) {
        side.start = std::min(side.start, channel.sweeps.front().start);
        side.end = std::max(side.end, channel.sweeps.back().end);
    }
    return side;
}

std::string obstacleTo(const ChannelResult& before, const ChannelResult& after, const Places& places)
{
    if (before.receiver.filterWidth_kHz != after.receiver.filterWidth_kHz) {
        return "the receive filters differ";
    }
    for (const auto& [channel, which] : {std::pair(&before, "before"), std::pair(&after, "after")}) {
        if (channel->survey.holds().empty()) {
            return fmt::format("the scan {} has no levels", which);
        }
    }
    return places.both.empty() ? "no frequency in common" : "";
}

ChannelComparison compareChannels(
    const ChannelResult& before, const ChannelResult& after, const CompareOptions& options, double risk)
{
    Places places = placesOf(before, after, options.trace);
    ChannelComparison comparison;
    comparison.channel = before.channel;
    comparison.before = sideOf(before);
    comparison.after = sideOf(after);
    comparison.obstacle = obstacleTo(before, after, places);
    comparison.scatter_dB = scatterOf(before, after);
    if (comparison.obstacle.empty()) {
        const Judge judge(options, comparison.scatter_dB, risk);
        comparison.compared = places.both.size();
        comparison.tolerance = judge.usualTolerance(places.both);
        comparison.raster = judge.rasterChanges(places.both, before.plan);
        comparison.ranges = judge.rangeChanges(places.both);
        comparison.newPeaks = judge.peaksThatCame(places.both, resolutionOf(after));
        comparison.vanishedPeaks = judge.peaksThatWent(places.both, resolutionOf(before));
    }
    comparison.onlyBefore = std::move(places.onlyBefore);
    comparison.onlyAfter = std::move(places.onlyAfter);
    return comparison;
}

using Channels = std::map<std::uint32_t, const ChannelResult*>;

Channels channelsOf(const ScanResult& result)
{
    Channels channels;
    for (const ChannelResult& channel : result.channels) {
        channels.emplace(channel.channel, &channel);
    }
    return channels;
}

std::vector<std::uint32_t> missingIn(const Channels& others, const ScanResult& result)
{
    std::vector<std::uint32_t> missing;
    for (const ChannelResult& channel : result.channels) {
        if (!others.contains(channel.channel)) {
            missing.push_back(channel.channel);
        }
    }
    return missing;
}

/// For one of all frequencies, that chance makes it look changed, up or down.
double riskOfOne(const ScanResult& result)
{
    constexpr double riskOfAll = 0.001;
    std::size_t tests = 1;
    for (const ChannelResult& channel : result.channels) {
        tests += 2 * channel.survey.holds().size(); // each frequency, and no more channels of the raster
    }
    return riskOfAll / 2.0 / static_cast<double>(tests);
}

} // namespace

bool ChannelComparison::isChanged() const
{
    return !obstacle.empty() || !ranges.empty() || std::ranges::any_of(raster, &RasterChange::isChanged);
}

bool Comparison::isDifferent() const
{
    return !onlyBefore.empty() || !onlyAfter.empty() || std::ranges::any_of(channels, &ChannelComparison::isChanged);
}

Comparison compare(const NamedResult& before, const NamedResult& after, const CompareOptions& options)
{
    const Channels first = channelsOf(before.result);
    const Channels second = channelsOf(after.result);
    const double risk = riskOfOne(before.result);
    Comparison comparison{.before = sideOf(before),
        .after = sideOf(after),
        .trace = options.trace,
        .threshold_dB = options.threshold_dB,
        .channels = {},
        .onlyBefore = missingIn(second, before.result),
        .onlyAfter = missingIn(first, after.result)};
    for (const ChannelResult& channel : before.result.channels) {
        if (const auto other = second.find(channel.channel); other != second.end()) {
            comparison.channels.push_back(compareChannels(channel, *other->second, options, risk));
        }
    }
    if (std::ranges::all_of(comparison.channels, [](const auto& channel) { return !channel.obstacle.empty(); })) {
        throw ResultError(comparison.channels.empty()
                ? "the results cannot be compared: they have no radio channel in common"
                : fmt::format("the results cannot be compared: channel {}: {}", comparison.channels.front().channel,
                    comparison.channels.front().obstacle));
    }
    return comparison;
}

} // namespace sdc

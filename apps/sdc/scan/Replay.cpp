#include "apps/sdc/scan/Replay.h"

#include "Platform/Host/RadioChannel.h"
#include "apps/sdc/formats/LiveFormat.h"
#include "apps/sdc/result/ResultFile.h"
#include "apps/sdc/result/Sweep.h"
#include "simulator/radio/Link.h"
#include "simulator/radio/emitters/Recording.h"
#include "support/Text.h"
#include "support/Time.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace sdc {

namespace {

/// The levels of a channel that stand where its last sweep reads, in runs that are one step apart and of which each is read
/// with ease.
std::vector<std::vector<Sample>> evenRunsOf(const ChannelResult& channel, TraceKind kind)
{
    constexpr std::size_t most = 1000;
    const std::uint32_t step_kHz = channel.plan.step_kHz;
    std::vector<std::vector<Sample>> runs;
    for (const auto& [frequency_kHz, level] : traceOf(channel, kind)) {
        const bool isFirst = runs.empty();
        const std::int64_t from_kHz = isFirst ? channel.plan.lowest_kHz : runs.back().back().frequency_kHz;
        const std::int64_t above_kHz = frequency_kHz - from_kHz;
        const bool isNext = above_kHz == (isFirst ? 0 : std::int64_t{step_kHz});
        if (!isNext && (step_kHz == 0 || above_kHz <= 0 || above_kHz % step_kHz != 0)) {
            continue;
        }
        if (isFirst || !isNext || runs.back().size() == most) {
            runs.emplace_back();
        }
        runs.back().push_back({frequency_kHz, level});
    }
    return runs;
}

/// The trace as sweep rows.
std::vector<std::string> rowsOf(const ChannelResult& channel, TraceKind kind)
{
    std::vector<std::string> rows;
    for (std::vector<Sample>& run : evenRunsOf(channel, kind)) {
        ScanPlan plan = channel.plan;
        plan.highest_kHz = run.back().frequency_kHz;
        Sweep sweep;
        sweep.start = channel.sweeps.front().start;
        sweep.samples = std::move(run);
        rows.push_back(sweepRow(sweep, plan, channel.receiver));
        rows.back().pop_back(); // the line feed
    }
    return rows;
}

simulator::Link replayed(const ChannelResult& channel, simulator::Link link, TraceKind kind)
{
    simulator::Recording recording{.lowest_kHz = {}, .bins = nullptr};
    recording.rows = rowsOf(channel, kind);
    recording.bandwidth_kHz = channel.receiver.filterWidth_kHz;
    if (recording.rows.empty()) {
        throw ResultError(fmt::format("channel {} has no samples that are levels; must have one or more", channel.channel));
    }
    link.emitters = {std::move(recording)};
    link.rain.clear();
    link.notches.clear();
    link.faults.clear();
    link.jitter_dB = 0.0;
    link.settlingTime_ms = simulator::leastSettlingTime_ms;
    return link;
}

std::string sourceOf(const ScanResult& result, TraceKind trace)
{
    const std::vector<Sweep>& sweeps = result.channels.front().sweeps;
    return fmt::format("Recorded: {} of scenario '{}', {} {}, {}.",
        result.kind == ScanKind::channel ? "channel scan" : "sub-band scan", support::shown(result.scenario, 100),
        support::dateText(sweeps.front().start), support::clockText(sweeps.front().start),
        support::counted(sweeps.size(), "sweep") + (sweeps.size() > 1 ? fmt::format(", {}", toText(trace)) : ""));
}

} // namespace

simulator::Scenario replayOf(const ScanResult& result, simulator::Scenario scenario, TraceKind trace)
{
    constexpr std::size_t mostSources = 20; // with the one of the recording
    constexpr std::size_t longestName = 40;
    constexpr std::size_t longestDescription = 99;
    std::vector<simulator::TerminalChannel> channels;
    for (const ChannelResult& channel : result.channels) {
        const auto number = RadioChannel{channel.channel};
        const auto found = std::ranges::find(scenario.channels, number, &simulator::TerminalChannel::number);
        if (found == scenario.channels.end()) {
            throw ResultError(fmt::format("is of channel {}, which scenario '{}' has not", channel.channel, scenario.name));
        }
        channels.push_back({number, replayed(channel, found->link, trace)});
    }
    scenario.channels = std::move(channels);
    scenario.name = support::shown(scenario.name + "-replay", longestName);
    scenario.description = support::shown("replay: " + scenario.description, longestDescription);
    scenario.sources.resize(std::min(scenario.sources.size(), mostSources - 1));
    scenario.sources.push_back(sourceOf(result, trace));
    return scenario;
}

} // namespace sdc

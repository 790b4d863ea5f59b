#include "apps/sdc/scan/Replay.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
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
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace sdc {

namespace {

/// The samples of a channel that stand one step apart, as those of its last sweep do.
std::vector<Sample> evenTraceOf(const ChannelResult& channel, TraceKind kind)
{
    std::vector<Sample> even;
    for (const SDCResult& sample : traceOf(channel, kind)) {
        const std::uint32_t next_kHz =
            even.empty() ? channel.plan.lowest_kHz : even.back().frequency_kHz + channel.plan.step_kHz;
        if (sample.frequency_kHz == next_kHz) {
            even.push_back({sample.frequency_kHz, sample.rssi});
        }
    }
    return even;
}

/// The trace as sweep rows, of so many samples that each is read with ease.
std::vector<std::string> rowsOf(const ChannelResult& channel, TraceKind kind)
{
    constexpr std::size_t most = 1000;
    const std::vector<Sample> trace = evenTraceOf(channel, kind);
    const std::size_t count = (trace.size() + most - 1) / most;
    std::vector<std::string> rows;
    for (std::size_t part = 0; part < count; ++part) {
        const auto begin = trace.begin() + static_cast<std::ptrdiff_t>(trace.size() * part / count);
        const auto end = trace.begin() + static_cast<std::ptrdiff_t>(trace.size() * (part + 1) / count);
        ScanPlan plan = channel.plan;
        plan.highest_kHz = std::prev(end)->frequency_kHz;
        plan.samples = static_cast<std::int32_t>(end - begin);
        Sweep sweep;
        sweep.start = channel.sweeps.front().start;
        sweep.samples.assign(begin, end);
        rows.push_back(sweepRow(sweep, plan));
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
        throw ResultError(fmt::format("channel {} has no samples; must have one or more", channel.channel));
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

#include "apps/sdc/ScanReport.h"

#include "apps/sdc/Texts.h"
#include "apps/sdc/results/Format.h"
#include "support/Text.h"

#include <algorithm>

namespace sdc {

namespace {

using std::chrono::milliseconds;
using support::shown;

std::string line(const std::string& label, const std::string& text)
{
    constexpr std::size_t labelWidth = 11;
    return left(label, labelWidth) + text + "\n";
}

/// Of the channel whose sweep takes longest: all sweep at once.
milliseconds radioTime(const std::vector<PlannedChannel>& channels)
{
    milliseconds longest{};
    for (const PlannedChannel& channel : channels) {
        longest = std::max(longest, channel.plan ? channel.plan->settleTime() : milliseconds{});
    }
    return longest;
}

std::string timeReport(const std::vector<PlannedChannel>& channels, const SessionOptions& options)
{
    const milliseconds sweep = radioTime(channels);
    const milliseconds all = sweep * std::max(options.sweeps, 1U);
    std::string text = durationText(sweep) + " of radio time" + (options.sweeps == 1 ? "" : " a sweep");
    if (options.sweeps > 1) {
        text += ", " + durationText(all) + " for " + std::to_string(options.sweeps) + " sweeps";
    } else if (options.sweeps == 0) {
        text += ", again and again until Ctrl-C";
    }
    const std::string here = durationText(wallTime(all, options.speed)) + " at this speed";
    return line("time", text + ", " + (options.speed == 0.0 ? "passed over at this speed" : here));
}

std::string rangeText(const terminal::ScanPlan& plan)
{
    const std::string samples = counted(static_cast<std::size_t>(std::max(plan.samples, 0)), "sample");
    if (plan.samples == 1) {
        return megahertz(plan.lowest_kHz) + " MHz, " + samples;
    }
    return megahertz(plan.lowest_kHz) + " to " + megahertz(plan.highest_kHz) + " MHz, step " + megahertz(plan.step_kHz)
        + " MHz, " + samples;
}

std::string settlingText(const terminal::ScanPlan& plan)
{
    if (plan.samples == 1) {
        return std::to_string(plan.settleTime().count()) + " ms";
    }
    return std::to_string(plan.firstSetRxWait_ms) + " ms before the first sample, then " + std::to_string(plan.setRxWait_ms)
        + " ms";
}

std::string sweepEnd(const Sweep& sweep, const terminal::ScanPlan& plan)
{
    return sweep.statusText + ", " + std::to_string(sweep.samples.size()) + " of " + std::to_string(plan.samples)
        + " samples" + (sweep.ending == Ending::stopped ? ", stopped" : "");
}

} // namespace

std::string introduction(const simulator::Scenario& scenario, ScanKind kind)
{
    std::string text = line("scenario", shown(scenario.name) + ": " + shown(scenario.description));
    for (const std::string& source : scenario.sources) {
        text += line("source", shown(source, 1000));
    }
    return text + line("command", SDCCommand::toString(startCommand(kind)));
}

std::string planReport(const std::vector<PlannedChannel>& channels, const SessionOptions& options)
{
    std::string text;
    for (const auto& [channel, plan] : channels) {
        text += line("channel",
            std::to_string(static_cast<std::uint32_t>(channel.number)) + ": unit " + shown(channel.link.unitTypeText)
                + ", receiver at " + megahertz(channel.link.rxFrequency_kHz) + " MHz");
        if (!plan) {
            text += line("plan", "none: the controller does not support this unit type");
            continue;
        }
        text += line("plan", rangeText(*plan)) + line("settling", settlingText(*plan));
    }
    const bool isAnyPlanned =
        std::ranges::any_of(channels, [](const PlannedChannel& channel) { return channel.plan.has_value(); });
    return isAnyPlanned ? text + timeReport(channels, options) : text;
}

std::string endReport(const ChannelResult& result, bool isNamed)
{
    const std::string name = isNamed ? "channel " + std::to_string(result.channel) + ": " : "";
    const Sweep& last = result.sweeps.back();
    std::string status = sweepEnd(last, result.plan);
    if (result.sweeps.size() > 1) {
        const auto complete = std::ranges::count(result.sweeps, Ending::complete, &Sweep::ending);
        status =
            std::to_string(result.sweeps.size()) + " sweeps, " + std::to_string(complete) + " complete; the last: " + status;
    }
    return line("status", name + status) + line("receiver", name + megahertz(last.rxAfter_kHz) + " MHz after");
}

} // namespace sdc

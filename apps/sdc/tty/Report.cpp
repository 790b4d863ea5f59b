#include "apps/sdc/tty/Report.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/tty/Interrupt.h"
#include "support/Text.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>

namespace sdc {

namespace {

using std::chrono::milliseconds;
using support::shown;

std::string line(const std::string& label, const std::string& text)
{
    return fmt::format("{:<11}{}\n", label, text);
}

/// Of the channel whose sweep takes longest: all sweep at once.
milliseconds radioTime(const SessionPlan& session)
{
    milliseconds longest{};
    for (const PlannedChannel& channel : session.channels) {
        longest = std::max(longest, channel.plan ? channel.plan->settleTime() : milliseconds{});
    }
    return longest;
}

std::string timeLine(const SessionPlan& session)
{
    const milliseconds sweep = radioTime(session);
    const milliseconds all = sweep * std::max(session.sweeps, 1U);
    std::string text = support::duration(sweep) + " of radio time" + (session.sweeps == 1 ? "" : " a sweep");
    if (session.sweeps > 1) {
        text += ", " + support::duration(all) + " for " + std::to_string(session.sweeps) + " sweeps";
    } else if (session.sweeps == 0) {
        text += ", again and again until Ctrl-C";
    }
    const std::string here = support::duration(wallTime(all, session.speed)) + " at this speed";
    return line("time", text + ", " + (session.speed == 0.0 ? "passed over at this speed" : here));
}

std::string rangeText(const ScanPlan& plan)
{
    const std::string samples = support::counted(static_cast<std::size_t>(std::max(plan.samples, 0)), "sample");
    if (plan.samples == 1) {
        return megahertz(plan.lowest_kHz) + " MHz, " + samples;
    }
    return fmt::format("{} to {} MHz, step {} MHz, {}", megahertz(plan.lowest_kHz), megahertz(plan.highest_kHz),
        megahertz(plan.step_kHz), samples);
}

std::string settlingText(const ScanPlan& plan)
{
    if (plan.samples == 1) {
        return fmt::format("{} ms", plan.settleTime().count());
    }
    return fmt::format("{} ms before the first sample, then {} ms", plan.firstSetRxWait_ms, plan.setRxWait_ms);
}

std::string planLines(const SessionPlan& session)
{
    std::string text;
    bool isAnyPlanned = false;
    for (const auto& [channel, plan] : session.channels) {
        text += line("channel",
            fmt::format("{}: unit {}, receiver at {} MHz", static_cast<std::uint32_t>(channel.number),
                shown(channel.unitTypeText), megahertz(channel.rxFrequency_kHz)));
        text += plan ? line("plan", rangeText(*plan)) + line("settling", settlingText(*plan))
                     : line("plan", "none: the controller does not support this unit type");
        isAnyPlanned = isAnyPlanned || plan;
    }
    return isAnyPlanned ? text + timeLine(session) : text;
}

std::ostream& progressStream(bool isQuiet)
{
    static std::ostream nowhere(nullptr);
    return isQuiet ? nowhere : std::cerr;
}

} // namespace

Report::Report(bool isQuiet, ColorMode color, bool hasProgress)
    : m_isQuiet(isQuiet)
    , m_progress(progressStream(isQuiet || !hasProgress),
          {.isTerminal = isCapableTerminal(STDERR_FILENO), .isColored = usesColor(color, STDERR_FILENO), .columns = [] {
               return terminalWidth(STDERR_FILENO);
           }})
{
}

void Report::introduce(const Site& site, ScanKind kind) const
{
    std::string text = line("scenario", site.name() + ": " + site.description());
    for (const std::string& source : site.sources()) {
        text += line("source", source);
    }
    tell(text + line("command", SDCCommand::toString(startCommand(kind))));
}

void Report::onPlan(const SessionPlan& plan)
{
    m_plan = plan;
    for (const PlannedChannel& channel : plan.channels) {
        Lane& lane = m_lanes.emplace_back();
        lane.number = static_cast<std::uint32_t>(channel.channel.number);
        lane.plan = channel.plan.value_or(ScanPlan{});
        lane.receiver = channel.channel.receiver;
    }
    tell(planLines(plan));
}

void Report::onSweepBegin(std::size_t channel, const ScanPlan& plan)
{
    m_lanes[channel].plan = plan;
    m_lanes[channel].isSwept = true;
    m_lastSeen = std::chrono::steady_clock::now();
}

void Report::onSample(std::size_t channel, const Sample& sample)
{
    ++m_taken;
    ++m_lanes[channel].taken;
    m_lastSample = sample;
    m_lastChannel = m_lanes[channel].number;
    m_lastSeen = std::chrono::steady_clock::now();
}

void Report::onPoll()
{
    m_progress.show(progressState());
}

void Report::onStop(milliseconds stepTime)
{
    if (!isInterrupted()) {
        return; // nobody waits: the readers of all outputs have gone
    }
    const std::string wait = m_plan.speed == 0.0 ? "" : ", up to " + support::duration(wallTime(stepTime, m_plan.speed));
    tellAlways("stopping after the step in hand" + wait + "; Ctrl-C again leaves at once");
}

void Report::onSweepEnd(std::size_t channel, const Sweep& sweep)
{
    Lane& lane = m_lanes[channel];
    ++lane.sweeps;
    lane.complete += sweep.ending == Ending::complete ? 1 : 0;
    lane.isSwept = false;
    lane.taken = 0;
    lane.last = sweep;
    lane.check.add(sweep, lane.receiver);
    if (sweep.ending == Ending::failed) {
        const std::string name = m_plan.sweeps == 1 ? "" : ", sweep " + std::to_string(lane.sweeps);
        tellAlways("channel " + std::to_string(lane.number) + name + ": " + sweep.reason);
    }
}

void Report::onEnd(Ending)
{
    m_progress.end();
    for (const Lane& lane : m_lanes) {
        tell(endOf(lane));
        tellOddities(lane);
    }
}

/// One line, as in "channel 1: all 13 readings are equal, -45.12 dBm: the receiver may be dead".
void Report::tellOddities(const Lane& lane)
{
    std::string sentences;
    for (const Finding& finding : lane.check.findings()) {
        sentences += (sentences.empty() ? "" : "; ") + sentenceOf(finding);
    }
    if (!sentences.empty()) {
        tellAlways("channel " + std::to_string(lane.number) + ": " + sentences);
    }
}

std::string Report::endOf(const Lane& lane) const
{
    const std::string name = m_lanes.size() > 1 ? "channel " + std::to_string(lane.number) + ": " : "";
    std::string status = fmt::format("{}, {} of {} samples{}", lane.last.statusText, lane.last.samples.size(),
        lane.plan.samples, lane.last.ending == Ending::stopped ? ", stopped" : "");
    if (lane.sweeps > 1) {
        status = fmt::format("{} sweeps, {} complete; the last: {}", lane.sweeps, lane.complete, status);
    }
    return line("status", name + status) + line("receiver", name + megahertz(lane.last.rxAfter_kHz) + " MHz after");
}

void Report::tell(const std::string& text) const
{
    if (!m_isQuiet) {
        std::cerr << text << std::flush;
    }
}

void Report::tellAlways(const std::string& text)
{
    m_progress.clear();
    std::cerr << support::prefixed(text, "sdc: ") << std::flush;
}

/// All channels are swept together.
std::uint32_t Report::sweepInHand() const
{
    return static_cast<std::uint32_t>(m_lanes.front().sweeps) + 1;
}

ProgressState Report::progressState() const
{
    ProgressState state;
    const std::uint32_t sweeps = m_plan.sweeps == 0 ? sweepInHand() : m_plan.sweeps;
    for (const Lane& lane : m_lanes) {
        state.planned += std::int64_t{sweeps} * lane.plan.samples;
    }
    state.taken = m_taken;
    state.last = m_lastSample;
    state.channel = m_lanes.size() > 1 ? std::optional(m_lastChannel) : std::nullopt;
    state.sweep = sweepInHand();
    state.sweeps = m_plan.sweeps;
    state.left = wallTimeLeft();
    return state;
}

/// From the sample taken last on: a settle delay of a minute is seen to pass.
std::optional<milliseconds> Report::wallTimeLeft() const
{
    if (m_plan.speed == 0.0) {
        return std::nullopt;
    }
    milliseconds inHand{};
    milliseconds whole{};
    for (const Lane& lane : m_lanes) {
        const milliseconds left = lane.plan.settleTime() - lane.plan.settleTime(lane.taken);
        inHand = std::max(inHand, lane.isSwept ? left : milliseconds{});
        whole = std::max(whole, lane.plan.settleTime());
    }
    const std::uint32_t later = m_plan.sweeps == 0 ? 0 : m_plan.sweeps - sweepInHand();
    const auto passed = std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - m_lastSeen);
    return std::max(milliseconds{}, wallTime(inHand + later * whole, m_plan.speed) - passed);
}

} // namespace sdc

#include "apps/sdc/ScanSession.h"

#include "apps/sdc/Interrupt.h"
#include "apps/sdc/Texts.h"
#include "support/Text.h"

#include <algorithm>
#include <exception>

namespace sdc {

using host::Clock;
using std::chrono::milliseconds;
using terminal::Terminal;

ScanSession::ScanSession(
    const std::vector<PlannedChannel>& channels, const SessionOptions& options, Progress& progress, std::ostream& messages)
    : m_options(options)
    , m_progress(progress)
    , m_messages(messages)
{
    for (const PlannedChannel& channel : channels) {
        m_lanes.emplace_back(channel, options.start);
    }
}

void ScanSession::run(const std::vector<terminal::Channel>& allChannels, Clock& clock)
{
    std::optional<Terminal> terminal;
    try {
        terminal.emplace(allChannels, clock);
    } catch (const std::exception& exception) {
        for (ScanLane& lane : m_lanes) {
            lane.setStartFailure(std::string("the terminal did not come up: ") + support::shown(exception.what()));
        }
        finishAll();
        return;
    }
    sweepAll(*terminal, clock);
    while (goesOn()) {
        ++m_sweep;
        sweepAll(*terminal, clock);
    }
    m_progress.end();
    m_isCutShort = isInterrupted() && m_sweep != m_options.sweeps;
}

/// Where nothing could be swept this time, nothing can be swept the next.
bool ScanSession::goesOn() const
{
    return m_sweep != m_options.sweeps && !isInterrupted() && std::ranges::any_of(m_lanes, &ScanLane::hasBegun);
}

/// While the clock is held no sweep passes its first settle delay, so that all channels begin together.
void ScanSession::sweepAll(Terminal& terminal, Clock& clock)
{
    clock.hold();
    for (ScanLane& lane : m_lanes) {
        lane.begin(terminal, m_options.kind);
    }
    m_lastSeen = std::chrono::steady_clock::now();
    clock.release();
    for (ScanLane& lane : m_lanes) {
        if (lane.hasBegun()) {
            lane.setStatus(terminal.waitForEnd(RadioChannel{lane.channel()}, [&] { poll(terminal, clock); }));
        }
    }
    for (const ScanLane& lane : m_lanes) {
        terminal.waitForIdle(RadioChannel{lane.channel()}); // after a stop the step in hand still finishes
    }
    measureAll(terminal);
    m_progress.show(progressState());
    finishAll();
}

void ScanSession::poll(Terminal& terminal, Clock& clock)
{
    measureAll(terminal);
    m_progress.show(progressState());
    if (isInterrupted() && !m_isStopping) {
        m_isStopping = true;
        stopAll(terminal, clock);
    }
}

/// Held for all stops together: the terminal lets every sweep come to stand in a settle delay before the first of them, and
/// there they must still be at the last.
void ScanSession::stopAll(Terminal& terminal, Clock& clock)
{
    milliseconds longest{};
    clock.hold();
    for (ScanLane& lane : m_lanes) {
        if (lane.stop(terminal)) {
            longest = std::max(longest, lane.stepTime());
        }
    }
    clock.release();
    const std::string wait = m_options.speed == 0.0 ? "" : ", up to " + durationText(wallTime(longest, m_options.speed));
    tell("stopping after the step in hand" + wait + "; Ctrl-C again leaves at once");
}

void ScanSession::measureAll(Terminal& terminal)
{
    for (ScanLane& lane : m_lanes) {
        if (lane.measure(terminal)) {
            m_last = lane.samples().back();
            m_lastChannel = lane.channel();
            m_lastSeen = std::chrono::steady_clock::now();
        }
    }
}

void ScanSession::finishAll()
{
    for (ScanLane& lane : m_lanes) {
        const Sweep& sweep = lane.finish();
        if (sweep.ending == Ending::failed) {
            const std::string name = m_options.sweeps == 1 ? "" : ", sweep " + std::to_string(m_sweep);
            tell("channel " + std::to_string(lane.channel()) + name + ": " + sweep.reason);
        }
    }
}

/// In one piece: the workers' trace goes to the same stream.
void ScanSession::tell(const std::string& text)
{
    m_progress.clear();
    m_messages << message(text) << std::flush;
}

ProgressState ScanSession::progressState() const
{
    ProgressState state;
    const std::uint32_t sweeps = m_options.sweeps == 0 ? m_sweep : m_options.sweeps;
    for (const ScanLane& lane : m_lanes) {
        state.taken += lane.taken();
        state.planned += std::int64_t{sweeps} * lane.plan().samples;
    }
    state.last = m_last;
    state.channel = m_lanes.size() > 1 ? std::optional(m_lastChannel) : std::nullopt;
    state.sweep = m_sweep;
    state.sweeps = m_options.sweeps;
    state.left = wallTimeLeft();
    return state;
}

/// From the sample taken last on: a settle delay of a minute is seen to pass.
std::optional<milliseconds> ScanSession::wallTimeLeft() const
{
    if (m_options.speed == 0.0) {
        return std::nullopt;
    }
    milliseconds inHand{};
    milliseconds whole{};
    for (const ScanLane& lane : m_lanes) {
        inHand = std::max(inHand, lane.radioTimeLeft());
        whole = std::max(whole, lane.plan().settleTime());
    }
    const std::uint32_t later = m_options.sweeps == 0 ? 0 : m_options.sweeps - m_sweep;
    const auto passed = std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - m_lastSeen);
    return std::max(milliseconds{}, wallTime(inHand + later * whole, m_options.speed) - passed);
}

std::vector<ChannelResult> ScanSession::takeResults()
{
    std::vector<ChannelResult> results;
    for (ScanLane& lane : m_lanes) {
        results.push_back(lane.takeResult());
    }
    return results;
}

} // namespace sdc

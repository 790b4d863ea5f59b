#include "apps/sdc/scan/Session.h"

#include "support/Text.h"
#include "terminal/Peers.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>

namespace sdc {

using host::Clock;
using std::chrono::milliseconds;
using terminal::Terminal;

Session::Session(SessionPlan plan, std::vector<Sink*> sinks, std::function<bool()> isStopWanted)
    : m_plan(std::move(plan))
    , m_sinks(std::move(sinks))
    , m_isStopWanted(std::move(isStopWanted))
{
    for (const PlannedChannel& channel : m_plan.channels) {
        m_lanes.emplace_back(channel, m_plan.start);
    }
}

void Session::run(const std::vector<terminal::Channel>& channels, Clock& clock)
{
    tell(&Sink::onPlan, m_plan);
    std::optional<Terminal> terminal;
    try {
        terminal.emplace(channels, clock);
    } catch (const std::exception& exception) {
        for (Lane& lane : m_lanes) {
            lane.setStartFailure("the terminal did not come up: " + support::shown(exception.what()));
        }
        finishAll();
    }
    if (terminal) {
        sweepAsOftenAsAsked(*terminal, clock);
    }
    terminal.reset();
    tell(&Sink::onEnd);
}

void Session::sweepAsOftenAsAsked(Terminal& terminal, Clock& clock)
{
    sweepAll(terminal, clock);
    while (goesOn()) {
        ++m_sweep;
        sweepAll(terminal, clock);
    }
    m_isCutShort = m_isStopWanted() && m_sweep != m_plan.sweeps;
}

/// Where nothing could be swept this time, nothing can be swept the next.
bool Session::goesOn() const
{
    return m_sweep != m_plan.sweeps && !m_isStopWanted() && std::ranges::any_of(m_lanes, &Lane::hasBegun);
}

void Session::sweepAll(Terminal& terminal, Clock& clock)
{
    beginAll(terminal, clock);
    for (Lane& lane : m_lanes) {
        if (lane.hasBegun()) {
            lane.setStatus(terminal.waitForEnd(lane.number(), [&] { poll(terminal, clock); }));
        }
    }
    for (const Lane& lane : m_lanes) {
        terminal.waitForIdle(lane.number()); // after a stop the step in hand still finishes
    }
    measureAll(terminal);
    tell(&Sink::onPoll);
    finishAll();
}

/// While the clock is held no sweep passes its first settle delay, so that all channels begin together.
void Session::beginAll(Terminal& terminal, Clock& clock)
{
    clock.hold();
    for (std::size_t channel = 0; channel < m_lanes.size(); ++channel) {
        Lane& lane = m_lanes[channel];
        lane.begin(terminal, m_plan.kind);
        if (lane.hasBegun()) {
            tell(&Sink::onSweepBegin, channel, lane.plan());
        }
    }
    clock.release();
}

void Session::poll(Terminal& terminal, Clock& clock)
{
    measureAll(terminal);
    tell(&Sink::onPoll);
    if (m_isStopWanted() && !m_isStopping) {
        m_isStopping = true;
        stopAll(terminal, clock);
    }
}

/// Held for all stops together: the terminal lets every sweep come to stand in a settle delay before the first of them, and
/// there they must still be at the last.
void Session::stopAll(Terminal& terminal, Clock& clock)
{
    milliseconds longest{};
    clock.hold();
    for (Lane& lane : m_lanes) {
        if (lane.stop(terminal)) {
            longest = std::max(longest, lane.stepTime());
        }
    }
    clock.release();
    tell(&Sink::onStop, longest);
}

void Session::measureAll(Terminal& terminal)
{
    for (std::size_t channel = 0; channel < m_lanes.size(); ++channel) {
        for (const Sample& sample : m_lanes[channel].measure(terminal)) {
            tell(&Sink::onSample, channel, sample);
        }
    }
}

void Session::finishAll()
{
    for (std::size_t channel = 0; channel < m_lanes.size(); ++channel) {
        tell(&Sink::onSweepEnd, channel, m_lanes[channel].finish());
    }
}

} // namespace sdc

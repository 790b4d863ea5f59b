#include "apps/sdc/scan/Session.h"

#include "Platform/Host/RadioChannel.h"
#include "apps/sdc/tty/Interrupt.h"
#include "support/Text.h"
#include "terminal/Peers.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>

namespace sdc {

using host::Clock;
using std::chrono::milliseconds;
using terminal::Terminal;

namespace {

class RadioDoesNotAnswer : public std::runtime_error {
public:
    RadioDoesNotAnswer()
        : std::runtime_error("its radio did not answer, and the user waited no longer")
    {
    }
};

} // namespace

Session::Session(SessionPlan plan, std::vector<Sink*> sinks, std::function<bool()> isStopWanted, Leaving leaving)
    : m_plan(std::move(plan))
    , m_sinks(std::move(sinks))
    , m_isStopWanted(std::move(isStopWanted))
    , m_leaving(std::move(leaving))
    , m_begin(m_plan.start)
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
        const SignalsHeld noneForTheWorkers;
        terminal.emplace(channels, clock);
    } catch (const std::exception& exception) {
        for (Lane& lane : m_lanes) {
            lane.setStartFailure("the terminal did not come up: " + support::shown(exception.what()));
        }
        finishAll();
    }
    const std::exception_ptr failure = terminal ? sweepUntilDoneOrBroken(*terminal, clock) : nullptr;
    tell(&Sink::onEnd, m_ending);
    if (m_isAbandoned) {
        m_leaving.abandon();
    }
    if (m_hasHurried) {
        clock.endHurry();
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

/// Whatever breaks, the sinks get what was measured. Returns it, unless it is a radio that is given up.
std::exception_ptr Session::sweepUntilDoneOrBroken(Terminal& terminal, Clock& clock)
{
    try {
        sweepAsOftenAsAsked(terminal, clock);
    } catch (const RadioDoesNotAnswer& silence) {
        m_isAbandoned = true;
        breakOff(terminal, silence.what());
    } catch (const std::exception& exception) {
        breakOff(terminal, support::shown(exception.what()));
        return std::current_exception();
    }
    return nullptr;
}

void Session::sweepAsOftenAsAsked(Terminal& terminal, Clock& clock)
{
    sweepAll(terminal, clock);
    while (goesOn()) {
        if (!isNextSweepReached(clock)) {
            break;
        }
        ++m_sweep;
        sweepAll(terminal, clock);
    }
    if (m_isStopWanted() && hasSweepsLeft()) {
        m_ending = std::max(m_ending, Ending::stopped);
    }
}

void Session::breakOff(Terminal& terminal, const std::string& reason)
{
    for (Lane& lane : m_lanes) {
        lane.setFailure(reason);
    }
    try {
        measureAll(terminal);
        finishAll();
    } catch (const std::exception&) { // it breaks again; what has been told stands
        m_ending = Ending::failed;
    }
}

/// Where nothing could be swept this time, nothing can be swept the next.
bool Session::goesOn() const
{
    return hasSweepsLeft() && !m_isStopWanted() && std::ranges::any_of(m_lanes, &Lane::hasBegun);
}

bool Session::hasSweepsLeft() const
{
    return m_sweep != m_plan.sweeps && (!m_plan.length || nextBegin() < m_plan.start + *m_plan.length);
}

/// All channels are swept together: the one whose sweeps take longest tells when.
TimePoint Session::freeFrom() const
{
    return std::ranges::max_element(m_lanes, {}, &Lane::time)->time();
}

TimePoint Session::nextBegin() const
{
    return m_plan.interval ? std::max(freeFrom(), m_begin + *m_plan.interval) : freeFrom();
}

/// The radios' time passes between two sweeps as fast as in them. Returns false for a stop before the next one.
bool Session::isNextSweepReached(Clock& clock)
{
    constexpr milliseconds pause{10};
    constexpr milliseconds longest = std::chrono::hours(100 * 365 * 24); // more would not fit into a time
    const milliseconds gap = nextBegin() - freeFrom();
    const auto end = std::chrono::steady_clock::now() + std::min(wallTime(gap, m_plan.speed), longest);
    while (std::chrono::steady_clock::now() < end) {
        if (m_isStopWanted()) {
            return false;
        }
        tell(&Sink::onPoll);
        std::this_thread::sleep_for(pause);
    }
    m_begin = nextBegin();
    clock.pass(gap);
    for (Lane& lane : m_lanes) {
        lane.pass(gap);
    }
    return true;
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
        waitForIdle(terminal, clock, lane.number());
    }
    measureAll(terminal);
    tell(&Sink::onPoll);
    finishAll();
}

/// After a stop the step in hand still finishes, and the user may not want to wait for that.
void Session::waitForIdle(Terminal& terminal, Clock& clock, RadioChannel channel)
{
    constexpr milliseconds pause{1};
    while (m_isStopping && terminal.isSweeping(channel)) {
        poll(terminal, clock);
        std::this_thread::sleep_for(pause);
    }
    terminal.waitForIdle(channel);
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
    if (m_leaving.isWanted() && !m_hasHurried) {
        m_hasHurried = true;
        clock.hurry();
    }
    if (isOverdue()) {
        throw RadioDoesNotAnswer();
    }
}

/// Whether a radio has had time to answer since the user waits no longer.
bool Session::isOverdue()
{
    constexpr std::chrono::seconds patience{3}; // far more than a step takes without its settle delay
    const auto now = std::chrono::steady_clock::now();
    if (m_leaving.isWanted() && !m_leaveBy) {
        m_leaveBy = now + patience;
    }
    return m_leaveBy && now > *m_leaveBy;
}

/// Held for all stops together: the terminal lets every sweep come to stand in a settle delay before the first of them, and
/// there they must still be at the last.
void Session::stopAll(Terminal& terminal, Clock& clock)
{
    milliseconds longest{};
    clock.hold();
    for (Lane& lane : m_lanes) {
        if (lane.stop(terminal, [this] { return isOverdue(); })) {
            longest = std::max(longest, lane.stepTime());
        }
    }
    clock.release();
    tell(&Sink::onStop, longest);
}

void Session::measureAll(Terminal& terminal)
{
    for (std::size_t channel = 0; channel < m_lanes.size(); ++channel) {
        Lane& lane = m_lanes[channel];
        lane.measure(terminal);
        while (const Sample* const sample = lane.nextSample()) {
            tell(&Sink::onSample, channel, *sample);
        }
    }
}

void Session::finishAll()
{
    for (std::size_t channel = 0; channel < m_lanes.size(); ++channel) {
        const Sweep sweep = m_lanes[channel].finish();
        m_ending = std::max(m_ending, sweep.ending);
        tell(&Sink::onSweepEnd, channel, sweep);
    }
}

} // namespace sdc

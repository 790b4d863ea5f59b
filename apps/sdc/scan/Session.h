#pragma once

#include "Platform/Host/RadioChannel.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/scan/Lane.h"
#include "host/Clock.h"
#include "terminal/Peers.h"
#include "terminal/Terminal.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace sdc {

/// Who wants to know what a session does, as it does it. Channels are told by their place in the session's plan. All is told
/// on the session's thread.
class Sink {
public:
    virtual ~Sink() = default;

    /// What is going to be done. Comes first, once.
    virtual void onPlan(const SessionPlan&) {}

    /// A sweep of a channel runs, with the plan that the controller made for it. Where it could not begin, its end comes
    /// without this.
    virtual void onSweepBegin(std::size_t /*channel*/, const ScanPlan&) {}

    /// A sample of the sweep in hand, in the order taken.
    virtual void onSample(std::size_t /*channel*/, const Sample&) {}

    /// The sweep of a channel has ended, well or not; all its samples have been told.
    virtual void onSweepEnd(std::size_t /*channel*/, const Sweep&) {}

    /// Time has passed, some milliseconds; whether or not there was anything to tell.
    virtual void onPoll() {}

    /// All sweeps in hand are being stopped, which takes so much radio time at most.
    virtual void onStop(std::chrono::milliseconds /*stepTime*/) {}

    /// The session is over, whatever has ended it. Comes last, once.
    /// @param ending  of all sweeps: a failure counts more than a stop, a stop more than completion
    virtual void onEnd(Ending /*ending*/) {}
};

/// What becomes of a session whose user waits no longer, not even for a stop. No settle delay takes wall time from then on,
/// so that the receivers are soon back. A radio that does not even then answer is given up, with its terminal.
struct Leaving {
    std::function<bool()> isWanted = [] { return false; }; ///< asked again and again

    /// Called after all is told, where a terminal cannot be taken down because a radio has not answered. To return is to
    /// wait for it.
    std::function<void()> abandon = [] {};
};

/// Sweeps channels of a terminal, all at the same time, as often as asked for or until told to stop, and tells its sinks
/// what comes of it.
class Session {
public:
    /// @param sinks         must outlive the session
    /// @param isStopWanted  asked again and again
    Session(SessionPlan plan, std::vector<Sink*> sinks, std::function<bool()> isStopWanted, Leaving leaving = {});

    /// Brings a terminal up, sweeps, and takes it down. A terminal that does not come up is a failed sweep of each channel.
    /// @param channels  of the terminal, those of the plan among them
    /// @param clock     the terminal's, at the speed of the plan
    void run(const std::vector<terminal::Channel>& channels, host::Clock& clock);

    /// Of all sweeps: a failure counts more than a stop, whether of a sweep or before all were begun, and a stop more than
    /// completion.
    Ending ending() const { return m_ending; }

private:
    std::exception_ptr sweepUntilDoneOrBroken(terminal::Terminal& terminal, host::Clock& clock);
    void sweepAsOftenAsAsked(terminal::Terminal& terminal, host::Clock& clock);
    void sweepAll(terminal::Terminal& terminal, host::Clock& clock);
    void waitForIdle(terminal::Terminal& terminal, host::Clock& clock, RadioChannel channel);
    void beginAll(terminal::Terminal& terminal, host::Clock& clock);
    void poll(terminal::Terminal& terminal, host::Clock& clock);
    void stopAll(terminal::Terminal& terminal, host::Clock& clock);
    void breakOff(terminal::Terminal& terminal, const std::string& reason);
    bool isOverdue();
    void measureAll(terminal::Terminal& terminal);
    void finishAll();
    bool goesOn() const;
    bool hasSweepsLeft() const;
    TimePoint freeFrom() const;
    TimePoint nextBegin() const;
    bool isNextSweepReached(host::Clock& clock);

    template <typename... Told, typename... Values>
    void tell(void (Sink::*event)(Told...), const Values&... values)
    {
        for (Sink* const sink : m_sinks) {
            (sink->*event)(values...);
        }
    }

    SessionPlan m_plan;
    std::vector<Sink*> m_sinks;
    std::function<bool()> m_isStopWanted;
    Leaving m_leaving;
    std::vector<Lane> m_lanes;
    std::uint32_t m_sweep = 1; ///< the sweep in hand
    TimePoint m_begin;         ///< of it
    bool m_isStopping = false;
    std::optional<std::chrono::steady_clock::time_point> m_leaveBy; ///< where the user waits no longer
    Ending m_ending = Ending::complete;                             ///< of what has ended so far
    bool m_hasHurried = false;
    bool m_isAbandoned = false;
};

} // namespace sdc

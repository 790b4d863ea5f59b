#pragma once

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
#include <functional>
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

    /// The session is over, and its terminal gone. Comes last, once.
    virtual void onEnd() {}
};

/// Sweeps channels of a terminal, all at the same time, as often as asked for or until told to stop, and tells its sinks
/// what comes of it.
class Session {
public:
    /// @param sinks         must outlive the session
    /// @param isStopWanted  asked again and again
    Session(SessionPlan plan, std::vector<Sink*> sinks, std::function<bool()> isStopWanted);

    /// Brings a terminal up, sweeps, and takes it down. A terminal that does not come up is a failed sweep of each channel.
    /// @param channels  of the terminal, those of the plan among them
    /// @param clock     the terminal's, at the speed of the plan
    void run(const std::vector<terminal::Channel>& channels, host::Clock& clock);

    /// Whether the session was stopped before all sweeps were begun.
    bool isCutShort() const { return m_isCutShort; }

private:
    void sweepAsOftenAsAsked(terminal::Terminal& terminal, host::Clock& clock);
    void sweepAll(terminal::Terminal& terminal, host::Clock& clock);
    void beginAll(terminal::Terminal& terminal, host::Clock& clock);
    void poll(terminal::Terminal& terminal, host::Clock& clock);
    void stopAll(terminal::Terminal& terminal, host::Clock& clock);
    void measureAll(terminal::Terminal& terminal);
    void finishAll();
    bool goesOn() const;

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
    std::vector<Lane> m_lanes;
    std::uint32_t m_sweep = 1; ///< the sweep in hand
    bool m_isStopping = false;
    bool m_isCutShort = false;
};

} // namespace sdc

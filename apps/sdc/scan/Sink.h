#pragma once

#include "apps/sdc/scan/Channels.h"

#include <chrono>
#include <cstddef>
#include <cstdint>

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
    virtual void onSample(std::size_t /*channel*/, const SDCResult&) {}

    /// The sweep of a channel has ended, well or not; all its samples have been told.
    virtual void onSweepEnd(std::size_t /*channel*/, const Sweep&) {}

    /// Time has passed, some milliseconds; whether or not there was anything to tell.
    virtual void onPoll() {}

    /// All sweeps in hand are being stopped, which takes so much radio time at most.
    virtual void onStop(std::chrono::milliseconds /*stepTime*/) {}

    /// The session is over, and its terminal gone. Comes last, once.
    virtual void onEnd() {}
};

} // namespace sdc

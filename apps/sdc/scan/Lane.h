#pragma once

#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/scan/Verdict.h"
#include "terminal/Terminal.h"

#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace sdc {

/// One channel in a session: its sweep in hand.
class Lane {
public:
    /// @param start  the time of day at which simulated time begins
    Lane(const PlannedChannel& channel, TimePoint start);

    RadioChannel number() const { return m_channel.number; }
    const ScanPlan& plan() const { return m_facts.plan; }

    /// Starts a sweep. What goes wrong is kept for the verdict.
    void begin(terminal::Terminal& terminal, ScanKind kind);

    /// Whether the sweep in hand was started with success.
    bool hasBegun() const { return m_hasBegun; }

    /// Fetches what has been measured. Returns the new samples.
    std::span<const SDCResult> measure(terminal::Terminal& terminal);

    /// Stops the sweep in hand. Returns false, without a stop, when it has ended by itself.
    bool stop(terminal::Terminal& terminal);

    void setStatus(ESDCStatus status) { m_facts.status = status; }
    void setStartFailure(const std::string& reason) { m_facts.startFailure = reason; }

    /// What the step in hand takes.
    std::chrono::milliseconds stepTime() const;

    /// Ends the sweep in hand, with a verdict.
    Sweep finish();

private:
    ChannelInfo m_channel;
    TimePoint m_time; ///< when the sweep in hand began

    // The sweep in hand.
    bool m_hasBegun = false;
    SweepFacts m_facts;
    std::uint32_t m_rxBefore_kHz = 0;
    std::vector<SDCResult> m_samples;
};

} // namespace sdc

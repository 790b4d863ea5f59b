#pragma once

#include "apps/sdc/SweepVerdict.h"
#include "apps/sdc/results/ScanResult.h"
#include "simulator/scenario/Scenario.h"
#include "terminal/Terminal.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace sdc {

/// A radio channel and the plan of its scan; no plan where the controller cannot make one.
struct PlannedChannel {
    simulator::TerminalChannel channel;
    std::optional<terminal::ScanPlan> plan;
};

/// The command that starts a scan.
ESDCCommand startCommand(ScanKind kind);

/// One channel in a session: its sweep in hand and those before.
class ScanLane {
public:
    /// @param start  the time of day at which simulated time begins
    ScanLane(PlannedChannel channel, TimePoint start);

    std::uint32_t channel() const { return m_result.channel; }
    const terminal::ScanPlan& plan() const { return m_result.plan; }

    /// Starts a sweep. What goes wrong is kept for the verdict.
    void begin(terminal::Terminal& terminal, ScanKind kind);

    /// Whether the sweep in hand was started with success.
    bool hasBegun() const { return m_hasBegun; }

    /// Fetches what has been measured. Returns whether there are new samples.
    bool measure(terminal::Terminal& terminal);

    /// Stops the sweep in hand. Returns false, without a stop, when it has ended by itself.
    bool stop(terminal::Terminal& terminal);

    void setStatus(ESDCStatus status) { m_facts.status = status; }
    void setStartFailure(const std::string& reason) { m_facts.startFailure = reason; }

    /// Files the sweep in hand with the others, and returns it.
    const Sweep& finish();

    const std::vector<SDCResult>& samples() const { return m_samples; }      ///< of the sweep in hand
    std::int64_t taken() const { return m_earlier + std::ssize(m_samples); } ///< in all sweeps

    /// Settle delays that lie before the sweep in hand.
    std::chrono::milliseconds radioTimeLeft() const;

    /// What the step in hand takes.
    std::chrono::milliseconds stepTime() const;

    ChannelResult takeResult() { return std::move(m_result); }

private:
    RadioChannel number() const { return m_channel.number; }

    simulator::TerminalChannel m_channel;
    ChannelResult m_result;
    TimePoint m_time;           ///< when the sweep in hand began
    std::int64_t m_earlier = 0; ///< samples taken in the sweeps before

    // The sweep in hand.
    bool m_hasBegun = false;
    SweepFacts m_facts;
    std::uint32_t m_rxBefore_kHz = 0;
    std::vector<SDCResult> m_samples;
};

} // namespace sdc

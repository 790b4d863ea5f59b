#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "Platform/Host/RadioChannel.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Channels.h"
#include "terminal/Terminal.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace sdc {

/// How a sweep went, as far as its ending depends on it.
struct SweepFacts {
    std::string startFailure;                        ///< why it did not start, one line; empty: it did
    std::string failure;                             ///< what else kept it from its end, one line; empty: nothing
    std::optional<std::string> workerFailure;        ///< what ended the worker, in the controller's words
    bool isStopped = false;                          ///< by the user
    ESDCStatus status = SDC_STATUS_SCAN_NOT_STARTED; ///< at the end
    ScanPlan plan;
    std::int64_t taken = 0;           ///< samples
    std::uint32_t configured_kHz = 0; ///< where the receiver belongs
    std::uint32_t rxAfter_kHz = 0;    ///< where it stands
};

struct SweepEnd {
    Ending ending{};
    std::string reason; ///< of a failure: what happened and where it is seen, one line; empty otherwise
};

/// A failure counts more than a stop.
SweepEnd endOf(const SweepFacts& facts);

/// One channel in a session: its sweep in hand, and how it ends.
class Lane {
public:
    /// @param start  the time of day at which simulated time begins
    Lane(const PlannedChannel& channel, TimePoint start);

    RadioChannel number() const { return m_channel.number; }
    const ScanPlan& plan() const { return m_facts.plan; }

    /// Starts a sweep. What goes wrong is kept for its end.
    void begin(terminal::Terminal& terminal, ScanKind kind);

    /// Takes a sweep over that somebody else has started with success.
    /// @param rxBefore_kHz  where the receiver stood before
    void adopt(const terminal::Terminal& terminal, std::uint32_t rxBefore_kHz);

    /// Whether the sweep in hand was started with success.
    bool hasBegun() const { return m_hasBegun; }

    /// Fetches what has been measured.
    void measure(terminal::Terminal& terminal);

    /// Of the samples that have been fetched in this sweep, the next one each time; null after the last.
    const Sample* nextSample() { return m_told < m_samples.size() ? &m_samples[m_told++] : nullptr; }

    /// Stops the sweep in hand. Returns false, without a stop, when it has ended by itself or @p isGivenUp.
    bool stop(terminal::Terminal& terminal, const std::function<bool()>& isGivenUp = {});

    void setStatus(ESDCStatus status) { m_facts.status = status; }
    void setStartFailure(const std::string& reason) { m_facts.startFailure = reason; }

    /// What keeps the sweep in hand from its end, beside what the controller tells.
    void setFailure(const std::string& reason) { m_facts.failure = reason; }

    /// What the step in hand takes.
    std::chrono::milliseconds stepTime() const;

    /// When the sweep in hand began or, between two sweeps, the next one would begin at once.
    TimePoint time() const { return m_time; }

    /// Lets time pass between two sweeps.
    void pass(std::chrono::milliseconds time) { m_time += time; }

    /// Ends the sweep in hand.
    Sweep finish();

private:
    ChannelInfo m_channel;
    TimePoint m_time; ///< when the sweep in hand began

    // The sweep in hand.
    bool m_hasBegun = false;
    SweepFacts m_facts;
    std::uint32_t m_rxBefore_kHz = 0;
    std::vector<Sample> m_samples;
    std::size_t m_told = 0; ///< of the samples
};

} // namespace sdc

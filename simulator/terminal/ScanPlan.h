#pragma once

#include "simulator/host/Trace.h"

#include "Platform/Host/RadioChannel.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <thread>

namespace simulator {

/// What a sweep is going to do, as the controller itself reports it when the sweep begins.
struct ScanPlan {
    std::uint32_t rxFrequency_kHz = 0; ///< where the receiver is put back to
    std::uint32_t channelSpacing_kHz = 0;
    std::uint32_t lowest_kHz = 0;  ///< first sample
    std::uint32_t highest_kHz = 0; ///< bound of the last sample
    std::int32_t samples = 0;      ///< number of samples planned
    std::uint32_t step_kHz = 0;
    std::uint32_t setRxWait_ms = 0;      ///< settle delay before each reading but the first
    std::uint32_t firstSetRxWait_ms = 0; ///< settle delay before the first reading

    /// The sum of the settle delays: how long the sweep takes at least. A sweep of one sample waits five seconds,
    /// one that cannot begin none.
    std::chrono::milliseconds settleTime() const;

    /// The same of its first samples alone.
    std::chrono::milliseconds settleTime(std::int64_t samplesTaken) const;
};

/// Reads out of the controllers' trace what their interface does not tell: the plans, from the parameter dumps (trace level
/// 5), and the exceptions that ended a worker or let none begin (trace level 1).
class WorkerRecorder : public TraceSink {
public:
    void write(const TraceRecord& record) override;

    /// The plan of the channel's last sweep, if one has begun.
    std::optional<ScanPlan> planOf(RadioChannel channel) const;

    /// What ended the channel's worker or let none begin, in the controller's words; nothing while the worker lives.
    std::optional<std::string> failureOf(RadioChannel channel) const;

    /// Whether the channel's worker has begun a sweep and neither come back from it nor ended in it.
    bool isSweeping(RadioChannel channel) const;

private:
    using Values = std::map<std::string, std::int64_t>;

    void keepPlan(const Values& values);

    mutable std::mutex m_guard;
    std::map<std::thread::id, Values> m_dumps; // each worker writes its dump on its own thread
    std::map<std::uint32_t, ScanPlan> m_plans;
    std::map<std::string, std::string> m_failures; // by the thread's name
    std::set<std::string> m_sweeping;              // names of threads
};

} // namespace simulator

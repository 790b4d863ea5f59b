#pragma once

#include "host/Trace.h"
#include "terminal/ScanPlan.h"

#include "Platform/Host/RadioChannel.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>

namespace terminal {

/// The controllers' trace lacks what it always tells: its texts are not those that ControllerTrace reads. An error of this
/// program, not of a radio.
class TraceNotUnderstood : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

/// Reads out of the controllers' trace what their interface does not tell: the plans and that a sweep has begun, from the
/// parameter dumps (trace level 5), and the exceptions that ended a worker or let none begin (trace level 1).
class ControllerTrace : public host::TraceSink {
public:
    static constexpr const char* component = "ZRP.SDC";

    void write(const host::TraceRecord& record) override;

    /// The plan of the channel's last sweep; nothing before a sweep has begun. A dump that lacks something is no plan.
    std::optional<ScanPlan> planOf(RadioChannel channel) const;

    /// How many plans of the channel have been read.
    std::uint64_t plansReadOf(RadioChannel channel) const;

    /// What ended the channel's worker or let none begin, in the controller's words; nothing while the worker lives.
    std::optional<std::string> failureOf(RadioChannel channel) const;

    /// Whether the channel's worker has begun a sweep and neither come back from it nor ended in it.
    bool isSweeping(RadioChannel channel) const;

private:
    using Values = std::map<std::string, std::int64_t>;

    void collect(const std::string& label, std::int64_t value);
    void keepPlan(const Values& values);

    mutable std::mutex m_guard;
    std::map<std::thread::id, Values> m_dumps; // each worker writes its dump on its own thread
    std::map<std::uint32_t, ScanPlan> m_plans;
    std::map<std::uint32_t, std::uint64_t> m_plansRead;
    std::map<std::string, std::string> m_failures; // by the thread's name
    std::set<std::string> m_sweeping;              // names of threads
};

} // namespace terminal

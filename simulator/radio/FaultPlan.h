#pragma once

#include "simulator/radio/Fault.h"

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace simulator {

/// Counts the calls of a radio's operations, and tells which of them go wrong and how.
///
/// Of several faults that match a call the first decides it: those given at the beginning stand before those injected later.
/// All operations may be called from any thread.
class FaultPlan {
public:
    /// One call of an operation, from its beginning to its end.
    class Call {
    public:
        /// @throws std::runtime_error where the call is to throw
        Call(FaultPlan& plan, Operation operation);
        ~Call();
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

        /// Whether the call goes wrong in this way.
        bool does(FaultAction action) const { return m_fault && m_fault->action == action; }

        /// What the call is answered with, if it is: the fault's number, or its text.
        std::int64_t valueOr(std::int64_t regular) const { return does(FaultAction::answer) ? m_fault->value : regular; }
        const std::string& textOr(const std::string& regular) const;

    private:
        FaultPlan& m_plan;
        const Operation m_operation;
        const std::optional<Fault> m_fault;
    };

    explicit FaultPlan(std::vector<Fault> faults);

    /// Adds a fault, for which the next call is the first.
    void inject(const Fault& fault);

    /// Number of calls that have ended, well or not: what they did can be seen.
    std::uint64_t calls(Operation operation) const;

private:
    struct Counted {
        Fault fault;
        std::uint64_t callsBefore; ///< begun before the fault was there
    };
    using Counters = std::array<std::uint64_t, operationNames.size()>;

    std::optional<Fault> begin(Operation operation);
    void end(Operation operation);

    mutable std::mutex m_guard;
    std::vector<Counted> m_faults;
    Counters m_begun{};
    Counters m_ended{};
};

} // namespace simulator

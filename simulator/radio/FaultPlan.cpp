#include "simulator/radio/FaultPlan.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

namespace simulator {

FaultPlan::Call::Call(FaultPlan& plan, Operation operation)
    : m_plan(plan)
    , m_operation(operation)
    , m_fault(plan.begin(operation))
{
}

FaultPlan::Call::~Call()
{
    m_plan.end(m_operation);
}

const std::string& FaultPlan::Call::textOr(const std::string& regular) const
{
    return does(FaultAction::answer) ? m_fault->text : regular;
}

FaultPlan::FaultPlan(std::vector<Fault> faults)
{
    for (Fault& fault : faults) {
        m_faults.push_back({std::move(fault), 0});
    }
}

void FaultPlan::inject(const Fault& fault)
{
    const std::lock_guard<std::mutex> guard(m_guard);
    m_faults.push_back({fault, m_begun.at(static_cast<std::size_t>(fault.operation))});
}

std::uint64_t FaultPlan::calls(Operation operation) const
{
    const std::lock_guard<std::mutex> guard(m_guard);
    return m_ended.at(static_cast<std::size_t>(operation));
}

std::optional<Fault> FaultPlan::begin(Operation operation)
{
    const std::lock_guard<std::mutex> guard(m_guard);
    const std::uint64_t call = ++m_begun.at(static_cast<std::size_t>(operation));
    const auto matches = [&](const Counted& counted) {
        const Fault& fault = counted.fault;
        const std::uint64_t sinceThere = call - counted.callsBefore;
        return fault.operation == operation && sinceThere >= fault.firstCall && sinceThere - fault.firstCall < fault.calls;
    };
    const auto found = std::ranges::find_if(m_faults, matches);
    if (found == m_faults.end()) {
        return std::nullopt;
    }
    if (found->fault.action != FaultAction::fail) {
        return found->fault;
    }
    ++m_ended.at(static_cast<std::size_t>(operation));
    const std::string where = std::string(toString(operation)) + ", call " + std::to_string(call);
    throw std::runtime_error(found->fault.text.empty() ? "simulated fault in " + where : found->fault.text);
}

void FaultPlan::end(Operation operation)
{
    const std::lock_guard<std::mutex> guard(m_guard);
    ++m_ended.at(static_cast<std::size_t>(operation));
}

} // namespace simulator

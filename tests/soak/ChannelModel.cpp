#include "tests/soak/ChannelModel.h"

#include <algorithm>

namespace soak {

namespace {

using simulator::Fault;
using simulator::FaultAction;
using simulator::Operation;

constexpr std::int32_t failed = 32768;
constexpr std::int32_t floor_cdBm = -9970;

std::uint64_t& countOf(Calls& calls, Operation operation)
{
    return calls.at(static_cast<std::size_t>(operation));
}

} // namespace

/// One sweep, call by call.
class ChannelModel::Walk {
public:
    explicit Walk(const ChannelModel& model)
        : m_model(model)
    {
        sweep.receiver_kHz = model.m_receiver_kHz;
        sweep.calls = model.m_calls;
    }

    /// Whether the tuning succeeds; nothing where it throws.
    std::optional<bool> tune(std::uint32_t frequency_kHz)
    {
        const Fault* const fault = next(Operation::setRxFrequency);
        if (fault != nullptr && fault->action != FaultAction::answer) {
            return fault->action == FaultAction::fail ? std::nullopt : std::optional(fault->action == FaultAction::stick);
        }
        const bool isInRange = m_model.isInRange(frequency_kHz);
        if (isInRange) {
            sweep.receiver_kHz = frequency_kHz;
        }
        return fault == nullptr ? isInRange : fault->value < failed;
    }

    /// Takes a sample. False where the reading throws.
    bool read()
    {
        const Fault* const fault = next(Operation::readRssi);
        if (fault != nullptr && fault->action == FaultAction::fail) {
            return false;
        }
        std::optional<std::int32_t> reading;
        if (fault != nullptr && fault->action == FaultAction::refuse) {
            reading = 0;
        } else if (fault != nullptr && fault->action == FaultAction::answer) {
            reading = std::max(static_cast<std::int32_t>(fault->value), floor_cdBm);
        }
        sweep.readings.push_back(reading);
        return true;
    }

    ExpectedSweep sweep;

private:
    const Fault* next(Operation operation)
    {
        const Fault* const fault = m_model.decide(operation, ++countOf(sweep.calls, operation));
        sweep.faultsMet += fault == nullptr ? 0 : 1;
        return fault;
    }

    const ChannelModel& m_model;
};

ChannelModel::ChannelModel(const simulator::Link& link)
    : m_lowest_kHz(link.frequencyParameters.minRxFrequency_kHz)
    , m_highest_kHz(link.frequencyParameters.maxRxFrequency_kHz)
    , m_receiver_kHz(link.rxFrequency_kHz)
{
    for (const Fault& fault : link.faults) {
        m_faults.push_back({fault, 0});
    }
}

void ChannelModel::add(const Fault& fault)
{
    m_faults.push_back({fault, countOf(m_calls, fault.operation)});
}

bool ChannelModel::propertiesThrow()
{
    const Fault* const fault = decide(Operation::getProperties, ++countOf(m_calls, Operation::getProperties));
    m_faultsMet += fault == nullptr ? 0 : 1;
    return fault != nullptr && fault->action == FaultAction::fail;
}

ExpectedSweep ChannelModel::sweep(const simulator::ScanPlan& plan, std::optional<std::size_t> stoppedAfter) const
{
    Walk walk(*this);
    Ending& ending = walk.sweep.ending;
    std::uint32_t frequency_kHz = plan.lowest_kHz;
    while (ending == Ending::finished) {
        const std::size_t samples = walk.sweep.readings.size();
        if (stoppedAfter == samples) {
            ending = Ending::stopped;
        } else if (frequency_kHz > plan.highest_kHz || samples == static_cast<std::size_t>(plan.samples)) {
            break;
        } else if (const auto tuned = walk.tune(frequency_kHz); tuned == false) {
            ending = Ending::aborted;
        } else if (!tuned || !walk.read()) {
            ending = Ending::died;
        }
        frequency_kHz += plan.step_kHz;
    }
    if (ending != Ending::died && !walk.tune(plan.rxFrequency_kHz)) {
        ending = Ending::died;
    }
    return std::move(walk.sweep);
}

void ChannelModel::keep(const ExpectedSweep& sweep)
{
    m_receiver_kHz = sweep.receiver_kHz;
    m_calls = sweep.calls;
    m_faultsMet += sweep.faultsMet;
}

const Fault* ChannelModel::decide(Operation operation, std::uint64_t call) const
{
    const auto matches = [&](const Counted& counted) {
        const Fault& fault = counted.fault;
        const std::uint64_t sinceThere = call - counted.callsBefore;
        return fault.operation == operation && sinceThere >= fault.firstCall && sinceThere - fault.firstCall < fault.calls;
    };
    const auto found = std::ranges::find_if(m_faults, matches);
    return found == m_faults.end() ? nullptr : &found->fault;
}

bool ChannelModel::isInRange(std::uint32_t frequency_kHz) const
{
    return frequency_kHz >= m_lowest_kHz && frequency_kHz <= m_highest_kHz;
}

} // namespace soak

#include "simulator/radio/Fault.h"

#include "support/Errors.h"

#include <optional>
#include <utility>
#include <vector>

namespace simulator {

namespace {

std::optional<support::Wrong> unknownAction(const Fault& fault)
{
    using enum FaultAction;
    if (knows(fault.operation, fault.action)) {
        return std::nullopt;
    }
    std::vector<std::string> known;
    for (const FaultAction action : {refuse, fail, answer, stick}) {
        if (knows(fault.operation, action)) {
            known.push_back(support::inQuotes(toString(action)));
        }
    }
    return support::Wrong{"action",
        "is " + support::inQuotes(toString(fault.action)) + "; must be " + support::joined(known) + " where operation is "
            + support::inQuotes(toString(fault.operation))};
}

std::optional<support::Wrong> unfitValue(const Fault& fault)
{
    const bool isWord = answersWithWord(fault);
    const bool fits = isWord ? std::in_range<std::uint32_t>(fault.value) : std::in_range<std::int32_t>(fault.value);
    if (fault.action != FaultAction::answer || fits) {
        return std::nullopt;
    }
    return support::Wrong{"value",
        "is " + std::to_string(fault.value) + "; must be from " + (isWord ? "0 to 4294967295" : "-2147483648 to 2147483647")
            + " where operation is " + support::inQuotes(toString(fault.operation))};
}

} // namespace

const support::Record<Fault>& Fault::record()
{
    using support::optional;
    constexpr std::int64_t mostCalls = 1000000000;
    static const support::Record<Fault> record{"fault", "calls that go wrong",
        {
            {"operation", &Fault::operation, support::choice(operationNames), "the operation that goes wrong"},
            {"action", &Fault::action, support::choice(faultActionNames), "what the call does"},
            {"first_call", &Fault::firstCall, support::integer(1, mostCalls), "first call that goes wrong, counted from 1",
                optional},
            {"calls", &Fault::calls, support::integer(1, mostCalls).orWord("all", all), "calls in a row that go wrong",
                optional},
            {"value", &Fault::value, support::integer(-2147483648, 4294967295), "what a number is answered with", optional},
            {"text", &Fault::text, support::line(0, 200), "what the exception says, or the unit type that is answered",
                optional},
        },
        {unknownAction, unfitValue}};
    return record;
}

bool answersWithWord(const Fault& fault)
{
    return fault.action == FaultAction::answer
        && (fault.operation == Operation::getRxFrequency || fault.operation == Operation::getChannelSpacing);
}

bool knows(Operation operation, FaultAction action)
{
    using enum Operation;
    switch (action) {
    case FaultAction::refuse: return operation == setRxFrequency || operation == readRssi || operation == getProperties;
    case FaultAction::fail: return static_cast<std::size_t>(operation) < operationNames.size();
    case FaultAction::answer:
        return operation == setRxFrequency || operation == readRssi || operation == getRxFrequency
            || operation == getChannelSpacing || operation == getUnitInfo;
    case FaultAction::stick: return operation == setRxFrequency || operation == readRssi;
    }
    return false;
}

} // namespace simulator

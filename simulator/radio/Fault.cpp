#include "simulator/radio/Fault.h"

#include <algorithm>
#include <array>

namespace simulator {

namespace {

// Both in the order of the enumerators.
constexpr std::array<std::string_view, numberOfOperations> operationNames{"setRxFrequency", "readRssi", "getRxFrequency",
    "getChannelSpacing", "getFrequencyParameters", "createPropertiesProvider", "getProperties", "getUnitInfo"};
constexpr std::array<std::string_view, 4> actionNames{"refuse", "throw", "answer", "stick"};

template <typename Enumeration, std::size_t size>
std::string_view nameOf(Enumeration value, const std::array<std::string_view, size>& names)
{
    const auto index = static_cast<std::size_t>(value);
    return index < size ? names[index] : "unknown";
}

template <typename Enumeration, std::size_t size>
std::optional<Enumeration> withName(std::string_view name, const std::array<std::string_view, size>& names)
{
    const auto found = std::ranges::find(names, name);
    return found == names.end() ? std::nullopt : std::optional(static_cast<Enumeration>(found - names.begin()));
}

} // namespace

std::string_view toString(Operation operation)
{
    return nameOf(operation, operationNames);
}

std::string_view toString(FaultAction action)
{
    return nameOf(action, actionNames);
}

std::optional<Operation> operationFromString(std::string_view name)
{
    return withName<Operation>(name, operationNames);
}

std::optional<FaultAction> faultActionFromString(std::string_view name)
{
    return withName<FaultAction>(name, actionNames);
}

bool knows(Operation operation, FaultAction action)
{
    using enum Operation;
    switch (action) {
    case FaultAction::refuse: return operation == setRxFrequency || operation == readRssi || operation == getProperties;
    case FaultAction::fail: return static_cast<std::size_t>(operation) < numberOfOperations;
    case FaultAction::answer:
        return operation == setRxFrequency || operation == readRssi || operation == getRxFrequency
            || operation == getChannelSpacing || operation == getUnitInfo;
    case FaultAction::stick: return operation == setRxFrequency || operation == readRssi;
    }
    return false;
}

} // namespace simulator

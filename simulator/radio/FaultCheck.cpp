#include "simulator/radio/LinkChecks.h"

#include "simulator/radio/Fault.h"

#include <cstddef>

namespace simulator {

namespace {

constexpr std::size_t mostFaults = 1000;

bool answersWithWord(const Fault& fault)
{
    return fault.action == FaultAction::answer
        && (fault.operation == Operation::getRxFrequency || fault.operation == Operation::getChannelSpacing);
}

std::string knownActions(Operation operation)
{
    using enum FaultAction;
    std::string known;
    for (const FaultAction action : {refuse, fail, answer, stick}) {
        if (knows(operation, action)) {
            known += (known.empty() ? "" : ", ") + std::string(toString(action));
        }
    }
    return known;
}

std::string whyWrong(const Fault& fault)
{
    if (static_cast<std::size_t>(fault.operation) >= numberOfOperations) {
        return "the operation is none of the radio's; it must be one of them";
    }
    if (!knows(fault.operation, fault.action)) {
        return "the action " + std::string(toString(fault.action)) + " is none that "
            + std::string(toString(fault.operation)) + " knows; it must be one of: " + knownActions(fault.operation);
    }
    if (fault.firstCall == 0) {
        return "the first call is 0; it must be at least 1";
    }
    if (fault.calls == 0) {
        return "the number of calls is 0; it must be at least 1";
    }
    constexpr double smallest = std::numeric_limits<std::int32_t>::min();
    constexpr double largest = std::numeric_limits<std::int32_t>::max();
    const auto value = static_cast<double>(fault.value);
    return outOfRange(answersWithWord(fault) ? Quantity{"answered value", value, 0, largestWord, ""}
                                             : Quantity{"answered value", value, smallest, largest, ""});
}

PlanInputs withAnswerOf(PlanInputs inputs, const Fault& fault)
{
    if (answersWithWord(fault)) {
        (fault.operation == Operation::getRxFrequency ? inputs.configured_kHz : inputs.spacing_kHz) =
            static_cast<std::uint32_t>(fault.value);
    }
    return inputs;
}

/// A controller may meet an answer alone, or together with one of another operation. An earlier answer of the same operation
/// takes its place, which does no harm: it has passed on its own.
std::optional<Complaint> checkAnswer(const Link& link, std::size_t index)
{
    const Fault& fault = link.faults[index];
    const PlanInputs inputs = withAnswerOf(PlanInputs(link), fault);
    if (const auto why = checkPlans(inputs)) {
        return Complaint{element("faults", index), "with its answer " + why->text};
    }
    for (std::size_t other = 0; other < index; ++other) {
        if (const auto why = checkPlans(withAnswerOf(inputs, link.faults[other]))) {
            return Complaint{
                element("faults", index), "with its answer and that of " + element("faults", other) + " " + why->text};
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<Complaint> checkFaults(const Link& link)
{
    const Quantity faults{"number of faults", static_cast<double>(link.faults.size()), 0, mostFaults, ""};
    if (auto why = complaint("faults", outOfRange(faults))) {
        return why;
    }
    for (std::size_t index = 0; index < link.faults.size(); ++index) {
        if (auto why = complaint(element("faults", index), whyWrong(link.faults[index]))) {
            return why;
        }
        if (!answersWithWord(link.faults[index])) {
            continue;
        }
        if (auto why = checkAnswer(link, index)) {
            return why;
        }
    }
    return std::nullopt;
}

} // namespace simulator

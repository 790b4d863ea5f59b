#include "tests/soak/RandomRadio.h"

#include <set>

namespace soak {

namespace {

using simulator::Fault;
using simulator::FaultAction;
using simulator::Link;
using simulator::Operation;
using simulator::TerminalChannel;

/// Each once; low numbers, and now and then any that there is.
std::set<std::uint32_t> randomNumbers(Dice& dice)
{
    constexpr std::uint64_t mostChannels = 8;
    std::set<std::uint32_t> numbers;
    for (std::uint64_t wanted = dice.between(1, mostChannels); numbers.size() < wanted;) {
        numbers.insert(static_cast<std::uint32_t>(dice.oneIn(8) ? dice.word() : dice.below(20)));
    }
    return numbers;
}

std::uint32_t nearby(Dice& dice, std::uint32_t frequency_kHz)
{
    constexpr std::uint64_t distance_kHz = 20000;
    return static_cast<std::uint32_t>(frequency_kHz + dice.between(0, 2 * distance_kHz) - distance_kHz);
}

} // namespace

std::vector<Link> builtInLinks()
{
    std::vector<Link> links;
    for (const embedded::Text& text : simulator::builtInScenarios()) {
        for (TerminalChannel& channel : simulator::loadScenario(std::string(text.name)).channels) {
            links.push_back(std::move(channel.link));
        }
    }
    return links;
}

std::vector<TerminalChannel> randomChannels(Dice& dice, const std::vector<Link>& links)
{
    std::vector<TerminalChannel> channels;
    for (const std::uint32_t number : randomNumbers(dice)) {
        TerminalChannel& channel = channels.emplace_back(RadioChannel{number}, dice.pick(links));
        channel.link.seed = dice.word();
        channel.link.properties.extendedRxWait = dice.oneIn(4) ? 1 : 0;
        channel.link.properties.slowRxWait = dice.oneIn(4) ? 1 : 0;
    }
    return channels;
}

Fault randomSweepFault(Dice& dice)
{
    constexpr Operation operations[] = {Operation::setRxFrequency, Operation::setRxFrequency, Operation::readRssi,
        Operation::readRssi, Operation::getProperties};
    constexpr FaultAction actions[] = {FaultAction::refuse, FaultAction::fail, FaultAction::answer, FaultAction::stick};
    constexpr std::int64_t resultCodes[] = {-1, 0, 1, 32767, 32768, 2147483647};
    Fault fault{.operation = dice.pick(operations), .text = std::string(faultText)};
    do {
        fault.action = dice.pick(actions);
    } while (!simulator::knows(fault.operation, fault.action));
    fault.firstCall = dice.between(1, dice.oneIn(3) ? 600 : 16);
    fault.calls = dice.between(1, 3);
    if (fault.action == FaultAction::answer) {
        constexpr std::int64_t readings = 24000; // hundredths of a dB, down to well below the floor
        fault.value = fault.operation == Operation::setRxFrequency ? dice.pick(resultCodes)
                                                                   : 4000 - static_cast<std::int64_t>(dice.below(readings));
    }
    return fault;
}

Fault randomStartFault(Dice& dice, const Link& link)
{
    constexpr Operation operations[] = {
        Operation::getRxFrequency, Operation::getChannelSpacing, Operation::getFrequencyParameters, Operation::getUnitInfo};
    constexpr std::string_view unitTypes[] = {"KLM", "KLM5", "KLM6", "4741", "4742", "4743", unknownUnit};
    constexpr std::int64_t spacings_kHz[] = {3500, 7000, 13750, 14000, 27500, 28000, 55000, 56000, 112000};
    Fault fault{.operation = dice.pick(operations), .action = FaultAction::fail, .text = std::string(faultText)};
    if (fault.operation == Operation::getFrequencyParameters || dice.oneIn(2)) {
        return fault;
    }
    fault.action = FaultAction::answer;
    fault.value =
        fault.operation == Operation::getChannelSpacing ? dice.pick(spacings_kHz) : nearby(dice, link.rxFrequency_kHz);
    if (fault.operation == Operation::getUnitInfo) {
        fault.value = 0;
        fault.text = std::string(dice.pick(unitTypes));
    }
    return fault;
}

} // namespace soak

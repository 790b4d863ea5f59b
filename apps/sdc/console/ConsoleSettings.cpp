// What a console changes around the scans: the clock, the channel, faults, the trace.

#include "Platform/Host/RadioChannel.h"
#include "apps/sdc/console/Console.h"
#include "apps/sdc/console/Numbers.h"
#include "apps/sdc/console/Words.h"
#include "apps/sdc/options/Options.h"
#include "apps/sdc/scan/Channels.h"
#include "simulator/radio/Fault.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace sdc {

namespace {

using simulator::FaultAction;
using simulator::Operation;

constexpr std::string_view allCalls = "all";

/// @param names  of the enumerators, in their order
template <typename Enumeration>
std::optional<Enumeration> named(const std::string& word, std::span<const std::string_view> names)
{
    const auto found = std::ranges::find(names, word);
    return found == names.end() ? std::nullopt : std::optional(static_cast<Enumeration>(found - names.begin()));
}

/// The same, where nothing else will do.
template <typename Enumeration>
Enumeration requireNamed(const std::string& word, const char* what, std::span<const std::string_view> names)
{
    const auto found = named<Enumeration>(word, names);
    if (!found) {
        throw InvalidLine(
            fmt::format("unknown {} '{}'; expected one of {}", what, support::shown(word), fmt::join(names, ", ")));
    }
    return *found;
}

} // namespace

void Console::hold(const Words&)
{
    if (m_isHeld) {
        throw InvalidLine("the clock is held already; 'release' lets it go on");
    }
    m_clock->hold();
    m_isHeld = true;
}

void Console::release(const Words&)
{
    if (!m_isHeld) {
        throw InvalidLine("the clock is not held; 'hold' stops it");
    }
    m_clock->release();
    m_isHeld = false;
}

void Console::channel(const Words& words)
{
    if (words.size() > 1) {
        const RadioChannel wanted{parseWord<std::uint32_t>(words[1], "channel number", "one such as 1")};
        m_terminal.controller(wanted); // throws for a channel that there is not
        m_channel = wanted;
    }
    m_output << "channel " << static_cast<std::uint32_t>(m_channel) << '\n';
}

Words Console::channelNumbers(const Words&) const
{
    Words numbers;
    for (const ChannelInfo& channel : m_site.channels()) {
        numbers.push_back(std::to_string(static_cast<std::uint32_t>(channel.number)));
    }
    return numbers;
}

void Console::trace(const Words& words)
{
    const std::string text = words.size() > 1 ? words[1] : "";
    const auto level = parseTraceLevel(text);
    if (!level) {
        throw InvalidLine(invalid("trace level", text, "0 (nothing), 1 (errors), 5 (information), 6 (calls) or 7 (steps)"));
    }
    m_trace.emplace(*level);
}

Words Console::traceLevels(const Words&) const
{
    return {"0", "1", "5", "6", "7"};
}

void Console::fault(const Words& words)
{
    if (words.size() < 3) {
        throw InvalidLine("a fault needs an operation and an action, such as: fault setRxFrequency refuse");
    }
    simulator::Fault fault;
    fault.operation = requireNamed<Operation>(words[1], "operation", simulator::operationNames);
    fault.action = requireNamed<FaultAction>(words[2], "action", simulator::faultActionNames);
    if (words.size() > 3) {
        fault.calls = words[3] == allCalls
            ? simulator::Fault::all
            : parseWord<std::uint64_t>(words[3], "number of calls", "a number such as 3, or all");
    }
    if (words.size() > 4 && fault.operation == Operation::getUnitInfo) {
        fault.text = words[4];
    } else if (words.size() > 4) {
        fault.value = parseWord<std::int64_t>(words[4], "answer", "a number such as -4200");
    }
    try {
        m_radios[m_channel].inject(fault);
    } catch (const std::invalid_argument& impossible) {
        throw InvalidLine(impossible.what());
    }
}

/// Of each operation, what it can do.
Words Console::faultWords(const Words& words) const
{
    constexpr std::size_t operationAt = 1;
    constexpr std::size_t actionAt = 2;
    constexpr std::size_t callsAt = 3;
    const std::size_t last = words.size() - 1;
    Words offered;
    if (last == operationAt) {
        offered.assign(simulator::operationNames.begin(), simulator::operationNames.end());
    } else if (last == actionAt) {
        const auto operation = named<Operation>(words[operationAt], simulator::operationNames);
        for (const std::string_view name : simulator::faultActionNames) {
            const auto action = named<FaultAction>(std::string(name), simulator::faultActionNames);
            if (operation && simulator::knows(*operation, *action)) {
                offered.emplace_back(name);
            }
        }
    } else if (last == callsAt) {
        offered.emplace_back(allCalls);
    }
    return offered;
}

} // namespace sdc

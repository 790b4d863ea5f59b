#include "apps/sdc/ChannelChoice.h"

#include "apps/sdc/CommandLine.h"
#include "simulator/Radios.h"
#include "support/Text.h"
#include "terminal/PlanPreview.h"

#include <algorithm>

namespace sdc {

namespace {

std::string numbersOf(const simulator::Scenario& scenario)
{
    std::string numbers;
    for (const simulator::TerminalChannel& channel : scenario.channels) {
        numbers += (numbers.empty() ? "" : ", ") + std::to_string(static_cast<std::uint32_t>(channel.number));
    }
    return (scenario.channels.size() == 1 ? "channel " : "channels ") + numbers;
}

} // namespace

std::vector<simulator::TerminalChannel> chooseChannels(
    const simulator::Scenario& scenario, const std::vector<std::uint32_t>& numbers)
{
    if (numbers.empty()) {
        return scenario.channels;
    }
    std::vector<simulator::TerminalChannel> chosen;
    for (const std::uint32_t number : numbers) {
        const auto found = std::ranges::find(scenario.channels, RadioChannel{number}, &simulator::TerminalChannel::number);
        if (found == scenario.channels.end()) {
            throw UsageError("--channel: scenario '" + support::shown(scenario.name) + "' has no channel "
                + std::to_string(number) + "; it has " + numbersOf(scenario));
        }
        chosen.push_back(*found);
    }
    return chosen;
}

PlannedChannel planned(const simulator::TerminalChannel& channel, ScanKind kind)
{
    host::VirtualClock clock;
    const simulator::Radios radios({simulator::withoutFaults(channel)}, clock);
    return {channel, terminal::previewPlan(radios.channels().front(), startCommand(kind))};
}

} // namespace sdc

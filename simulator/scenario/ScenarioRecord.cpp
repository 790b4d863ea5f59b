#include "simulator/scenario/ScenarioRecord.h"

#include "simulator/radio/Link.h"
#include "support/Errors.h"
#include "terminal/Peers.h"

#include "Platform/Host/RadioChannel.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace simulator {

namespace {

using support::integer;
using support::line;
using support::list;

constexpr std::int64_t largestWord = 4294967295;

const support::Record<TerminalChannel>& channelRecord()
{
    static const support::Record<TerminalChannel> record = [] {
        std::vector<support::FieldOf<TerminalChannel>> fields{{"number", &TerminalChannel::number, integer(0, largestWord),
            "of the radio channel, as the host counts; each one once"}};
        const auto ofLink = support::fieldsWithin<TerminalChannel>(linkRecord(), &TerminalChannel::link);
        fields.insert(fields.end(), ofLink.begin(), ofLink.end());
        return support::Record<TerminalChannel>("channel", "one radio channel", fields,
            {[](const TerminalChannel& channel) { return linkRecord().broken(&channel.link); }});
    }();
    return record;
}

std::optional<support::Wrong> numberTwice(const Scenario& scenario)
{
    std::set<RadioChannel> numbers;
    for (std::size_t index = 0; index < scenario.channels.size(); ++index) {
        const RadioChannel number = scenario.channels[index].number;
        if (!numbers.insert(number).second) {
            return support::Wrong{support::elementPath("channels", index) + ".number",
                "is " + std::to_string(static_cast<std::uint32_t>(number)) + "; must differ from other channels'"};
        }
    }
    return std::nullopt;
}

} // namespace

const support::Record<Scenario>& scenarioRecord()
{
    static const support::Record<Scenario> record{"scenario",
        "a terminal, its radio channels, and what is on the air around it",
        {
            support::ignored<Scenario>("$schema", line(0, 1000), "where this schema is found; for editors"),
            {"name", &Scenario::name, line(1, 40), "short name of the scenario"},
            {"description", &Scenario::description, line(1, 99), "one line for people"},
            {"sources", &Scenario::sources, list(line(1, 300), 1, 20, "one sentence"), "where the figures come from"},
            {"seed", &Scenario::seed, integer(0, largestWord), "of all that is random; each channel gets its own from it"},
            {"channels", &Scenario::channels, list(channelRecord(), 1, terminal::mostChannels),
                "radio channels of the terminal"},
        },
        {numberTwice}};
    return record;
}

} // namespace simulator

#include "apps/sdc/ScenariosCommand.h"

#include "apps/sdc/CommandLine.h"
#include "apps/sdc/Texts.h"
#include "simulator/scenario/Scenario.h"
#include "support/Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>

namespace sdc {

namespace {

using simulator::Scenario;

/// Each value once, in the order of the channels.
template <typename Value>
std::string listOf(const Scenario& scenario, Value valueOf)
{
    std::vector<std::string> values;
    std::string list;
    for (const simulator::TerminalChannel& channel : scenario.channels) {
        const std::string value = valueOf(channel);
        if (std::ranges::find(values, value) == values.end()) {
            values.push_back(value);
            list += (list.empty() ? "" : ", ") + value;
        }
    }
    return list;
}

using Row = std::array<std::string, 5>;

Row rowOf(const Scenario& scenario)
{
    const auto band = [](const auto& channel) { return std::to_string(channel.link.frequencyParameters.frequencyBand_GHz); };
    const auto unit = [](const auto& channel) { return channel.link.unitTypeText; };
    const auto number = [](const auto& channel) { return std::to_string(static_cast<std::uint32_t>(channel.number)); };
    return {scenario.name, listOf(scenario, band), listOf(scenario, unit), listOf(scenario, number), scenario.description};
}

std::optional<std::string_view> builtInText(const std::string& name)
{
    const auto texts = simulator::builtInScenarios();
    const auto found = std::ranges::find(texts, std::string_view(name), &embedded::Text::name);
    return found == texts.end() ? std::nullopt : std::optional(found->text);
}

} // namespace

ExitStatus listScenarios(bool isNamesOnly, std::ostream& output)
{
    std::vector<Row> rows{{"name", "GHz", "unit", "channels", "description"}};
    for (const embedded::Text& text : simulator::builtInScenarios()) {
        if (isNamesOnly) {
            output << text.name << '\n';
        } else {
            rows.push_back(rowOf(simulator::loadScenario(std::string(text.name))));
        }
    }
    std::array<std::size_t, 5> widths{}; // the last column has none
    for (const Row& row : rows) {
        for (std::size_t column = 0; column + 1 < row.size(); ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    for (const Row& row : isNamesOnly ? std::vector<Row>{} : rows) {
        for (std::size_t column = 0; column + 1 < row.size(); ++column) {
            output << left(row[column], widths[column]) << "  ";
        }
        output << row.back() << '\n';
    }
    return EXIT_COMPLETE;
}

/// A file need not be a good scenario to be shown; one that cannot be read is explained by who loads scenarios.
ExitStatus showScenario(const std::string& nameOrFile, std::ostream& output)
{
    if (const auto text = builtInText(nameOrFile)) {
        output << *text;
        return EXIT_COMPLETE;
    }
    std::ifstream file(nameOrFile, std::ios::binary);
    if (!file || file.peek() == std::ifstream::traits_type::eof()) {
        simulator::loadScenario(nameOrFile);
    }
    output << file.rdbuf();
    return EXIT_COMPLETE;
}

ExitStatus checkScenarios(const std::vector<std::string>& namesOrFiles, std::ostream& output)
{
    ExitStatus status = EXIT_COMPLETE;
    for (const std::string& file : namesOrFiles) {
        try {
            const Scenario scenario = simulator::loadScenario(file);
            output << support::shown(file) << ": ok\n";
        } catch (const simulator::ScenarioError& error) {
            output << message(error.what(), "");
            status = EXIT_USAGE;
        }
    }
    return status;
}

} // namespace sdc

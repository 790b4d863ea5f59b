#include "apps/sdc/commands/Commands.h"
#include "apps/sdc/options/Options.h"
#include "apps/sdc/tty/Screen.h"
#include "simulator/scenario/EmbeddedText.h"
#include "simulator/scenario/Scenario.h"
#include "support/Table.h"
#include "support/Text.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <ios>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

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

support::Row rowOf(const Scenario& scenario)
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

ExitStatus list(bool isNamesOnly, std::ostream& output)
{
    std::vector<support::Row> rows{{"name", "GHz", "unit", "channels", "description"}};
    for (const embedded::Text& text : simulator::builtInScenarios()) {
        if (isNamesOnly) {
            output << text.name << '\n';
        } else {
            rows.push_back(rowOf(simulator::loadScenario(std::string(text.name))));
        }
    }
    output << (isNamesOnly ? "" : support::table(rows, "lllll"));
    return EXIT_COMPLETE;
}

/// A file need not be a good scenario to be shown; one that cannot be read is explained by who loads scenarios.
ExitStatus show(const std::string& nameOrFile, std::ostream& output)
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

/// Says of each file "ok", or what is wrong with it.
ExitStatus check(const std::vector<std::string>& namesOrFiles, std::ostream& output)
{
    ExitStatus status = EXIT_COMPLETE;
    for (const std::string& file : namesOrFiles) {
        try {
            const Scenario scenario = simulator::loadScenario(file);
            output << support::shown(file) << ": ok\n";
        } catch (const simulator::ScenarioError& error) {
            output << support::prefixed(error.what(), "");
            status = EXIT_USAGE;
        }
    }
    return status;
}

void addList(CLI::App& scenarios, Command& command)
{
    CLI::App& listing = *scenarios.add_subcommand("list", "List the built-in scenarios");
    const auto isNamesOnly = std::make_shared<bool>(false);
    addFlag(listing, "--names", *isNamesOnly, "Names only, one a line");
    listing.footer("Example:\n  sdc scenarios list\n");
    listing.callback([isNamesOnly, &command] {
        command = [isNamesOnly] {
            return toStandardOutput([&](std::ostream& output) { return list(*isNamesOnly, output); });
        };
    });
}

void addShow(CLI::App& scenarios, Command& command)
{
    CLI::App& showing = *scenarios.add_subcommand("show", "Show a scenario as its file stands");
    const auto name = std::make_shared<std::string>();
    CLI::Option* const option = showing.add_option("NAME", *name, "Built-in scenario, or file");
    offer(option->required()->type_name(""), scenarioNames());
    showing.footer("Example:\n  sdc scenarios show 18-f595\n");
    showing.callback([name, &command] {
        command = [name] { return toStandardOutput([&](std::ostream& output) { return show(*name, output); }); };
    });
}

void addCheck(CLI::App& scenarios, Command& command)
{
    CLI::App& checking = *scenarios.add_subcommand("check", "Say of each file \"ok\", or what is wrong with it");
    const auto files = std::make_shared<std::vector<std::string>>();
    CLI::Option* const option = checking.add_option("FILE", *files, "Scenario files");
    offer(option->required()->type_name(""), scenarioNames());
    checking.footer("Example:\n  sdc scenarios check my.json other.json\n");
    checking.callback([files, &command] {
        command = [files] { return toStandardOutput([&](std::ostream& output) { return check(*files, output); }); };
    });
}

} // namespace

void addScenarios(CLI::App& app, Command& command)
{
    CLI::App& scenarios = *app.add_subcommand("scenarios", "List, show and check scenarios");
    scenarios.require_subcommand(1);
    scenarios.footer("Examples:\n"
                     "  sdc scenarios list\n"
                     "  sdc scenarios show 18-f595 > my.json\n"
                     "  sdc scenarios check my.json\n");
    addList(scenarios, command);
    addShow(scenarios, command);
    addCheck(scenarios, command);
}

} // namespace sdc

#include "Platform/Host/RadioChannel.h"
#include "apps/sdc/commands/Commands.h"
#include "apps/sdc/options/CommandLine.h"
#include "apps/sdc/options/Options.h"
#include "apps/sdc/result/ResultFile.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/scan/Replay.h"
#include "apps/sdc/tty/Screen.h"
#include "simulator/scenario/EmbeddedText.h"
#include "simulator/scenario/Scenario.h"
#include "simulator/scenario/ScenarioRecord.h"
#include "support/Fields.h"
#include "support/FieldsJson.h"
#include "support/ReadableJson.h"
#include "support/Table.h"
#include "support/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <ios>
#include <iterator>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <stdexcept>
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

/// How the built-in scenarios are listed.
struct ListOptions {
    bool isNamesOnly = false;
    bool isJson = false;
};

void listNames(std::ostream& output)
{
    for (const embedded::Text& text : simulator::builtInScenarios()) {
        output << text.name << '\n';
    }
}

void listAsTable(const std::vector<Scenario>& scenarios, std::ostream& output)
{
    std::vector<support::Row> rows{{"name", "GHz", "unit", "channels", "description"}};
    std::ranges::transform(scenarios, std::back_inserter(rows), rowOf);
    output << support::table(rows, "lllll");
}

void listAsJson(const std::vector<Scenario>& scenarios, std::ostream& output)
{
    support::Json list = support::Json::array();
    for (const Scenario& scenario : scenarios) {
        support::Json channels = support::Json::array();
        for (const auto& [number, link] : scenario.channels) {
            channels.push_back({{"channel", static_cast<std::uint32_t>(number)}, {"unit_type", link.unitTypeText},
                {"band_GHz", link.frequencyParameters.frequencyBand_GHz}, {"rx_frequency_kHz", link.rxFrequency_kHz},
                {"channel_spacing_kHz", link.channelSpacing_kHz}});
        }
        list.push_back({{"name", scenario.name}, {"description", scenario.description}, {"channels", channels}});
    }
    support::writeReadably(output, support::Json{{"schema_version", 1}, {"scenarios", list}});
}

ExitStatus list(const ListOptions& options, std::ostream& output)
{
    if (options.isNamesOnly) {
        listNames(output);
        return EXIT_COMPLETE;
    }
    std::vector<Scenario> scenarios;
    for (const embedded::Text& text : simulator::builtInScenarios()) {
        scenarios.push_back(simulator::loadScenario(std::string(text.name)));
    }
    (options.isJson ? listAsJson : listAsTable)(scenarios, output);
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
            openScenario(file);
            output << support::shown(file) << ": ok\n";
        } catch (const simulator::ScenarioError& error) {
            output << support::prefixed(error.what(), "");
            status = EXIT_USAGE;
        }
    }
    return status;
}

/// The built-in scenario that a result is of, if its radios are those that were scanned.
Scenario scenarioOf(const ScanResult& result)
{
    const std::string otherwise = "; write --scenario and the file of the scenario";
    if (!builtInText(result.scenario)) {
        throw UsageError(
            "the result is of scenario '" + support::shown(result.scenario) + "', which is not built in" + otherwise);
    }
    Scenario scenario = simulator::loadScenario(result.scenario);
    for (const ChannelResult& channel : result.channels) {
        const auto isTheSame = [&channel](const simulator::TerminalChannel& one) {
            return one.number == RadioChannel{channel.channel} && one.link.unitTypeText == channel.unitTypeText
                && one.link.rxFrequency_kHz == channel.plan.rxFrequency_kHz
                && one.link.channelSpacing_kHz == channel.plan.channelSpacing_kHz;
        };
        if (std::ranges::none_of(scenario.channels, isTheSame)) {
            throw UsageError("channel " + std::to_string(channel.channel)
                + " of the result is not that of the built-in scenario '" + result.scenario + "'" + otherwise);
        }
    }
    return scenario;
}

struct ReplayOptions {
    std::string file;     ///< of a result
    std::string scenario; ///< whose radios they are; empty: the result's
    TraceKind trace = TraceKind::average;
};

ExitStatus replay(const ReplayOptions& options, std::ostream& output)
{
    const auto& [file, scenario, trace] = options;
    if (file == "-" && scenario == "-") {
        throw UsageError("RESULT and --scenario: both are standard input; expected a file for one of them");
    }
    const ScanResult result = readResult(file);
    const std::string name = file == "-" ? "standard input" : support::shown(file);
    const Scenario radios = scenario.empty() ? scenarioOf(result) : openScenario(scenario);
    try {
        const Scenario again = replayOf(result, radios, trace);
        std::ostringstream text;
        support::writeReadably(text, support::jsonOf(simulator::scenarioRecord(), &again));
        if (text.view().size() > simulator::largestScenario_MiB << 20U) {
            throw ResultError("has too many samples for a scenario; 'sdc scan --sweep' writes a recording for one");
        }
        simulator::parseScenario(text.view(), "scenario"); // it is to work
        output << text.view();
    } catch (const std::runtime_error& error) {
        throw ResultError(name + ": " + error.what());
    }
    return EXIT_COMPLETE;
}

void addList(CLI::App& scenarios, Command& command)
{
    CLI::App& listing = *scenarios.add_subcommand("list", "List the built-in scenarios");
    const auto options = std::make_shared<ListOptions>();
    CLI::Option* const names = addFlag(listing, "--names", options->isNamesOnly, "Names only, one a line");
    addFlag(listing, "--json", options->isJson, "JSON instead of a table")->excludes(names);
    listing.footer("Example:\n  sdc scenarios list\n");
    listing.callback([options, &command] {
        command = [options] { return toStandardOutput([&](std::ostream& output) { return list(*options, output); }); };
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

void addReplay(CLI::App& scenarios, Command& command)
{
    CLI::App& replaying = *scenarios.add_subcommand("replay", "Print a scenario in which a result is read again");
    const auto options = std::make_shared<ReplayOptions>();
    CLI::Option* const result =
        replaying.add_option("RESULT", options->file, "What 'sdc scan --json' wrote; - is standard input");
    offer(result->required()->type_name(""), {anyFile});
    CLI::Option* const radios = replaying.add_option("--scenario", options->scenario,
        "Whose radios they are: a built-in scenario or a\nscenario file (the one that was scanned)");
    offer(radios->type_name("NAME"), scenarioNames());
    addTrace(replaying, options->trace);
    replaying.footer("The same scan of it gives the same levels, without jitter. Add emitters to\n"
                     "see what they would change.\n\n"
                     "Example:\n"
                     "  sdc scan sub-band --json today.json\n"
                     "  sdc scenarios replay today.json > again.json\n"
                     "  sdc scan sub-band --scenario again.json\n");
    replaying.callback([options, &command] {
        command = [options] { return toStandardOutput([&](std::ostream& output) { return replay(*options, output); }); };
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
    CLI::App& scenarios = *app.add_subcommand("scenarios", "List, show, check and make scenarios");
    scenarios.require_subcommand(1);
    scenarios.footer("Examples:\n"
                     "  sdc scenarios list\n"
                     "  sdc scenarios show 18-f595 > my.json\n"
                     "  sdc scenarios check my.json\n"
                     "  sdc scenarios replay today.json > again.json\n");
    addList(scenarios, command);
    addShow(scenarios, command);
    addCheck(scenarios, command);
    addReplay(scenarios, command);
}

} // namespace sdc

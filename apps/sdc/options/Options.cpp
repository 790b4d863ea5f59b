#include "apps/sdc/options/Options.h"

#include "Platform/Host/RadioChannel.h"
#include "apps/sdc/options/CommandLine.h"
#include "simulator/scenario/EmbeddedText.h"
#include "simulator/scenario/Scenario.h"
#include "support/Text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace sdc {

namespace {

constexpr std::array<std::string_view, 3> colorModes{"auto", "always", "never"}; // in the order of ColorMode

std::optional<ColorMode> parseColor(std::string_view text)
{
    const auto mode = std::ranges::find(colorModes, text);
    return mode == colorModes.end() ? std::nullopt : std::optional(static_cast<ColorMode>(mode - colorModes.begin()));
}

std::string numbersOf(const std::vector<ChannelInfo>& channels)
{
    std::string numbers;
    for (const ChannelInfo& channel : channels) {
        numbers += (numbers.empty() ? "" : ", ") + std::to_string(static_cast<std::uint32_t>(channel.number));
    }
    return (channels.size() == 1 ? "channel " : "channels ") + numbers;
}

} // namespace

std::string invalid(const std::string& what, const std::string& text, const std::string& expected)
{
    return "invalid " + what + " '" + support::shown(text) + "'; expected " + expected;
}

CLI::Option* offer(CLI::Option* option, const Words& words)
{
    return option->check(
        CLI::Validator([](const std::string&) { return std::string(); }, "", CLI::detail::join(words, " ")));
}

Words offeredFor(CLI::Option& option)
{
    try {
        return CLI::detail::split_up(option.get_validator(0)->get_name());
    } catch (const CLI::OptionNotFound&) { // it has none
        return {};
    }
}

Words scenarioNames()
{
    Words names;
    for (const embedded::Text& text : simulator::builtInScenarios()) {
        names.emplace_back(text.name);
    }
    names.emplace_back(anyFile);
    return names;
}

CLI::Option* addScenario(CLI::App& app, std::string& scenario)
{
    scenario = simulator::defaultScenario;
    CLI::Option* const option = app.add_option("--scenario", scenario,
        "Built-in scenario or scenario file, - is standard\ninput (" + scenario + "); 'sdc scenarios list' lists names");
    return offer(option->type_name("NAME"), scenarioNames());
}

CLI::Option* addChannels(CLI::App& app, std::vector<std::uint32_t>& channels)
{
    const Parsing<std::vector<std::uint32_t>> list{
        "LIST", "list of channels", "all, or numbers such as 1, 1,3 or 1-8, each once", parseChannels, {"all"}};
    return addParsed(app, "--channel", channels, list, "Radio channels of the scenario, such as 1,3 or 1-8\n(all)");
}

CLI::Option* addSpeed(CLI::App& app, double& speed)
{
    const Parsing<double> factor{"SPEED", "speed", "real, max, or a factor above 0 such as 20", parseSpeed, {"real", "max"}};
    return addParsed(
        app, "--speed", speed, factor, "How fast time goes: real, max (no waiting), or a\nfactor such as 20 (max)");
}

CLI::Option* addTrace(CLI::App& app, TraceKind& kind, std::uint32_t* level)
{
    const auto store = [&kind, level](const std::string& text) {
        const std::optional<TraceKind> named = parseTraceKind(text);
        const auto number = level == nullptr ? std::nullopt : parseTraceLevel(text);
        if (!named && !number) {
            throw CLI::ValidationError("--trace", invalid("trace", text, "max, average or min"));
        }
        kind = named.value_or(kind);
        if (number) {
            *level = *number;
        }
    };
    CLI::Option* const option = app.add_option_function<std::string>("--trace", store,
        "Of several sweeps, the level that stands for a\nfrequency: max, average or min (" + std::string(toText(kind))
            + ")");
    return offer(option->type_name("WHICH"), Words(traceKinds.begin(), traceKinds.end()));
}

CLI::Option* addTraceLevel(CLI::App& app, std::uint32_t& level, const std::string& names)
{
    const Parsing<std::uint32_t> number{"LEVEL", "trace level", "0 to 7", parseTraceLevel, {"0", "1", "5", "6", "7"}};
    return addParsed(app, names, level, number,
        "Controllers' trace on standard error: 0 nothing,\n1 errors, 5 information, 6 calls, 7 steps (1)");
}

CLI::Option* addColor(CLI::App& app, ColorMode& color)
{
    const Parsing<ColorMode> mode{
        "WHEN", "choice of colours", "auto, always or never", parseColor, Words(colorModes.begin(), colorModes.end())};
    return addParsed(app, "--color", color, mode, "Colours: auto, always or never (auto)");
}

CLI::Option* addFlag(CLI::App& app, const std::string& name, bool& flag, const std::string& help)
{
    return app.add_flag(name, flag, help)->disable_flag_override();
}

std::vector<ChannelInfo> chooseChannels(const Site& site, const std::vector<std::uint32_t>& numbers)
{
    if (numbers.empty()) {
        return site.channels();
    }
    std::vector<ChannelInfo> chosen;
    for (const std::uint32_t number : numbers) {
        const auto found = std::ranges::find(site.channels(), RadioChannel{number}, &ChannelInfo::number);
        if (found == site.channels().end()) {
            throw UsageError("--channel: scenario '" + site.name() + "' has no channel " + std::to_string(number)
                + "; it has " + numbersOf(site.channels()));
        }
        chosen.push_back(*found);
    }
    return chosen;
}

CLI::Validator fileName()
{
    const auto check = [](const std::string& text) -> std::string {
        if (text.empty()) {
            return "the name of the file is empty: write a name, or - for standard output";
        }
        if (text.size() > 1 && text.front() == '-') {
            const std::string name = support::shown(text);
            return "'" + name + "' looks like an option: write the name of a file (./" + name + " if that is one)";
        }
        return "";
    };
    return CLI::Validator(check, "", anyFile);
}

} // namespace sdc

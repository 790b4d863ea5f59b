#include "apps/sdc/options/Options.h"

#include "Platform/Host/RadioChannel.h"
#include "apps/sdc/options/CommandLine.h"
#include "apps/sdc/result/Occupancy.h"
#include "apps/sdc/result/Sweep.h"
#include "simulator/scenario/EmbeddedText.h"
#include "simulator/scenario/Scenario.h"
#include "support/Text.h"
#include "support/Time.h"
#include "terminal/Peers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <system_error>
#include <utility>

namespace sdc {

namespace {

constexpr std::array<std::string_view, 3> colorModes{"auto", "always", "never"}; // in the order of ColorMode

std::optional<ColorMode> parseColor(std::string_view text)
{
    const auto mode = std::ranges::find(colorModes, text);
    return mode == colorModes.end() ? std::nullopt : std::optional(static_cast<ColorMode>(mode - colorModes.begin()));
}

/// The whole text as a number.
template <typename Number>
std::optional<Number> parseNumber(std::string_view text)
{
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc{} && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

std::optional<std::int32_t> parseHundredths(std::string_view text, double lowest, double highest)
{
    const auto number = parseNumber<double>(text);
    const bool isRight = number && *number >= lowest && *number <= highest;
    return isRight ? std::optional(static_cast<std::int32_t>(std::lround(*number * 100.0))) : std::nullopt;
}

/// "3" or "1-8": the first and the last number.
std::optional<std::pair<std::uint32_t, std::uint32_t>> parseRange(std::string_view text)
{
    const std::size_t dash = text.find('-');
    const auto first = parseCount(text.substr(0, dash));
    const auto last = dash == std::string_view::npos ? first : parseCount(text.substr(dash + 1));
    return first && last && *first <= *last ? std::optional(std::pair(*first, *last)) : std::nullopt;
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

std::optional<double> parseSpeed(std::string_view text)
{
    if (text == "real" || text == "max") {
        return text == "real" ? 1.0 : 0.0;
    }
    const auto factor = parseNumber<double>(text);
    return factor && std::isfinite(*factor) && *factor > 0.0 ? factor : std::nullopt;
}

std::optional<std::uint32_t> parseCount(std::string_view text)
{
    return text.size() == 1 || !text.starts_with('0') ? parseNumber<std::uint32_t>(text) : std::nullopt;
}

std::optional<double> parseLevel(std::string_view text)
{
    constexpr double highest_dB = 1000.0; // no two readings are further apart
    const auto level = parseNumber<double>(text);
    return level && *level >= 0.0 && *level <= highest_dB ? level : std::nullopt;
}

std::optional<std::int32_t> parseThreshold(std::string_view text)
{
    return parseHundredths(text, -200.0, 100.0);
}

std::optional<std::int32_t> parseConfidence(std::string_view text)
{
    return parseHundredths(text, leastConfidence, mostConfidence);
}

std::optional<std::int32_t> parseAccuracy(std::string_view text)
{
    return parseHundredths(text, leastAccuracy, mostAccuracy);
}

std::optional<std::vector<std::uint32_t>> parseChannels(std::string_view text)
{
    std::vector<std::uint32_t> channels;
    if (text == "all") {
        return channels;
    }
    for (std::size_t begin = 0, end = 0; end != std::string_view::npos; begin = end + 1) {
        end = text.find(',', begin);
        const auto range = parseRange(text.substr(begin, end == std::string_view::npos ? end : end - begin));
        if (!range || range->second - range->first >= terminal::mostChannels - channels.size()) {
            return std::nullopt;
        }
        for (std::uint64_t channel = range->first; channel <= range->second; ++channel) {
            if (std::ranges::find(channels, channel) != channels.end()) {
                return std::nullopt;
            }
            channels.push_back(static_cast<std::uint32_t>(channel));
        }
    }
    return channels;
}

std::optional<std::uint32_t> parseRepeat(std::string_view text)
{
    if (text == "forever") {
        return 0;
    }
    const auto count = parseCount(text);
    return count && *count > 0 ? count : std::nullopt;
}

std::optional<TraceKind> parseTraceKind(std::string_view text)
{
    const auto name = std::ranges::find(traceKinds, text);
    return name == traceKinds.end() ? std::nullopt : std::optional(static_cast<TraceKind>(name - traceKinds.begin()));
}

std::optional<std::chrono::milliseconds> parseDuration(std::string_view text)
{
    using std::chrono::milliseconds;
    constexpr std::pair<std::string_view, milliseconds> units[]{{"d", std::chrono::hours(24)}, {"h", std::chrono::hours(1)},
        {"min", std::chrono::minutes(1)}, {"s", std::chrono::seconds(1)}, {"ms", milliseconds(1)}};
    constexpr milliseconds longest = std::chrono::hours(10 * 365 * 24);
    milliseconds sum{};
    for (const auto& [unit, length] : units) { // each once, the longest first
        const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
        const std::size_t end = std::min(text.find_first_of("0123456789", digits), text.size());
        if (text.substr(digits, end - digits) == unit) {
            const auto count = parseCount(text.substr(0, digits));
            if (!count || *count > longest / length) {
                return std::nullopt;
            }
            sum += *count * length;
            text.remove_prefix(end);
        }
    }
    return text.empty() && sum > milliseconds{} && sum <= longest ? std::optional(sum) : std::nullopt;
}

std::optional<std::uint32_t> parseTraceLevel(std::string_view text)
{
    const auto level = parseCount(text);
    return level && *level <= 7 ? level : std::nullopt;
}

std::optional<TimePoint> parseTime(std::string_view text)
{
    constexpr std::size_t whole = std::string_view("2026-01-02T03:04:05").size();
    constexpr std::size_t withDecimals = std::string_view("2026-01-02T03:04:05.678").size();
    if (text.size() <= whole || text.size() == whole + 2 || !text.ends_with('Z')) {
        return std::nullopt;
    }
    std::string full(text.substr(0, text.size() - 1));
    full += full.size() == whole ? "." : "";
    full.resize(std::max(full.size(), withDecimals), '0');
    const auto time = support::parseRfc3339(full + "Z");
    constexpr std::chrono::sys_days end = std::chrono::year(9000) / 1 / 1; // the longest scan ends in a year of four digits
    return time && *time >= TimePoint() && *time < end ? time : std::nullopt;
}

} // namespace sdc

#pragma once

#include "apps/sdc/result/Survey.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/tty/Screen.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Options that several commands have, and what all options are made of.

namespace sdc {

using Words = std::vector<std::string>;

/// What may be written behind an option.
template <typename Value>
struct Parsing {
    const char* typeName; ///< in the help
    const char* what; ///< in the error that any other text is: "speed" in "invalid speed 'nan'; expected real, max, or ..."
    const char* expected;
    std::optional<Value> (*parse)(std::string_view text);
    Words words{}; ///< that completion offers
};

/// Among the words that completion offers: the shell is to offer the names of files.
inline constexpr const char* anyFile = "FILE";

/// Lets completion offer words for the value of an option or a positional. CLI11 keeps nothing with an option but checks;
/// this one passes all.
CLI::Option* offer(CLI::Option* option, const Words& words);
Words offeredFor(CLI::Option& option);

/// "invalid speed 'nan'; expected real, max, or ..."
std::string invalid(const std::string& what, const std::string& text, const std::string& expected);

/// An option whose text is parsed.
/// @param names  with commas between them, as CLI11 takes them; messages say the first one
template <typename Target, typename Value>
CLI::Option* addParsed(
    CLI::App& app, const std::string& names, Target& target, const Parsing<Value>& parsing, const std::string& help)
{
    const auto store = [name = names.substr(0, names.find(',')), &target, parsing](const std::string& text) {
        const std::optional<Value> parsed = parsing.parse(text);
        if (!parsed) {
            throw CLI::ValidationError(name, invalid(parsing.what, text, parsing.expected));
        }
        target = *parsed;
    };
    return offer(app.add_option_function<std::string>(names, store, help)->type_name(parsing.typeName), parsing.words);
}

/// For completion: the built-in scenarios, and files.
Words scenarioNames();

CLI::Option* addScenario(CLI::App& app, std::string& scenario);
CLI::Option* addChannels(CLI::App& app, std::vector<std::uint32_t>& channels);
CLI::Option* addSpeed(CLI::App& app, double& speed);
CLI::Option* addColor(CLI::App& app, ColorMode& color);
CLI::Option* addFlag(CLI::App& app, const std::string& name, bool& flag, const std::string& help);

/// Which trace stands for several sweeps.
/// @param level  of the controllers' trace: what a number is taken for, as scripts write it that are older than the choice
CLI::Option* addTrace(CLI::App& app, TraceKind& kind, std::uint32_t* level = nullptr);

/// What is shown of the controllers' own trace.
CLI::Option* addTraceLevel(CLI::App& app, std::uint32_t& level, const std::string& names = "--trace-level");

/// The channels that have these numbers, in the order given; all of them for an empty list.
/// @throws UsageError that tells which there are
std::vector<ChannelInfo> chooseChannels(const Site& site, const std::vector<std::uint32_t>& numbers);

/// Lets no option be written where the name of a file was forgotten. Completion offers files.
CLI::Validator fileName();

// What is written behind options. Each returns nothing for a text that is none.

/// "real" is 1, "max" is 0, any other speed is its factor above 0.
std::optional<double> parseSpeed(std::string_view text);

/// A plain decimal from 0 to what 32 bits hold: "010", "+1" and "" are none.
std::optional<std::uint32_t> parseCount(std::string_view text);

/// A level difference in dB: 0 or above.
std::optional<double> parseLevel(std::string_view text);

// In hundredths: a level of -200 to 100 dBm, and what may be asked for of an occupancy, in percent.
std::optional<std::int32_t> parseThreshold(std::string_view text);
std::optional<std::int32_t> parseConfidence(std::string_view text);
std::optional<std::int32_t> parseAccuracy(std::string_view text);

/// "all" is an empty list; otherwise channel numbers and ranges of them such as 1-8 with commas between them, each number
/// once, and no more of them than a terminal may have.
std::optional<std::vector<std::uint32_t>> parseChannels(std::string_view text);

/// Number of sweeps, at least 1; "forever" is 0.
std::optional<std::uint32_t> parseRepeat(std::string_view text);

/// Which of the levels of several sweeps stands for a frequency: "max", "average" or "min".
std::optional<TraceKind> parseTraceKind(std::string_view text);

/// A length of time above 0 and up to ten years, of numbers with units: "90s", "30min", "1h30min", "500ms", "2d".
std::optional<std::chrono::milliseconds> parseDuration(std::string_view text);

/// A level of the controllers' trace, 0 to 7.
std::optional<std::uint32_t> parseTraceLevel(std::string_view text);

/// A moment such as 2026-01-02T03:04:05Z, in the years 1970 to 8999; up to three decimals of a second are allowed.
std::optional<TimePoint> parseTime(std::string_view text);

} // namespace sdc

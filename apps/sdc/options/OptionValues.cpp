// What the values of options are read from.

#include "apps/sdc/options/Options.h"

#include "apps/sdc/result/Occupancy.h"
#include "apps/sdc/result/Survey.h"
#include "support/Time.h"
#include "terminal/Peers.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace sdc {

namespace {

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

} // namespace

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

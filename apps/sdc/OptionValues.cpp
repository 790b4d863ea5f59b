#include "apps/sdc/OptionValues.h"

#include <algorithm>
#include <charconv>
#include <cmath>

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

/// A number of exactly so many digits.
std::optional<int> parseDigits(std::string_view text, std::size_t digits)
{
    const bool isDigits = text.size() == digits && text.find_first_not_of("0123456789") == std::string_view::npos;
    return isDigits ? parseNumber<int>(text) : std::nullopt;
}

/// ".5" is 500 ms; nothing at all is 0 ms.
std::optional<std::chrono::milliseconds> parseFraction(std::string_view text)
{
    if (text.empty()) {
        return std::chrono::milliseconds{0};
    }
    int scale = 1000;
    for (std::size_t digit = 1; digit < text.size(); ++digit) {
        scale /= 10;
    }
    const auto value = text.front() == '.' && text.size() >= 2 && text.size() <= 4
        ? parseDigits(text.substr(1), text.size() - 1)
        : std::nullopt;
    return value ? std::optional(std::chrono::milliseconds(*value * scale)) : std::nullopt;
}

std::optional<std::chrono::sys_days> parseDate(std::string_view text)
{
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') {
        return std::nullopt;
    }
    const auto year = parseDigits(text.substr(0, 4), 4);
    const auto month = parseDigits(text.substr(5, 2), 2);
    const auto day = parseDigits(text.substr(8, 2), 2);
    if (!year || !month || !day || *year < 1970) {
        return std::nullopt;
    }
    const std::chrono::year_month_day date(std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
        std::chrono::day(static_cast<unsigned>(*day)));
    return date.ok() ? std::optional(std::chrono::sys_days(date)) : std::nullopt;
}

std::optional<std::chrono::milliseconds> parseTimeOfDay(std::string_view text)
{
    if (text.size() < 8 || text[2] != ':' || text[5] != ':') {
        return std::nullopt;
    }
    const auto hour = parseDigits(text.substr(0, 2), 2);
    const auto minute = parseDigits(text.substr(3, 2), 2);
    const auto second = parseDigits(text.substr(6, 2), 2);
    const auto fraction = parseFraction(text.substr(8));
    if (!hour || !minute || !second || !fraction || *hour > 23 || *minute > 59 || *second > 59) {
        return std::nullopt;
    }
    return std::chrono::hours(*hour) + std::chrono::minutes(*minute) + std::chrono::seconds(*second) + *fraction;
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

std::optional<std::vector<std::uint32_t>> parseChannels(std::string_view text)
{
    std::vector<std::uint32_t> channels;
    if (text == "all") {
        return channels;
    }
    for (std::size_t begin = 0, end = 0; end != std::string_view::npos; begin = end + 1) {
        end = text.find(',', begin);
        const auto channel = parseCount(text.substr(begin, end == std::string_view::npos ? end : end - begin));
        if (!channel || std::ranges::find(channels, *channel) != channels.end()) {
            return std::nullopt;
        }
        channels.push_back(*channel);
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

std::optional<std::uint32_t> parseTraceLevel(std::string_view text)
{
    const auto level = parseCount(text);
    return level && *level <= 7 ? level : std::nullopt;
}

std::optional<TimePoint> parseTime(std::string_view text)
{
    if (text.size() < 12 || text[10] != 'T' || !text.ends_with('Z')) {
        return std::nullopt;
    }
    const auto date = parseDate(text.substr(0, 10));
    const auto time = parseTimeOfDay(text.substr(11, text.size() - 12));
    constexpr std::chrono::sys_days end = std::chrono::year(9000) / 1 / 1; // the longest scan ends in a year of four digits
    return date && time && *date < end ? std::optional(TimePoint(*date) + *time) : std::nullopt;
}

} // namespace sdc

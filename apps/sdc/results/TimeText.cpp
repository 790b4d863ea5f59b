#include "apps/sdc/results/TimeText.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace sdc {

namespace {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::milliseconds;

std::string digits(std::int64_t value, std::size_t width)
{
    const std::string text = std::to_string(value);
    return std::string(width - std::min(width, text.size()), '0') + text;
}

/// The number that a run of digits is; there is nothing else in the text.
int number(std::string_view text)
{
    int value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

/// Digits where the pattern has a 0, and its other characters.
bool looksLike(std::string_view text, std::string_view pattern)
{
    return std::equal(text.begin(), text.end(), pattern.begin(), pattern.end(),
        [](char one, char expected) { return expected == '0' ? one >= '0' && one <= '9' : one == expected; });
}

} // namespace

std::string dateText(TimePoint time)
{
    const std::chrono::year_month_day day(floor<days>(time));
    return digits(static_cast<int>(day.year()), 4) + "-" + digits(static_cast<unsigned>(day.month()), 2) + "-"
        + digits(static_cast<unsigned>(day.day()), 2);
}

std::string clockText(TimePoint time)
{
    const std::chrono::hh_mm_ss clock(time - floor<days>(time));
    return digits(clock.hours().count(), 2) + ":" + digits(clock.minutes().count(), 2) + ":"
        + digits(clock.seconds().count(), 2);
}

std::string rfc3339(TimePoint time)
{
    const milliseconds fraction = time - floor<std::chrono::seconds>(time);
    return dateText(time) + "T" + clockText(time) + "." + digits(fraction.count(), 3) + "Z";
}

std::optional<TimePoint> parseRfc3339(std::string_view text)
{
    if (!looksLike(text, "0000-00-00T00:00:00.000Z")) {
        return std::nullopt;
    }
    const auto part = [text](std::size_t begin, std::size_t size) { return number(text.substr(begin, size)); };
    const std::chrono::year_month_day day{std::chrono::year(part(0, 4)),
        std::chrono::month(static_cast<unsigned>(part(5, 2))), std::chrono::day(static_cast<unsigned>(part(8, 2)))};
    if (!day.ok() || part(11, 2) > 23 || part(14, 2) > 59 || part(17, 2) > 59) {
        return std::nullopt;
    }
    return std::chrono::sys_days(day) + std::chrono::hours(part(11, 2)) + std::chrono::minutes(part(14, 2))
        + std::chrono::seconds(part(17, 2)) + milliseconds(part(20, 3));
}

} // namespace sdc

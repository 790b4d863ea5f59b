#include "support/Time.h"

#include <date/date.h>

#include <locale>
#include <sstream>

namespace support {

namespace {

constexpr const char* rfc3339Form = "%Y-%m-%dT%H:%M:%SZ";

} // namespace

std::string dateText(TimePoint time)
{
    return date::format(std::locale::classic(), "%Y-%m-%d", time);
}

std::string clockText(TimePoint time)
{
    return date::format(std::locale::classic(), "%H:%M:%S", std::chrono::floor<std::chrono::seconds>(time));
}

std::string rfc3339(TimePoint time)
{
    return date::format(std::locale::classic(), rfc3339Form, time);
}

std::optional<TimePoint> parseRfc3339(std::string_view text)
{
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    TimePoint time;
    // A moment may be written in several ways, of which one is right.
    return date::from_stream(stream, rfc3339Form, time) && rfc3339(time) == text ? std::optional(time) : std::nullopt;
}

} // namespace support

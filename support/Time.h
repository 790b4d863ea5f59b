#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace support {

/// A moment, to the millisecond, in UTC.
using TimePoint = std::chrono::sys_time<std::chrono::milliseconds>;

// A moment as texts, whatever the locale. Years 0 to 9999.

std::string dateText(TimePoint time);  ///< 2026-01-02
std::string clockText(TimePoint time); ///< 03:04:05
std::string rfc3339(TimePoint time);   ///< 2026-01-02T03:04:05.678Z

/// Reads what rfc3339 writes; nothing for any other text, or a day that the calendar does not have.
std::optional<TimePoint> parseRfc3339(std::string_view text);

} // namespace support

#pragma once

#include "apps/sdc/results/ScanResult.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace sdc {

// What is written behind options. Each returns nothing for a text that is none.

/// "real" is 1, "max" is 0, any other speed is its factor above 0.
std::optional<double> parseSpeed(std::string_view text);

/// A plain decimal from 0 to what 32 bits hold: "010", "+1" and "" are none.
std::optional<std::uint32_t> parseCount(std::string_view text);

/// A level difference in dB: 0 to 1000.
std::optional<double> parseLevel(std::string_view text);

/// "all" is an empty list; otherwise channel numbers with commas between them, each once.
std::optional<std::vector<std::uint32_t>> parseChannels(std::string_view text);

/// Number of sweeps, at least 1; "forever" is 0.
std::optional<std::uint32_t> parseRepeat(std::string_view text);

/// A level of the trace, 0 to 7.
std::optional<std::uint32_t> parseTraceLevel(std::string_view text);

/// A moment such as 2026-01-02T03:04:05Z, in the years 1970 to 8999; up to three decimals of a second are allowed.
std::optional<TimePoint> parseTime(std::string_view text);

} // namespace sdc

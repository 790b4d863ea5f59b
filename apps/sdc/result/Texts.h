#pragma once

#include "apps/sdc/result/ScanResult.h"

#include <cstdint>
#include <string>

namespace sdc {

// What is said of results, the same way everywhere and whatever the locale.

/// A number of hundredths with its two decimals: -4512 is "-45.12".
std::string hundredths(std::int64_t value);

/// A frequency in MHz with its three decimals: 19177500 kHz is "19177.500".
std::string megahertz(std::uint32_t frequency_kHz);

/// Whether samples are missing.
bool isPartial(const Sweep& sweep, const ScanPlan& plan);

/// Of a sweep that is not complete, for people: "PARTIAL 5/13, failed: tuning failed". Empty of one that is.
std::string stateOf(const Sweep& sweep, const ScanPlan& plan);

} // namespace sdc

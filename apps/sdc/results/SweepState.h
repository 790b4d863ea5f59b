#pragma once

#include "apps/sdc/results/ScanResult.h"

#include <string>

namespace sdc {

/// Of a sweep that is not complete, for people: "PARTIAL 5/13, failed: tuning failed". Empty of one that is.
std::string stateOf(const Sweep& sweep, const terminal::ScanPlan& plan);

/// Whether samples are missing.
bool isPartial(const Sweep& sweep, const terminal::ScanPlan& plan);

/// "5/13"
std::string countOf(const Sweep& sweep, const terminal::ScanPlan& plan);

} // namespace sdc

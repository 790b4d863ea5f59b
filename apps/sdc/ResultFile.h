#pragma once

#include "apps/sdc/results/ScanResult.h"

#include <string>

namespace sdc {

/// Reads a result that `sdc scan --json` wrote; "-" is standard input.
/// @throws ResultError that names the file
ScanResult readResult(const std::string& file);

} // namespace sdc

#pragma once

#include "apps/sdc/results/ScanResult.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace sdc {

/// What is wrong with a result although it is of the schema: where it is at odds with itself. One line per finding, "PATH:
/// what is wrong; what would be right".
std::vector<std::string> resultFindings(const nlohmann::json& result);

/// A level in hundredths, rounded.
std::int32_t hundredthsOf(const nlohmann::json& level);

} // namespace sdc

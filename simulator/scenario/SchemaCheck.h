#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace simulator {

/// As schemaFindings of JsonSchema.h, of what has been read already.
std::vector<std::string> schemaFindings(const nlohmann::json& document, const nlohmann::json& schema);

} // namespace simulator

#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace simulator {

/// A place in a JSON text, as the validator tells it: keys and indices from the root on, the root itself left out.
using JsonPlace = std::vector<std::string>;

/// What a schema has against the value at a place, that place alone and not what is inside it: each finding a line
/// "PATH: what is wrong; what would be right". Empty when it has nothing that can be told.
std::vector<std::string> explain(const nlohmann::json& document, const nlohmann::json& schema, const JsonPlace& place);

/// The JSON path of a place: `$.channels[0].number`.
std::string pathOf(const nlohmann::json& document, const JsonPlace& place);

} // namespace simulator

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// Checks a JSON text, in which comments may stand, against a JSON Schema (draft-07).
/// @return one line per finding, "PATH: what is wrong; what would be right", in the order of the paths; empty when there is
///         none. A text that is no JSON has one finding, "line 3, column 5: what is wrong"
/// @throws std::invalid_argument when the schema is none
std::vector<std::string> schemaFindings(std::string_view json, std::string_view schema);

} // namespace simulator

#pragma once

#include <nlohmann/json.hpp>

#include <ostream>

namespace support {

/// Writes a value for people as much as for programs: what fits on a line stands on one, long lists fill lines. Ends with a
/// line feed.
void writeReadably(std::ostream& stream, const nlohmann::ordered_json& value);

} // namespace support

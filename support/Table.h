#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace support {

using Row = std::vector<std::string>;

/// Rows for people, in columns two spaces apart, each on a line. The last text of a row is not filled up. A row that has
/// fewer texts than the first, such as one that says what is missing, does not widen the columns.
/// @param alignment  'l' or 'r' for each column
std::string table(const std::vector<Row>& rows, std::string_view alignment);

} // namespace support

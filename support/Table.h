#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace support {

using Row = std::vector<std::string>;

/// Rows for people, in columns two spaces apart, each on a line. The last text of a row is not filled up. A row that has
/// fewer texts than there are columns, such as one that says what is missing, does not widen the columns.
/// @param alignment  'l' or 'r' for each column
/// @param least      widths that the first columns have in any case, in characters
std::string table(const std::vector<Row>& rows, std::string_view alignment, const std::vector<std::size_t>& least = {});

} // namespace support

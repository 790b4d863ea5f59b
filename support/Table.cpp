#include "support/Table.h"

#include <fmt/format.h>

#include <algorithm>

namespace support {

namespace {

std::vector<std::size_t> widthsOf(const std::vector<Row>& rows, std::size_t columns, std::vector<std::size_t> widths)
{
    widths.resize(columns);
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < widths.size() && row.size() == widths.size(); ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    return widths;
}

} // namespace

std::string table(const std::vector<Row>& rows, std::string_view alignment, const std::vector<std::size_t>& least)
{
    const std::vector<std::size_t> widths = widthsOf(rows, alignment.size(), least);
    std::string text;
    for (const Row& row : rows) {
        for (std::size_t column = 0; column + 1 < row.size(); ++column) {
            text += alignment[column] == 'r' ? fmt::format("{:>{}}  ", row[column], widths[column])
                                             : fmt::format("{:<{}}  ", row[column], widths[column]);
        }
        text += row.back() + "\n";
    }
    return text;
}

} // namespace support

#include "apps/sdc/plot/TextCanvas.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iterator>

namespace sdc {

TextCanvas::TextCanvas(int columns, int rows)
    : m_columns(columns)
    , m_rows(rows)
    , m_cells(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows))
{
}

bool TextCanvas::isInside(int column, int row) const
{
    return column >= 0 && column < m_columns && row >= 0 && row < m_rows;
}

std::size_t TextCanvas::indexOf(int column, int row) const
{
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) + static_cast<std::size_t>(column);
}

char TextCanvas::at(int column, int row) const
{
    return isInside(column, row) ? m_cells[indexOf(column, row)].sign : ' ';
}

void TextCanvas::put(int column, int row, char sign, int color)
{
    if (isInside(column, row)) {
        m_cells[indexOf(column, row)] = {sign, color};
    }
}

void TextCanvas::write(int column, int row, std::string_view text, int color)
{
    for (const char sign : text) {
        put(column++, row, sign, color);
    }
}

void TextCanvas::drawHorizontal(int row, int first, int last, char sign, int color)
{
    drawLine(first, row, last, row, sign, color);
}

void TextCanvas::drawVertical(int column, int first, int last, char sign, int color)
{
    drawLine(column, first, column, last, sign, color);
}

void TextCanvas::drawLine(int column, int row, int lastColumn, int lastRow, char sign, int color)
{
    const int steps = std::max({std::abs(lastColumn - column), std::abs(lastRow - row), 1});
    const auto between = [steps](int first, int last, int step) {
        const int moved = (last - first) * step;
        return first + (moved + (moved < 0 ? -steps : steps) / 2) / steps; // rounded
    };
    for (int step = 0; step <= steps; ++step) {
        put(between(column, lastColumn, step), between(row, lastRow, step), sign, color);
    }
}

std::string TextCanvas::text(bool isColored) const
{
    std::string text;
    for (int row = 0; row < m_rows; ++row) {
        const auto begin = m_cells.begin() + static_cast<std::ptrdiff_t>(indexOf(0, row));
        auto end = begin + m_columns;
        while (end != begin && std::prev(end)->sign == ' ') {
            --end;
        }
        for (auto cell = begin; cell != end;) {
            const auto next = std::find_if(cell, end, [&](const Cell& other) { return other.color != cell->color; });
            std::string run;
            std::transform(cell, next, std::back_inserter(run), [](const Cell& one) { return one.sign; });
            text += inColor(run, cell->color, isColored);
            cell = next;
        }
        text += '\n';
    }
    return text;
}

std::string inColor(std::string_view text, int color, bool isColored)
{
    return isColored && color != TextCanvas::ownColor ? fmt::format("\033[38;5;{}m{}\033[0m", color, text)
                                                      : std::string(text);
}

} // namespace sdc

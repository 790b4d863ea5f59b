#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sdc {

/// A field of ASCII signs, each in the terminal's own colour or another. Columns and rows count from 0 at the upper left;
/// what lies outside is not drawn.
class TextCanvas {
public:
    static constexpr int ownColor = -1; ///< of the terminal; others are numbered as the 256 of terminals

    TextCanvas(int columns, int rows);

    int columns() const { return m_columns; }

    char at(int column, int row) const;
    void put(int column, int row, char sign, int color = ownColor);
    void write(int column, int row, std::string_view text, int color = ownColor);
    void drawHorizontal(int row, int first, int last, char sign, int color = ownColor);
    void drawVertical(int column, int first, int last, char sign, int color = ownColor);

    /// A straight line with both its ends.
    void drawLine(int column, int row, int lastColumn, int lastRow, char sign, int color);

    /// Its lines, without blanks at their ends.
    std::string text(bool isColored) const;

private:
    struct Cell {
        char sign = ' ';
        int color = ownColor;
    };
    bool isInside(int column, int row) const;
    std::size_t indexOf(int column, int row) const;

    int m_columns;
    int m_rows;
    std::vector<Cell> m_cells;
};

/// A text between the escape sequences of a colour.
std::string inColor(std::string_view text, int color, bool isColored);

} // namespace sdc

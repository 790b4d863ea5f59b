#pragma once

#include "apps/sdc/plot/Axes.h"
#include "apps/sdc/plot/Chart.h"
#include "apps/sdc/plot/TextCanvas.h"

#include <cstdint>
#include <string>
#include <vector>

namespace sdc {

/// What a sign in a plot as text stands for.
struct LegendItem {
    char sign;
    int color;
    std::string meaning;
};

/// A legend in lines of a width.
std::vector<std::string> legendLines(const std::vector<LegendItem>& items, int width, bool isColored);

/// What pictures of one channel as text have in common: the title, a frame, the axis of frequencies below it, the raster
/// above, channels of the radio and marks. The upper and the lower side are the ends of the axis of levels; the ends of the
/// frequencies stand beside the other two.
class TextFrame {
public:
    static constexpr int linesAround = 4; ///< title, raster, ticks; without legend and notes

    /// Columns of the frame's sides; labels of rows stand left of them.
    struct Sides {
        int left;
        int right;

        int columns() const { return right - left - 1; } ///< between them
    };

    /// @param rows  of the frame
    TextFrame(const Chart& chart, const Sides& sides, int rows);

    TextCanvas& canvas() { return m_canvas; }
    Room room() const;

    int left() const { return m_sides.left; }
    int right() const { return m_sides.right; }
    int top() const { return 1; }
    int bottom() const { return top() + m_rows - 1; }
    int columnOf(std::int64_t frequency_kHz) const;

    /// What lies behind the traces.
    void draw();

    /// A label beside the left side.
    void labelRow(int row, const std::string& label);

    std::string text(const std::vector<std::string>& legend, bool isColored) const;

private:
    void drawRaster();
    void drawTicks();

    const Chart& m_chart;
    Sides m_sides;
    int m_rows;
    TextCanvas m_canvas;
};

} // namespace sdc

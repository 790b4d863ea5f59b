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

/// What the letters above the frame stand for; nothing where there are none.
std::vector<std::string> stateLegend(const Chart& chart, int width, bool isColored);

/// What pictures of one channel as text have in common: the title, a frame, the axis of frequencies below it, the raster
/// above and what is in its channels, channels of the radio and marks. The upper and the lower side are the ends of the axis
/// of levels; the ends of the frequencies stand beside the other two.
class TextFrame {
public:
    static constexpr int fewRows = 8; ///< of a frame: where there are no more, states of channels are left out

    /// Lines of the title, the raster and the ticks.
    static int linesAround(const Chart& chart, int width);

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
    int top() const { return m_chart.states.empty() ? 1 : 2; }
    int bottom() const { return top() + m_rows - 1; }
    int columnOf(std::int64_t frequency_kHz) const;

    /// What lies behind the traces.
    void draw();

    /// A label beside the left side.
    void labelRow(int row, const std::string& label);

    std::string text(const std::vector<std::string>& legend, bool isColored) const;

private:
    void drawRaster();
    void drawStates();
    void drawTicks();

    const Chart& m_chart;
    Sides m_sides;
    int m_rows;
    TextCanvas m_canvas;
};

} // namespace sdc

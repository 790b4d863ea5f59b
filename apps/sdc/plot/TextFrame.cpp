#include "apps/sdc/plot/TextFrame.h"

#include "apps/sdc/plot/ChartNotes.h"
#include "apps/sdc/plot/Looks.h"
#include "apps/sdc/result/Raster.h"
#include "support/Text.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <numeric>

namespace sdc {

namespace {

/// Labels of ticks in a row, those left out that would meet the one before.
class LabelRow {
public:
    LabelRow(TextCanvas& canvas, int row, int first)
        : m_canvas(canvas)
        , m_row(row)
        , m_first(first)
    {
    }

    void write(int middle, const std::string& label)
    {
        const int size = static_cast<int>(label.size());
        const int begin = std::clamp(middle - size / 2, m_first, std::max(m_first, m_canvas.columns() - size));
        if (begin >= m_free) {
            m_canvas.write(begin, m_row, label);
            m_free = begin + size + 1;
        }
    }

private:
    TextCanvas& m_canvas;
    int m_row;
    int m_first;
    int m_free = 0;
};

} // namespace

std::vector<std::string> legendLines(const std::vector<LegendItem>& items, int width, bool isColored)
{
    constexpr std::size_t distance = 3;
    std::vector<std::string> lines;
    std::size_t used = 0;
    for (const LegendItem& item : items) {
        const std::string plain =
            support::shown(std::string(1, item.sign) + " " + item.meaning, static_cast<std::size_t>(width));
        if (lines.empty() || used + distance + plain.size() > static_cast<std::size_t>(width)) {
            lines.emplace_back();
            used = 0;
        }
        lines.back() += (used == 0 ? "" : std::string(distance, ' ')) + inColor(plain.substr(0, 1), item.color, isColored)
            + plain.substr(1);
        used += (used == 0 ? 0 : distance) + plain.size();
    }
    return lines;
}

std::vector<std::string> stateLegend(const Chart& chart, int width, bool isColored)
{
    std::vector<LegendItem> items;
    for (const StateLook& look : statesIn(chart)) {
        items.push_back({look.sign, look.ansi, std::string(toText(look.state)) + (items.empty() ? " channel" : "")});
    }
    std::vector<std::string> lines = legendLines(items, width, isColored);
    if (std::ssize(chart.states) > width && items.size() > 1) {
        const std::vector<std::string> more = support::wrapped(
            {"channels that share a letter have that of the first in this order"}, static_cast<std::size_t>(width));
        lines.insert(lines.end(), more.begin(), more.end());
    }
    return lines;
}

int TextFrame::linesAround(const Chart& chart, int width)
{
    constexpr int rasterAndTicks = 2;
    return static_cast<int>(headLines(chart, static_cast<std::size_t>(width)).size()) + rasterAndTicks
        + (chart.states.empty() ? 0 : 1);
}

TextFrame::TextFrame(const Chart& chart, const Sides& sides, int rows)
    : m_chart(chart)
    , m_sides(sides)
    , m_rows(rows)
    , m_canvas(sides.right + 1, rows + (chart.states.empty() ? 2 : 3))
{
}

Room TextFrame::room() const
{
    return {.width = m_sides.columns() - 1.0, .height = m_rows - 1.0, .characterWidth = 1.0, .lineHeight = 1.0};
}

int TextFrame::columnOf(std::int64_t frequency_kHz) const
{
    const double share =
        static_cast<double>(frequency_kHz - m_chart.range_kHz.lowest) / static_cast<double>(m_chart.range_kHz.span());
    return left() + 1 + static_cast<int>(std::lround(share * (m_sides.columns() - 1)));
}

void TextFrame::draw()
{
    for (const int row : {top(), bottom()}) {
        m_canvas.drawHorizontal(row, left(), right(), '-');
    }
    for (const int column : {left(), right()}) {
        m_canvas.drawVertical(column, top(), bottom(), '|');
        m_canvas.put(column, top(), '+');
        m_canvas.put(column, bottom(), '+');
    }
    drawTicks();
    drawRaster();
    drawStates();
    for (const Band& band : m_chart.bands) {
        for (const std::int64_t edge_kHz : {band.range_kHz.lowest, band.range_kHz.highest}) {
            if (edge_kHz > m_chart.range_kHz.lowest && edge_kHz < m_chart.range_kHz.highest) {
                m_canvas.drawVertical(columnOf(edge_kHz), top(), bottom(), ':');
            }
        }
        const int middle = columnOf(std::midpoint(band.range_kHz.lowest, band.range_kHz.highest));
        m_canvas.write(middle - static_cast<int>(band.name.size()) / 2, bottom(), band.name);
    }
    for (const Mark& mark : m_chart.marks) {
        m_canvas.drawVertical(columnOf(mark.frequency_kHz), top(), bottom(), '!');
        m_canvas.write(columnOf(mark.frequency_kHz), top(), mark.label);
    }
}

/// The edges between channels as long as there is room for them, and otherwise the channels that have a number.
void TextFrame::drawRaster()
{
    constexpr int leastColumns = 3; // from one edge to the next
    LabelRow labels(m_canvas, 0, left() - 1);
    const std::int64_t spacing_kHz = m_chart.spacing_kHz;
    const bool hasEdges = columnOf(m_chart.range_kHz.lowest + spacing_kHz) - left() >= leastColumns;
    for (const Tick& tick : channelTicks(m_chart.range_kHz, m_chart.rx_kHz, spacing_kHz, room())) {
        if (hasEdges) {
            for (const std::int64_t edge_kHz : {tick.place - spacing_kHz / 2, tick.place + spacing_kHz / 2}) {
                m_canvas.put(m_chart.range_kHz.holds(edge_kHz) ? columnOf(edge_kHz) : left(), top(), '+');
            }
        } else if (!tick.label.empty()) {
            m_canvas.put(columnOf(tick.place), top(), '+');
        }
        if (!tick.label.empty()) {
            labels.write(columnOf(tick.place), tick.label);
        }
    }
}

/// Above the middle of each channel.
void TextFrame::drawStates()
{
    for (auto look = stateLooks.rbegin(); look != stateLooks.rend(); ++look) {
        for (const ChannelState& channel : m_chart.states) {
            if (channel.state == look->state) {
                const int column = columnOf(std::midpoint(channel.range_kHz.lowest, channel.range_kHz.highest));
                m_canvas.put(column, top() - 1, look->sign, look->ansi);
            }
        }
    }
}

void TextFrame::drawTicks()
{
    const std::string unit = "MHz";
    m_canvas.write(1, bottom() + 1, unit);
    LabelRow labels(m_canvas, bottom() + 1, static_cast<int>(unit.size()) + 2);
    for (const Tick& tick : frequencyTicks(m_chart.range_kHz, room())) {
        m_canvas.put(columnOf(tick.place), bottom(), '+');
        labels.write(columnOf(tick.place), tick.label);
    }
}

void TextFrame::labelRow(int row, const std::string& label)
{
    m_canvas.put(left(), row, '+');
    m_canvas.write(left() - 1 - static_cast<int>(label.size()), row, label);
}

std::string TextFrame::text(const std::vector<std::string>& legend, bool isColored) const
{
    const auto width = static_cast<std::size_t>(m_canvas.columns());
    std::string text;
    for (const std::string& line : headLines(m_chart, width)) {
        text += line + "\n";
    }
    text += m_canvas.text(isColored);
    for (const std::string& line : legend) {
        text += line + "\n";
    }
    for (const std::string& line : support::wrapped(m_chart.notes, width)) {
        text += line + "\n";
    }
    return text;
}

} // namespace sdc

#include "apps/sdc/plot/ChartText.h"

#include "apps/sdc/plot/Axes.h"
#include "apps/sdc/plot/Looks.h"
#include "apps/sdc/plot/TextCanvas.h"
#include "apps/sdc/plot/TextFrame.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace sdc {

namespace {

std::int64_t roundedDown(std::int64_t value, std::int64_t step)
{
    return -roundedUp(-value, step);
}

/// Ends that bear a label each, a row and a half at least from one label to the next, and room for labels of peaks above the
/// strongest level.
LevelScale textScale(const Chart& chart, int rows)
{
    constexpr int rowsOfALabel = 2;
    constexpr std::int64_t margin_dB = 2; // the lowest reading does not lie on the frame
    const Range levels = levelsOf(chart);
    const int intervals = std::max((rows - 1) * 2 / 3, 1);
    for (const std::int64_t step_dB : {10, 20, 50, 100}) {
        const std::int64_t lowest = roundedDown(roundedDown(levels.lowest, 100) / 100 - margin_dB, step_dB);
        std::int64_t highest = roundedUp(roundedUp(levels.highest, 100) / 100, step_dB);
        while ((highest * 100 - levels.highest) * (rows - 1) < rowsOfALabel * (highest - lowest) * 100) {
            highest += step_dB;
        }
        if (highest - lowest <= intervals * step_dB) {
            return {{lowest, highest}, step_dB};
        }
    }
    return {{-300, 100}, 100};
}

constexpr int columnsOfALabel = 6;

/// Draws what stands on the scale of levels.
class TextPlot {
public:
    TextPlot(const Chart& chart, int width, int rows)
        : m_chart(chart)
        , m_scale(textScale(chart, rows))
        , m_frame(chart, {.left = columnsOfALabel, .right = width - 1}, rows)
    {
    }

    std::string draw(const std::vector<std::string>& legend, bool isColored)
    {
        drawGrid();
        m_frame.draw();
        drawLevel(lowestLook, lowestReading);
        if (m_chart.limit) {
            drawLevel(limitLook, *m_chart.limit);
        }
        labelLevels();
        for (const Stem& stem : stemsOf(m_chart, m_scale)) {
            canvas().drawVertical(m_frame.columnOf(stem.frequency_kHz), rowOf(stem.top), rowOf(stem.foot), '|');
        }
        for (std::size_t index = m_chart.traces.size(); index-- > 0;) {
            drawTrace(m_chart.traces[index]);
        }
        labelPeaks();
        return m_frame.text(legend, isColored);
    }

private:
    TextCanvas& canvas() { return m_frame.canvas(); }

    int rowOf(std::int32_t level) const
    {
        const double below_dB = static_cast<double>(m_scale.range_dBm.highest) - m_scale.shown(level) / 100.0;
        const double share = below_dB / static_cast<double>(m_scale.range_dBm.span());
        return m_frame.top() + static_cast<int>(std::lround(share * (m_frame.bottom() - m_frame.top())));
    }

    int rowOfTick(std::int64_t level_dBm) const { return rowOf(static_cast<std::int32_t>(level_dBm * 100)); }

    /// Dotted, or it would look like a trace.
    void drawGrid()
    {
        constexpr int distance = 4;
        for (std::int64_t level = m_scale.range_dBm.lowest; level <= m_scale.range_dBm.highest; level += m_scale.tick_dB) {
            for (int column = m_frame.left() + distance; column < m_frame.right(); column += distance) {
                canvas().put(column, rowOfTick(level), '.');
            }
        }
    }

    void labelLevels()
    {
        canvas().write(1, m_frame.top() - 1, "dBm");
        for (std::int64_t level = m_scale.range_dBm.lowest; level <= m_scale.range_dBm.highest; level += m_scale.tick_dB) {
            m_frame.labelRow(rowOfTick(level), std::to_string(level));
        }
    }

    void drawLevel(const Look& look, std::int32_t level)
    {
        canvas().drawHorizontal(rowOf(level), m_frame.left() + 1, m_frame.right() - 1, look.sign, look.ansi);
    }

    void drawTrace(const Trace& trace)
    {
        const Point* before = nullptr;
        for (const Point& point : trace.points) {
            const Point& from = before != nullptr && trace.isConnected ? *before : point;
            canvas().drawLine(m_frame.columnOf(from.frequency_kHz), rowOf(from.level), m_frame.columnOf(point.frequency_kHz),
                rowOf(point.level), trace.look.sign, trace.look.ansi);
            before = &point;
        }
        drawOutsiders(trace);
    }

    void drawOutsiders(const Trace& trace)
    {
        for (const Point& point : trace.points) {
            const std::int32_t shown = m_scale.shown(point.level);
            if (shown != point.level) {
                const char sign = point.level > shown ? maxLook.sign : minLook.sign;
                canvas().put(m_frame.columnOf(point.frequency_kHz), rowOf(shown), sign, trace.look.ansi);
            }
        }
    }

    void labelPeaks()
    {
        for (const PeakLabel& label : peakLabels(m_chart, m_scale, m_frame.room(), 0)) {
            const int middle = m_frame.columnOf(label.place.frequency_kHz);
            const int row = std::max(rowOf(label.place.level) - 1, m_frame.top());
            canvas().write(middle - static_cast<int>(label.frequency.size()) / 2, row, label.frequency);
        }
        const bool isEmpty = std::ranges::all_of(m_chart.traces, [](const Trace& trace) { return trace.points.empty(); });
        if (isEmpty) {
            canvas().write((m_frame.left() + m_frame.right()) / 2 - 5, (m_frame.top() + m_frame.bottom()) / 2, "no levels");
        }
    }

    const Chart& m_chart;
    LevelScale m_scale;
    TextFrame m_frame;
};

std::vector<LegendItem> legendOf(const Chart& chart)
{
    std::vector<LegendItem> items;
    for (const Trace& trace : chart.traces) {
        items.push_back({trace.look.sign, trace.look.ansi, trace.title});
    }
    if (chart.limit) {
        items.push_back({limitLook.sign, limitLook.ansi, "limit " + hundredths(*chart.limit) + " dBm"});
    }
    items.push_back({lowestLook.sign, lowestLook.ansi, "lowest reading " + hundredths(lowestReading) + " dBm"});
    return items;
}

} // namespace

std::string chartText(const Chart& chart, const PlotOptions& options)
{
    constexpr int fewestRows = 5;
    std::vector<std::string> legend = legendLines(legendOf(chart), options.width, options.isColored);
    const std::vector<std::string> states = stateLegend(chart, options.width, options.isColored);
    legend.insert(legend.end(), states.begin(), states.end());
    const int around = TextFrame::linesAround(chart, options.width) + static_cast<int>(legend.size());
    if (options.height - around < TextFrame::fewRows && !chart.states.empty()) {
        return chartText(withoutStates(chart), options);
    }
    TextPlot plot(chart, options.width, std::max(options.height - around, fewestRows));
    return plot.draw(legend, options.isColored);
}

} // namespace sdc

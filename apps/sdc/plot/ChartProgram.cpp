#include "apps/sdc/plot/ChartProgram.h"

#include "apps/sdc/plot/Axes.h"
#include "apps/sdc/plot/FrameProgram.h"
#include "apps/sdc/plot/Looks.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

namespace sdc {

namespace {

/// Whole steps of 5 dB, with room for the labels of peaks above the strongest level.
LevelScale pictureScale(const Chart& chart, const Room& room)
{
    constexpr double labelLines = 3.0;
    constexpr double step_dB = 5.0;
    const Range levels = levelsOf(chart);
    const auto lowest =
        static_cast<std::int64_t>(std::floor(static_cast<double>(levels.lowest) / 100.0 / step_dB - 1.0) * step_dB);
    const double shown_dB = static_cast<double>(levels.highest) / 100.0 - static_cast<double>(lowest);
    const double labels = labelLines * room.lineHeight / room.height; // share of the height
    const auto span = static_cast<std::int64_t>(std::ceil(shown_dB / (1.0 - labels) / step_dB) * step_dB);
    const bool isClose = static_cast<double>(span) > 10.0 * room.height / room.lineHeight;
    return {{lowest, lowest + span}, isClose ? 20 : 10};
}

/// What the scale does not reach.
std::vector<Point> outsidersOf(const Chart& chart, const LevelScale& scale, bool isAbove)
{
    std::vector<Point> outsiders;
    for (const Trace& trace : chart.traces) {
        std::ranges::copy_if(trace.points, std::back_inserter(outsiders), [&](const Point& point) {
            const std::int32_t shown = scale.shown(point.level);
            return isAbove ? point.level > shown : point.level < shown;
        });
    }
    return outsiders;
}

std::string pointsOf(const std::string& name, const LevelScale& scale, const std::vector<Point>& points)
{
    std::string text = fmt::format("${} << end\n", name);
    for (const Point& point : points) {
        text += fmt::format("{} {}\n", inMegahertz(point.frequency_kHz), hundredths(scale.shown(point.level)));
    }
    return text + "end\n";
}

std::string dataOf(const Chart& chart, const LevelScale& scale)
{
    std::string text;
    for (std::size_t index = 0; index < chart.traces.size(); ++index) {
        text += pointsOf(fmt::format("trace{}", index), scale, chart.traces[index].points);
    }
    return text;
}

std::string labels(const Chart& chart, const LevelScale& scale, const Room& room)
{
    constexpr int lines = 2;
    const bool isEmpty = std::ranges::all_of(chart.traces, [](const Trace& trace) { return trace.points.empty(); });
    std::string text = isEmpty ? "set label 'no levels' at graph 0.5, graph 0.5 center\n" : "";
    for (const PeakLabel& label : peakLabels(chart, scale, room, lines)) {
        text += fmt::format("set label {}.\"\\n\".{} at first {}, first {} center front\n", inQuotes(label.frequency),
            inQuotes(hundredths(label.peak.level)), inMegahertz(label.place.frequency_kHz), hundredths(label.place.level));
    }
    return text;
}

/// Of a trace in the plot and in the key.
std::string drawnWith(const Trace& trace, const Chart& chart)
{
    constexpr std::size_t mostMarkers = 150; // more of them run into each other
    constexpr std::size_t fewMarkers = 25;
    const bool areMany = trace.isConnected && trace.points.size() > mostMarkers;
    const bool hasMarkers = !areMany || chart.isOverlay();
    std::string with = !trace.isConnected ? "points" : hasMarkers ? "linespoints" : "lines";
    with += fmt::format(" linecolor rgb '{}' linewidth 1.5 dashtype {}", trace.look.color, trace.look.dash);
    with += hasMarkers ? fmt::format(" pointtype {} pointsize 0.5", trace.look.marker) : "";
    return with + (hasMarkers && areMany ? fmt::format(" pointinterval {}", trace.points.size() / fewMarkers) : "");
}

std::string levelItem(const Look& look, std::int32_t level, const char* name)
{
    return fmt::format("{0} with lines linecolor rgb '{1}' dashtype {2} title '{3} {0} dBm'", hundredths(level), look.color,
        look.dash, name);
}

std::string stemData(const Chart& chart, const LevelScale& scale)
{
    std::string text = "$stems << end\n";
    for (const Stem& stem : stemsOf(chart, scale)) {
        text += fmt::format("{} {} {}\n", inMegahertz(stem.frequency_kHz), hundredths(stem.foot),
            hundredths(std::int64_t{stem.top} - stem.foot));
    }
    return text + "end\n";
}

/// All that is drawn over one another, what is in front last.
std::string items(const Chart& chart, const LevelScale& scale)
{
    std::string items = stemsOf(chart, scale).empty()
        ? ""
        : "$stems using 1:2:(0):3 with vectors nohead linecolor rgb '#7a8ca3' linewidth 1 notitle, \\\n    ";
    for (std::size_t index = chart.traces.size(); index-- > 0;) {
        const Trace& trace = chart.traces[index];
        items += trace.points.empty()
            ? ""
            : fmt::format("$trace{} using 1:2 with {} notitle, \\\n    ", index, drawnWith(trace, chart));
    }
    for (const Trace& trace : chart.traces) {
        items += fmt::format("keyentry with {} title {}, \\\n    ", drawnWith(trace, chart), inQuotes(trace.title));
    }
    if (!chart.peaks.empty()) {
        items += "$peaks using 1:2 with points pointtype 11 pointsize 1.2 linecolor rgb '#8a3ffc' title 'peaks', \\\n    ";
    }
    for (const auto& [data, marker] : {std::pair{"above", 9}, {"below", 11}}) {
        items += fmt::format(
            "${} using 1:2 with points pointtype {} pointsize 1.5 linecolor rgb '#000000' notitle, \\\n    ", data, marker);
    }
    if (chart.limit) {
        items += levelItem(limitLook, *chart.limit, "limit") + ", \\\n    ";
    }
    return items + levelItem(lowestLook, lowestReading, "lowest reading") + stateKey(chart);
}

} // namespace

std::string chartProgram(const Chart& chart, const PlotOptions& options)
{
    const Room room = pictureRoom(options);
    const LevelScale scale = pictureScale(chart, room);
    return frameProgram(chart, options)
        + fmt::format("set yrange [{}:{}]\nset ylabel 'level, dBm'\nset ytics {}\n", scale.range_dBm.lowest,
            scale.range_dBm.highest, scale.tick_dB)
        + "set grid ytics linetype 1 linecolor rgb '#d8d8d8' linewidth 1\n" + dataOf(chart, scale) + stemData(chart, scale)
        + pointsOf("peaks", scale, chart.peaks) + pointsOf("above", scale, outsidersOf(chart, scale, true))
        + pointsOf("below", scale, outsidersOf(chart, scale, false)) + labels(chart, scale, room) + "plot "
        + items(chart, scale) + "\n";
}

} // namespace sdc

#include "apps/sdc/plot/ChartProgram.h"

#include "apps/sdc/plot/Looks.h"
#include "apps/sdc/result/ScanResult.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <string_view>
#include <utility>

namespace sdc {

namespace {

constexpr int lineHeight_px = 16;
constexpr double characterWidth_px = 7.5;
constexpr int mostPixels = 30000; // what pictures can have

constexpr const char* settings = R"(set encoding utf8
set samples 2
set border 15 linecolor rgb '#333333'
set tics nomirror out
set key below horizontal Left reverse height 0.4
)";

constexpr const char* forgotten =
    "unset label\nunset object\nunset arrow\nunset x2tics\nunset x2label\nunset y2tics\n"; // of the plot before

std::string listOf(const std::vector<Tick>& ticks)
{
    std::string list;
    for (const Tick& tick : ticks) {
        list += fmt::format("{}\"{}\" {}", list.empty() ? "" : ", ", tick.label, inMegahertz(tick.place));
    }
    return list;
}

std::string rangeText(const Chart& chart)
{
    return fmt::format("[{}:{}]", inMegahertz(chart.range_kHz.lowest), inMegahertz(chart.range_kHz.highest));
}

std::string verticalLine(const std::string& place, const char* look)
{
    return fmt::format("set arrow from first {0}, graph 0 to first {0}, graph 1 nohead {1}\n", place, look);
}

/// Between channels of the raster, as long as they are far enough apart to be told from one another.
std::string channelEdges(const Chart& chart, std::int64_t firstCentre_kHz, const Room& room)
{
    constexpr double leastDistance_px = 8.0;
    const double distance_px =
        room.width * static_cast<double>(chart.spacing_kHz) / static_cast<double>(chart.range_kHz.span());
    if (distance_px < leastDistance_px) {
        return "";
    }
    std::string lines;
    const std::int64_t half_kHz = chart.spacing_kHz / 2;
    for (std::int64_t edge = firstCentre_kHz - half_kHz; edge <= chart.range_kHz.highest; edge += chart.spacing_kHz) {
        lines += edge <= chart.range_kHz.lowest ? "" : verticalLine(inMegahertz(edge), "back linecolor rgb '#e6e6e6'");
    }
    return lines;
}

/// Numbers of the channels and the edges between them.
std::string raster(const Chart& chart, const Room& room)
{
    const std::vector<Tick> ticks = channelTicks(chart.range_kHz, chart.rx_kHz, chart.spacing_kHz, room);
    return ticks.empty()
        ? ""
        : fmt::format("set x2range {}\nset x2tics ({})\nset x2label 'channel raster, 0: the configured channel'\n",
              rangeText(chart), listOf(ticks))
            + channelEdges(chart, ticks.front().place, room);
}

std::string bandProgram(const Chart& chart, const Band& band)
{
    const bool isReceived = band.name == "RX";
    const std::string lower = inMegahertz(band.range_kHz.lowest);
    const std::string upper = inMegahertz(band.range_kHz.highest);
    std::string program =
        fmt::format("set object rectangle from first {}, graph 0 to first {}, graph 1 behind fillcolor rgb "
                    "'{}' fillstyle solid noborder\n",
            lower, upper, isReceived ? "#dce8f7" : "#f7e8d8");
    for (const std::int64_t edge_kHz : {band.range_kHz.lowest, band.range_kHz.highest}) {
        if (edge_kHz > chart.range_kHz.lowest && edge_kHz < chart.range_kHz.highest) {
            program += verticalLine(inMegahertz(edge_kHz),
                isReceived ? "back dashtype 3 linecolor rgb '#5b7fa8'" : "back dashtype 3 linecolor rgb '#a8835b'");
        }
    }
    return program
        + fmt::format("set label '{}' at first {}, graph 0.03 center front textcolor rgb '#555555'\n", band.name,
            inMegahertz(std::midpoint(band.range_kHz.lowest, band.range_kHz.highest)));
}

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
    std::string text = isEmpty ? "set label 'no samples' at graph 0.5, graph 0.5 center\n" : "";
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
    return fmt::format("{0} with lines linecolor rgb '{1}' dashtype {2} title '{3} {0} dBm'{4}", hundredths(level),
        look.color, look.dash, name, level == lowestReading ? "" : ", \\\n    ");
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
        items += levelItem(limitLook, *chart.limit, "limit");
    }
    return items + levelItem(lowestLook, lowestReading, "lowest reading");
}

} // namespace

std::string inQuotes(const std::string& text)
{
    constexpr std::string_view special = "\"'`\\@";
    std::string quoted = "\"";
    for (const char one : text) {
        quoted += special.find(one) == std::string_view::npos ? std::string(1, one)
                                                              : fmt::format("\\{:03o}", static_cast<unsigned char>(one));
    }
    return quoted + "\"";
}

std::string programHead(const PlotOptions& options, std::size_t plots, std::size_t lines)
{
    const std::int64_t height =
        (options.height + static_cast<std::int64_t>(lines) * lineHeight_px) * static_cast<std::int64_t>(plots);
    const std::string size = fmt::format("size {},{} noenhanced", options.width, std::min<std::int64_t>(mostPixels, height));
    const std::string terminal = options.format == PlotFormat::svg
        ? fmt::format("svg {} font 'sans-serif,13' background '#ffffff'", size)
        : fmt::format("pngcairo {} font 'sans,10' background '#ffffff'", size);
    return "set terminal " + terminal + "\n" + settings
        + (plots > 1 ? fmt::format("set multiplot layout {},1\n", plots) : "");
}

std::string programTail(std::size_t plots)
{
    return plots > 1 ? "unset multiplot\n" : "";
}

Room pictureRoom(const PlotOptions& options)
{
    return {.width = options.width - 110.0,
        .height = options.height - 170.0,
        .characterWidth = characterWidth_px,
        .lineHeight = lineHeight_px};
}

std::vector<std::string> pictureNotes(const Chart& chart, const PlotOptions& options)
{
    return support::wrapped(chart.notes, static_cast<std::size_t>(options.width / characterWidth_px));
}

std::size_t linesBelow(const Chart& chart, const PlotOptions& options)
{
    return pictureNotes(chart, options).size() + (chart.isOverlay() ? chart.traces.size() : 0);
}

std::string frameProgram(const Chart& chart, const PlotOptions& options)
{
    const Room room = pictureRoom(options);
    std::string program = forgotten;
    program += fmt::format("set title {}{} offset 0,0.7\n", inQuotes(chart.title),
        chart.subtitle.empty() ? "" : ".\"\\n\"." + inQuotes(chart.subtitle));
    program += fmt::format("set xrange {}\nset xtics ({})\nset xlabel 'frequency, MHz'", rangeText(chart),
        listOf(frequencyTicks(chart.range_kHz, room)));
    for (const std::string& note : pictureNotes(chart, options)) {
        program += ".\"\\n\"." + inQuotes(note);
    }
    program += "\n" + raster(chart, room);
    for (const Band& band : chart.bands) {
        program += bandProgram(chart, band);
    }
    for (const Mark& mark : chart.marks) {
        program += verticalLine(inMegahertz(mark.frequency_kHz), "front dashtype 2 linecolor rgb '#000000'");
        program += fmt::format(
            "set label '{}' at first {}, graph 0.96 left offset 0.4,0 front\n", mark.label, inMegahertz(mark.frequency_kHz));
    }
    return program;
}

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

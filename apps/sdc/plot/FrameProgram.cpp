#include "apps/sdc/plot/FrameProgram.h"

#include "apps/sdc/plot/ChartNotes.h"
#include "apps/sdc/plot/Looks.h"
#include "apps/sdc/result/Raster.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <string_view>

namespace sdc {

namespace {

constexpr int lineHeight_px = 16;
constexpr double characterWidth_px = 7.5;
constexpr int mostPixels = 30000; // what pictures can have

constexpr const char* settings = R"(set encoding utf8
set samples 2
set border 15 linecolor rgb '#333333'
set tics nomirror out
set key below horizontal Left reverse height 0.4 samplen 3
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

std::size_t charactersOf(const PlotOptions& options)
{
    return static_cast<std::size_t>(options.width / characterWidth_px);
}

constexpr const char* stateBorder = "border rgb '#333333'";

/// On the upper side of the frame; neighbours with the same state are one.
std::string stateStrip(const Chart& chart, const Room& room)
{
    constexpr double height_px = 9.0;
    std::string strip;
    for (auto begin = chart.states.begin(); begin != chart.states.end();) {
        const auto end = std::find_if(begin, chart.states.end(), [&](const ChannelState& other) { //
            return other.state != begin->state;
        });
        const StateLook& look = *std::ranges::find(stateLooks, begin->state, &StateLook::state);
        strip += fmt::format("set object rectangle from first {}, graph 1 to first {}, graph {:.4f} noclip front {} {}\n",
            inMegahertz(begin->range_kHz.lowest), inMegahertz(std::prev(end)->range_kHz.highest),
            1.0 + height_px / room.height, look.fill, stateBorder);
        begin = end;
    }
    return strip;
}

/// Numbers of the channels, the edges between them and what is in them.
std::string raster(const Chart& chart, const Room& room)
{
    const std::vector<Tick> ticks = channelTicks(chart.range_kHz, chart.rx_kHz, chart.spacing_kHz, room);
    const char* const look = chart.states.empty() ? "scale 1 offset 0,0" : "scale 0 offset 0,0.5";
    return ticks.empty()
        ? ""
        : fmt::format("set x2range {}\nset x2tics {} ({})\nset x2label 'channel raster, 0: the configured channel'\n",
              rangeText(chart), look, listOf(ticks))
            + channelEdges(chart, ticks.front().place, room) + stateStrip(chart, room);
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

} // namespace

std::string stateKey(const Chart& chart)
{
    std::string key;
    for (const StateLook& look : statesIn(chart)) {
        key += fmt::format(", \\\n    keyentry with boxes {} {} title '{}{}'", look.fill, stateBorder, toText(look.state),
            key.empty() ? " channel" : "");
    }
    return key;
}

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
    return support::wrapped(chart.notes, charactersOf(options));
}

std::size_t linesBelow(const Chart& chart, const PlotOptions& options)
{
    return pictureNotes(chart, options).size() + (chart.isOverlay() ? chart.traces.size() : 0);
}

std::string frameProgram(const Chart& chart, const PlotOptions& options)
{
    const Room room = pictureRoom(options);
    std::string program = forgotten;
    std::string title;
    for (const std::string& line : headLines(chart, charactersOf(options))) {
        title += (title.empty() ? "" : ".\"\\n\".") + inQuotes(line);
    }
    program += fmt::format("set title {} offset 0,0.7\n", title);
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

} // namespace sdc

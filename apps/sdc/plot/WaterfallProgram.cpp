#include "apps/sdc/plot/Axes.h"
#include "apps/sdc/plot/Chart.h"
#include "apps/sdc/plot/FrameProgram.h"
#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/plot/Waterfall.h"
#include "apps/sdc/result/ScanResult.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace sdc {

namespace {

/// From dark to bright in equal steps of what is seen, also by those who do not tell red from green: the colours that are
/// known as viridis.
constexpr const char* palette = "set palette defined (0 '#440154', 1 '#472d7b', 2 '#3b528b', 3 '#2c728e', 4 '#21918c', "
                                "5 '#28ae80', 6 '#5ec962', 7 '#addc30', 8 '#fde725')\n";

constexpr double colorScale_px = 140.0; // with the times beside it

/// An image has no height unless it has two rows.
std::size_t imageRows(const Waterfall& waterfall)
{
    return std::max<std::size_t>(waterfall.rows.size(), 2);
}

std::string dataOf(const Waterfall& waterfall)
{
    std::string text = "$levels << end\n";
    for (std::size_t index = 0; index < imageRows(waterfall); ++index) {
        const Waterfall::Row& row = waterfall.rows[std::min(index, waterfall.rows.size() - 1)];
        for (const std::int32_t level : row.levels) {
            text += (level == Waterfall::nothing ? "NaN" : hundredths(level)) + " ";
        }
        text += "\n";
    }
    return text + "end\n";
}

/// Sweeps count from 1, at the upper end.
std::string sweepAxes(const Waterfall& waterfall, const Room& room)
{
    constexpr double linesOfATick = 3.0;
    const std::size_t perRow = waterfall.sweepsOfARow;
    const double end = static_cast<double>(waterfall.rows.size() * perRow) + 0.5;
    const double most = std::max(room.height / room.lineHeight / linesOfATick, 2.0);
    const auto step = static_cast<std::size_t>(niceStep(static_cast<double>(waterfall.sweeps) / most));
    std::string numbers;
    std::string times;
    for (std::size_t number = 1; number <= waterfall.sweeps; number = number == 1 && step > 1 ? step : number + step) {
        const char* const separator = numbers.empty() ? "" : ", ";
        numbers += fmt::format("{}\"{}\" {}", separator, number, number);
        times += fmt::format("{}\"{}\" {}", separator, timeLabel(waterfall, (number - 1) / perRow), number);
    }
    return fmt::format(
        "set yrange [{0}:0.5]\nset y2range [{0}:0.5]\nset ylabel 'sweep'\nset ytics ({1})\nset y2tics ({2})\n", end, numbers,
        times);
}

/// Of the channels of the radio, in front of the levels.
std::string edgesOf(const Chart& chart)
{
    std::string text;
    for (const Band& band : chart.bands) {
        for (const std::int64_t edge_kHz : {band.range_kHz.lowest, band.range_kHz.highest}) {
            text +=
                fmt::format("set arrow from first {0}, graph 0 to first {0}, graph 1 nohead front dashtype 3 linewidth 1.5 "
                            "linecolor rgb '#ffffff'\n",
                    inMegahertz(edge_kHz));
        }
    }
    return text;
}

} // namespace

std::string waterfallProgram(const ChannelResult& channel, const Chart& chart, const PlotOptions& options)
{
    Room room = pictureRoom(options);
    room.width -= colorScale_px;
    const Waterfall waterfall =
        gathered(channel, chart.range_kHz, static_cast<std::size_t>(room.width), static_cast<std::size_t>(room.height));
    Chart beside = besideOf(waterfall, chart);
    const std::string edges = edgesOf(beside);
    beside.bands.clear(); // the levels would hide them
    const Range scale = waterfallScale(chart);
    const double column = static_cast<double>(chart.range_kHz.span()) / (room.width - 1.0) / 1000.0; // MHz
    const double row = static_cast<double>(waterfall.rows.size() * waterfall.sweepsOfARow)
        / static_cast<double>(imageRows(waterfall)); // sweeps
    return frameProgram(beside, options) + edges + sweepAxes(waterfall, room) + palette
        + fmt::format("set cbrange [{}:{}]\nset cblabel 'level, dBm' offset 1,0\nunset grid\n", scale.lowest, scale.highest)
        + dataOf(waterfall)
        + fmt::format("plot $levels matrix using ({}+$1*{:.9f}):({}+$2*{}):3 with image notitle{}\n",
            inMegahertz(chart.range_kHz.lowest), column, 0.5 + row / 2.0, row, stateKey(beside));
}

} // namespace sdc

#include "apps/sdc/plot/Axes.h"
#include "apps/sdc/plot/Chart.h"
#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/plot/TextCanvas.h"
#include "apps/sdc/plot/TextFrame.h"
#include "apps/sdc/plot/Waterfall.h"
#include "apps/sdc/result/ScanResult.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace sdc {

namespace {

constexpr std::string_view signs = ".:-=+*%#@"; // from weak to strong; where nothing was read there is none

/// The lowest level that a sign stands for, hundredths of a dBm.
std::int64_t levelOf(std::size_t sign, const Range& scale_dBm)
{
    return scale_dBm.lowest * 100
        + scale_dBm.span() * 100 * static_cast<std::int64_t>(sign) / static_cast<std::int64_t>(signs.size());
}

char signOf(std::int32_t level, const Range& scale_dBm)
{
    std::size_t sign = signs.size() - 1;
    while (sign > 0 && level < levelOf(sign, scale_dBm)) {
        --sign;
    }
    return level == Waterfall::nothing ? ' ' : signs[sign];
}

std::vector<LegendItem> legendOf(const Range& scale_dBm)
{
    std::vector<LegendItem> items;
    for (std::size_t sign = 0; sign < signs.size(); ++sign) {
        const std::int64_t level = levelOf(sign, scale_dBm);
        items.push_back({signs[sign], TextCanvas::ownColor,
            fmt::format("{:.1f}{}", static_cast<double>(level) / 100.0, sign == 0 ? " dBm and up" : "")});
    }
    return items;
}

/// As many as do not meet: the first, and those that are so many rows apart.
void labelTimes(TextFrame& frame, const Waterfall& waterfall)
{
    constexpr std::size_t distance = 4;
    for (std::size_t row = 0; row < waterfall.rows.size(); row += distance) {
        frame.labelRow(frame.top() + 1 + static_cast<int>(row), timeLabel(waterfall, row));
    }
}

} // namespace

std::string waterfallText(const ChannelResult& channel, const Chart& chart, const PlotOptions& options)
{
    constexpr int fewestRows = 3;
    const Range scale = waterfallScale(chart);
    std::vector<std::string> legend = legendLines(legendOf(scale), options.width, options.isColored);
    const std::vector<std::string> states = stateLegend(chart, options.width, options.isColored);
    legend.insert(legend.end(), states.begin(), states.end());
    const int around = TextFrame::linesAround(chart, options.width) + static_cast<int>(legend.size()) + 2;
    if (options.height - around < TextFrame::fewRows && !chart.states.empty()) {
        return waterfallText(channel, withoutStates(chart), options);
    }
    const int most = std::max(options.height - around, fewestRows);
    const TextFrame::Sides sides{.left = 9, .right = options.width - 1};
    const Waterfall waterfall =
        gathered(channel, chart.range_kHz, static_cast<std::size_t>(sides.columns()), static_cast<std::size_t>(most));
    const Chart beside = besideOf(waterfall, chart);
    TextFrame frame(beside, sides, static_cast<int>(waterfall.rows.size()) + 2);
    frame.draw();
    for (std::size_t row = 0; row < waterfall.rows.size(); ++row) {
        const std::vector<std::int32_t>& levels = waterfall.rows[row].levels;
        for (std::size_t column = 0; column < levels.size(); ++column) {
            frame.canvas().put(frame.left() + 1 + static_cast<int>(column), frame.top() + 1 + static_cast<int>(row),
                signOf(levels[column], scale));
        }
    }
    labelTimes(frame, waterfall);
    return frame.text(legend, options.isColored);
}

} // namespace sdc

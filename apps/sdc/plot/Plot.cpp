#include "apps/sdc/plot/Plot.h"

#include "apps/sdc/plot/Chart.h"
#include "apps/sdc/plot/ChartProgram.h"
#include "apps/sdc/plot/ChartText.h"
#include "apps/sdc/plot/FrameProgram.h"
#include "apps/sdc/plot/Gnuplot.h"
#include "apps/sdc/plot/Waterfall.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <utility>
#include <vector>

namespace sdc {

namespace {

constexpr int leastTextHeight = 15;
constexpr int mostTextHeight = 500;

PlotOptions drawable(PlotOptions options)
{
    const bool isText = options.format == PlotFormat::text;
    const auto size = [](int wanted, int usual, int least, int most) {
        return std::clamp(wanted == 0 ? usual : wanted, least, most);
    };
    options.width = isText ? size(options.width, 80, 40, 1000) : size(options.width, 1000, 300, 10000);
    options.terminalLines = options.height == 0 ? options.terminalLines : 0;
    options.height =
        isText ? size(options.height, 24, leastTextHeight, mostTextHeight) : size(options.height, 560, 200, 10000);
    return options;
}

/// One list for each radio channel that any of the results has.
std::vector<std::vector<Member>> byChannel(const std::vector<Plotted>& results)
{
    std::vector<std::vector<Member>> all;
    for (const auto& [name, result] : results) {
        for (const ChannelResult& channel : result.channels) {
            const auto isOfIt = [&](const std::vector<Member>& members) {
                return members.front().channel.channel == channel.channel;
            };
            const auto found = std::ranges::find_if(all, isOfIt);
            std::vector<Member>& members = found == all.end() ? all.emplace_back() : *found;
            members.push_back({name, result, channel});
        }
    }
    return all;
}

/// A chart, and the channel of the first result in it.
struct Drawn {
    Chart chart;
    const ChannelResult& channel;
};

std::vector<Drawn> plotsOf(const std::vector<Plotted>& results, const PlotOptions& options)
{
    std::vector<Drawn> plots;
    for (const std::vector<Member>& members : byChannel(results)) {
        Chart chart = chartOf(members, options);
        for (const auto& [name, result] : results) {
            if (std::ranges::find(members, &result, [](const Member& one) { return &one.result; }) == members.end()) {
                chart.notes.push_back(fmt::format("channel {} is not in {}", members.front().channel.channel, name));
            }
        }
        plots.push_back({std::move(chart), members.front().channel});
    }
    return plots;
}

using DrawOne = std::string (*)(const Drawn& drawn, const PlotOptions& options);

/// How one kind of plot is drawn.
struct Kind {
    DrawOne program;
    DrawOne text;
    int mostNotes; ///< lines that text may have below in addition to the notes of the chart
};

constexpr Kind traces{[](const Drawn& drawn, const PlotOptions& options) { return chartProgram(drawn.chart, options); },
    [](const Drawn& drawn, const PlotOptions& options) { return chartText(drawn.chart, options); }, 0};
constexpr Kind waterfalls{
    [](const Drawn& drawn, const PlotOptions& options) { return waterfallProgram(drawn.channel, drawn.chart, options); },
    [](const Drawn& drawn, const PlotOptions& options) { return waterfallText(drawn.channel, drawn.chart, options); }, 1};

std::string programOf(const std::vector<Drawn>& plots, const PlotOptions& options, const Kind& kind)
{
    std::size_t lines = 0;
    for (const Drawn& plot : plots) {
        lines = std::max(lines, linesBelow(plot.chart, options));
    }
    std::string program = programHead(options, plots.size(), lines);
    for (const Drawn& plot : plots) {
        program += kind.program(plot, options);
    }
    return program + programTail(plots.size());
}

/// With a height that leaves room in the terminal for the other plots, what is said below, and the prompt.
PlotOptions fitted(PlotOptions options, const Drawn& drawn, std::size_t plots, const Kind& kind)
{
    const int between = plots > 1 ? 1 : 0;
    const auto width = static_cast<std::size_t>(options.width);
    const auto below = static_cast<int>(support::wrapped(drawn.chart.notes, width).size()) + kind.mostNotes;
    const int each = (options.terminalLines - 1) / static_cast<int>(plots) - between;
    options.height = std::clamp(each - below, leastTextHeight, mostTextHeight);
    return options;
}

std::string textOf(const std::vector<Drawn>& plots, const PlotOptions& options, const Kind& kind)
{
    std::string text;
    for (const Drawn& plot : plots) {
        text += (text.empty() ? "" : "\n")
            + kind.text(plot, options.terminalLines == 0 ? options : fitted(options, plot, plots.size(), kind));
    }
    return text;
}

void write(std::ostream& stream, const std::vector<Plotted>& results, const PlotOptions& wanted, const Kind& kind)
{
    const PlotOptions options = drawable(wanted);
    const std::vector<Drawn> plots = plotsOf(results, options);
    stream << (options.format == PlotFormat::text ? textOf(plots, options, kind)
                                                  : runGnuplot(programOf(plots, options, kind)));
}

} // namespace

std::optional<PlotFormat> plotFormat(const std::string& file)
{
    const std::string ending = std::filesystem::path(file).extension();
    if (file == "-" || ending == ".txt") {
        return PlotFormat::text;
    }
    if (ending == ".svg" || ending == ".png") {
        return ending == ".svg" ? PlotFormat::svg : PlotFormat::png;
    }
    return std::nullopt;
}

std::string plotNameError(const std::string& file)
{
    return plotFormat(file)
        ? ""
        : fmt::format("'{}' tells no kind of picture: let it end in .svg, .png or .txt", support::shown(file));
}

std::string plotObstacle(const std::string& file)
{
    return plotFormat(file) == PlotFormat::text ? "" : gnuplotObstacle();
}

std::string plotProgram(const ScanResult& result, const PlotOptions& options)
{
    return programOf(plotsOf({{"", result}}, options), drawable(options), traces);
}

void writePlot(std::ostream& stream, const ScanResult& result, const PlotOptions& options)
{
    write(stream, {{"", result}}, options, traces);
}

void writeOverlay(std::ostream& stream, const std::vector<Plotted>& results, const PlotOptions& options)
{
    write(stream, results, options, traces);
}

void writeWaterfall(std::ostream& stream, const ScanResult& result, const PlotOptions& options)
{
    write(stream, {{"", result}}, options, waterfalls);
}

} // namespace sdc

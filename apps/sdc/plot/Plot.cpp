#include "apps/sdc/plot/Plot.h"

#include "apps/sdc/plot/Chart.h"
#include "apps/sdc/plot/ChartProgram.h"
#include "apps/sdc/plot/ChartText.h"
#include "apps/sdc/plot/Gnuplot.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <vector>

namespace sdc {

namespace {

PlotOptions drawable(PlotOptions options)
{
    const bool isText = options.format == PlotFormat::text;
    const auto size = [](int wanted, int usual, int least, int most) {
        return std::clamp(wanted == 0 ? usual : wanted, least, most);
    };
    options.width = isText ? size(options.width, 80, 40, 1000) : size(options.width, 1000, 300, 10000);
    options.height = isText ? size(options.height, 24, 15, 500) : size(options.height, 560, 200, 10000);
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

std::vector<Chart> chartsOf(const std::vector<Plotted>& results, const PlotOptions& options)
{
    std::vector<Chart> charts;
    for (const std::vector<Member>& members : byChannel(results)) {
        charts.push_back(chartOf(members, options));
        for (const auto& [name, result] : results) {
            if (std::ranges::find(members, &result, [](const Member& one) { return &one.result; }) == members.end()) {
                charts.back().notes.push_back(fmt::format("channel {} is not in {}", members.front().channel.channel, name));
            }
        }
    }
    return charts;
}

std::string programOf(const std::vector<Chart>& charts, const PlotOptions& options)
{
    std::size_t notes = 0;
    for (const Chart& chart : charts) {
        notes = std::max(notes, pictureNotes(chart, options).size());
    }
    std::string program = programHead(options, charts.size(), notes);
    for (const Chart& chart : charts) {
        program += chartProgram(chart, options);
    }
    return program + programTail(charts.size());
}

std::string textOf(const std::vector<Chart>& charts, const PlotOptions& options)
{
    std::string text;
    for (const Chart& chart : charts) {
        text += (text.empty() ? "" : "\n") + chartText(chart, options);
    }
    return text;
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
    return programOf(chartsOf({{"", result}}, options), drawable(options));
}

void writePlot(std::ostream& stream, const ScanResult& result, const PlotOptions& options)
{
    writeOverlay(stream, {{"", result}}, options);
}

void writeOverlay(std::ostream& stream, const std::vector<Plotted>& results, const PlotOptions& wanted)
{
    const PlotOptions options = drawable(wanted);
    const std::vector<Chart> charts = chartsOf(results, options);
    stream << (options.format == PlotFormat::text ? textOf(charts, options) : runGnuplot(programOf(charts, options)));
}

} // namespace sdc

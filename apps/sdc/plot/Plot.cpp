#include "apps/sdc/plot/Plot.h"

#include "apps/sdc/plot/ChannelPlot.h"
#include "apps/sdc/plot/Gnuplot.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>

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

std::string terminal(const PlotOptions& options, std::size_t plots)
{
    constexpr std::int64_t mostPixels = 30000; // what pictures can have
    const bool isText = options.format == PlotFormat::text;
    const std::int64_t height =
        isText ? options.height : std::min(mostPixels, options.height * static_cast<std::int64_t>(plots));
    const std::string size = fmt::format("size {},{} noenhanced", options.width, height);
    switch (options.format) {
    case PlotFormat::svg: return fmt::format("set terminal svg {} font 'sans-serif,13' background '#ffffff'\n", size);
    case PlotFormat::png: return fmt::format("set terminal pngcairo {} font 'sans,10' background '#ffffff'\n", size);
    case PlotFormat::text: break;
    }
    return fmt::format("set terminal dumb {} nofeed {}\n", size, options.isColored ? "ansi" : "mono");
}

constexpr const char* settings = R"(set encoding utf8
set samples 2
set border 15 linecolor rgb '#333333'
set tics nomirror out
set key below horizontal Left reverse height 0.4
)";

/// In a text the grid is dotted, or it would look like a trace.
const char* grid(PlotFormat format)
{
    return format == PlotFormat::text ? "set grid ytics linetype 0\n"
                                      : "set grid ytics linetype 1 linecolor rgb '#d8d8d8' linewidth 1\n";
}

/// Without page feeds, blanks at the ends of lines, and empty lines at the begin.
std::string trimmed(std::string text)
{
    std::ranges::replace(text, '\f', ' ');
    std::string trimmed;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::size_t last = text.find_last_not_of(' ', end - 1);
        const bool isEmpty = end == begin || last == std::string::npos || last < begin;
        if (!isEmpty || !trimmed.empty()) {
            trimmed += (isEmpty ? "" : text.substr(begin, last + 1 - begin)) + "\n";
        }
        begin = end + 1;
    }
    return trimmed;
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

std::string plotProgram(const ScanResult& result, const PlotOptions& wanted)
{
    const PlotOptions options = drawable(wanted);
    const std::size_t plots = result.channels.size();
    const bool isOnePicture = options.format != PlotFormat::text && plots > 1;
    std::string program = terminal(options, plots) + settings + grid(options.format);
    program += isOnePicture ? fmt::format("set multiplot layout {},1\n", plots) : "";
    for (const ChannelResult& channel : result.channels) {
        program += ChannelPlot(result, channel, options).program();
    }
    return program + (isOnePicture ? "unset multiplot\n" : "");
}

void writePlot(std::ostream& stream, const ScanResult& result, const PlotOptions& options)
{
    const std::string picture = runGnuplot(plotProgram(result, options));
    stream << (options.format == PlotFormat::text ? trimmed(picture) : picture);
}

} // namespace sdc

#include "apps/sdc/commands/Commands.h"
#include "apps/sdc/formats/OutputFile.h"
#include "apps/sdc/options/Options.h"
#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/result/ResultFile.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/tty/Screen.h"

#include <unistd.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace sdc {

namespace {

struct PlotCommandOptions {
    std::string result;                  ///< file that `sdc scan --json` wrote; "-": standard input
    std::string output{"-"};             ///< "-": standard output
    std::optional<PlotFormat> format;    ///< otherwise as the output's name ends; text on standard output
    std::optional<std::uint32_t> width;  ///< pixels; columns for text
    std::optional<std::uint32_t> height; ///< pixels; rows for text
    ColorMode color{};                   ///< of text on standard output
};

std::optional<std::uint32_t> parseSize(std::string_view text)
{
    const auto size = parseCount(text);
    return size && *size >= 10 && *size <= 10000 ? size : std::nullopt;
}

std::optional<PlotFormat> parsePlotFormat(std::string_view text)
{
    if (text == "svg" || text == "png") {
        return text == "svg" ? PlotFormat::svg : PlotFormat::png;
    }
    return text == "text" ? std::optional(PlotFormat::text) : std::nullopt;
}

/// Without a size of their own, pictures as text fill the width of the terminal.
PlotOptions plotOptions(const PlotCommandOptions& options, PlotFormat format)
{
    PlotOptions plotting;
    plotting.format = format;
    const bool isSeen = options.output == "-" && format == PlotFormat::text;
    if (isSeen) {
        plotting.width = terminalWidth(STDOUT_FILENO);
        plotting.isColored = usesColor(options.color, STDOUT_FILENO);
    }
    plotting.width = static_cast<int>(options.width.value_or(static_cast<std::uint32_t>(plotting.width)));
    plotting.height = static_cast<int>(options.height.value_or(static_cast<std::uint32_t>(plotting.height)));
    return plotting;
}

ExitStatus plot(const PlotCommandOptions& options)
{
    const std::optional<PlotFormat> format = options.format ? options.format : plotFormat(options.output);
    if (!format) {
        throw UsageError("--output: " + plotNameError(options.output) + ", or write --format");
    }
    const ScanResult result = readResult(options.result);
    const PlotOptions plotting = plotOptions(options, *format);
    if (options.output == "-") {
        return toStandardOutput([&](std::ostream& output) {
            writePlot(output, result, plotting);
            return EXIT_COMPLETE;
        });
    }
    writeFile(options.output, [&](std::ostream& output) { writePlot(output, result, plotting); });
    return EXIT_COMPLETE;
}

} // namespace

void addPlot(CLI::App& app, Command& command)
{
    const auto options = std::make_shared<PlotCommandOptions>();
    CLI::App& plotting = *app.add_subcommand("plot", "Draw the samples that a scan wrote as JSON");
    offer(plotting.add_option("RESULT", options->result, "What 'sdc scan --json' wrote; - is standard input")
              ->required()
              ->type_name(""),
        {anyFile});
    plotting.add_option("--output", options->output, "Picture: .svg, .png or .txt; -: standard output (-)")
        ->check(fileName())
        ->type_name("FILE");
    const Parsing<PlotFormat> format{"KIND", "kind of picture", "svg, png or text", parsePlotFormat, {"svg", "png", "text"}};
    addParsed(plotting, "--format", options->format, format,
        "svg, png or text; otherwise by the name's ending,\ntext on standard output");
    const Parsing<std::uint32_t> size{"N", "size", "a number from 10 to 10000", parseSize};
    addParsed(plotting, "--width", options->width, size, "Pixels; columns of text");
    addParsed(plotting, "--height", options->height, size, "Pixels; rows of text");
    addColor(plotting, options->color);
    plotting.footer("Examples:\n"
                    "  sdc plot scan.json\n"
                    "  sdc plot scan.json --output scan.svg --width 1600 --height 600\n");
    plotting.callback([options, &command] { command = [options] { return plot(*options); }; });
}

} // namespace sdc

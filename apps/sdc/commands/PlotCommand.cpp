#include "apps/sdc/commands/Commands.h"
#include "apps/sdc/formats/OutputFile.h"
#include "apps/sdc/options/Options.h"
#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/result/ResultFile.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/tty/Screen.h"
#include "support/Text.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace sdc {

namespace {

struct PlotCommandOptions {
    std::vector<std::string> results;    ///< files that `sdc scan --json` wrote; "-": standard input
    std::string output{"-"};             ///< "-": standard output
    std::optional<PlotFormat> format;    ///< otherwise as the output's name ends; text on standard output
    std::optional<std::uint32_t> width;  ///< pixels; columns for text
    std::optional<std::uint32_t> height; ///< pixels; rows for text
    ColorMode color{};                   ///< of text on standard output
    bool isWaterfall = false;
    TraceKind trace = usualTrace;
    bool isTraceChosen = false;
    std::vector<std::uint32_t> marks_kHz;
    std::optional<std::int32_t> limit; ///< hundredths of a dBm
    std::optional<std::int64_t> duplex_kHz;
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

/// A decimal of any sign as the number of its smallest units, which must be whole.
std::optional<std::int64_t> parseScaled(std::string_view text, double unitsPerOne, double most)
{
    constexpr double tolerance = 1e-4; // of a unit: more than a decimal is off as a binary fraction
    double number = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    const double units = number * unitsPerOne;
    const bool isNumber = error == std::errc{} && end == text.data() + text.size() && std::abs(number) <= most;
    return isNumber && std::abs(units - std::round(units)) < tolerance ? std::optional(std::llround(units)) : std::nullopt;
}

std::optional<std::int64_t> parseMegahertz(std::string_view text)
{
    constexpr double most_MHz = std::numeric_limits<std::uint32_t>::max() / 1000.0;
    return parseScaled(text, 1000.0, most_MHz);
}

std::optional<std::uint32_t> parseFrequency(std::string_view text)
{
    const auto frequency_kHz = parseMegahertz(text);
    return frequency_kHz && *frequency_kHz >= 0 ? std::optional(static_cast<std::uint32_t>(*frequency_kHz)) : std::nullopt;
}

std::optional<std::int32_t> parseLimit(std::string_view text)
{
    constexpr double most_dBm = 1000.0;
    const auto level = parseScaled(text, 100.0, most_dBm);
    return level ? std::optional(static_cast<std::int32_t>(*level)) : std::nullopt;
}

/// Without a size of their own, pictures as text fill the terminal.
PlotOptions plotOptions(const PlotCommandOptions& options, PlotFormat format)
{
    PlotOptions plotting;
    plotting.format = format;
    const bool isSeen = options.output == "-" && format == PlotFormat::text;
    if (isSeen) {
        plotting.width = terminalWidth(STDOUT_FILENO);
        plotting.terminalLines = isTerminal(STDOUT_FILENO) ? terminalHeight(STDOUT_FILENO) : 0;
        plotting.isColored = usesColor(options.color, STDOUT_FILENO);
    }
    plotting.width = static_cast<int>(options.width.value_or(static_cast<std::uint32_t>(plotting.width)));
    plotting.height = static_cast<int>(options.height.value_or(static_cast<std::uint32_t>(plotting.height)));
    plotting.trace = options.trace;
    plotting.marks_kHz = options.marks_kHz;
    plotting.limit = options.limit;
    plotting.duplex_kHz = options.duplex_kHz;
    return plotting;
}

void checkResults(const PlotCommandOptions& options)
{
    const std::size_t count = options.results.size();
    if (count > mostPlotted) {
        throw UsageError(fmt::format("{} results in one plot cannot be told apart; write at most {}", count, mostPlotted));
    }
    if (options.isWaterfall && count > 1) {
        throw UsageError("--waterfall draws one result; write one");
    }
    if (options.isWaterfall && (options.limit || options.isTraceChosen)) {
        throw UsageError(options.limit ? "--waterfall has no line for --limit; write one of them"
                                       : "--waterfall shows each sweep, and --trace chooses of several; write one of them");
    }
    if (std::ranges::count(options.results, "-") > 1) {
        throw UsageError("standard input holds one result; write - once");
    }
}

/// The picture is drawn before its file is begun.
std::string drawn(const PlotCommandOptions& options, const PlotOptions& plotting)
{
    std::vector<ScanResult> results;
    for (const std::string& file : options.results) {
        results.push_back(readResult(file));
    }
    std::vector<Plotted> named;
    for (std::size_t index = 0; index < results.size(); ++index) {
        constexpr std::size_t most = 40;
        const std::string& file = options.results[index];
        named.push_back({file == "-" ? "standard input" : support::shown(file, most), results[index]});
    }
    std::ostringstream picture;
    if (options.isWaterfall) {
        writeWaterfall(picture, results.front(), plotting);
    } else {
        writeOverlay(picture, named, plotting);
    }
    return picture.str();
}

ExitStatus plot(const PlotCommandOptions& options)
{
    const std::optional<PlotFormat> format = options.format ? options.format : plotFormat(options.output);
    if (!format) {
        throw UsageError("--output: " + plotNameError(options.output) + ", or write --format");
    }
    checkResults(options);
    const std::string picture = drawn(options, plotOptions(options, *format));
    if (options.output == "-") {
        return toStandardOutput([&](std::ostream& output) {
            output << picture;
            return EXIT_COMPLETE;
        });
    }
    writeFile(options.output, [&](std::ostream& output) { output << picture; });
    return EXIT_COMPLETE;
}

void addMarks(CLI::App& command, std::vector<std::uint32_t>& marks_kHz)
{
    constexpr const char* name = "--mark";
    const auto store = [&marks_kHz](const std::vector<std::string>& texts) {
        for (const std::string& text : texts) {
            const auto frequency_kHz = parseFrequency(text);
            if (!frequency_kHz) {
                throw CLI::ValidationError(
                    name, invalid("frequency", text, "MHz with at most three decimals, such as 13088"));
            }
            marks_kHz.push_back(*frequency_kHz);
        }
    };
    command
        .add_option_function<std::vector<std::string>>(
            name, store, "Marks a frequency and tells its level; of several,\nthe difference, too")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->type_name("MHZ");
}

} // namespace

void addPlot(CLI::App& app, Command& command)
{
    const auto options = std::make_shared<PlotCommandOptions>();
    CLI::App& plotting = *app.add_subcommand("plot", "Draw the samples that a scan wrote as JSON");
    offer(plotting
              .add_option("RESULT", options->results,
                  "What 'sdc scan --json' wrote; - is standard input;\nseveral are drawn over one another")
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
    addFlag(
        plotting, "--waterfall", options->isWaterfall, "The sweeps one below the other, a colour or sign for\neach level");
    const CLI::Option* const trace = addTrace(plotting, options->trace);
    addMarks(plotting, options->marks_kHz);
    const Parsing<std::int32_t> limit{"DBM", "level", "a number of dBm with at most two decimals, such as -85", parseLimit};
    addParsed(plotting, "--limit", options->limit, limit, "Draws a line at a level, and tells what is above it");
    const Parsing<std::int64_t> duplex{
        "MHZ", "duplex distance", "a number of MHz with at most three decimals, such as 1010 or -1010", parseMegahertz};
    addParsed(plotting, "--duplex", options->duplex_kHz, duplex,
        "From the receive to the transmit frequency, below 0\nwhere that is lower: draws the channel it transmits in");
    addColor(plotting, options->color);
    plotting.footer("Examples:\n"
                    "  sdc plot scan.json\n"
                    "  sdc plot scan.json --output scan.svg --width 1600 --height 600\n"
                    "  sdc plot scan.json --waterfall --output scan.png\n"
                    "  sdc plot yesterday.json today.json\n"
                    "  sdc plot scan.json --mark 19177.5 --mark 19205 --limit -85\n");
    plotting.callback([options, trace, &command] {
        options->isTraceChosen = trace->count() > 0;
        command = [options] { return plot(*options); };
    });
}

} // namespace sdc

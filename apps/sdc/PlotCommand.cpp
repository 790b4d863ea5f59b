#include "apps/sdc/PlotCommand.h"

#include "apps/sdc/CommandLine.h"
#include "apps/sdc/PlotName.h"
#include "apps/sdc/ResultFile.h"
#include "apps/sdc/StandardOutput.h"
#include "apps/sdc/TerminalDevice.h"
#include "apps/sdc/results/Outputs.h"

#include <unistd.h>

namespace sdc {

namespace {

/// Without a size of their own, pictures as text fill the width of the terminal.
PlotOptions plotOptions(const PlotCommandOptions& options, PlotFormat format)
{
    PlotOptions plotting;
    plotting.format = format;
    const bool isSeen = options.output == "-" && format == PlotFormat::text;
    if (isSeen) {
        plotting.width = terminalWidth(STDOUT_FILENO);
        plotting.isColored = usesColor(ColorMode::automatic, STDOUT_FILENO);
    }
    plotting.width = static_cast<int>(options.width.value_or(static_cast<std::uint32_t>(plotting.width)));
    plotting.height = static_cast<int>(options.height.value_or(static_cast<std::uint32_t>(plotting.height)));
    return plotting;
}

} // namespace

ExitStatus plot(const PlotCommandOptions& options)
{
    const std::optional<PlotFormat> format = options.format ? options.format : plotFormat(options.output);
    if (!format) {
        throw UsageError("--output: " + plotNameComplaint(options.output) + ", or write --format");
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

} // namespace sdc

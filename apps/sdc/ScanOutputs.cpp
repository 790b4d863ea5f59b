#include "apps/sdc/ScanOutputs.h"

#include "apps/sdc/PlotName.h"
#include "apps/sdc/options/CommandLine.h"
#include "apps/sdc/results/Outputs.h"
#include "apps/sdc/results/Plot.h"
#include "apps/sdc/results/ResultJson.h"
#include "support/Text.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <exception>
#include <filesystem>
#include <iterator>
#include <map>
#include <ostream>

namespace sdc {

namespace {

constexpr const char* standardOutput = "-";

void writePicture(std::ostream& stream, const ScanResult& result, const Output& output, ColorMode color)
{
    PlotOptions options;
    options.format = plotFormat(output.file).value();
    if (output.file == standardOutput) {
        options.width = terminalWidth(STDOUT_FILENO);
        options.isColored = usesColor(color, STDOUT_FILENO);
    }
    writePlot(stream, result, options);
}

/// On a terminal the table is as wide as that, elsewhere as usual.
void writePeoplesTable(std::ostream& stream, const ScanResult& result, const Output& output, const OutputOptions& options)
{
    constexpr int usualWidth = 80;
    const bool isSeen = output.file == standardOutput;
    writeTable(stream, result,
        {.rows = options.rows,
            .width = isSeen && isTerminal(STDOUT_FILENO) ? terminalWidth(STDOUT_FILENO) : usualWidth,
            .isColored = isSeen && usesColor(options.color, STDOUT_FILENO)});
}

void write(std::ostream& stream, const ScanResult& result, const Output& output, const OutputOptions& options)
{
    switch (output.format) {
    case OutputFormat::table: writePeoplesTable(stream, result, output, options); break;
    case OutputFormat::csv: writeCsv(stream, result); break;
    case OutputFormat::json: writeJson(stream, result); break;
    case OutputFormat::sweep: writeSweep(stream, result); break;
    case OutputFormat::plot: writePicture(stream, result, output, options.color); break;
    }
}

/// Returns what went wrong.
std::string failureOf(const ScanResult& result, const Output& output, const OutputOptions& options)
{
    try {
        writeFile(output.file, [&](std::ostream& stream) { write(stream, result, output, options); });
        return "";
    } catch (const std::exception& exception) {
        return exception.what();
    }
}

} // namespace

std::string_view toString(OutputFormat format)
{
    constexpr std::array<std::string_view, 5> names{"table", "csv", "json", "sweep", "plot"};
    return names.at(static_cast<std::size_t>(format));
}

bool usesStandardOutput(const std::vector<Output>& outputs)
{
    return std::ranges::find(outputs, standardOutput, &Output::file) != outputs.end();
}

namespace {

/// Two outputs into one file would leave the last of them. A device takes as many as come.
void refuseTwice(const std::vector<Output>& outputs)
{
    std::map<std::filesystem::path, OutputFormat> files;
    for (const Output& output : outputs) {
        const auto file = regularFile(output.file);
        if (file && !files.try_emplace(*file, output.format).second) {
            throw UsageError("--" + std::string(toString(files.at(*file))) + " and --" + std::string(toString(output.format))
                + " both write to " + support::shown(output.file) + "; give each a file of its own");
        }
    }
}

} // namespace

void checkOutputs(const std::vector<Output>& outputs)
{
    refuseTwice(outputs);
    for (const Output& output : outputs) {
        checkWritable(output.file);
    }
}

std::vector<std::string> writeOutputs(const ScanResult& result, const OutputOptions& options)
{
    std::vector<Output> outputs = options.outputs;
    if (!usesStandardOutput(outputs)) {
        outputs.push_back({OutputFormat::table, standardOutput});
    }
    // Standard output, at most one of them, comes last.
    const auto standard = std::ranges::find(outputs, standardOutput, &Output::file);
    std::rotate(standard, std::next(standard), outputs.end());
    std::vector<std::string> failures;
    for (const Output& output : outputs) {
        const std::string failure = failureOf(result, output, options);
        if (!failure.empty()) {
            const bool isExpected = output.file == standardOutput && isReaderGone(STDOUT_FILENO);
            failures.push_back(isExpected ? "" : failure);
        }
    }
    return failures;
}

} // namespace sdc

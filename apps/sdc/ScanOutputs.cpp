#include "apps/sdc/ScanOutputs.h"

#include "apps/sdc/CommandLine.h"
#include "apps/sdc/PlotName.h"
#include "apps/sdc/results/Outputs.h"
#include "apps/sdc/results/Plot.h"
#include "apps/sdc/results/ResultJson.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <exception>
#include <filesystem>
#include <iterator>
#include <map>
#include <ostream>
#include <stdexcept>
#include <system_error>

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

/// Why a file cannot be written, as far as that can be known beforehand.
std::string obstacle(const std::filesystem::path& file)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(file, error);
    if (std::filesystem::is_directory(status)) {
        return "it is a folder";
    }
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
    const bool isWritten = std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
    const int result = isWritten ? access(file.c_str(), W_OK) : access(folder.c_str(), W_OK | X_OK);
    return result == 0 ? "" : std::generic_category().message(errno);
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
        std::error_code error;
        const std::filesystem::path file = std::filesystem::weakly_canonical(std::filesystem::absolute(output.file), error);
        const std::filesystem::file_status status = std::filesystem::status(file, error);
        const bool isReplaced = !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
        const auto [first, isNew] = files.try_emplace(file, output.format);
        if (output.file != standardOutput && isReplaced && !isNew) {
            throw UsageError("--" + std::string(toString(first->second)) + " and --" + std::string(toString(output.format))
                + " both write to " + output.file + "; give each a file of its own");
        }
    }
}

} // namespace

void checkOutputs(const std::vector<Output>& outputs)
{
    refuseTwice(outputs);
    for (const Output& output : outputs) {
        const std::string reason = output.file == standardOutput ? "" : obstacle(output.file);
        if (!reason.empty()) {
            throw std::runtime_error("cannot write to " + output.file + ": " + reason);
        }
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

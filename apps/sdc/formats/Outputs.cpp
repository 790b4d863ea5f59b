#include "apps/sdc/formats/Outputs.h"

#include "apps/sdc/formats/OutputFile.h"
#include "apps/sdc/formats/Target.h"
#include "apps/sdc/options/CommandLine.h"
#include "apps/sdc/result/ScanResult.h"
#include "support/Text.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iterator>
#include <map>
#include <ostream>
#include <stdexcept>

namespace sdc {

namespace {

constexpr const char* standardOutput = "-";

WriteOptions writeOptions(const Output& output, const OutputOptions& options)
{
    const bool isStandard = output.file == standardOutput;
    return {.file = output.file,
        .rows = options.rows,
        .width = isStandard && isTerminal(STDOUT_FILENO) ? terminalWidth(STDOUT_FILENO) : 0,
        .isColored = isStandard && usesColor(options.color, STDOUT_FILENO),
        .trace = options.trace};
}

/// Returns what went wrong.
std::string failureOf(const ScanResult& result, const Output& output, const OutputOptions& options)
{
    try {
        writeFile(
            output.file, [&](std::ostream& stream) { output.format->write(stream, result, writeOptions(output, options)); });
        return "";
    } catch (const std::exception& exception) {
        return exception.what();
    }
}

UsageError sharedFile(const std::string& one, const std::string& other, const std::string& file)
{
    return UsageError(
        fmt::format("{} and {} both write to {}; give each a file of its own", one, other, support::shown(file)));
}

/// Two outputs into one file would leave the last of them, or a mixture. What the shell has opened as standard output may go
/// by the name of an output, too.
void checkEachHasItsOwn(const std::vector<Output>& outputs)
{
    std::map<FileIdentity, std::string> files;
    const auto shells = usesStandardOutput(outputs) ? std::nullopt : Target(standardOutput).identity();
    for (const Output& output : outputs) {
        const Target target(output.file);
        const auto file = target.identity();
        const std::string name = std::string("--") + output.format->name;
        if (file && !files.try_emplace(*file, name).second) {
            throw sharedFile(files.at(*file), name, output.file);
        }
        if (file && file == shells && target.isFile()) {
            throw sharedFile(name, "standard output", output.file);
        }
    }
}

} // namespace

bool usesStandardOutput(const std::vector<Output>& outputs)
{
    return std::ranges::find(outputs, standardOutput, &Output::file) != outputs.end();
}

void checkOutputs(const std::vector<Output>& outputs)
{
    checkEachHasItsOwn(outputs);
    for (const auto& [format, file] : outputs) {
        Target(file).check();
        const std::string obstacle = format->obstacle == nullptr ? "" : format->obstacle(file);
        if (!obstacle.empty()) {
            throw std::runtime_error(fmt::format("--{}: {}", format->name, obstacle));
        }
    }
}

std::vector<std::string> writeOutputs(const ScanResult& result, const OutputOptions& options)
{
    std::vector<Output> outputs = options.outputs;
    if (!usesStandardOutput(outputs)) {
        outputs.push_back({&formats[0], standardOutput});
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

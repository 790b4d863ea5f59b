#include "apps/sdc/commands/Commands.h"
#include "apps/sdc/compare/Comparison.h"
#include "apps/sdc/compare/ComparisonForm.h"
#include "apps/sdc/compare/ComparisonText.h"
#include "apps/sdc/formats/OutputFile.h"
#include "apps/sdc/options/CommandLine.h"
#include "apps/sdc/options/Options.h"
#include "apps/sdc/options/UsageText.h"
#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/result/ResultFile.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/tty/Screen.h"
#include "support/Text.h"

#include <cstddef>
#include <exception>
#include <iostream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace sdc {

namespace {

struct CompareCommandOptions {
    std::string before; ///< file that `sdc scan --json` wrote
    std::string after;
    CompareOptions comparing;
    bool isJson = false;
    std::string plot; ///< file of a picture of both; none when empty
};

std::string nameOf(const std::string& file)
{
    return file == "-" ? "standard input" : file;
}

Comparison comparisonOf(const CompareCommandOptions& options, const ScanResult& before, const ScanResult& after)
{
    try {
        return compare({nameOf(options.before), before}, {nameOf(options.after), after}, options.comparing);
    } catch (const ResultError& cannot) {
        throw ResultError(
            support::shown(nameOf(options.before)) + " and " + support::shown(nameOf(options.after)) + ": " + cannot.what());
    }
}

void plotBoth(const CompareCommandOptions& options, const ScanResult& before, const ScanResult& after)
{
    constexpr std::size_t longestName = 40;
    const std::vector<Plotted> both{{support::shown(nameOf(options.before), longestName), before},
        {support::shown(nameOf(options.after), longestName), after}};
    writeFile(options.plot, [&](std::ostream& output) {
        writeOverlay(output, both, {.format = plotFormat(options.plot).value(), .trace = options.comparing.trace});
    });
}

/// Tells what has changed between two results; that nothing has, too.
/// @return whether it could be told, and anything has
ExitStatus compare(const CompareCommandOptions& options)
{
    if (options.before == "-" && options.after == "-") {
        throw UsageError("BEFORE and AFTER: both are standard input; expected a file for one of them");
    }
    const ScanResult before = readResult(options.before);
    const ScanResult after = readResult(options.after);
    const Comparison comparison = comparisonOf(options, before, after);
    if (!options.plot.empty()) {
        plotBoth(options, before, after);
    }
    const ExitStatus written = toStandardOutput([&](std::ostream& output) {
        (options.isJson ? writeComparisonJson : writeComparison)(output, comparison);
        return EXIT_COMPLETE;
    });
    if (written != EXIT_COMPLETE) {
        return EXIT_TROUBLE;
    }
    return comparison.isDifferent() ? EXIT_DIFFERENT : EXIT_SAME;
}

/// Whatever goes wrong is not to be taken for a difference.
ExitStatus compareOrTellTrouble(const CompareCommandOptions& options)
{
    try {
        return compare(options);
    } catch (const std::exception& trouble) {
        std::cerr << support::prefixed(trouble.what(), "sdc: ") << std::flush;
        return EXIT_TROUBLE;
    }
}

/// Standard output tells what has changed.
CLI::Validator pictureName()
{
    const auto check = [](const std::string& file) {
        return file == "-" ? "standard output tells what has changed; write the name of a file" : plotNameError(file);
    };
    return CLI::Validator(check, "");
}

void addResult(CLI::App& command, const std::string& name, std::string& file, const std::string& help)
{
    offer(command.add_option(name, file, help)->required()->type_name(""), {anyFile});
}

} // namespace

void addCompare(CLI::App& app, Command& command)
{
    const auto options = std::make_shared<CompareCommandOptions>();
    CLI::App& comparing = *app.add_subcommand("compare", "Tell what has changed between two scans");
    addResult(comparing, "BEFORE", options->before, "What 'sdc scan --json' wrote first");
    addResult(comparing, "AFTER", options->after, "What it wrote later; - for either is standard input");
    addTrace(comparing, options->comparing.trace);
    const Parsing<double> level{"DB", "level", "0 to 1000, such as 3", parseLevel};
    addParsed(comparing, "--threshold", options->comparing.threshold_dB, level,
        "Tell differences of more than so many dB\n(what the scatter of the readings does not explain)");
    addFlag(comparing, "--json", options->isJson, "JSON instead of a text");
    comparing.add_option("--plot", options->plot, "Picture of both: .svg, .png or .txt")
        ->check(fileName())
        ->check(pictureName())
        ->type_name("FILE");
    comparing.footer(exitStatusHelp("Exit status:", compareStatusTexts)
        + "\n\nExamples:\n"
          "  sdc compare monday.json tuesday.json\n"
          "  sdc compare monday.json tuesday.json --trace average --threshold 6 --json\n");
    comparing.callback([options, &command] { command = [options] { return compareOrTellTrouble(*options); }; });
}

} // namespace sdc

#include "apps/sdc/commands/Commands.h"
#include "apps/sdc/options/CommandLine.h"
#include "apps/sdc/options/Options.h"
#include "apps/sdc/result/Compare.h"
#include "apps/sdc/result/ResultFile.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/tty/Screen.h"
#include "support/Text.h"

#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>

namespace sdc {

namespace {

struct CompareOptions {
    std::string before; ///< file that `sdc scan --json` wrote
    std::string after;
    double threshold_dB = 3.0; ///< larger differences are told
};

/// Tells what has changed between two results; that nothing has, too.
ExitStatus compare(const CompareOptions& options, std::ostream& output)
{
    if (options.before == "-" && options.after == "-") {
        throw UsageError("BEFORE and AFTER: both are standard input; expected a file for one of them");
    }
    const ScanResult before = readResult(options.before);
    const ScanResult after = readResult(options.after);
    try {
        writeComparison(output, compare(before, after, options.threshold_dB));
    } catch (const std::runtime_error& cannot) {
        throw ResultError(support::shown(options.before) + " and " + support::shown(options.after) + ": " + cannot.what());
    }
    return EXIT_COMPLETE;
}

void addResult(CLI::App& command, const std::string& name, std::string& file, const std::string& help)
{
    offer(command.add_option(name, file, help)->required()->type_name(""), {anyFile});
}

} // namespace

void addCompare(CLI::App& app, Command& command)
{
    const auto options = std::make_shared<CompareOptions>();
    CLI::App& comparing = *app.add_subcommand("compare", "Tell what has changed between two scans");
    addResult(comparing, "BEFORE", options->before, "What 'sdc scan --json' wrote first");
    addResult(comparing, "AFTER", options->after, "What it wrote later; - for either is standard input");
    const Parsing<double> level{"DB", "level", "0 to 1000, such as 3", parseLevel};
    addParsed(comparing, "--threshold", options->threshold_dB, level, "Tell differences of more than so many dB (3)");
    comparing.footer("Exit status 0 whether or not something has changed.\n\n"
                     "Example:\n  sdc compare monday.json tuesday.json --threshold 6\n");
    comparing.callback([options, &command] {
        command = [options] { return toStandardOutput([&](std::ostream& output) { return compare(*options, output); }); };
    });
}

} // namespace sdc

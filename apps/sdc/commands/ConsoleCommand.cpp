#include "apps/sdc/commands/Commands.h"
#include "apps/sdc/console/Console.h"
#include "apps/sdc/console/LineEditor.h"
#include "apps/sdc/console/LineHistory.h"
#include "apps/sdc/console/LineSource.h"
#include "apps/sdc/console/Signals.h"
#include "apps/sdc/options/CommandLine.h"
#include "apps/sdc/options/Options.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/tty/Screen.h"

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sdc {

namespace {

struct ConsoleOptions {
    std::string scenario;
    std::optional<std::uint32_t> channel; ///< that commands go to at first; the scenario's first otherwise
    ConsoleSetup setup;
    bool isNotEchoed = false;
};

/// A person's lines are edited where the terminal can: it shows them as they come, on standard output or, where that goes
/// somewhere else, on standard error.
std::unique_ptr<LineSource> lineSource(const Console& console, Signals& signals, LineHistory& history, std::ostream* prompts)
{
    const int shown = isTerminal(STDOUT_FILENO) ? STDOUT_FILENO : STDERR_FILENO;
    if (prompts == nullptr || !isCapableTerminal(shown)) {
        return std::make_unique<PlainLines>(STDIN_FILENO, signals, prompts);
    }
    return makeLineEditor(
        signals, history, [&console](const std::string& begun) { return console.complete(begun); },
        shown == STDOUT_FILENO ? stdout : stderr);
}

ExitStatus talk(const ConsoleOptions& options, std::ostream& output)
{
    if (options.scenario == "-") {
        throw UsageError("--scenario: standard input is for the console's commands; expected a name or a file");
    }
    const Site site(options.scenario);
    const std::vector<std::uint32_t> wanted = options.channel ? std::vector{*options.channel} : std::vector<std::uint32_t>{};
    ConsoleSetup setup = options.setup;
    setup.channel = chooseChannels(site, wanted).front().number;
    setup.isEchoed = !options.isNotEchoed;
    setup.showsProgress = isCapableTerminal(STDERR_FILENO);

    const bool isTyped = isTerminal(STDIN_FILENO);
    Signals signals(!isTyped);
    Console console(site, setup, output, std::cerr);
    LineHistory history(isTyped ? historyFile() : std::nullopt);
    const std::unique_ptr<LineSource> lines = lineSource(console, signals, history, isTyped ? &output : nullptr);
    const ExitStatus status = console.obey(*lines);
    if (signals.isEndWanted()) {
        std::cerr << "sdc: stopped by a signal" << std::endl;
    }
    return signals.isEndWanted() && status == EXIT_COMPLETE ? EXIT_STOPPED : status;
}

} // namespace

void addConsole(CLI::App& app, Command& command)
{
    const auto options = std::make_shared<ConsoleOptions>();
    CLI::App& console = *app.add_subcommand("console", "Talk to a controller in its own commands");
    addScenario(console, options->scenario);
    const Parsing<std::uint32_t> number{"N", "channel", "a number such as 1", parseCount};
    addParsed(console, "--channel", options->channel, number, "Radio channel of the scenario (its first)");
    addSpeed(console, options->setup.speed);
    addFlag(console, "--stop-on-error", options->setup.endsAtError, "End at the first line whose work is not done");
    addFlag(console, "--no-echo", options->isNotEchoed, "Do not show the lines of a script, only answers");
    addTraceLevel(console, options->setup.traceLevel, "--trace-level,--trace");
    console.footer("Reads commands from standard input, one a line: 'help' lists them. Answers go to\n"
                   "standard output, errors to standard error; the first is the exit status. On a\n"
                   "terminal TAB completes, Ctrl-R searches what was typed before, Ctrl-C clears the\n"
                   "line or ends a wait, Ctrl-D leaves.\n\n"
                   "Examples:\n"
                   "  sdc console\n"
                   "  printf '%s\\n' channel-scan-start wait get-result | sdc console\n"
                   "  sdc console --stop-on-error --no-echo <script\n");
    console.callback([options, &command] {
        command = [options] { return toStandardOutput([&](std::ostream& output) { return talk(*options, output); }); };
    });
}

} // namespace sdc

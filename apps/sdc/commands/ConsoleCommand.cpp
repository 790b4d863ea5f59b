#include "Platform/Host/RadioChannel.h"
#include "apps/sdc/commands/Commands.h"
#include "apps/sdc/commands/Console.h"
#include "apps/sdc/options/CommandLine.h"
#include "apps/sdc/options/Options.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/tty/Screen.h"
#include "host/Clock.h"

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace sdc {

namespace {

struct ConsoleOptions {
    std::string scenario;
    std::optional<std::uint32_t> channel; ///< that commands go to at first; the scenario's first otherwise
    double speed = 0.0;
    std::uint32_t traceLevel = 1;
};

ExitStatus talk(const ConsoleOptions& options, std::ostream& output)
{
    if (options.scenario == "-") {
        throw UsageError("--scenario: standard input is for the console's commands; expected a name or a file");
    }
    const Site site(options.scenario);
    const std::vector<std::uint32_t> wanted = options.channel ? std::vector{*options.channel} : std::vector<std::uint32_t>{};
    const RadioChannel channel = chooseChannels(site, wanted).front().number;
    const std::unique_ptr<host::Clock> clock = host::makeClock(options.speed);
    Console console(site, channel, options.traceLevel, *clock, output);
    const bool isUnderstood = console.obey(std::cin, isTerminal(STDIN_FILENO));
    if (std::ferror(stdin) != 0) { // the stream takes it for the end
        throw std::runtime_error("cannot read standard input");
    }
    return isUnderstood ? EXIT_COMPLETE : EXIT_USAGE;
}

} // namespace

void addConsole(CLI::App& app, Command& command)
{
    const auto options = std::make_shared<ConsoleOptions>();
    CLI::App& console = *app.add_subcommand("console", "Talk to a controller in its own commands");
    addScenario(console, options->scenario);
    const Parsing<std::uint32_t> number{"N", "channel", "a number such as 1", parseCount};
    addParsed(console, "--channel", options->channel, number, "Radio channel of the scenario (its first)");
    addSpeed(console, options->speed);
    addTrace(console, options->traceLevel);
    console.footer("Reads commands from standard input, one a line: 'help' lists them.\n\n"
                   "Examples:\n"
                   "  sdc console\n"
                   "  printf '%s\\n' channel-scan-start wait get-result | sdc console\n");
    console.callback([options, &command] {
        command = [options] { return toStandardOutput([&](std::ostream& output) { return talk(*options, output); }); };
    });
}

} // namespace sdc

#include "apps/sdc/Arguments.h"
#include "apps/sdc/ConsoleCommand.h"
#include "apps/sdc/OptionValues.h"
#include "apps/sdc/StandardOutput.h"
#include "apps/sdc/TerminalDevice.h"

#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <memory>
#include <stdexcept>

namespace sdc {

void addConsole(CLI::App& app, Command& command)
{
    const auto options = std::make_shared<ConsoleOptions>();
    options->scenario = simulator::defaultScenario;
    CLI::App& console = *app.add_subcommand("console", "Talk to a controller in its own commands");
    addScenario(console, options->scenario);
    addParsed(console, "--channel", options->channel, parseCount, "no channel: write a number such as 1",
        "Radio channel of the scenario (its first)")
        ->type_name("N");
    addSpeed(console, options->speed);
    addTrace(console, options->traceLevel);
    console.footer("Reads commands from standard input, one a line: 'help' lists them.\n\n"
                   "Examples:\n"
                   "  sdc console\n"
                   "  printf '%s\\n' channel-scan-start wait get-result | sdc console\n");
    console.callback([options, &command] {
        command = [options] {
            options->isInteractive = isTerminal(STDIN_FILENO);
            const ExitStatus status =
                toStandardOutput([&](std::ostream& output) { return sdc::console(*options, std::cin, output); });
            if (std::ferror(stdin) != 0) { // the stream takes it for the end
                throw std::runtime_error("cannot read standard input");
            }
            return status;
        };
    });
}

} // namespace sdc

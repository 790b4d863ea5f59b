#include "apps/sdc/CommandLine.h"

#include "apps/sdc/Arguments.h"
#include "apps/sdc/UsageText.h"

#include <iostream>
#include <memory>
#include <stdexcept>

namespace sdc {

namespace {

constexpr const char* shortHelp = "sdc: a command is needed:\n"
                                  "  sdc scan channel          scan the configured channel of a simulated link\n"
                                  "  sdc scan sub-band         scan all that its radio can receive\n"
                                  "  sdc plan                  what both scans would do, and for how long\n"
                                  "  sdc scenarios list        what can be scanned\n"
                                  "'sdc --help' lists all commands.\n";

/// Help and version go to standard output, and into a file or a pipe if need be.
Command print(std::string text)
{
    return [text = std::move(text)] {
        if (!(std::cout << text << std::flush)) {
            throw std::runtime_error("cannot write to standard output");
        }
        return EXIT_COMPLETE;
    };
}

Command complain(std::string text)
{
    return [text = std::move(text)] {
        std::cerr << text << std::flush;
        return EXIT_USAGE;
    };
}

/// Says neither what type an option has by default nor that a positional is required: the usage shows it.
class HelpFormatter : public CLI::Formatter {
public:
    HelpFormatter() { column_width(26); }

    std::string make_option_opts(const CLI::Option* option) const override
    {
        return option->get_type_name().empty() || option->get_items_expected_max() == 0 ? "" : " " + option->get_type_name();
    }
};

/// The help of the innermost command that was named.
std::string helpOf(const CLI::App& app)
{
    const CLI::App* command = &app;
    std::string before;
    while (!command->get_subcommands().empty()) {
        before += (before.empty() ? "" : " ") + command->get_name();
        command = command->get_subcommands().front();
    }
    return command->help(before);
}

} // namespace

Command readCommandLine(int count, const char* const* arguments)
{
    CLI::App app{"Spectrum diagnostics of a simulated point-to-point microwave terminal", "sdc"};
    app.set_version_flag("--version", "sdc " SDC_VERSION, "Print the version and leave");
    app.footer("Exit status: 0 complete, 1 internal or output error, 2 usage or bad scenario,\n"
               "3 scan failed, 4 stopped, 130 second Ctrl-C.\n\n"
               "'sdc COMMAND --help' tells the options of a command and gives examples.");
    app.formatter(std::make_shared<HelpFormatter>());
    app.set_help_flag("-h,--help", "Print this help and leave");
    Command command;
    addScan(app, command);
    addPlan(app, command);
    addConsole(app, command);
    addScenarios(app, command);
    addPlot(app, command);
    addCompare(app, command);
    try {
        app.parse(count, arguments);
    } catch (const CLI::CallForVersion& version) {
        return print(std::string(version.what()) + "\n");
    } catch (const CLI::Success&) {
        return print(helpOf(app));
    } catch (const CLI::ParseError& error) {
        throw UsageError(explain(app, std::vector<std::string>(arguments + 1, arguments + count), error));
    }
    return command ? command : complain(shortHelp);
}

} // namespace sdc

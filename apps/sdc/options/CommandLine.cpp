#include "apps/sdc/options/CommandLine.h"

#include "apps/sdc/commands/Commands.h"
#include "apps/sdc/options/Options.h"
#include "apps/sdc/options/UsageText.h"

#include <fmt/format.h>

#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace sdc {

namespace {

constexpr const char* shortHelp = "sdc: a command is needed:\n"
                                  "  sdc scan channel          scan the configured channel of a simulated link\n"
                                  "  sdc scan sub-band         scan all that its radio can receive\n"
                                  "  sdc plan                  what both scans would do, and for how long\n"
                                  "  sdc scenarios list        what can be scanned\n"
                                  "'sdc help' lists all commands.\n";

std::vector<std::string> given; ///< the arguments

constexpr std::string_view completionRequest = "--complete"; ///< of the shell: nothing that a person writes

/// Help, version and completions go to standard output, and into a file or a pipe if need be.
Command print(std::string text)
{
    return [text = std::move(text)] {
        if (!(std::cout << text << std::flush)) {
            throw std::runtime_error("cannot write to standard output");
        }
        return EXIT_COMPLETE;
    };
}

Command printUsageError(std::string text)
{
    return [text = std::move(text)] {
        std::cerr << text << std::flush;
        return EXIT_USAGE;
    };
}

constexpr const char* environmentHelp = "\n\n"
                                        "Environment: NO_COLOR no colours; TERM=dumb neither colours nor a line that is\n"
                                        "written over; COLUMNS the width where the terminal does not tell it.\n\n";

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

/// Only for its place in the help: what it asks for is read as --help.
void addHelp(CLI::App& app)
{
    Words names;
    for (const CLI::App* const subcommand : app.get_subcommands({})) {
        names.push_back(subcommand->get_name());
    }
    CLI::App& help = *app.add_subcommand(std::string(helpCommand), "Tell what --help of a command tells");
    auto* const option = help.add_option_function<Words>(
        "COMMAND", [](const Words&) {}, "Such as scenarios show");
    offer(option->type_name("")->expected(0, -1), names);
}

/// "help scenarios show" is "scenarios show --help", of words that are known.
Words helpAsOption(CLI::App& app, Words words)
{
    if (!words.empty() && words.front() == helpCommand && (words.size() == 1 || !words[1].starts_with('-'))) {
        words.erase(words.begin());
        requireKnown(app, words);
        words.emplace_back("--help");
    }
    return words;
}

void addAll(CLI::App& app, Command& command)
{
    app.set_version_flag("--version", "sdc " SDC_VERSION, "Print the version and leave");
    app.footer(exitStatusHelp("Exit status:", exitStatusTexts) + "\n" + exitStatusHelp("Of sdc compare:", compareStatusTexts)
        + environmentHelp + "'sdc help COMMAND' tells the options of a command and gives examples.");
    app.formatter(std::make_shared<HelpFormatter>());
    app.set_help_flag("-h,--help", "Print this help and leave");
    app.require_subcommand(0, 1); // the name of a second one is a word like any other
    for (const AddSubcommand add : subcommands) {
        add(app, command);
    }
    addHelp(app);
}

} // namespace

const std::vector<std::string>& givenArguments()
{
    return given;
}

Command readCommandLine(int count, const char* const* arguments)
{
    CLI::App app{"Spectrum diagnostics of a simulated point-to-point microwave terminal", "sdc"};
    Command command;
    addAll(app, command);
    Words words(arguments + 1, arguments + count);
    given = words;
    if (!words.empty() && words.front() == completionRequest) {
        return print(completions(app, {words.begin() + 1, words.end()}));
    }
    words = helpAsOption(app, std::move(words));
    try {
        app.parse(Words(words.rbegin(), words.rend())); // the parser begins at the end
    } catch (const CLI::CallForVersion& version) {
        return print(std::string(version.what()) + "\n");
    } catch (const CLI::Success&) {
        return print(helpOf(app));
    } catch (const CLI::ParseError& error) {
        throw UsageError(explain(app, words, error));
    }
    return command ? command : printUsageError(shortHelp);
}

} // namespace sdc

#include "apps/sdc/Arguments.h"
#include "apps/sdc/CompareCommand.h"
#include "apps/sdc/OptionValues.h"
#include "apps/sdc/PlanCommand.h"
#include "apps/sdc/PlotCommand.h"
#include "apps/sdc/ScenariosCommand.h"
#include "apps/sdc/StandardOutput.h"

#include <memory>

namespace sdc {

namespace {

constexpr const char* sizeComplaint = "no size: write a number from 10 to 10000";

std::optional<std::uint32_t> parseSize(std::string_view text)
{
    const auto size = parseCount(text);
    return size && *size >= 10 && *size <= 10000 ? size : std::nullopt;
}

std::optional<PlotFormat> parsePlotFormat(std::string_view text)
{
    if (text == "svg" || text == "png") {
        return text == "svg" ? PlotFormat::svg : PlotFormat::png;
    }
    return text == "text" ? std::optional(PlotFormat::text) : std::nullopt;
}

} // namespace

void addPlan(CLI::App& app, Command& command)
{
    const auto options = std::make_shared<PlanOptions>();
    CLI::App& planning = *app.add_subcommand("plan", "Show what both scans would do, and for how long");
    addScenario(planning, options->scenario);
    addChannels(planning, options->channels);
    addSpeed(planning, options->speed);
    planning.add_flag("--json", options->isJson, "JSON instead of a table")->disable_flag_override();
    planning.footer("Examples:\n"
                    "  sdc plan\n"
                    "  sdc plan --scenario 38-long --speed 60\n");
    planning.callback([options, &command] {
        command = [options] { return toStandardOutput([&](std::ostream& output) { return plan(*options, output); }); };
    });
}

void addScenarios(CLI::App& app, Command& command)
{
    CLI::App& scenarios = *app.add_subcommand("scenarios", "List, show and check scenarios");
    scenarios.require_subcommand(1);
    scenarios.footer("Examples:\n"
                     "  sdc scenarios list\n"
                     "  sdc scenarios show 18-f595 > my.json\n"
                     "  sdc scenarios check my.json\n");

    CLI::App& list = *scenarios.add_subcommand("list", "List the built-in scenarios");
    const auto isNamesOnly = std::make_shared<bool>(false);
    list.add_flag("--names", *isNamesOnly, "Names only, one a line")->disable_flag_override();
    list.footer("Example:\n  sdc scenarios list\n");
    list.callback([isNamesOnly, &command] {
        command = [isNamesOnly] {
            return toStandardOutput([&](std::ostream& output) { return listScenarios(*isNamesOnly, output); });
        };
    });

    CLI::App& show = *scenarios.add_subcommand("show", "Show a scenario as its file stands");
    const auto name = std::make_shared<std::string>();
    show.add_option("NAME", *name, "Built-in scenario, or file")->required()->type_name("");
    show.footer("Example:\n  sdc scenarios show 18-f595\n");
    show.callback([name, &command] {
        command = [name] { return toStandardOutput([&](std::ostream& output) { return showScenario(*name, output); }); };
    });

    CLI::App& check = *scenarios.add_subcommand("check", "Say of each file \"ok\", or what is wrong with it");
    const auto files = std::make_shared<std::vector<std::string>>();
    check.add_option("FILE", *files, "Scenario files")->required()->type_name("");
    check.footer("Example:\n  sdc scenarios check my.json other.json\n");
    check.callback([files, &command] {
        command = [files] { return toStandardOutput([&](std::ostream& output) { return checkScenarios(*files, output); }); };
    });
}

void addPlot(CLI::App& app, Command& command)
{
    const auto options = std::make_shared<PlotCommandOptions>();
    CLI::App& plotting = *app.add_subcommand("plot", "Draw the samples that a scan wrote as JSON");
    plotting.add_option("RESULT", options->result, "What 'sdc scan --json' wrote; - is standard input")
        ->required()
        ->type_name("");
    plotting.add_option("--output", options->output, "Picture: .svg, .png or .txt; -: standard output (-)")
        ->check(fileName())
        ->type_name("FILE");
    addParsed(plotting, "--format", options->format, parsePlotFormat, "no kind of picture: write svg, png or text",
        "svg, png or text; otherwise by the name's ending,\ntext on standard output")
        ->type_name("KIND");
    addParsed(plotting, "--width", options->width, parseSize, sizeComplaint, "Pixels; columns of text")->type_name("N");
    addParsed(plotting, "--height", options->height, parseSize, sizeComplaint, "Pixels; rows of text")->type_name("N");
    plotting.footer("Examples:\n"
                    "  sdc plot scan.json\n"
                    "  sdc plot scan.json --output scan.svg --width 1600 --height 600\n");
    plotting.callback([options, &command] { command = [options] { return plot(*options); }; });
}

void addCompare(CLI::App& app, Command& command)
{
    const auto options = std::make_shared<CompareOptions>();
    CLI::App& comparing = *app.add_subcommand("compare", "Tell what has changed between two scans");
    comparing.add_option("BEFORE", options->before, "What 'sdc scan --json' wrote first")->required()->type_name("");
    comparing.add_option("AFTER", options->after, "What it wrote later")->required()->type_name("");
    addParsed(comparing, "--threshold", options->threshold_dB, parseLevel, "no level: write 0 to 1000, such as 3",
        "Tell differences from so many dB on (3)")
        ->type_name("DB");
    comparing.footer("Exit status 0 whether or not something has changed.\n\n"
                     "Example:\n  sdc compare monday.json tuesday.json --threshold 6\n");
    comparing.callback([options, &command] {
        command = [options] { return toStandardOutput([&](std::ostream& output) { return compare(*options, output); }); };
    });
}

} // namespace sdc

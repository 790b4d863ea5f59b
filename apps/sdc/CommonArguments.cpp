#include "apps/sdc/Arguments.h"
#include "apps/sdc/OptionValues.h"
#include "support/Text.h"

namespace sdc {

CLI::Option* addScenario(CLI::App& app, std::string& scenario)
{
    return app
        .add_option("--scenario", scenario,
            "Built-in scenario or scenario file (" + scenario + ");\n'sdc scenarios list' tells the names")
        ->type_name("NAME");
}

CLI::Option* addChannels(CLI::App& app, std::vector<std::uint32_t>& channels)
{
    return addParsed(app, "--channel", channels, parseChannels,
        "no list of channels: write all, or numbers such as 1 or 1,2, each once",
        "Radio channels of the scenario, such as 1,2 (all)")
        ->type_name("LIST");
}

CLI::Option* addSpeed(CLI::App& app, double& speed)
{
    return addParsed(app, "--speed", speed, parseSpeed, "no speed: write real, max, or a factor above 0 such as 20",
        "How fast time goes: real, max (no waiting), or a\nfactor such as 20 (max)")
        ->type_name("SPEED");
}

CLI::Option* addTrace(CLI::App& app, std::uint32_t& level)
{
    return addParsed(app, "--trace", level, parseTraceLevel, "no trace level: write 0 to 7",
        "Controllers' trace on standard error: 0 nothing,\n1 errors, 5 information, 6 calls, 7 steps (1)")
        ->type_name("LEVEL");
}

CLI::Validator fileName()
{
    const auto check = [](const std::string& text) -> std::string {
        if (text.empty()) {
            return "the name of the file is empty: write a name, or - for standard output";
        }
        if (text.size() > 1 && text.front() == '-') {
            const std::string name = support::shown(text);
            return "'" + name + "' looks like an option: write the name of a file (./" + name + " if that is one)";
        }
        return "";
    };
    return CLI::Validator(check, "");
}

} // namespace sdc

#include "apps/sdc/Arguments.h"
#include "apps/sdc/OptionValues.h"
#include "apps/sdc/PlotName.h"
#include "apps/sdc/ScanCommand.h"
#include "apps/sdc/UsageText.h"
#include "support/Text.h"

#include <array>
#include <memory>

namespace sdc {

namespace {

constexpr std::array<std::string_view, 2> kinds{"channel", "sub-band"};
constexpr std::array<std::string_view, 3> colorModes{"auto", "always", "never"};

std::optional<ColorMode> parseColor(std::string_view text)
{
    for (std::size_t mode = 0; mode < colorModes.size(); ++mode) {
        if (text == colorModes[mode]) {
            return static_cast<ColorMode>(mode);
        }
    }
    return std::nullopt;
}

void addKind(CLI::App& command, ScanKind& kind)
{
    const auto store = [&kind](const std::string& text) {
        if (text != kinds[0] && text != kinds[1]) {
            throw CLI::ValidationError(
                "'" + support::shown(text) + "' is no kind of scan: write channel or sub-band" + suggestion(text, kinds));
        }
        kind = text == kinds[0] ? ScanKind::channel : ScanKind::subBand;
    };
    command
        .add_option_function<std::string>("channel|sub-band", store,
            "channel: fine, across the configured channel;\nsub-band: all that the radio can receive")
        ->required()
        ->type_name("");
}

/// An output may be asked for several times, in several files.
void addOutput(CLI::App& command, std::vector<Output>& outputs, OutputFormat format, const std::string& help)
{
    const std::string name = "--" + std::string(toString(format));
    const auto store = [name, format, &outputs](const std::vector<std::string>& files) {
        for (const std::string& file : files) {
            if (format == OutputFormat::plot && !plotFormat(file)) { // said before the scan rather than after it
                throw CLI::ValidationError(name, plotNameComplaint(file));
            }
            if (file == "-" && usesStandardOutput(outputs)) {
                throw CLI::ValidationError(name, "another output goes to standard output already: write the name of a file");
            }
            outputs.push_back({format, file});
        }
    };
    command.add_option_function<std::vector<std::string>>(name, store, help)
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->check(fileName())
        ->type_name("FILE");
}

void addOutputs(CLI::App& command, OutputOptions& options)
{
    addOutput(command, options.outputs, OutputFormat::table, "Table, as on the terminal; - is standard output");
    addOutput(command, options.outputs, OutputFormat::csv, "CSV, RFC 4180");
    addOutput(command, options.outputs, OutputFormat::json, "JSON: all that is known of the scan");
    addOutput(command, options.outputs, OutputFormat::sweep, "Rows as power scanners of receivers write them");
    addOutput(command, options.outputs, OutputFormat::plot, "Picture: .svg, .png or .txt; - is text");
    addParsed(command, "--rows", options.rows, parseCount, "no number of rows: write one such as 50, or 0 for no limit",
        "Most rows of the table, each the strongest of\nseveral samples; 0: no limit (0)")
        ->type_name("N");
    addParsed(command, "--color", options.color, parseColor, "no choice of colours: write auto, always or never",
        "Colours: auto, always or never (auto)")
        ->type_name("WHEN");
}

} // namespace

void addScan(CLI::App& app, Command& command)
{
    const auto options = std::make_shared<ScanOptions>();
    CLI::App& scanning = *app.add_subcommand("scan", "Scan the spectrum of simulated links");
    addKind(scanning, options->kind);
    addScenario(scanning, options->scenario);
    addChannels(scanning, options->channels);
    addSpeed(scanning, options->speed);
    addParsed(scanning, "--repeat", options->sweeps, parseRepeat, "no number of sweeps: write 1 or more, or forever",
        "Sweeps of each channel; forever: until Ctrl-C (1)")
        ->type_name("N");
    addOutputs(scanning, options->outputs);
    scanning.add_flag("--quiet", options->isQuiet, "No plan, no progress; only results and failures")
        ->disable_flag_override();
    addTrace(scanning, options->traceLevel);
    addParsed(scanning, "--start-time", options->start, parseTime, "no time: write one such as 2026-01-02T03:04:05Z",
        "When simulated time begins, such as\n2026-01-02T03:04:05Z (now)")
        ->type_name("TIME");
    scanning.footer("Examples:\n"
                    "  sdc scan channel\n"
                    "  sdc scan sub-band --speed 20 --csv samples.csv --plot samples.svg\n"
                    "  sdc scan channel --repeat 100 --json - --quiet\n");
    scanning.callback([options, &command] { command = [options] { return scan(*options); }; });
}

} // namespace sdc

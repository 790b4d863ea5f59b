#include "apps/sdc/ExitStatus.h"
#include "apps/sdc/ScanCommand.h"
#include "simulator/terminal/SimulatedTerminal.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>
#include <exception>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

std::vector<std::string> linkNames()
{
    std::vector<std::string> names;
    for (const simulator::Link& link : simulator::links()) {
        names.push_back(link.name);
    }
    return names;
}

/// "real" is 1, "max" is 0, and a number above 0 is a factor. Nothing for any other text.
std::optional<double> parseSpeed(const std::string& text)
{
    if (text == "real" || text == "max") {
        return text == "real" ? 1.0 : 0.0;
    }
    double factor = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), factor);
    const bool isFactor = error == std::errc{} && end == text.data() + text.size() && std::isfinite(factor) && factor > 0.0;
    return isFactor ? std::optional(factor) : std::nullopt;
}

std::string checkSpeed(const std::string& text)
{
    return parseSpeed(text) ? "" : "'" + text + "' is no speed: write real, max, or a factor above 0 such as 20";
}

/// A plain decimal from 0 to what 32 bits hold, so that "010" and "" are not taken for something else.
std::string checkCount(const std::string& text)
{
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isPlain = error == std::errc{} && end == text.data() + text.size() && (text.size() == 1 || text[0] != '0');
    return isPlain ? "" : "'" + text + "' is no number: write 0 to 4294967295 in decimal";
}

std::string checkFile(const std::string& text)
{
    return text.empty() ? "the name of the file is empty: write a name, or - for standard output" : "";
}

CLI::App& addScan(CLI::App& app, sdc::ScanOptions& options, std::string& kind, std::string& speed)
{
    CLI::App& command = *app.add_subcommand("scan", "Scan the spectrum of a link");
    command
        .add_option("kind", kind, "channel: fine, across the configured channel; sub-band: all that the radio can receive")
        ->required()
        ->check(CLI::IsMember({"channel", "sub-band"}));
    command.add_option("--link", options.link, "link to scan")->check(CLI::IsMember(linkNames()))->capture_default_str();
    command.add_option("--channel", options.channel, "radio channel number of the terminal")
        ->check(CLI::Validator(checkCount, ""))
        ->capture_default_str();
    command.add_option("--speed", speed, "how fast time goes: real, max, or a factor")
        ->check(CLI::Validator(checkSpeed, "real|max|FACTOR"))
        ->capture_default_str();
    command
        .add_option(
            "--trace", options.traceLevel, "trace level on standard error: 1 errors, 5 information, 6 calls, 7 steps")
        ->check(CLI::Range(0, 7))
        ->capture_default_str();
    command
        .add_option("--csv", options.csvFile, "write the samples as CSV to FILE; - for standard output, without the table")
        ->check(CLI::Validator(checkFile, ""))
        ->type_name("FILE");
    command.add_option("--rows", options.rows, "most rows of the table, each the strongest of several samples; 0: no limit")
        ->check(CLI::Validator(checkCount, ""))
        ->capture_default_str();
    command.footer("Examples:\n  sdc scan channel\n  sdc scan sub-band --speed 20 --csv samples.csv\n");
    return command;
}

sdc::ExitStatus run(int argc, char** argv)
{
    CLI::App app{"Spectrum diagnostics of a simulated point-to-point microwave terminal", "sdc"};
    app.set_version_flag("--version", "sdc " SDC_VERSION);
    app.footer(
        "Exit status: 0 complete, 1 internal or output error, 2 usage, 3 scan failed, 4 stopped, 130 second Ctrl-C.\n");
    sdc::ScanOptions options;
    std::string kind;
    std::string speed = "max";
    const CLI::App& scan = addScan(app, options, kind, speed);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const bool isHelp = app.exit(error) == 0;
        if (!std::cout.flush()) {
            throw std::runtime_error("cannot write to standard output");
        }
        return isHelp ? sdc::EXIT_COMPLETE : sdc::EXIT_USAGE;
    }
    if (!scan.parsed()) {
        std::cerr << "sdc: a command is needed: scan\nRun with --help for more information.\n";
        return sdc::EXIT_USAGE;
    }
    options.isSubBand = kind == "sub-band";
    options.speed = parseSpeed(speed).value();
    return sdc::scan(options);
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return run(argc, argv);
    } catch (const std::exception& exception) {
        std::cerr << "sdc: " << exception.what() << '\n';
        return sdc::EXIT_INTERNAL;
    }
}

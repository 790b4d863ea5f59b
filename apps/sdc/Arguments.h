#pragma once

#include "apps/sdc/CommandLine.h"

#include "simulator/scenario/Scenario.h"
#include "support/Text.h"

#include <CLI/CLI.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace sdc {

// Each adds a subcommand, which sets `command` when it has been read.

void addScan(CLI::App& app, Command& command);
void addPlan(CLI::App& app, Command& command);
void addConsole(CLI::App& app, Command& command);
void addScenarios(CLI::App& app, Command& command);
void addPlot(CLI::App& app, Command& command);
void addCompare(CLI::App& app, Command& command);

/// An option or a positional whose text is parsed; one that is no value is refused: "'nan' is no speed: write ...".
/// @param name       as CLI11 takes it, such as "--speed"
/// @param complaint  what stands behind "is", and what would be right
template <typename Target, typename Value>
CLI::Option* addParsed(CLI::App& app, const std::string& name, Target& target,
    std::optional<Value> (*parse)(std::string_view), const std::string& complaint, const std::string& help)
{
    const auto store = [name, &target, parse, complaint](const std::string& text) {
        const std::optional<Value> parsed = parse(text);
        if (!parsed) {
            throw CLI::ValidationError(name, "'" + support::shown(text) + "' is " + complaint);
        }
        target = *parsed;
    };
    return app.add_option_function<std::string>(name, store, help);
}

/// Options that several commands have.
CLI::Option* addScenario(CLI::App& app, std::string& scenario);
CLI::Option* addChannels(CLI::App& app, std::vector<std::uint32_t>& channels);
CLI::Option* addSpeed(CLI::App& app, double& speed);
CLI::Option* addTrace(CLI::App& app, std::uint32_t& level);

/// Refuses what is no name of a file, such as an option written where the name was forgotten.
CLI::Validator fileName();

} // namespace sdc

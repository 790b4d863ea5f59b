#pragma once

#include "apps/sdc/options/CommandLine.h"

#include <CLI/CLI.hpp>

// The subcommands. Each has a source of its name, which keeps its options and what it does to itself.

namespace sdc {

/// Adds a subcommand, which sets `command` when it has been read.
using AddSubcommand = void (*)(CLI::App& app, Command& command);

void addScan(CLI::App& app, Command& command);
void addPlan(CLI::App& app, Command& command);
void addConsole(CLI::App& app, Command& command);
void addScenarios(CLI::App& app, Command& command);
void addPlot(CLI::App& app, Command& command);
void addCompare(CLI::App& app, Command& command);
void addSchema(CLI::App& app, Command& command);

/// In the order of the help.
inline constexpr AddSubcommand subcommands[] = {addScan, addPlan, addConsole, addScenarios, addPlot, addCompare, addSchema};

} // namespace sdc

#pragma once

#include "apps/sdc/options/CommandLine.h"

#include <CLI/CLI.hpp>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sdc {

inline constexpr std::string_view helpCommand = "help"; ///< before the names of other commands

/// @throws UsageError for a command or an option that nobody knows
void requireKnown(CLI::App& app, const std::vector<std::string>& arguments);

/// "Exit status: 0 complete, ...", in lines of at most 80 columns.
std::string exitStatusHelp(const std::string& beginning, std::span<const ExitStatusText> texts);

/// What is wrong with the arguments and what would be right, in one line.
/// @param error  what the parser found; a word that nobody knows is the better explanation of most of what follows it
std::string explain(CLI::App& app, const std::vector<std::string>& arguments, const CLI::ParseError& error);

/// What may stand in the place of the last of the arguments, one a line: words that begin as it does, --option=value where
/// it has come to that, and "FILE" where the name of a file is expected.
std::string completions(CLI::App& app, const std::vector<std::string>& arguments);

/// "; did you mean 'speed'?" for a word that is nearly right, otherwise @p otherwise.
std::string suggestion(const std::string& word, std::span<const std::string_view> known, const std::string& otherwise = "");

} // namespace sdc

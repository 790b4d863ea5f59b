#pragma once

#include <CLI/CLI.hpp>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sdc {

/// What is wrong with the arguments and what would be right, in one line.
/// @param error  what the parser found; a word that nobody knows is the better explanation of most of what follows it
std::string explain(const CLI::App& app, const std::vector<std::string>& arguments, const CLI::ParseError& error);

/// "; did you mean 'speed'?" for a word that is nearly right, otherwise @p otherwise.
std::string suggestion(const std::string& word, std::span<const std::string_view> known, const std::string& otherwise = "");

} // namespace sdc

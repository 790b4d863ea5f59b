#pragma once

#include <string>

namespace sdc {

/// Runs gnuplot, found by PATH, without the user's own settings, and returns what it writes.
/// @param program  given to its standard input
/// @throws std::runtime_error when it is not there, or fails, in its own words
std::string runGnuplot(const std::string& program);

} // namespace sdc

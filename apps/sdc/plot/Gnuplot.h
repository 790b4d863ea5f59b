#pragma once

#include <chrono>
#include <string>

namespace sdc {

/// How long a picture may take. The largest ones take some seconds.
inline constexpr std::chrono::milliseconds longestDrawing = std::chrono::minutes(1);

/// Why no picture can be drawn, as far as that can be known before: there is no gnuplot in PATH. Empty: nothing is known
/// against it.
std::string gnuplotObstacle();

/// Runs gnuplot, found by PATH, without the user's own settings, and returns what it writes. It ends when this program ends,
/// however that comes about, and leaves no file behind.
/// @param program  given to its standard input
/// @param limit    when it has not ended after so long it is ended
/// @throws std::runtime_error when it is not there, takes too long, or fails, in its own words
std::string runGnuplot(const std::string& program, std::chrono::milliseconds limit = longestDrawing);

} // namespace sdc

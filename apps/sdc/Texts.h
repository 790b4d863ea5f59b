#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace sdc {

/// A length of time for people: "6.6 s", "2 min 32 s", "5 h 44 min 0 s". What is below the last figure is cut off.
std::string durationText(std::chrono::milliseconds time);

/// What settle delays take at a speed: nothing at the highest, which is 0.
std::chrono::milliseconds wallTime(std::chrono::milliseconds radioTime, double speed);

/// Text set left in a column.
std::string left(const std::string& text, std::size_t width);

/// "1 sample", "13 samples".
std::string counted(std::size_t count, const std::string& what);

/// What is said of an error: each line of the text, without empty ones, behind the name of the program. Whatever stands
/// in it may be shown on a terminal.
std::string message(const std::string& text, const std::string& before = "sdc: ");

} // namespace sdc

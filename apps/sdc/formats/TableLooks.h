#pragma once

#include <string>

// Colours of the table: the text says the same without.

namespace sdc {

inline constexpr const char* bold = "\033[1m";
inline constexpr const char* red = "\033[1;31m";
inline constexpr const char* green = "\033[32m";
inline constexpr const char* yellow = "\033[33m";

/// A text in a colour, where colours are wanted.
inline std::string colored(const std::string& text, const char* color, bool isColored)
{
    return isColored && !text.empty() ? color + text + "\033[0m" : text;
}

} // namespace sdc

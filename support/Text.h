#pragma once

#include <chrono>
#include <cstddef>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace support {

/// A text of unknown origin, such as a name out of a file, as it may be shown on a terminal: one line in UTF-8 that nothing
/// obeys.
///
/// Control characters, line and paragraph separators, characters that take no room, marks that change the direction of
/// writing, and bytes that are no
/// UTF-8 become escapes that can be seen, such as `\x1B` and `\u202E`.
///
/// @param most  number of characters of the result, at least 3. A longer text ends in "...", which count among them; neither
///              a character nor an escape is cut
std::string shown(std::string_view foreign, std::size_t most = 200);

/// Reads a stream to its end.
/// @throws std::runtime_error  "cannot be read", or "is larger than 1 MiB; must be smaller"
std::string readToEnd(std::istream& stream, std::size_t largest_MiB);

/// What is said of something: each line of a text, without empty ones, behind the same words. Whatever stands in it may be
/// shown on a terminal.
std::string prefixed(const std::string& text, const std::string& prefix);

/// A length of time for people: "6.6 s", "2 min 32 s", "5 h 44 min 0 s". What is below the last figure is cut off.
std::string duration(std::chrono::milliseconds time);

/// Texts in lines that are no longer than a width, as far as their words are not; what follows the first line of a text is
/// indented. Where a word or two would be left for the last line, the lines are evened.
std::vector<std::string> wrapped(const std::vector<std::string>& texts, std::size_t width);

/// "1 sample", "13 samples".
std::string counted(std::size_t count, const std::string& what);

} // namespace support

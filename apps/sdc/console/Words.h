#pragma once

#include "apps/sdc/options/CommandLine.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace sdc {

using Words = std::vector<std::string>;

/// What a line asked for was not done. what() tells why, and what would be right.
class ConsoleError : public std::runtime_error {
public:
    ConsoleError(const std::string& text, ExitStatus status)
        : std::runtime_error(text)
        , m_status(status)
    {
    }
    ExitStatus status() const { return m_status; } ///< of a script that ends there

private:
    ExitStatus m_status;
};

/// A line that the console cannot act upon.
class InvalidLine : public ConsoleError {
public:
    explicit InvalidLine(const std::string& text)
        : ConsoleError(text, EXIT_USAGE)
    {
    }
};

/// A line taken apart as a shell does it: blanks part words, quotes and backslashes let a word have blanks in it, and a #
/// where a word would begin begins a remark.
struct SplitLine {
    Words words;
    std::size_t lastBegins = 0; ///< where the last word stands in the line
    bool endsInWord = false;    ///< more characters would belong to the last word
    bool endsInQuotes = false;  ///< which are not closed
    bool hasRemark = false;
};

SplitLine splitLine(std::string_view line);

/// The words of a line.
/// @throws InvalidLine where quotes are not closed
Words wordsOf(std::string_view line);

/// A text so that it is read as one word, or as the beginning of one.
std::string asWord(std::string_view text);

} // namespace sdc

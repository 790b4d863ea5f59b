#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <ios>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace support {

namespace {

/// The first character of a text.
struct Character {
    std::size_t bytes;
    char32_t codePoint;
    bool isValid; ///< otherwise it is one byte that does not begin a character of UTF-8
};

/// How the first byte of a character tells its length; the code point is the least that may be so long.
struct Lead {
    unsigned char mask;
    unsigned char value;
    std::size_t bytes;
    char32_t least;
};
constexpr std::array<Lead, 4> leads{
    {{0x80, 0x00, 1, 0x00}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}}};

Character firstOf(std::string_view text)
{
    const auto byte = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const Character invalid{1, byte(0), false};
    const auto lead = std::ranges::find_if(leads, [&](const Lead& one) { return (byte(0) & one.mask) == one.value; });
    if (lead == leads.end() || text.size() < lead->bytes) {
        return invalid;
    }
    char32_t codePoint = byte(0) & static_cast<unsigned char>(~lead->mask);
    for (std::size_t index = 1; index < lead->bytes; ++index) {
        if ((byte(index) & 0xC0U) != 0x80U) {
            return invalid;
        }
        codePoint = codePoint << 6U | (byte(index) & 0x3FU);
    }
    const bool isSurrogate = 0xD800 <= codePoint && codePoint <= 0xDFFF;
    return codePoint < lead->least || codePoint > 0x10FFFF || isSurrogate ? invalid
                                                                          : Character{lead->bytes, codePoint, true};
}

/// Whether a terminal might obey it: it moves, hides or turns round what stands beside it.
bool isObeyed(char32_t codePoint)
{
    struct Range {
        char32_t first;
        char32_t last;
    };
    constexpr Range obeyed[] = {{0x00, 0x1F}, {0x7F, 0x9F}, {0xAD, 0xAD}, {0x061C, 0x061C}, {0x180E, 0x180E},
        {0x200B, 0x200F}, {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE007F}};
    return std::ranges::any_of(
        obeyed, [codePoint](const Range& range) { return range.first <= codePoint && codePoint <= range.last; });
}

std::string hexadecimal(char32_t value, unsigned digits)
{
    std::string text;
    for (unsigned digit = digits; digit > 0; --digit) {
        text += "0123456789ABCDEF"[value >> 4U * (digit - 1) & 0xFU];
    }
    return text;
}

std::string escaped(const Character& character)
{
    if (!character.isValid || character.codePoint <= 0x7F) {
        return "\\x" + hexadecimal(character.codePoint, 2);
    }
    return character.codePoint <= 0xFFFF ? "\\u" + hexadecimal(character.codePoint, 4)
                                         : "\\U" + hexadecimal(character.codePoint, 8);
}

std::vector<std::string> broken(const std::string& text, std::size_t width)
{
    constexpr const char* indent = "  ";
    std::vector<std::string> lines;
    std::istringstream words(text);
    std::string line;
    for (std::string word; words >> word;) {
        const bool isFull = !line.empty() && line.size() + 1 + word.size() > width;
        if (isFull) {
            lines.push_back(line);
        }
        line = isFull ? indent + word : line + (line.empty() ? "" : " ") + word;
    }
    lines.push_back(line);
    return lines;
}

bool endsInFewWords(const std::vector<std::string>& lines)
{
    constexpr std::ptrdiff_t few = 2;
    std::istringstream words(lines.back());
    return lines.size() > 1 && std::distance(std::istream_iterator<std::string>(words), {}) <= few;
}

/// As many lines, the longest of them as short as can be.
std::vector<std::string> evened(const std::string& text, std::vector<std::string> lines, std::size_t width)
{
    while (width > 1) {
        std::vector<std::string> narrower = broken(text, --width);
        if (narrower.size() != lines.size()) {
            break;
        }
        lines = std::move(narrower);
    }
    return lines;
}

} // namespace

std::string shown(std::string_view foreign, std::size_t most)
{
    constexpr std::string_view dots = "...";
    std::string text;
    std::size_t characters = 0;
    std::size_t roomForDots = 0; // the length up to which there is
    while (!foreign.empty()) {
        const Character next = firstOf(foreign);
        const bool plain = next.isValid && !isObeyed(next.codePoint);
        const std::string piece = plain ? std::string(foreign.substr(0, next.bytes)) : escaped(next);
        characters += plain ? 1 : piece.size();
        if (characters > most) {
            text.resize(roomForDots);
            return text.append(dots);
        }
        text += piece;
        roomForDots = characters + dots.size() <= most ? text.size() : roomForDots;
        foreign.remove_prefix(next.bytes);
    }
    return text;
}

std::string readToEnd(std::istream& stream, std::size_t largest_MiB)
{
    constexpr std::streamsize chunk = 1 << 16;
    std::string text;
    while (stream && text.size() <= largest_MiB << 20U) {
        const std::size_t before = text.size();
        text.resize(before + chunk);
        stream.read(text.data() + before, chunk);
        text.resize(before + static_cast<std::size_t>(stream.gcount()));
    }
    if (stream.bad()) {
        throw std::runtime_error("cannot be read");
    }
    if (text.size() > largest_MiB << 20U) {
        throw std::runtime_error("is larger than " + std::to_string(largest_MiB) + " MiB; must be smaller");
    }
    return text;
}

std::string prefixed(const std::string& text, const std::string& prefix)
{
    constexpr std::size_t longestLine = 1000;
    std::istringstream lines(text);
    std::string all;
    for (std::string line; std::getline(lines, line);) {
        all += line.empty() ? "" : prefix + shown(line, longestLine) + "\n";
    }
    return all;
}

std::string duration(std::chrono::milliseconds time)
{
    constexpr std::int64_t minute = 60;
    constexpr std::int64_t hour = 3600;
    const std::int64_t seconds = time.count() / 1000;
    if (seconds < minute) {
        return fmt::format("{}.{} s", seconds, time.count() % 1000 / 100);
    }
    const std::string hours = seconds >= hour ? fmt::format("{} h ", seconds / hour) : "";
    return fmt::format("{}{} min {} s", hours, seconds % hour / minute, seconds % minute);
}

std::vector<std::string> wrapped(const std::vector<std::string>& texts, std::size_t width)
{
    std::vector<std::string> all;
    for (const std::string& text : texts) {
        const std::vector<std::string> lines = broken(text, width);
        const std::vector<std::string> chosen = endsInFewWords(lines) ? evened(text, lines, width) : lines;
        all.insert(all.end(), chosen.begin(), chosen.end());
    }
    return all;
}

std::string counted(std::size_t count, const std::string& what)
{
    return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

} // namespace support

#include "support/Errors.h"

#include "support/Text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

namespace support {

namespace {

constexpr std::size_t longestShown = 60;

} // namespace

std::string Errors::listed(std::string_view file) const
{
    const std::string name = shown(file);
    std::string text;
    for (std::size_t index = 0; index < std::min(m_errors.size(), most); ++index) {
        text += (index == 0 ? "" : "\n") + name + ": " + m_errors[index];
    }
    return isFull() ? text + "\n" + name + ": and more" : text;
}

std::string Errors::text() const
{
    return joined(m_errors, "\n", "\n");
}

std::string memberPath(const std::string& path, std::string_view key)
{
    const auto plain = [](unsigned char one) { return one == '_' || one == '$' || std::isalnum(one) != 0; };
    if (!key.empty() && key.size() <= longestShown && std::ranges::all_of(key, plain)) {
        return (path.empty() ? path : path + ".") + std::string(key);
    }
    return path + "[" + inQuotes(key) + "]";
}

std::string elementPath(const std::string& path, std::size_t index)
{
    return path + "[" + std::to_string(index) + "]";
}

std::string inQuotes(std::string_view foreign)
{
    return '"' + shown(foreign, longestShown) + '"';
}

std::string numberText(double value)
{
    constexpr std::size_t longestNumber = 400; // of the smallest and the largest ones, without an exponent
    std::array<char, longestNumber> text{};
    return {text.data(), std::to_chars(text.begin(), text.end(), value, std::chars_format::fixed).ptr};
}

std::string sizeText(std::size_t least, std::size_t most)
{
    return least == most ? std::to_string(least)
        : least == 0     ? "at most " + std::to_string(most)
                         : std::to_string(least) + " to " + std::to_string(most);
}

std::string joined(const std::vector<std::string>& items, std::string_view last, std::string_view others)
{
    std::string text;
    for (std::size_t index = 0; index < items.size(); ++index) {
        text += index == 0 ? "" : index + 1 == items.size() ? last : others;
        text += items[index];
    }
    return text;
}

} // namespace support

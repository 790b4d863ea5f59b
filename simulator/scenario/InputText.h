#pragma once

#include <algorithm>
#include <cstddef>
#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

namespace simulator {

/// Reads a stream to its end.
/// @throws std::runtime_error  "cannot be read", or "is larger than 1 MiB; must be smaller"
inline std::string readToEnd(std::istream& stream, std::size_t largest_MiB)
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

/// The findings of a file, each on a line that names it; ten at most, and how many more there are.
inline std::string listed(const std::string& file, const std::vector<std::string>& findings)
{
    constexpr std::size_t most = 10;
    std::string text;
    for (std::size_t index = 0; index < std::min(findings.size(), most); ++index) {
        text += (index == 0 ? "" : "\n") + file + ": " + findings[index];
    }
    if (findings.size() > most) {
        text += "\n" + file + ": and " + std::to_string(findings.size() - most) + " more";
    }
    return text;
}

} // namespace simulator

#pragma once

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace support {

/// Number of single-character edits between two names: insert, remove, replace, swap two neighbours. Upper and lower case
/// are the same.
inline std::size_t editDistance(std::string_view left, std::string_view right)
{
    const auto same = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    };
    const std::size_t width = right.size() + 1;
    std::vector<std::size_t> table((left.size() + 1) * width); // [i][j]: between the first i and the first j characters
    for (std::size_t i = 0; i <= left.size(); ++i) {
        for (std::size_t j = 0; j <= right.size(); ++j) {
            std::size_t& here = table[i * width + j];
            if (i == 0 || j == 0) {
                here = i + j;
                continue;
            }
            const std::size_t replaced = table[(i - 1) * width + j - 1] + (same(left[i - 1], right[j - 1]) ? 0 : 1);
            here = std::min({replaced, table[(i - 1) * width + j] + 1, table[i * width + j - 1] + 1});
            if (i > 1 && j > 1 && same(left[i - 1], right[j - 2]) && same(left[i - 2], right[j - 1])) {
                here = std::min(here, table[(i - 2) * width + j - 2] + 1);
            }
        }
    }
    return table.back();
}

/// The known name that a mistyped one was most likely meant to be; nothing when none is near. Up to three characters may
/// have one edit, up to six two, longer names three. The first of several that are equally near.
inline std::optional<std::string_view> nearest(std::string_view typed, std::span<const std::string_view> known)
{
    constexpr std::size_t longestName = 100; // what is longer is no slip of the fingers
    if (typed.size() > longestName) {
        return std::nullopt;
    }
    std::size_t fewest = typed.size() <= 3 ? 1 : typed.size() <= 6 ? 2 : 3;
    std::optional<std::string_view> best;
    for (const std::string_view name : known) {
        const std::size_t edits = name.size() > longestName ? longestName : editDistance(typed, name);
        if (edits < fewest || (edits == fewest && !best)) {
            fewest = edits;
            best = name;
        }
    }
    return best;
}

} // namespace support

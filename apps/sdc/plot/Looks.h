#pragma once

#include <array>
#include <cstddef>

namespace sdc {

/// How something that is drawn looks. Nothing is told apart by its colour alone.
struct Look {
    char sign;         ///< of text
    int ansi;          ///< of text, of the 256 of terminals: seen on black and on white
    const char* color; ///< of pictures, on white
    int dash;          ///< of pictures, as gnuplot numbers them
    int marker;        ///< of pictures, as gnuplot numbers them
};

inline constexpr Look levelLook{'*', 27, "#0b4f9e", 1, 7};
inline constexpr Look maxLook{'^', 196, "#b3261e", 2, 8};
inline constexpr Look minLook{'v', 28, "#1b7f4b", 3, 10};
inline constexpr Look limitLook{'=', 163, "#8a3ffc", 5, 0};
inline constexpr Look lowestLook{'-', 66, "#555555", 4, 0};

/// Of several results over one another.
inline constexpr std::array<Look, 8> overlayLooks{{
    levelLook,
    {'o', 196, "#b3261e", 2, 4},
    {'x', 28, "#1b7f4b", 3, 2},
    {'#', 130, "#9a5b00", 5, 12},
    {'%', 129, "#7b2fbe", 4, 8},
    {'@', 30, "#007a7a", 1, 6},
    {'&', 161, "#c2185b", 2, 1},
    {'$', 97, "#5d4037", 5, 10},
}};

} // namespace sdc

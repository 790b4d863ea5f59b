#pragma once

#include "apps/sdc/result/Raster.h"

#include <array>

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

/// How the state of a channel of the raster looks: letters in text, hatching in pictures.
struct StateLook {
    RasterState state;
    char sign;
    int ansi;
    const char* fill; ///< as gnuplot has it
};

/// What is worse comes first: where channels share a place, the first of these is shown.
inline constexpr std::array<StateLook, rasterStates.size()> stateLooks{{
    {RasterState::own, 'R', 27, "fillcolor rgb '#7fa3cf' fillstyle solid 1.0"},
    {RasterState::occupied, 'O', 196, "fillcolor rgb '#8f1d16' fillstyle solid 1.0"},
    {RasterState::intermittent, 'I', 130, "fillcolor rgb '#9a5b00' fillstyle pattern 4"},
    {RasterState::unknown, '?', 66, "fillcolor rgb '#777777' fillstyle pattern 2"},
    {RasterState::free, 'F', 28, "fillcolor rgb '#1b7f4b' fillstyle empty"},
}};

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

#pragma once

#include "tests/judge/truth/QuietAir.h"

#include <cstdint>
#include <vector>

namespace judge {

/// What is so in a channel of the raster that is not the configured one.
enum class Occupant : std::uint8_t {
    nobody,   ///< nothing reaches in, while the receiver is there; masks and filter edges raise noise and leak at the centre
              ///< by less than 0.5 dB
    fringe,   ///< nothing reaches in, but masks and filter edges raise them by 5 dB or more
    somebody, ///< the spectrum of an emitter reaches in; `over` tells how strong
    uncertain, ///< any other: grazed, or a fringe that is faint
};

struct RasterTruth {
    std::int64_t offset = 0; ///< channels above the configured one
    bool isSeen = false;     ///< a sample lies within a quarter of a spacing of the centre
    Occupant occupant{};

    /// Of what reaches in: hundredths of a dB over the floor in the sample nearest to the centre; in a channel that is not
    /// seen, at the centre itself, at the moment of that sample.
    std::int32_t over = 0;
    bool comesAndGoes = false; ///< is gone once from there
};

/// Of the channels whose centres lie within the scan.
std::vector<RasterTruth> rasterTruth(const QuietAir& air);

} // namespace judge

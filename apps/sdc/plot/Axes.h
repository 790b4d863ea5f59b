#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace sdc {

inline constexpr int decimalsOfMegahertz = 3; ///< that show a kHz

/// A frequency in MHz, with so many decimals at most as show a kHz; what has more of them is cut off.
std::string inMegahertz(std::int64_t frequency_kHz, int decimals = decimalsOfMegahertz);

/// Number of decimals that shows a frequency in MHz exactly.
int decimalsFor(std::int64_t frequency_kHz);

struct Range {
    std::int64_t lowest = 0;
    std::int64_t highest = 0;

    std::int64_t span() const { return highest - lowest; }
    bool holds(std::int64_t value) const { return lowest <= value && value <= highest; }
};

struct Tick {
    std::int64_t place; ///< kHz or dBm
    std::string label;  ///< may be empty

    bool operator==(const Tick&) const = default;
};

/// The room that the traces of a plot have, without the axes around them, and what texts take of it: pixels, or columns and
/// rows.
struct Room {
    double width;
    double height;
    double characterWidth;
    double lineHeight;
};

/// The least of 1, 2 and 5 times a power of ten that is not below a value.
std::int64_t niceStep(double least);

/// The lowest multiple of a step that is not below a value, both of any sign.
std::int64_t roundedUp(std::int64_t value, std::int64_t step);

/// As many as there is room for, with no more digits than tell one from the next.
std::vector<Tick> frequencyTicks(const Range& range_kHz, const Room& room);

/// Centres of the channels of a raster, labelled with their distance from the configured one where there is room. Where they
/// would run into each other, those alone that have a label; none where there are too many of them, or no raster.
std::vector<Tick> channelTicks(
    const Range& range_kHz, std::int64_t configured_kHz, std::int64_t spacing_kHz, const Room& room);

} // namespace sdc

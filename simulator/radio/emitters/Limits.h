#pragma once

#include "support/Fields.h" // IWYU pragma: export

#include <cstddef>
#include <string_view>

// What the tables of all emitters and of the paths to them have in common.

namespace simulator {

/// How a kind of emitters stands in a scenario.
struct KindOfEmitter {
    std::string_view list;     ///< key of those of this kind among a channel's emitters
    std::string_view sentence; ///< what they are
    std::size_t most;          ///< so many of them in a channel
    bool fades;                ///< whether they may come over a path that fades
};

inline support::NumberSpec frequency_kHz()
{
    return support::number(0, 4294967295, "kHz");
}
inline support::NumberSpec width_kHz()
{
    return support::number(1, 10000000, "kHz");
}
inline support::NumberSpec level_dBm()
{
    return support::number(-200, 60, "dBm");
}
inline support::NumberSpec depth_dB()
{
    return support::number(0, 200, "dB");
}
inline support::NumberSpec time_ms() ///< three years
{
    return support::number(0, 100000000000, "ms");
}
inline support::NumberSpec duration_ms()
{
    return support::number(0.001, 100000000000, "ms");
}

} // namespace simulator

#pragma once

#include "support/Time.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sdc {

using support::TimePoint;

/// The controller raises readings below it to it; hundredths of a dBm.
inline constexpr std::int32_t lowestReading = -9970;

/// One reading.
struct Sample {
    std::uint32_t frequency_kHz = 0; ///< where the receiver stood
    std::int32_t rssi = 0;           ///< hundredths of a dBm
    TimePoint time{};                ///< of the reading, on the clock of the terminal

    bool operator==(const Sample&) const = default;
};

enum class Ending : std::uint8_t {
    complete, ///< all samples taken, the receiver back on its frequency
    stopped,  ///< by the user, the receiver back on its frequency
    failed,   ///< anything else; `reason` tells what
};
inline constexpr std::array<std::string_view, 3> endings{"complete", "stopped", "failed"};

constexpr std::string_view toText(Ending ending)
{
    return endings.at(static_cast<std::size_t>(ending));
}

/// One sweep of one channel.
struct Sweep {
    TimePoint start; ///< on the clock of the terminal
    TimePoint end;
    Ending ending{};
    std::string reason;     ///< of a failure, one line; empty otherwise
    std::string statusText; ///< the controller's status at the end, in its own words
    std::uint32_t rxBefore_kHz = 0;
    std::uint32_t rxAfter_kHz = 0;
    std::vector<Sample> samples; ///< in the order taken
};

} // namespace sdc

#pragma once

#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace sdc {

/// A level of a trace, and what it rests on.
struct Level {
    double level_dBm = 0.0;
    double doubt_dB = 0.0;    ///< of a level between two frequencies that were read: how far it may be off
    std::size_t readings = 1; ///< at least
    double lowest_dBm = 0.0;  ///< of the readings
};

/// A frequency of which both scans of a channel tell a level.
struct Place {
    std::uint32_t frequency_kHz = 0;
    Level before;
    Level after;

    double difference_dB() const { return after.level_dBm - before.level_dBm; }
};

/// A stretch of the frequency axis, with so many frequencies of a scan in it.
struct FrequencyRange {
    std::uint32_t lowest_kHz = 0;
    std::uint32_t highest_kHz = 0;
    std::size_t frequencies = 0;

    bool operator==(const FrequencyRange&) const = default;
};

/// Where two scans of a channel meet.
struct Places {
    std::vector<Place> both;                ///< ascending
    std::vector<FrequencyRange> onlyBefore; ///< neighbours together, ascending
    std::vector<FrequencyRange> onlyAfter;
};

/// The frequencies that both have read. Where their steps differ, or none is the same, those of the scan with fewer of them:
/// of each the other tells a level between two of its own, which must not be further apart than the receive filter is wide.
Places placesOf(const ChannelResult& before, const ChannelResult& after, TraceKind trace);

} // namespace sdc

#pragma once

#include "apps/sdc/result/Analysis.h"
#include "apps/sdc/result/ScanResult.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <vector>

namespace sdc {

/// Levels at one frequency in both results, in hundredths of a dBm.
struct LevelChange {
    std::uint32_t frequency_kHz = 0;
    std::int32_t before = 0;
    std::int32_t after = 0;
};

/// What is different in one radio channel that both results have.
struct ChannelComparison {
    std::uint32_t channel = 0;
    std::size_t compared = 0;                  ///< number of frequencies in both
    std::vector<LevelChange> changes;          ///< above the threshold, by frequency
    std::vector<std::uint32_t> onlyBefore_kHz; ///< frequencies, ascending
    std::vector<std::uint32_t> onlyAfter_kHz;
    std::optional<std::int32_t> floorBefore; ///< hundredths of a dBm
    std::optional<std::int32_t> floorAfter;
    std::vector<Peak> newPeaks;      ///< where the trace before could show one, and shows none within half a channel spacing
    std::vector<Peak> vanishedPeaks; ///< the other way round
};

struct Comparison {
    double threshold_dB = 0.0;
    std::vector<ChannelComparison> channels;       ///< in the order of the first result
    std::vector<std::uint32_t> channelsOnlyBefore; ///< numbers
    std::vector<std::uint32_t> channelsOnlyAfter;
};

/// Compares the traces (traceOf) of the channels that both results have. The floor counts as changed by the same threshold.
/// @param threshold_dB  what is no more than that is no change
/// @throws ResultError when the results have no frequency of the same channel in common
Comparison compare(const ScanResult& before, const ScanResult& after, double threshold_dB);

/// Writes for people what has changed; says so when nothing has.
void writeComparison(std::ostream& stream, const Comparison& comparison);

} // namespace sdc

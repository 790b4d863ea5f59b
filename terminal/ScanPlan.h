#pragma once

#include <chrono>
#include <cstdint>

namespace terminal {

/// What a sweep is going to do, as the controller itself reports it when the sweep begins.
struct ScanPlan {
    std::uint32_t rxFrequency_kHz = 0; ///< where the receiver is put back to
    std::uint32_t channelSpacing_kHz = 0;
    std::uint32_t lowest_kHz = 0;  ///< first sample
    std::uint32_t highest_kHz = 0; ///< bound of the last sample
    std::int32_t samples = 0;      ///< number of samples planned
    std::uint32_t step_kHz = 0;
    std::uint32_t setRxWait_ms = 0;      ///< settle delay before each reading but the first
    std::uint32_t firstSetRxWait_ms = 0; ///< settle delay before the first reading

    /// The sum of the settle delays: how long the sweep takes at least. A sweep of one sample waits five seconds,
    /// one that cannot begin none.
    std::chrono::milliseconds settleTime() const;

    /// The same of its first samples alone.
    std::chrono::milliseconds settleTime(std::int64_t samplesTaken) const;
};

} // namespace terminal

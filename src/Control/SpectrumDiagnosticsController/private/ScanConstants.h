#pragma once

/// The numbers of a scan: what its plan and its delays are made of.

#include <cstdint>

// Planning: what tells the standard plans apart, their margin to the edge and their step.
constexpr std::uint32_t oddChannelSpacing_kHz = 7000;
constexpr std::uint32_t upperFrequencyBand_GHz = 43; // the lowest of the upper bands
constexpr std::uint32_t fineMargin_kHz = 1000;
constexpr std::uint32_t fineStep_kHz = 2000;
constexpr std::uint32_t fineStepInOddSpacing_kHz = 1000;
constexpr std::uint32_t coarseMargin_kHz = 5000;
constexpr std::uint32_t coarseStep_kHz = 10000;

// Settling: how long the receiver is given before a reading.
constexpr std::uint32_t firstRxWait_ms = 3000;
constexpr std::uint32_t rxWait_ms = 300;
constexpr std::uint32_t slowRxWait_ms = 2000;
constexpr std::uint32_t extendedRxWait_ms = 60000; // the first reading's, too

// Reading, in the RSSI handler's unit.
constexpr std::int32_t RSSI_FLOOR = -9970;

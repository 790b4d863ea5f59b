#pragma once

#include "apps/sdc/result/Raster.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/verdict/Verdict.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace judge {

struct RasterAnswer {
    std::int64_t offset = 0; ///< channels above the configured one
    sdc::RasterState state{};
};

/// What a detector says of a scanned channel.
struct Answer {
    sdc::Judgement judgement{};
    std::optional<sdc::InterferenceKind> kind{};
    std::optional<sdc::InterferencePlace> place{};
    std::optional<std::int32_t> overFloor{}; ///< hundredths of a dB
    std::string rule;                        ///< why, one sentence
    std::vector<RasterAnswer> raster;
};

/// What it says of a channel of the raster; unknown where it says nothing.
sdc::RasterState stateOf(const Answer& answer, std::int64_t offset);

/// Who says it, from what a scan found and what the user says of the far end. For several threads at once.
using Detector = Answer (*)(const sdc::ChannelResult&, sdc::FarEnd);

/// What `sdc scan` says.
Answer verdictOfSdc(const sdc::ChannelResult& channel, sdc::FarEnd farEnd);

/// A plain detector with fixed thresholds, to compare with:
/// - an alarm when a sample in the middle half of the channel lies 5 dB over the receiver's noise and what it leaks of all
///   that was read;
/// - with the far end on, when a frequency's readings differ by 6 dB, or the channel's two halves by 4 dB on average;
/// - another channel is occupied when the sample nearest to its centre lies as high.
Answer plainThreshold(const sdc::ChannelResult& channel, sdc::FarEnd farEnd);

} // namespace judge

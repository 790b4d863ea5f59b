#pragma once

#include "simulator/radio/emitters/Recording.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace simulator {

/// At most so many bins in all recordings of a scenario. Gaps have none.
constexpr std::size_t mostRecordedBins = 4'000'000;

/// Reads a recorded sweep in the common row of the receivers' power scanners:
///
///     date, time, lowest Hz, highest Hz, step Hz, samples, dB, dB, ...
///
/// with highest = lowest + n * step. The date may be an epoch in seconds; numbers may have a fraction; a level may be `nan`
/// (or `-inf`) where nothing is known. A row is a sweep or one hop of it, in any order. A row may repeat its last level, as
/// the classic scanner writes it: that is left out. Rows are joined upwards; between them may be gaps of whole bins. Bins
/// that were swept several times get the mean of their powers.
///
/// @param file  its name in messages
/// @return where the recording began, at its own frequencies; levels taken as dBm per bin
/// @throws ScenarioError with file and line, when a row is none, has another step than the first row, overlaps another one
///         without being the same hop, or has more bins than there may be
Recording readRecordedSweep(std::string_view text, const std::string& file, std::size_t mostBins = mostRecordedBins);

} // namespace simulator

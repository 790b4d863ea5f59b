#pragma once

#include "simulator/radio/Air.h"

#include <istream>
#include <string>

namespace simulator {

/// Reads a recorded sweep in the common row of the receivers' power scanners:
///
///     date, time, lowest Hz, highest Hz, step Hz, samples, dB, dB, ...
///
/// with highest = lowest + n * step. The date may be an epoch in seconds; numbers may have a fraction; a level may be `nan`
/// (or `-inf`) where nothing is known. A row is a sweep or one hop of it, in any order. A row may repeat its last level, as
/// the classic scanner writes it: that is left out. Rows are joined upwards and gaps of whole bins filled with not-a-number;
/// bins that were swept several times get the mean of their powers.
///
/// @param file  its name in messages
/// @return where the recording began, at its own frequencies; levels taken as dBm per bin; at most 10,000,000 bins
/// @throws ScenarioError with file and line, when a row is none, has another step than the first row, or overlaps another
///         one without being the same hop
Recording readRecordedSweep(std::istream& stream, const std::string& file);

} // namespace simulator

#pragma once

#include "terminal/Terminal.h"

#include <string>
#include <vector>

namespace soak {

/// What is known of one scan that has ended, beside what the terminal tells.
struct ScanRecord {
    RadioChannel channel{};
    ESDCCommand start{};
    std::uint32_t configured_kHz = 0; ///< as the radio told it at the start
    bool wasStopped = false;
    bool mayGoWrong = false; ///< its radio has been given faults, which stay
    std::vector<SDCResult> samplesBefore;
};

/// Whether two lists of samples are the same.
bool isSame(const std::vector<SDCResult>& left, const std::vector<SDCResult>& right);

/// Compares all that a scan has left behind with its plan, and its parts with one another.
/// @throws SoakFailure where they do not fit
void checkScan(const terminal::Terminal& terminal, const ScanRecord& scan);

} // namespace soak

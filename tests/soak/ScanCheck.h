#pragma once

#include "tests/soak/ChannelModel.h"

#include "simulator/terminal/SimulatedTerminal.h"

#include <string>
#include <vector>

namespace soak {

/// What is known of one scan that has ended, beside what the terminal tells.
struct ScanRecord {
    RadioChannel channel{};
    ESDCCommand start{};
    std::uint32_t configured_kHz = 0; ///< as the radio told it at the start
    bool wasStopped = false;
    bool diesAtOnce = false; ///< the refresh of the properties throws, before anything else
    std::vector<SDCResult> samplesBefore;
};

/// Whether two lists of samples are the same.
bool isSame(const std::vector<SDCResult>& left, const std::vector<SDCResult>& right);

/// Compares all that a scan has left behind with what its channel's model says, and takes its calls into the model.
/// @throws SoakFailure where they differ
void checkScan(const simulator::SimulatedTerminal& terminal, const ScanRecord& scan, ChannelModel& model);

} // namespace soak

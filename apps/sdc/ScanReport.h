#pragma once

#include "apps/sdc/ScanLane.h"
#include "apps/sdc/ScanSession.h"
#include "simulator/scenario/Scenario.h"

#include <string>
#include <vector>

namespace sdc {

// What a scan tells people beside its samples. Whole lines, "label      text".

/// What is scanned. It needs no terminal, so it can be shown at once.
std::string introduction(const simulator::Scenario& scenario, ScanKind kind);

/// The plan of each channel and how long all take.
std::string planReport(const std::vector<PlannedChannel>& channels, const SessionOptions& options);

/// How the scan of a channel ended.
/// @param isNamed  there are several: say which
std::string endReport(const ChannelResult& result, bool isNamed);

} // namespace sdc

#pragma once

#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "simulator/scenario/Scenario.h"

namespace sdc {

/// A scenario in which what a scan has read is read again: the channels that were scanned, with the radios of a scenario,
/// and nothing on the air but the readings.
///
/// What receivers add to what is on the air, the readings hold already: they have no jitter and settle at once. No calls go
/// wrong.
/// @param trace  of several sweeps, the levels that are read again
/// @throws ResultError when a channel of the result has no sample, or the scenario lacks it
simulator::Scenario replayOf(const ScanResult& result, simulator::Scenario scenario, TraceKind trace);

} // namespace sdc

#pragma once

#include "apps/sdc/ScanLane.h"
#include "simulator/scenario/Scenario.h"

#include <cstdint>
#include <vector>

namespace sdc {

/// The channels of a scenario that have these numbers, in the order given; all of them for an empty list.
/// @throws UsageError that tells which there are
std::vector<simulator::TerminalChannel> chooseChannels(
    const simulator::Scenario& scenario, const std::vector<std::uint32_t>& numbers);

/// What the controller would do; nothing where it cannot plan. Without the link's faults. Call while there is no terminal.
PlannedChannel planned(const simulator::TerminalChannel& channel, ScanKind kind);

} // namespace sdc

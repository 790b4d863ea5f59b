#pragma once

#include "host/Clock.h"
#include "simulator/Radios.h"
#include "terminal/PlanPreview.h"

#include <optional>

namespace tests {

/// The plan of a scan of a simulated radio, without its faults.
inline std::optional<terminal::ScanPlan> plannedScan(const simulator::TerminalChannel& channel, ESDCCommand start)
{
    host::VirtualClock clock;
    const simulator::Radios radios({simulator::withoutFaults(channel)}, clock);
    return terminal::previewPlan(radios.channels().front(), start);
}

} // namespace tests

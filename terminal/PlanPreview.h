#pragma once

#include "terminal/Peers.h"
#include "terminal/ScanPlan.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <optional>

namespace terminal {

/// What a scan of a channel would do: the controller's own plan, out of a scan on a terminal of its own that ends before its
/// first tuning, with the radio's properties known to the controller. The receiver stays where it is. Call while there is no
/// terminal.
/// @param start  SDC_CMD_CHANNEL_SCAN_START or SDC_CMD_SUB_BAND_SCAN_START
/// @return nothing when the controller cannot plan: its unit type is not supported
/// @throws what the terminal's constructor and its startScan throw
std::optional<ScanPlan> previewPlan(const Channel& channel, ESDCCommand start);

} // namespace terminal

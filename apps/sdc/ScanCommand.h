#pragma once

#include "apps/sdc/ExitStatus.h"
#include "apps/sdc/ScanOutputs.h"
#include "apps/sdc/TerminalDevice.h"
#include "simulator/scenario/Scenario.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sdc {

/// What `sdc scan` was asked for.
struct ScanOptions {
    ScanKind kind{};
    std::string scenario{simulator::defaultScenario}; ///< name of a built-in scenario, or a file
    std::vector<std::uint32_t> channels;              ///< radio channel numbers; none: all that the scenario has
    double speed = 0.0;                               ///< 1 is real time, more is faster; 0: no wall time at all
    std::uint32_t sweeps = 1;                         ///< of each channel; 0: until stopped
    std::optional<TimePoint> start;                   ///< the time of day at which simulated time begins; otherwise now
    OutputOptions outputs;
    bool isQuiet = false;         ///< no plan, no progress
    std::uint32_t traceLevel = 1; ///< what the controllers' trace shows on standard error
};

/// Scans, writes the outputs, and tells on standard error what is done (plan, progress, status, failures, trace).
/// @throws UsageError, simulator::ScenarioError
ExitStatus scan(const ScanOptions& options);

} // namespace sdc

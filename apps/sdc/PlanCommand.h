#pragma once

#include "apps/sdc/ExitStatus.h"
#include "simulator/scenario/Scenario.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace sdc {

/// What `sdc plan` was asked for.
struct PlanOptions {
    std::string scenario{simulator::defaultScenario}; ///< name of a built-in scenario, or a file
    std::vector<std::uint32_t> channels;              ///< radio channel numbers; none: all that the scenario has
    double speed = 0.0;                               ///< 1 is real time, more is faster; 0: no wall time at all
    bool isJson = false;
};

/// Shows what both kinds of scan would do on each channel, and how long they take.
/// @return EXIT_FAILED when nothing can be planned
/// @throws UsageError, simulator::ScenarioError
ExitStatus plan(const PlanOptions& options, std::ostream& output);

} // namespace sdc

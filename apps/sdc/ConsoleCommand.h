#pragma once

#include "apps/sdc/ExitStatus.h"

#include <cstdint>
#include <istream>
#include <optional>
#include <ostream>
#include <string>

namespace sdc {

/// What `sdc console` was asked for.
struct ConsoleOptions {
    std::string scenario;                 ///< name of a built-in scenario, or a file
    std::optional<std::uint32_t> channel; ///< radio channel that commands go to at first; the scenario's first otherwise
    double speed = 0.0;                   ///< 1 is real time, more is faster; 0: no wall time at all
    std::uint32_t traceLevel = 1;         ///< what the controllers' trace shows on standard error at first
    bool isInteractive = false;           ///< a person types: prompt; otherwise each line read is shown before its answer
};

/// Reads commands, one a line, until the input ends or says "quit", and answers each with the controller's own codes and
/// texts.
/// @return EXIT_COMPLETE; EXIT_USAGE when a line was not understood
/// @throws simulator::ScenarioError; UsageError for a channel that the scenario does not have
ExitStatus console(const ConsoleOptions& options, std::istream& input, std::ostream& output);

} // namespace sdc

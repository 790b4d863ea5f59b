#pragma once

#include "apps/sdc/ExitStatus.h"

#include <ostream>
#include <string>

namespace sdc {

/// What `sdc compare` was asked for.
struct CompareOptions {
    std::string before; ///< file that `sdc scan --json` wrote
    std::string after;
    double threshold_dB = 3.0; ///< differences from that on are told
};

/// Tells what has changed between two results; that nothing has, too.
/// @throws ResultError, also for two results that cannot be compared
ExitStatus compare(const CompareOptions& options, std::ostream& output);

} // namespace sdc

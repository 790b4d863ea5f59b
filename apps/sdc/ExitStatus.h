#pragma once

#include "apps/sdc/results/ScanResult.h"

#include <algorithm>

namespace sdc {

/// What the program reports to its caller.
enum ExitStatus : int {
    EXIT_COMPLETE = 0, ///< done; of a scan: it is complete and the receiver is back on its frequency
    EXIT_INTERNAL = 1, ///< the program itself failed, or its output could not be written
    EXIT_USAGE = 2,    ///< wrong options, or a file that cannot be used
    EXIT_FAILED = 3,   ///< a scan could not be started, was aborted, or left the receiver off its frequency
    EXIT_STOPPED = 4,  ///< the scan was stopped
};

constexpr ExitStatus exitStatus(Ending ending)
{
    switch (ending) {
    case Ending::complete: return EXIT_COMPLETE;
    case Ending::stopped: return EXIT_STOPPED;
    case Ending::failed: return EXIT_FAILED;
    }
    return EXIT_INTERNAL;
}

/// The status of a run by those of its sweeps: a failure counts more than a stop, a stop more than completion.
constexpr ExitStatus worse(ExitStatus left, ExitStatus right)
{
    return left == EXIT_FAILED || right == EXIT_FAILED ? EXIT_FAILED : std::max(left, right);
}

} // namespace sdc

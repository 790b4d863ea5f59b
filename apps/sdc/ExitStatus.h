#pragma once

#include "simulator/terminal/SimulatedTerminal.h"

#include <cstdint>

namespace sdc {

/// What the program reports to its caller.
enum ExitStatus : int {
    EXIT_COMPLETE = 0, ///< the scan is complete and the receiver is back on its frequency
    EXIT_INTERNAL = 1, ///< the program itself failed, or its output could not be written
    EXIT_USAGE = 2,    ///< wrong options
    EXIT_FAILED = 3,   ///< the scan could not be started, was aborted, or left the receiver off its frequency
    EXIT_STOPPED = 4,  ///< the scan was stopped
};

/// How a scan went, as far as its exit status depends on it.
struct ScanOutcome {
    bool isStopped = false;                          ///< by the user
    ESDCStatus status = SDC_STATUS_SCAN_NOT_STARTED; ///< at the end
    std::int64_t taken = 0;                          ///< samples
    std::int64_t planned = 0;                        ///< samples
    bool isReceiverBack = false;                     ///< on the frequency that it had before
};

constexpr ExitStatus exitStatus(const ScanOutcome& outcome)
{
    const bool isFinished =
        outcome.status == SDC_STATUS_CHANNEL_SCAN_FINISHED || outcome.status == SDC_STATUS_SUB_BAND_SCAN_FINISHED;
    if (!outcome.isReceiverBack) {
        return EXIT_FAILED;
    }
    if (outcome.isStopped) {
        return EXIT_STOPPED;
    }
    return isFinished && outcome.taken == outcome.planned ? EXIT_COMPLETE : EXIT_FAILED;
}

} // namespace sdc

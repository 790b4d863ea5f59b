#pragma once

namespace sdc {

/// What the program reports to its caller.
enum ExitStatus : int {
    EXIT_COMPLETE = 0, ///< the scan is complete and the receiver is back on its frequency
    EXIT_INTERNAL = 1, ///< the program itself failed, or its output could not be written
    EXIT_USAGE = 2,    ///< wrong options
    EXIT_FAILED = 3,   ///< the scan could not be started, was aborted, or left the receiver off its frequency
    EXIT_STOPPED = 4,  ///< the scan was stopped
};

} // namespace sdc

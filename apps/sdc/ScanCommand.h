#pragma once

#include "apps/sdc/ExitStatus.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace sdc {

/// What `sdc scan` was asked for.
struct ScanOptions {
    bool isSubBand = false;       ///< sub-band scan rather than channel scan
    std::string link = "18-f595"; ///< name of a built-in link
    std::uint32_t channel = 1;    ///< radio channel that the terminal has
    double speed = 0.0;           ///< 1 is real time, more is faster; 0: no wall time at all
    std::uint32_t traceLevel = 1; ///< what the controller's trace shows on standard error
    std::string csvFile;          ///< where the samples go as CSV; "-": standard output, in place of the table
    std::size_t rows = 0;         ///< most rows of the table; 0: one for each sample
};

/// Scans and reports on standard output (samples) and standard error (plan, progress, status, trace).
ExitStatus scan(const ScanOptions& options);

} // namespace sdc

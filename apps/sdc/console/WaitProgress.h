#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/tty/Progress.h"

#include <chrono>
#include <cstddef>
#include <ostream>
#include <vector>

namespace sdc {

/// Shows how far the scan is that somebody waits for, in one line of a terminal that can write over it; gone in the end.
class WaitProgress {
public:
    /// @param speed  of the scan's time: 0 is no wall time at all
    WaitProgress(std::ostream& terminal, double speed);
    ~WaitProgress() { m_progress.clear(); }
    WaitProgress(const WaitProgress&) = delete;
    WaitProgress& operator=(const WaitProgress&) = delete;

    void show(const ScanPlan& plan, const std::vector<SDCResult>& samples);

private:
    Progress m_progress;
    double m_speed;
    std::size_t m_taken = 0; ///< samples, when last shown
    std::chrono::steady_clock::time_point m_lastSeen = std::chrono::steady_clock::now();
};

} // namespace sdc

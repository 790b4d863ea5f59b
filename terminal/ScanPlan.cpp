#include "terminal/ScanPlan.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

namespace terminal {

std::chrono::milliseconds ScanPlan::settleTime() const
{
    return lowest_kHz > highest_kHz ? std::chrono::milliseconds{} : settleTime(samples);
}

std::chrono::milliseconds ScanPlan::settleTime(std::int64_t samplesTaken) const
{
    if (samplesTaken <= 0) {
        return {};
    }
    if (samples == 1) {
        return std::chrono::milliseconds(SINGLE_MEASUREMENT_DELAY_MS);
    }
    return std::chrono::milliseconds(firstSetRxWait_ms) + (samplesTaken - 1) * std::chrono::milliseconds(setRxWait_ms);
}

} // namespace terminal

#include "terminal/ScanPlan.h"

namespace terminal {

std::chrono::milliseconds ScanPlan::settleTime() const
{
    return lowest_kHz > highest_kHz ? std::chrono::milliseconds{} : settleTime(samples);
}

std::chrono::milliseconds ScanPlan::settleTime(std::int64_t samplesTaken) const
{
    constexpr std::chrono::milliseconds singleMeasurement{5000};
    if (samplesTaken <= 0) {
        return {};
    }
    if (samples == 1) {
        return singleMeasurement;
    }
    return std::chrono::milliseconds(firstSetRxWait_ms) + (samplesTaken - 1) * std::chrono::milliseconds(setRxWait_ms);
}

} // namespace terminal

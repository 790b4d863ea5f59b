#include "simulator/radio/Band.h"

#include <algorithm>
#include <cmath>

namespace simulator {

Band Band::common(const Band& other) const noexcept
{
    return {std::max(low_kHz, other.low_kHz), std::min(high_kHz, other.high_kHz)};
}

double Band::overlap_kHz(const Band& other) const noexcept
{
    const Band both = common(other);
    return both.isEmpty() ? 0.0 : both.high_kHz - both.low_kHz;
}

double milliwatts(double level_dBm) noexcept
{
    return std::pow(10.0, level_dBm / 10.0);
}

double decibels(double ratio) noexcept
{
    return 10.0 * std::log10(ratio);
}

} // namespace simulator

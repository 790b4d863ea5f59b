#include "simulator/radio/emitters/RecordedBins.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace simulator {

namespace {

double binsOf(const std::vector<double>& sums_mW)
{
    return static_cast<double>(sums_mW.size() - 1);
}

} // namespace

RecordedBins::RecordedBins(double step_kHz, std::vector<Stretch> stretches)
    : m_step_kHz(step_kHz)
    , m_sums_mW(std::move(stretches))
{
    const bool anyEmpty = std::ranges::any_of(m_sums_mW, [](const Stretch& one) { return one.powers_mW.empty(); });
    if (m_sums_mW.empty() || anyEmpty || !(step_kHz > 0.0)) {
        throw std::invalid_argument("a recording without bins; it must have at least one");
    }
    long double sum_mW = 0.0L; // millions of bins: the errors of a double would add up to a visible level
    for (Stretch& stretch : m_sums_mW) {
        for (double& power_mW : stretch.powers_mW) {
            const double below_mW = static_cast<double>(sum_mW);
            sum_mW += std::exchange(power_mW, below_mW);
        }
        stretch.powers_mW.push_back(static_cast<double>(sum_mW));
    }
}

std::size_t RecordedBins::count() const noexcept
{
    std::size_t count = 0;
    for (const Stretch& stretch : m_sums_mW) {
        count += stretch.powers_mW.size() - 1;
    }
    return count;
}

double RecordedBins::width_kHz() const noexcept
{
    return m_step_kHz * (m_sums_mW.back().firstBin + binsOf(m_sums_mW.back().powers_mW));
}

double RecordedBins::total_mW() const noexcept
{
    return m_sums_mW.back().powers_mW.back();
}

double RecordedBins::powerBelow_mW(double offset_kHz) const noexcept
{
    const double position = offset_kHz / m_step_kHz;
    const auto above = std::ranges::upper_bound(m_sums_mW, position, {}, &Stretch::firstBin);
    if (above == m_sums_mW.begin()) {
        return 0.0;
    }
    const auto& [firstBin, sums_mW] = *std::prev(above);
    const double inStretch = position - firstBin;
    if (inStretch >= binsOf(sums_mW)) {
        return sums_mW.back();
    }
    const auto bin = static_cast<std::size_t>(inStretch);
    return std::lerp(sums_mW[bin], sums_mW[bin + 1], inStretch - static_cast<double>(bin));
}

} // namespace simulator

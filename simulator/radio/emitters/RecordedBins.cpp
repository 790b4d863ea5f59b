#include "simulator/radio/emitters/RecordedBins.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace simulator {

RecordedBins::RecordedBins(double step_kHz, std::vector<Stretch> stretches)
    : m_step_kHz(step_kHz)
{
    const bool anyEmpty = std::ranges::any_of(stretches, [](const Stretch& one) { return one.powers_mW.empty(); });
    if (stretches.empty() || anyEmpty || !(step_kHz > 0.0)) {
        throw std::invalid_argument("a recording without bins; it must have at least one");
    }
    long double sum_mW = 0.0L; // millions of bins: the errors of a double would add up to a visible level
    for (Stretch& stretch : stretches) {
        Summed& summed = m_stretches.emplace_back(Summed{std::move(stretch), {}});
        summed.sums_mW.reserve(summed.powers_mW.size() / blockSize + 2);
        for (std::size_t bin = 0; bin < summed.powers_mW.size(); ++bin) {
            if (bin % blockSize == 0) {
                summed.sums_mW.push_back(static_cast<double>(sum_mW));
            }
            sum_mW += summed.powers_mW[bin];
        }
        summed.sums_mW.push_back(static_cast<double>(sum_mW));
    }
}

std::size_t RecordedBins::count() const noexcept
{
    std::size_t count = 0;
    for (const Summed& stretch : m_stretches) {
        count += stretch.powers_mW.size();
    }
    return count;
}

double RecordedBins::width_kHz() const noexcept
{
    return m_step_kHz * (m_stretches.back().firstBin + static_cast<double>(m_stretches.back().powers_mW.size()));
}

double RecordedBins::total_mW() const noexcept
{
    return m_stretches.back().sums_mW.back();
}

/// The last stretch that does not begin above a place; none below all of them.
const RecordedBins::Summed* RecordedBins::stretchAt(double place) const noexcept
{
    const auto above = std::ranges::upper_bound(m_stretches, place, {}, &Summed::firstBin);
    return above == m_stretches.begin() ? nullptr : &*std::prev(above);
}

double RecordedBins::powerBelow_mW(double offset_kHz) const noexcept
{
    const double place = offset_kHz / m_step_kHz;
    const Summed* const stretch = stretchAt(place);
    if (stretch == nullptr) {
        return 0.0;
    }
    const std::vector<double>& powers_mW = stretch->powers_mW;
    const double inStretch = place - stretch->firstBin;
    if (inStretch >= static_cast<double>(powers_mW.size())) {
        return stretch->sums_mW.back();
    }
    const auto bin = static_cast<std::size_t>(inStretch);
    const std::size_t block = bin / blockSize;
    double below_mW = stretch->sums_mW[block];
    for (std::size_t index = block * blockSize; index < bin; ++index) {
        below_mW += powers_mW[index];
    }
    return below_mW + (inStretch - static_cast<double>(bin)) * powers_mW[bin];
}

double RecordedBins::powerAt_mW(double place) const noexcept
{
    const double below = std::floor(place);
    const double part = place - below;
    const double below_mW = powerOfBin_mW(below);
    const double above_mW = powerOfBin_mW(below + 1.0);
    if (below_mW > 0.0 && above_mW > 0.0) {
        return below_mW * std::pow(above_mW / below_mW, part);
    }
    return part <= 0.5 ? below_mW : above_mW;
}

double RecordedBins::powerOfBin_mW(double bin) const noexcept
{
    const Summed* const stretch = stretchAt(bin);
    const double inStretch = stretch == nullptr ? -1.0 : bin - stretch->firstBin;
    const bool isWithin = 0.0 <= inStretch && inStretch < static_cast<double>(stretch->powers_mW.size());
    return isWithin ? stretch->powers_mW[static_cast<std::size_t>(inStretch)] : 0.0;
}

} // namespace simulator

#include "apps/sdc/result/Peaks.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>

namespace sdc {

namespace {

/// For each sample the deepest level between it and the next sample to its left that hides it, or the begin of the trace.
template <typename Iterator, typename Hides>
std::vector<std::int32_t> valleys(Iterator begin, Iterator end, Hides hides)
{
    struct Top {
        std::int32_t level;
        std::int32_t valley;
    };
    std::vector<Top> higher; // falling or flat: what the next sample sees to its left
    std::vector<std::int32_t> deepest;
    for (Iterator sample = begin; sample != end; ++sample) {
        Top top{sample->rssi, sample->rssi};
        while (!higher.empty() && !hides(higher.back().level, top.level)) {
            top.valley = std::min(top.valley, higher.back().valley);
            higher.pop_back();
        }
        higher.push_back(top);
        deepest.push_back(top.valley);
    }
    return deepest;
}

/// Where the trace, walked from a peak's top, crosses a level that it is known to reach, in kHz.
template <typename Iterator>
double crossing(Iterator top, Iterator end, std::int64_t level)
{
    const Iterator below = std::find_if(top, end, [level](const SDCResult& sample) { return sample.rssi <= level; });
    const Iterator above = std::prev(below);
    const double part =
        static_cast<double>(above->rssi - level) / (static_cast<double>(above->rssi) - static_cast<double>(below->rssi));
    return above->frequency_kHz + part * (static_cast<double>(below->frequency_kHz) - above->frequency_kHz);
}

double widthOf(const std::vector<SDCResult>& samples, std::ptrdiff_t top)
{
    const std::int64_t level = std::int64_t{samples[static_cast<std::size_t>(top)].rssi} - widthDrop;
    const double upper = crossing(samples.begin() + top, samples.end(), level);
    const double lower = crossing(std::make_reverse_iterator(samples.begin() + top + 1), samples.rend(), level);
    return upper - lower;
}

/// With its width, where that can be told.
Peak measured(Peak peak, double width_kHz, double resolution_kHz)
{
    const auto whole = [](double kHz) { return static_cast<std::uint32_t>(std::lround(kHz)); };
    if (width_kHz < resolution_kHz) {
        peak.widthBelow_kHz = whole(resolution_kHz);
    } else {
        peak.width_kHz = whole(width_kHz);
    }
    return peak;
}

bool isStronger(const Peak& left, const Peak& right)
{
    return left.level != right.level ? left.level > right.level : left.frequency_kHz < right.frequency_kHz;
}

} // namespace

std::vector<Peak> findPeaks(const std::vector<SDCResult>& samples, double resolution_kHz, std::int32_t least)
{
    // Of equal tops the lowest frequency hides the others, so that there is a peak for each hump and not for each of them.
    const std::vector<std::int32_t> leftValleys = valleys(samples.begin(), samples.end(), std::greater_equal());
    const std::vector<std::int32_t> rightValleys = valleys(samples.rbegin(), samples.rend(), std::greater());
    const std::size_t count = samples.size();
    std::vector<Peak> peaks;
    for (std::size_t first = 1, last = 1; first + 1 < count; first = last + 1) {
        const std::int32_t level = samples[first].rssi;
        for (last = first; last + 1 < count && samples[last + 1].rssi == level;) {
            ++last;
        }
        const bool isHigher = samples[first - 1].rssi < level && last + 1 < count && samples[last + 1].rssi < level;
        const std::int64_t prominence = level - std::int64_t{std::max(leftValleys[first], rightValleys[count - 1 - last])};
        if (isHigher && prominence >= least) {
            const std::size_t middle = first + (last - first) / 2;
            const double width_kHz = widthOf(samples, static_cast<std::ptrdiff_t>(middle));
            peaks.push_back(measured({samples[middle].frequency_kHz, level, prominence, {}, {}}, width_kHz, resolution_kHz));
        }
    }
    std::sort(peaks.begin(), peaks.end(), isStronger);
    return peaks;
}

} // namespace sdc

#include "apps/sdc/verdict/MovingLine.h"

#include "apps/sdc/result/Floor.h"
#include "apps/sdc/verdict/Fluctuation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace sdc {

namespace {

/// The tunings at which a sweep hears much more than noise.
struct Hump {
    std::size_t first = 0;
    std::size_t last = 0;
    std::size_t count = 0;
};

Hump humpOf(const OwnChannel& own, const std::vector<double>& levels)
{
    const double quiet = levelOf(own.noise_mW());
    Hump hump;
    for (std::size_t tuning = 0; tuning < levels.size(); ++tuning) {
        if (levels[tuning] > quiet + muchHigher(own)) {
            hump.first = hump.count == 0 ? tuning : hump.first;
            hump.last = tuning;
            ++hump.count;
        }
    }
    return hump;
}

/// One that is not cut off.
bool isOfALine(const Hump& hump, const OwnChannel& own)
{
    constexpr double unlike = 1.5; // samples
    constexpr std::size_t leastCount = 3;
    const double inFilter = own.filterWidth_kHz() / own.step_kHz();
    const bool isWhole = hump.first > 0 && hump.last + 1 < own.readings().size();
    const bool isOne = hump.count >= leastCount && hump.last - hump.first + 1 == hump.count;
    return isWhole && isOne && std::abs(static_cast<double>(hump.count) - inFilter) < unlike;
}

} // namespace

double muchHigher(const OwnChannel& own)
{
    return 500.0 + 2.0 * own.marginOfMax();
}

bool hasMovingLine(const OwnChannel& own)
{
    constexpr std::size_t fewSweeps = 3;
    const Readings readings = own.aroundFromSweepToSweep();
    if (readings.tunings() != own.readings().size()) {
        return false;
    }
    std::size_t heard = 0;
    std::vector<double> places_kHz;
    for (const std::vector<double>& levels : readings.levels) {
        const Hump hump = humpOf(own, levels);
        heard += hump.count > 0 ? 1U : 0U;
        if (isOfALine(hump, own)) {
            places_kHz.push_back((own.readings()[hump.first].offset_kHz + own.readings()[hump.last].offset_kHz) / 2.0);
        }
    }
    if (places_kHz.size() < fewSweeps || 2 * places_kHz.size() < heard) {
        return false;
    }
    const auto [lowest_kHz, highest_kHz] = std::ranges::minmax(places_kHz);
    return highest_kHz - lowest_kHz > own.width_kHz() / 2.0;
}

} // namespace sdc

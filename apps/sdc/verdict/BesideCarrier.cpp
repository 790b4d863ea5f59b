#include "apps/sdc/verdict/BesideCarrier.h"

#include "apps/sdc/result/Floor.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/verdict/Explanation.h"
#include "apps/sdc/verdict/Fluctuation.h"
#include "apps/sdc/verdict/KnownShapes.h"
#include "apps/sdc/verdict/Rules.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace sdc {

namespace {

/// Over a margin that has been exceeded already; hundredths of a dB.
constexpr double aboveTheMargin = 300.0;

/// Where multipath makes notches. Source: they matter on long hops, which are in bands up to 13 GHz.
bool hasMultipath(const OwnChannel& own)
{
    constexpr double below_kHz = 13.5e6;
    return own.centre_kHz() < below_kHz;
}

/// Something that comes and goes on top of the carrier: by how much; 0 where fading explains it. Rain lets all of the
/// carrier fade slowly, multipath takes away of it.
double comesAndGoes(const Fluctuation& fluctuation, bool isNotched)
{
    const double rises = std::max(fluctuation.rises, isNotched ? 0.0 : fluctuation.falls);
    if (rises > 0.0 && (!isNotched || fluctuation.rises > fluctuation.falls)) {
        return rises + aboveTheMargin;
    }
    if (fluctuation.comes > 0.0) {
        return fluctuation.comes + aboveTheMargin;
    }
    return fluctuation.jumps > 0.0 && !isNotched ? fluctuation.jumps + aboveTheMargin : 0.0;
}

Assumed withCarrier(const OwnChannel& own)
{
    return {.hasMasks = true, .hasUnseen = !own.isSeenFromBeside(), .hasOwnCarrier = true};
}

/// Whether the own carrier with a notch in it looks like that.
bool mayBeNotched(const OwnChannel& own)
{
    constexpr int steps = 18;
    const double width_kHz = own.width_kHz();
    for (const double width : {0.2, 0.3, 0.4, 0.5, 0.7, 1.0}) {
        for (int step = -steps; step <= steps; ++step) {
            const double centre = step / 20.0;
            Assumed notched = withCarrier(own);
            notched.notch = {(centre - width / 2.0) * width_kHz, (centre + width / 2.0) * width_kHz};
            if (explain(own, &OwnReading::mean, notched).over < own.marginOfMean(own.sweeps())) {
                return true;
            }
        }
    }
    return false;
}

/// No link is designed for a level at which receivers begin to saturate.
bool isOverloaded(const OwnChannel& own)
{
    constexpr double overload = -2500.0;
    const OwnReading& nearest = *std::ranges::min_element(
        own.readings(), {}, [](const OwnReading& reading) { return std::abs(reading.offset_kHz); });
    return levelOf(power_mW(nearest.mean, own.receiver())) > overload;
}

} // namespace

Verdict judgeBesideCarrier(const OwnChannel& own, FarEnd farEnd)
{
    constexpr double moreForMean = 50.0;
    constexpr double moreForMax = 100.0;
    const Fluctuation fluctuation = fluctuationOf(own.fromSweepToSweep(), own.scatter());
    const double comes = comesAndGoes(fluctuation, hasMultipath(own));
    if (comes > 0.0) {
        return verdictBy(Rule::besideCarrierComes, comes);
    }
    // A notch that moves from one sweep to the next leaves no shape in the mean of a few.
    constexpr std::size_t fewSweeps = 3;
    const bool isMoving = hasMultipath(own) && own.sweeps() <= fewSweeps && fluctuation.falls > 0.0;
    const bool hasShape = own.tunings() >= samplesOfAShape && !isMoving;
    const Explained usual = hasShape ? explain(own, &OwnReading::mean, withCarrier(own)) : Explained{};
    if (usual.over > own.marginOfMean(own.sweeps()) + moreForMean && !(hasMultipath(own) && mayBeNotched(own))) {
        return verdictBy(Rule::besideCarrierShape, usual.over);
    }
    const bool hasMost = hasShape && own.sweeps() > 2 && !hasMultipath(own);
    const Explained most = hasMost ? explain(own, &OwnReading::max, withCarrier(own)) : Explained{};
    if (most.over > own.marginOfMax() + moreForMax) {
        return verdictBy(Rule::besideCarrierComes, most.over);
    }
    if (isOverloaded(own)) {
        return verdictBy(Rule::overload, aboveTheMargin);
    }
    return verdictBy(farEnd == FarEnd::unknown ? Rule::carrierUntold : Rule::carrierAlone);
}

} // namespace sdc

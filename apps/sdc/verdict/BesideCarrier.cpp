#include "apps/sdc/verdict/BesideCarrier.h"

#include "apps/sdc/result/Floor.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/verdict/EmitterSearch.h"
#include "apps/sdc/verdict/Explanation.h"
#include "apps/sdc/verdict/Fluctuation.h"
#include "apps/sdc/verdict/KnownShapes.h"
#include "apps/sdc/verdict/Profile.h"
#include "apps/sdc/verdict/Rules.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

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

/// Whether an emitter in the channel explains readings far better than any beside it does.
bool isExplainedInside(const OwnChannel& own)
{
    constexpr double farBetter = 60.0;
    constexpr double well = 1.5;
    constexpr double leastRise = 150.0;
    return std::ranges::all_of(own.lags(), [&own](double lag) {
        const Profile profile = own.profileOf(&OwnReading::mean, lag);
        const ShapeMaker make(profile, own.width_kHz(), own.filterWidth_kHz());
        const std::vector<Shape> known = knownShapes(own, make, &OwnReading::mean, withCarrier(own));
        const auto search = [&](SearchRange range) { return searchEmitters(profile, own.noise_mW(), known, make, range); };
        const EmitterSearch anywhere = search(SearchRange::everywhere);
        return anywhere.misfit < well * static_cast<double>(profile.size()) && raisedInside(own, anywhere) > leastRise
            && search(SearchRange::outsideOfTheChannel).cost() > anywhere.cost() + farBetter;
    });
}

/// Whether readings are higher than explained, or of a shape so different that less tells.
bool isUnlike(const Explained& explained, const OwnChannel& own)
{
    constexpr double more = 100.0;
    constexpr double anotherShape = 3.0;
    constexpr double leastOver = 300.0;
    constexpr double hardlyOver = 180.0;
    return explained.over > own.marginOfMean(own.sweeps()) + more
        || (explained.misfit > anotherShape && explained.over > leastOver)
        || (explained.over > hardlyOver && isExplainedInside(own));
}

/// Whether the own carrier with a notch in it looks like that. A notch moves: over a few sweeps that shows, and leaves
/// something like that in the mean.
bool mayBeNotched(const OwnChannel& own, bool isMoving)
{
    constexpr std::size_t sweepsToMove = 4;
    if (!hasMultipath(own) || (!isMoving && own.sweeps() >= sweepsToMove)) {
        return false;
    }
    constexpr int steps = 18;
    constexpr double alike = 1.0;
    const double width_kHz = own.width_kHz();
    for (const double width : {0.2, 0.3, 0.4, 0.5, 0.7, 1.0}) {
        for (int step = -steps; step <= steps; ++step) {
            const double centre = step / 20.0;
            Assumed notched = withCarrier(own);
            notched.notch = {(centre - width / 2.0) * width_kHz, (centre + width / 2.0) * width_kHz};
            const Explained explained = explain(own, &OwnReading::mean, notched);
            if (explained.over < own.marginOfMean(own.sweeps()) && (isMoving || explained.misfit < alike)) {
                return true;
            }
        }
    }
    return false;
}

/// Where the filter takes in nearly all of the carrier, no notch in it takes much of a reading: in the middle of the
/// channel.
double comesAndGoesInTheMiddle(const OwnChannel& own)
{
    constexpr double wide = 0.7;
    constexpr double middle = 0.15;
    constexpr double mostOfANotch = 400.0;
    if (own.filterWidth_kHz() < wide * own.width_kHz()) {
        return 0.0;
    }
    const Fluctuation fluctuation = fluctuationOf(own.fromSweepToSweepWithin(middle * own.width_kHz()), own.scatter());
    const double most = std::max({fluctuation.rises, fluctuation.falls, fluctuation.jumps, fluctuation.comes});
    return most > mostOfANotch ? most - mostOfANotch + aboveTheMargin : 0.0;
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
    constexpr double moreForMax = 100.0;
    const Fluctuation fluctuation = fluctuationOf(own.fromSweepToSweep(), own.scatter());
    const double comes = std::max(comesAndGoes(fluctuation, hasMultipath(own)), comesAndGoesInTheMiddle(own));
    if (comes > 0.0) {
        return verdictBy(Rule::besideCarrierComes, comes);
    }
    // A notch that moves from one sweep to the next leaves no shape in the mean of a few.
    constexpr std::size_t fewSweeps = 3;
    const bool isMoving = hasMultipath(own) && own.sweeps() <= fewSweeps && fluctuation.falls > 0.0;
    const bool hasShape = own.tunings() >= samplesOfAShape && !isMoving;
    const Explained usual = hasShape ? explain(own, &OwnReading::mean, withCarrier(own)) : Explained{};
    const bool isTold = farEnd != FarEnd::unknown;
    if (isTold && isUnlike(usual, own) && !mayBeNotched(own, fluctuation.falls > 0.0)) {
        return verdictBy(Rule::besideCarrierShape, usual.over);
    }
    const bool hasMost = hasShape && own.sweeps() > 2 && !hasMultipath(own);
    const Explained most = hasMost ? explain(own, &OwnReading::max, withCarrier(own)) : Explained{};
    if (most.over > own.marginOfMax() + moreForMax) {
        return verdictBy(Rule::besideCarrierComes, most.over);
    }
    if (isTold && isOverloaded(own)) {
        return verdictBy(Rule::overload, aboveTheMargin);
    }
    return verdictBy(isTold ? Rule::carrierAlone : Rule::carrierUntold);
}

} // namespace sdc

#include "apps/sdc/verdict/Interferer.h"

#include "apps/sdc/result/Floor.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/verdict/EmitterSearch.h"
#include "apps/sdc/verdict/KnownShapes.h"
#include "apps/sdc/verdict/MovingLine.h"
#include "apps/sdc/verdict/Profile.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace sdc {

namespace {

/// Whether the reading that is highest was low in another sweep.
bool comesAndGoes(const OwnChannel& own)
{
    const auto ofOwn = [](const OwnReading& reading) { return reading.isOwn ? reading.max : lowestReading - 1.0; };
    const OwnReading& highest = *std::ranges::max_element(own.readings(), {}, ofOwn);
    return highest.max - highest.min > muchHigher(own);
}

/// The strongest in the channel, by its shape.
std::optional<SeenEmitter> strongestInside(const OwnChannel& own, FarEnd farEnd)
{
    constexpr std::size_t fewTunings = 3;
    if (own.readings().size() < fewTunings) {
        return std::nullopt;
    }
    const Profile profile = own.profileOf(&OwnReading::mean);
    const ShapeMaker make(profile, own.width_kHz(), own.filterWidth_kHz());
    const std::vector<Shape> known =
        knownShapes(own, make, &OwnReading::mean, {.hasOwnCarrier = farEnd != FarEnd::muted, .hasNeighbours = false});
    const EmitterSearch search = searchEmitters(profile, own.noise_mW(), known, make, SearchRange::everywhere);
    std::optional<SeenEmitter> strongest;
    for (const SeenEmitter& emitter : search.emitters) {
        if (emitter.isInside && (!strongest || emitter.power_mW > strongest->power_mW)) {
            strongest = emitter;
        }
    }
    return strongest;
}

InterferenceKind kindOf(const SeenEmitter& emitter)
{
    switch (emitter.form) {
    case EmitterForm::line: return InterferenceKind::line;
    case EmitterForm::carrier: return InterferenceKind::carrier;
    case EmitterForm::wideband: return InterferenceKind::wideband;
    }
    return InterferenceKind::carrier;
}

} // namespace

void describeInterferer(Verdict& verdict, const OwnChannel& own, FarEnd farEnd)
{
    if (!verdict.overFloor) {
        return;
    }
    const std::optional<SeenEmitter> seen = strongestInside(own, farEnd);
    const bool isBeside = seen && std::abs(seen->centre_kHz) > own.width_kHz() / 2.0 && seen->form != EmitterForm::wideband;
    verdict.place = isBeside ? InterferencePlace::adjacent : InterferencePlace::coChannel;
    if (verdict.kind == InterferenceKind::burst || comesAndGoes(own)) {
        verdict.kind = hasMovingLine(own) ? InterferenceKind::sweep : InterferenceKind::burst;
    } else if (seen) {
        verdict.kind = kindOf(*seen);
    }
    if (farEnd == FarEnd::on) {
        constexpr double leastRatio = 0.01;
        const double ratio = milliwatts(*verdict.overFloor) - 1.0;
        verdict.carrierToInterference = static_cast<std::int32_t>(std::lround(-levelOf(std::max(ratio, leastRatio))));
    }
}

} // namespace sdc

#include "tests/judge/Goals.h"

#include "apps/sdc/result/ScanResult.h"
#include "tests/judge/Answer.h"
#include "tests/judge/truth/ChannelTruth.h"
#include "tests/judge/truth/RasterTruth.h"

namespace judge {

namespace {

using sdc::FarEnd;
using sdc::RasterState;

// Hundredths of a dB over the floor.
constexpr std::int32_t weak = 500;
constexpr std::int32_t strong = 1000;

bool isMuted(const Outcome& one, Case which)
{
    return one.told == FarEnd::muted && one.which == which;
}

bool isStrongWithOn(const Outcome& one)
{
    return one.told == FarEnd::on && one.which == Case::disturbed && one.truth.channel.over >= strong;
}

bool isStrong(const RasterTruth& channel)
{
    return channel.occupant == Occupant::somebody && channel.over >= strong;
}

bool isFree(RasterState state)
{
    return state == RasterState::free;
}

bool isInUse(RasterState state)
{
    return state == RasterState::occupied || state == RasterState::intermittent;
}

OfLinks detectionWithMuted(std::int32_t from)
{
    const auto belongs = [from](const Outcome& one) {
        return isMuted(one, Case::disturbed) && one.truth.channel.over >= from && !isExcused(one);
    };
    return {belongs, isAlarm};
}

/// What neighbours raise belongs to the floor.
OfLinks falseAlarms(FarEnd told)
{
    const auto belongs = [told](const Outcome& one) {
        return one.told == told && (one.which == Case::clean || one.which == Case::raised);
    };
    return {belongs, isAlarm};
}

std::vector<Goal> goalsWithMuted()
{
    using enum Goal::Side;
    const auto isOutsideNextCase = [](const Outcome& one) {
        return isMuted(one, Case::clean) || isMuted(one, Case::raised) || (isMuted(one, Case::disturbed) && !isExcused(one));
    };
    const auto isNextCase = [](const Outcome& one) { return isMuted(one, Case::nextCase); };
    return {
        {"muted: detection from 10 dB", atLeast, 99.0, detectionWithMuted(strong)},
        {"muted: detection from 5 dB", atLeast, 95.0, detectionWithMuted(weak)},
        {"muted: false alarms", atMost, 0.5, falseAlarms(FarEnd::muted)},
        {"muted: \"cannot tell\" outside the next case", atMost, 1.0, OfLinks{isOutsideNextCase, cannotTell}},
        {"muted: alarms in the next case", atMost, 2.0, OfLinks{isNextCase, isAlarm}},
    };
}

std::vector<Goal> goalsWithOn()
{
    using enum Goal::Side;
    const auto comesAndGoes = [](const Outcome& one) { return isStrongWithOn(one) && one.truth.channel.comesAndGoes; };
    const auto hasAnotherShape = [](const Outcome& one) {
        const ChannelTruth& truth = one.truth.channel;
        return isStrongWithOn(one) && truth.tunings >= samplesOfAShape && !truth.comesAndGoes && !truth.isShapedLikeOwn;
    };
    return {
        {"on: \"clear\" with 10 dB", atMost, 0.0, OfLinks{isStrongWithOn, isClear}},
        {"on: false alarms", atMost, 0.5, falseAlarms(FarEnd::on)},
        {"on: detection from 10 dB, comes and goes, 3 sweeps", atLeast, 90.0, OfLinks{comesAndGoes, isAlarm}},
        {"on: detection from 10 dB, another shape, 5 samples", atLeast, 80.0, OfLinks{hasAnotherShape, isAlarm}},
    };
}

std::vector<Goal> goalsOfRaster()
{
    using enum Goal::Side;
    const auto isEmpty = [](const RasterTruth& channel) { return channel.occupant == Occupant::nobody; };
    const auto isFringe = [](const RasterTruth& channel) { return channel.occupant == Occupant::fringe; };
    const auto isSeenAndStrong = [](const RasterTruth& channel) { return channel.isSeen && isStrong(channel); };
    return {
        {"raster: empty called occupied", atMost, 0.2, OfChannels{isEmpty, isInUse}},
        {"raster: occupied from 10 dB found", atLeast, 99.0, OfChannels{isSeenAndStrong, isInUse}},
        {"raster: occupied from 10 dB called free", atMost, 0.1, OfChannels{isStrong, isFree}},
        {"raster: fringe from 5 dB called free", atMost, 0.1, OfChannels{isFringe, isFree}},
    };
}

} // namespace

Share shareOf(const std::vector<Outcome>& outcomes, const OfLinks& asked)
{
    Share share;
    for (const Outcome& outcome : outcomes) {
        if (asked.belongs(outcome)) {
            share.add(asked.counts(outcome));
        }
    }
    return share;
}

Share shareOf(const std::vector<Outcome>& outcomes, const OfChannels& asked)
{
    Share share;
    for (const Outcome& outcome : outcomes) {
        for (const RasterTruth& channel : rasterOf(outcome)) {
            if (asked.belongs(channel)) {
                share.add(asked.counts(stateOf(outcome.answer, channel.offset)));
            }
        }
    }
    return share;
}

const std::vector<Goal>& goals()
{
    static const std::vector<Goal> all = [] {
        std::vector<Goal> goals = goalsWithMuted();
        for (const std::vector<Goal>& more : {goalsWithOn(), goalsOfRaster()}) {
            goals.insert(goals.end(), more.begin(), more.end());
        }
        return goals;
    }();
    return all;
}

Share measure(const Goal& goal, const std::vector<Outcome>& outcomes)
{
    return std::visit([&](const auto& asked) { return shareOf(outcomes, asked); }, goal.of);
}

bool isMet(const Goal& goal, const Share& measured)
{
    if (measured.all == 0) {
        return false;
    }
    return goal.side == Goal::Side::atLeast ? measured.percent() >= goal.percent : measured.percent() <= goal.percent;
}

bool isWrong(const Goal& goal, bool counts)
{
    return counts == (goal.side == Goal::Side::atMost);
}

} // namespace judge

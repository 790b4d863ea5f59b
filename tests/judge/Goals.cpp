#include "tests/judge/Goals.h"

namespace judge {

namespace {

using sdc::FarEnd;
using sdc::Judgement;
using sdc::RasterState;
using Outcomes = std::vector<Outcome>;

// Hundredths of a dB over the floor.
constexpr std::int32_t weak = 500;
constexpr std::int32_t strong = 1000;

constexpr std::uint32_t fewSweeps = 3;
constexpr std::uint32_t samplesOfAShape = 5;

template <typename Belongs, typename Counts>
Share shareOf(const Outcomes& outcomes, Belongs belongs, Counts counts)
{
    Share share;
    for (const Outcome& outcome : outcomes) {
        if (belongs(outcome)) {
            share.add(counts(outcome));
        }
    }
    return share;
}

bool isDisturbed(const Outcome& outcome, FarEnd told, std::int32_t from)
{
    return outcome.told == told && outcome.which == Case::disturbed && outcome.truth.channel.over >= from;
}

bool isExcused(const Outcome& outcome)
{
    return cannotTell(outcome) && mayBeExcused(outcome);
}

Share detectedWithMuted(const Outcomes& outcomes, std::int32_t from)
{
    const auto belongs = [from](const Outcome& one) { return isDisturbed(one, FarEnd::muted, from) && !isExcused(one); };
    return shareOf(outcomes, belongs, isAlarm);
}

Share strongWithMuted(const Outcomes& outcomes)
{
    return detectedWithMuted(outcomes, strong);
}

Share weakWithMuted(const Outcomes& outcomes)
{
    return detectedWithMuted(outcomes, weak);
}

Share falseAlarms(const Outcomes& outcomes, FarEnd told)
{
    const auto belongs = [told](const Outcome& one) {
        return one.told == told && (one.which == Case::clean || one.which == Case::raised);
    };
    return shareOf(outcomes, belongs, isAlarm);
}

Share falseAlarmsWithMuted(const Outcomes& outcomes)
{
    return falseAlarms(outcomes, FarEnd::muted);
}

Share falseAlarmsWithOn(const Outcomes& outcomes)
{
    return falseAlarms(outcomes, FarEnd::on);
}

Share untoldWithMuted(const Outcomes& outcomes)
{
    const auto belongs = [](const Outcome& one) {
        return one.told == FarEnd::muted && (one.which == Case::clean || (one.which == Case::disturbed && !isExcused(one)));
    };
    return shareOf(outcomes, belongs, cannotTell);
}

Share alarmsInNextCase(const Outcomes& outcomes)
{
    const auto belongs = [](const Outcome& one) { return one.told == FarEnd::muted && one.which == Case::nextCase; };
    return shareOf(outcomes, belongs, isAlarm);
}

Share clearWithOn(const Outcomes& outcomes)
{
    return shareOf(
        outcomes, [](const Outcome& one) { return isDisturbed(one, FarEnd::on, strong); },
        [](const Outcome& one) { return one.answer.judgement == Judgement::clear; });
}

Share comingAndGoing(const Outcomes& outcomes)
{
    const auto belongs = [](const Outcome& one) {
        return isDisturbed(one, FarEnd::on, strong) && one.sweeps >= fewSweeps && one.truth.channel.comesAndGoes;
    };
    return shareOf(outcomes, belongs, isAlarm);
}

Share ofAnotherShape(const Outcomes& outcomes)
{
    const auto belongs = [](const Outcome& one) {
        const ChannelTruth& truth = one.truth.channel;
        return isDisturbed(one, FarEnd::on, strong) && truth.tunings >= samplesOfAShape && !truth.comesAndGoes
            && !truth.isShapedLikeOwn;
    };
    return shareOf(outcomes, belongs, isAlarm);
}

template <typename Belongs, typename Counts>
Share shareOfChannels(const Outcomes& outcomes, Belongs belongs, Counts counts)
{
    Share share;
    for (const Outcome& outcome : outcomes) {
        if (outcome.which == Case::dead) {
            continue;
        }
        for (const RasterTruth& channel : outcome.truth.raster) {
            if (belongs(channel)) {
                share.add(counts(stateOf(outcome.answer, channel.offset)));
            }
        }
    }
    return share;
}

bool isFree(RasterState state)
{
    return state == RasterState::free;
}

bool isInUse(RasterState state)
{
    return state == RasterState::occupied || state == RasterState::intermittent;
}

bool isStrong(const RasterTruth& channel)
{
    return channel.occupant == Occupant::somebody && channel.over >= strong;
}

Share emptyCalledOccupied(const Outcomes& outcomes)
{
    return shareOfChannels(
        outcomes, [](const RasterTruth& channel) { return channel.occupant == Occupant::nobody; }, isInUse);
}

Share strongFound(const Outcomes& outcomes)
{
    return shareOfChannels(
        outcomes, [](const RasterTruth& channel) { return channel.isSeen && isStrong(channel); }, isInUse);
}

Share strongCalledFree(const Outcomes& outcomes)
{
    return shareOfChannels(outcomes, isStrong, isFree);
}

Share fringeCalledFree(const Outcomes& outcomes)
{
    return shareOfChannels(
        outcomes, [](const RasterTruth& channel) { return channel.occupant == Occupant::fringe; }, isFree);
}

} // namespace

const std::vector<Goal>& goals()
{
    using enum Goal::Side;
    static const std::vector<Goal> all{
        {"muted: detection from 10 dB", atLeast, 99.0, strongWithMuted},
        {"muted: detection from 5 dB", atLeast, 95.0, weakWithMuted},
        {"muted: false alarms", atMost, 0.5, falseAlarmsWithMuted},
        {"muted: \"cannot tell\" outside the next case", atMost, 1.0, untoldWithMuted},
        {"muted: alarms in the next case", atMost, 2.0, alarmsInNextCase},
        {"on: \"clear\" with 10 dB", atMost, 0.0, clearWithOn},
        {"on: false alarms", atMost, 0.5, falseAlarmsWithOn},
        {"on: detection from 10 dB, comes and goes, 3 sweeps", atLeast, 90.0, comingAndGoing},
        {"on: detection from 10 dB, another shape, 5 samples", atLeast, 80.0, ofAnotherShape},
        {"raster: empty called occupied", atMost, 0.2, emptyCalledOccupied},
        {"raster: occupied from 10 dB found", atLeast, 99.0, strongFound},
        {"raster: occupied from 10 dB called free", atMost, 0.1, strongCalledFree},
        {"raster: fringe from 5 dB called free", atMost, 0.1, fringeCalledFree},
    };
    return all;
}

bool isMet(const Goal& goal, const Share& measured)
{
    if (measured.all == 0) {
        return false;
    }
    return goal.side == Goal::Side::atLeast ? measured.percent() >= goal.percent : measured.percent() <= goal.percent;
}

} // namespace judge

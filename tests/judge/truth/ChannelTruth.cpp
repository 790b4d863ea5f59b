#include "tests/judge/truth/ChannelTruth.h"

#include "tests/judge/truth/Reach.h"

#include "apps/sdc/result/ScanResult.h"
#include "simulator/radio/Air.h"
#include "simulator/radio/Band.h"
#include "simulator/radio/Emitters.h"
#include "simulator/radio/Link.h"
#include "simulator/radio/emitters/Carrier.h"
#include "tests/judge/trial/Scan.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <optional>
#include <set>
#include <utility>
#include <variant>

namespace judge {

namespace {

using sdc::InterferenceKind;
using simulator::Emitter;

// Hundredths of a dB.
constexpr std::int32_t leastNoticed = 10;
constexpr std::int32_t grazedFrom = 100;
constexpr std::int32_t raisedFrom = 300;
constexpr std::int32_t gone = 300;
constexpr std::int32_t sameShape = 300;
constexpr std::int32_t asStrong = 600;

/// Finds the truth of one trial's configured channel.
class ChannelExaminer {
public:
    ChannelExaminer(const Trial& trial, const QuietAir& air);
    ChannelTruth examine();

private:
    void findInterferers();
    void findSamples();
    std::vector<std::int32_t> risesAt(std::size_t tuning) const;
    void measure(ChannelTruth& truth) const;
    void watch(ChannelTruth& truth) const;
    void name(ChannelTruth& truth) const;
    void explain(ChannelTruth& truth) const;
    std::vector<InterferenceKind> kindsOf(const Emitter& emitter) const;
    std::vector<std::int32_t> raisedBy(const Emitters& emitters) const;
    std::int32_t highestFloor(bool isNarrow) const;
    simulator::Shoulders poorestMask() const;
    std::int32_t strongestNeighbour(
        std::uint32_t tuning_kHz, std::uint32_t channelsAway, const std::optional<simulator::Shoulders>& mask) const;
    std::int32_t poorestMasks() const;

    const Trial& m_trial;
    const QuietAir& m_air;
    const simulator::Band m_channel;
    std::vector<std::int64_t> m_samples; ///< in the channel
    std::uint32_t m_tunings = 0;
    Emitters m_rest; ///< all that are no interferers
    Emitters m_grazing;
    Emitters m_interferers;
    std::vector<std::int32_t> m_floor; ///< of those samples
    std::vector<std::int32_t> m_rises; ///< over the floor, of those samples
    std::size_t m_highest = 0;         ///< where it rises most
};

ChannelExaminer::ChannelExaminer(const Trial& trial, const QuietAir& air)
    : m_trial(trial)
    , m_air(air)
    , m_channel(channelAround(trial.link().rxFrequency_kHz, trial.link().channelSpacing_kHz))
{
    findInterferers();
    findSamples();
    m_floor = m_air.readings(m_rest, m_samples);
    m_rises = raisedBy(m_air.emitters());
    m_highest = static_cast<std::size_t>(std::ranges::max_element(m_rises) - m_rises.begin());
}

void ChannelExaminer::findInterferers()
{
    const Emitters& all = m_air.emitters();
    for (std::size_t index = 0; index < all.size(); ++index) {
        const bool isOwn = m_trial.isFarEndOn && index == 0;
        const Reach reach = isOwn ? Reach::none : reachInto(m_channel, all[index]);
        Emitters& list = reach == Reach::inside ? m_interferers : reach == Reach::grazing ? m_grazing : m_rest;
        list.push_back(all[index]);
    }
}

void ChannelExaminer::findSamples()
{
    const Course& course = m_air.course();
    for (std::int64_t sample = 0; sample < course.samples(); ++sample) {
        if (m_channel.contains(course.tuning_kHz(sample))) {
            m_samples.push_back(sample);
        }
    }
    m_tunings = static_cast<std::uint32_t>(m_samples.size() / course.sweeps);
}

/// What more is read with other emitters than those of the floor.
std::vector<std::int32_t> ChannelExaminer::raisedBy(const Emitters& emitters) const
{
    std::vector<std::int32_t> rises = m_air.readings(emitters, m_samples);
    for (std::size_t index = 0; index < rises.size(); ++index) {
        rises[index] -= m_floor[index];
    }
    return rises;
}

Emitters with(Emitters emitters, const Emitters& more)
{
    emitters.insert(emitters.end(), more.begin(), more.end());
    return emitters;
}

void ChannelExaminer::measure(ChannelTruth& truth) const
{
    truth.over = m_rises[m_highest];
    truth.level = m_floor[m_highest] + truth.over;
    truth.raised = highestFloor(truth.isNarrow) - m_air.noise();
    truth.isGrazed = !m_grazing.empty() && std::ranges::max(raisedBy(with(m_rest, m_grazing))) >= grazedFrom;
}

/// The highest floor, in all samples of the channel or in those nearest to its centre.
std::int32_t ChannelExaminer::highestFloor(bool isNarrow) const
{
    const auto distance_kHz = [this](std::int64_t sample) {
        return std::llabs(std::int64_t{m_air.course().tuning_kHz(sample)} - m_trial.link().rxFrequency_kHz);
    };
    const std::int64_t nearest_kHz = distance_kHz(*std::ranges::min_element(m_samples, {}, distance_kHz));
    std::int32_t highest = rssiFloor;
    for (std::size_t index = 0; index < m_samples.size(); ++index) {
        if (isNarrow || distance_kHz(m_samples[index]) == nearest_kHz) {
            highest = std::max(highest, m_floor[index]);
        }
    }
    return highest;
}

/// In each sweep, at one tuning of the channel.
std::vector<std::int32_t> ChannelExaminer::risesAt(std::size_t tuning) const
{
    std::vector<std::int32_t> rises;
    for (std::size_t index = tuning; index < m_rises.size(); index += m_tunings) {
        rises.push_back(m_rises[index]);
    }
    return rises;
}

/// What the rises tell of one tuning over the sweeps, and of one tuning beside the other.
void ChannelExaminer::watch(ChannelTruth& truth) const
{
    std::int32_t lowest = truth.over;
    for (std::size_t tuning = 0; tuning < m_tunings; ++tuning) {
        lowest = std::min(lowest, std::ranges::max(risesAt(tuning)));
    }
    truth.comesAndGoes = isGoneOnce(risesAt(m_highest % m_tunings));
    truth.isShapedLikeOwn = m_tunings >= samplesOfAShape && truth.over - lowest <= sameShape;
}

/// Of one emitter: what it is, and what it looks like where it was not on all the time.
std::vector<InterferenceKind> ChannelExaminer::kindsOf(const Emitter& emitter) const
{
    const double spacing_kHz = m_trial.link().channelSpacing_kHz;
    std::vector<InterferenceKind> kinds{natureOf(emitter, spacing_kHz)};
    const bool isWide = looksWide(emitter, spacing_kHz);
    if (isWide && kinds.front() != InterferenceKind::wideband) {
        kinds.push_back(InterferenceKind::wideband);
    }
    const bool isSilentNow = std::ranges::any_of(
        m_samples, [&](std::int64_t sample) { return !simulator::isOn(emitter.schedule, m_air.readAt_ms(sample)); });
    const bool isSweep = kinds.front() == InterferenceKind::sweep;
    if (isSilentNow && m_trial.sweeps > 1 && !isSweep && !isWide) {
        kinds.clear();
    }
    if (isSilentNow || isSweep) {
        kinds.push_back(InterferenceKind::burst);
    }
    return kinds;
}

void ChannelExaminer::name(ChannelTruth& truth) const
{
    std::vector<std::pair<std::int32_t, const Emitter*>> strengths;
    std::int32_t strongest = 0;
    for (const Emitter& emitter : m_interferers) {
        const std::int32_t strength = std::ranges::max(raisedBy(with(m_rest, {emitter})));
        strengths.emplace_back(strength, &emitter);
        strongest = std::max(strongest, strength);
    }
    std::set<InterferenceKind> kinds;
    for (const auto& [strength, emitter] : strengths) {
        if (strength >= std::max(strongest - asStrong, leastNoticed)) {
            const std::vector<InterferenceKind> these = kindsOf(*emitter);
            kinds.insert(these.begin(), these.end());
            truth.isFromBeside = truth.isFromBeside || comesFromBeside(m_channel, *emitter);
        }
    }
    truth.kinds.assign(kinds.begin(), kinds.end());
}

simulator::Shoulders ChannelExaminer::poorestMask() const
{
    return {static_cast<double>(m_trial.link().channelSpacing_kHz), 25.0, 45.0};
}

/// The reading at a tuning with a neighbour as strong as there is, so many channels away, through the poorest mask or, when
/// that is none, through the receiver's leak alone.
std::int32_t ChannelExaminer::strongestNeighbour(
    std::uint32_t tuning_kHz, std::uint32_t channelsAway, const std::optional<simulator::Shoulders>& mask) const
{
    constexpr double level_dBm = -20.0;
    const simulator::Link& link = m_trial.link();
    const double spacing_kHz = link.channelSpacing_kHz;
    double strongest_dBm = -std::numeric_limits<double>::infinity();
    for (const double side : {-1.0, 1.0}) {
        simulator::Carrier neighbour = simulator::carrierInChannel(
            link.rxFrequency_kHz + side * channelsAway * spacing_kHz, level_dBm, spacing_kHz, 0.25, 0.98);
        neighbour.shoulders = mask;
        const simulator::Air air(
            {neighbour}, {link.filterWidth_kHz, link.noiseFigure_dB, link.ultimateRejection_dB, link.saturation_dBm});
        strongest_dBm = std::max(strongest_dBm, air.rssi_dBm(tuning_kHz, 0.0));
    }
    return stored(strongest_dBm);
}

/// The same with all that are there, through the poorest masks.
std::int32_t ChannelExaminer::poorestMasks() const
{
    Emitters rest = m_rest;
    for (Emitter& emitter : rest) {
        if (auto* const carrier = std::get_if<simulator::Carrier>(&emitter.signal)) {
            carrier->shoulders = poorestMask();
        }
    }
    return m_air.readings(rest, m_samples).at(m_highest);
}

/// Several samples in the channel show the slope of a neighbour beside it, but nothing of one farther away.
void ChannelExaminer::explain(ChannelTruth& truth) const
{
    constexpr std::uint32_t farAway = 3;
    const bool showsSlope = m_tunings >= samplesOfAShape || m_trial.kind == sdc::ScanKind::subBand;
    const std::uint32_t tuning_kHz = m_air.course().tuning_kHz(m_samples[m_highest]);
    truth.isExplainableByLeak = truth.isNarrow && truth.level <= strongestNeighbour(tuning_kHz, farAway, std::nullopt);
    truth.isExplainable = truth.level <= poorestMasks()
        || (truth.isNarrow && truth.level <= strongestNeighbour(tuning_kHz, showsSlope ? 2 : 1, poorestMask()));
}

ChannelTruth ChannelExaminer::examine()
{
    ChannelTruth truth;
    truth.tunings = m_tunings;
    if (m_tunings == 0) {
        return truth;
    }
    constexpr std::uint32_t samplesOfAScan = 5;
    truth.isNarrow = m_trial.kind == sdc::ScanKind::channel || m_air.course().perSweep < samplesOfAScan;
    measure(truth);
    watch(truth);
    name(truth);
    explain(truth);
    return truth;
}

} // namespace

bool isGoneOnce(std::span<const std::int32_t> rises)
{
    return rises.size() >= sweepsToComeAndGo && std::ranges::min(rises) <= gone;
}

bool isClean(const ChannelTruth& truth)
{
    return truth.over < leastNoticed && !truth.isGrazed;
}

bool isRaised(const ChannelTruth& truth)
{
    return isClean(truth) && truth.raised >= raisedFrom;
}

ChannelTruth channelTruth(const Trial& trial, const QuietAir& air)
{
    return ChannelExaminer(trial, air).examine();
}

} // namespace judge

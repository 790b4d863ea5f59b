#include "apps/sdc/result/Raster.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/Background.h"
#include "apps/sdc/result/ChannelSamples.h"
#include "apps/sdc/result/Floor.h"
#include "apps/sdc/result/Occupancy.h"
#include "apps/sdc/result/PowerMean.h"
#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/Sightings.h"
#include "apps/sdc/result/Survey.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <tuple>

namespace sdc {

namespace {

// Hundredths of a dB.
constexpr double quietMargin = 250.0; ///< by which the level of a quiet sample may lie over what is expected on average
constexpr double deafMargin = 500.0;  ///< by which it may lie below: a receiver that hears reads its own noise

constexpr double coverage = 0.9; ///< of a channel, to call it free

constexpr double alwaysFrom = 0.9; ///< occupancy of a channel that is occupied and not now and then

constexpr std::int64_t widestGap = 100; ///< channels without a sample that stand in the list, between two that have one

/// Joined stretches of the frequency axis, ascending.
class Stretches {
public:
    void add(double low_kHz, double high_kHz)
    {
        if (!m_all.empty() && low_kHz <= m_all.back().high_kHz) {
            m_all.back().high_kHz = std::max(m_all.back().high_kHz, high_kHz);
        } else {
            m_all.push_back({low_kHz, high_kHz});
        }
    }

    /// The part of a stretch that lies in them, 0 to 1.
    double share(const Stretch& of) const
    {
        double covered_kHz = 0.0;
        auto next = std::lower_bound(m_all.begin(), m_all.end(), of.low_kHz,
            [](const Stretch& stretch, double frequency_kHz) { return stretch.high_kHz < frequency_kHz; });
        for (; next != m_all.end() && next->low_kHz < of.high_kHz; ++next) {
            covered_kHz += std::min(next->high_kHz, of.high_kHz) - std::max(next->low_kHz, of.low_kHz);
        }
        return covered_kHz / of.width_kHz();
    }

private:
    std::vector<Stretch> m_all;
};

/// Finds out what is in the channels of a raster.
class Examiner {
public:
    explicit Examiner(const ChannelResult& channel);
    std::vector<RasterChannel> examine() const;

private:
    RasterChannel describe(const ChannelSamples& samples) const;
    RasterState stateOf(const ChannelSamples& samples, const OccupancyCount& count) const;
    bool isInUse(const ChannelSamples& samples, const OccupancyCount& count) const;
    bool isAlwaysOn(const ChannelSamples& samples) const;
    bool isCommon(std::int32_t level, const OccupancyCount& count) const;
    bool isFree(const ChannelSamples& samples) const;
    bool isQuiet(std::size_t sample) const;
    double halfFilter_kHz() const { return m_channel.receiver.filterWidth_kHz / 2.0; }

    const ChannelResult& m_channel;
    const ScanPlan& m_plan;
    const std::vector<Hold> m_holds;
    const std::vector<SDCResult> m_average;
    const Background m_steady;  ///< of what is there on average
    const Background m_highest; ///< of all that was ever there
    const std::optional<std::int32_t> m_threshold;
    Stretches m_quiet; ///< what the filter took in of quiet samples
};

/// More than a little more than on average.
Background highestOf(const ChannelResult& channel, const Background& steady)
{
    constexpr double muchMore = 2.0;
    const double most_mW = channel.survey.occupancy().mostOnAir_mW();
    return most_mW > muchMore * steady.onAir_mW() ? steady.sometimes(most_mW) : steady;
}

Examiner::Examiner(const ChannelResult& channel)
    : m_channel(channel)
    , m_plan(channel.plan)
    , m_holds(channel.survey.holds())
    , m_average(channel.survey.trace(TraceKind::average))
    , m_steady(m_average, m_plan, channel.receiver)
    , m_highest(highestOf(channel, m_steady))
    , m_threshold(channel.survey.occupancy().rule().threshold)
{
    for (std::size_t sample = 0; sample < m_holds.size(); ++sample) {
        if (isQuiet(sample)) {
            const double tuning_kHz = m_holds[sample].frequency_kHz;
            m_quiet.add(tuning_kHz - halfFilter_kHz(), tuning_kHz + halfFilter_kHz());
        }
    }
}

/// Nothing but noise and what leaks in at least: more may be a mask, or a weak emitter.
bool Examiner::isQuiet(std::size_t sample) const
{
    const Hold& hold = m_holds[sample];
    if (m_threshold) {
        return hold.max <= *m_threshold;
    }
    const double noise = m_steady.noise();
    const double floor = m_steady.under(hold.average);
    const double expected = m_steady.atLeastUnder(hold.average);
    return hold.max <= floor + thresholdMargin && hold.average <= expected + quietMargin
        && hold.average >= noise - deafMargin;
}

/// What leaks in of emitters that come and go is known when all sweeps are.
bool Examiner::isInUse(const ChannelSamples& samples, const OccupancyCount& count) const
{
    if (!count.strongest) {
        return false;
    }
    if (m_threshold || isAlwaysOn(samples)) {
        return true;
    }
    return *count.strongest > m_highest.under(*count.strongest) + thresholdMargin && !isCommon(*count.strongest, count);
}

/// What is heard now and then, alike in many channels, and no louder than the leak of an emitter that saturates the
/// receiver, may be one that was always silent when the receiver stood on it.
bool Examiner::isCommon(std::int32_t level, const OccupancyCount& count) const
{
    constexpr double alike = 2.0 * mostScatter;
    constexpr double many = 0.5;
    const ReceiverData& receiver = m_channel.receiver;
    if (count.looks < 2 || count.share() >= alwaysFrom
        || level > 100.0 * (receiver.saturation_dBm - receiver.ultimateRejection_dB) + alike) {
        return false;
    }
    const auto others =
        std::ranges::count_if(m_holds, [&](const Hold& hold) { return std::abs(hold.max - level) <= alike; });
    return static_cast<double>(others) >= many * static_cast<double>(m_holds.size());
}

/// Nothing that comes and goes is there in each of several sweeps.
bool Examiner::isAlwaysOn(const ChannelSamples& samples) const
{
    constexpr std::size_t several = 3;
    for (std::size_t sample = samples.first; sample < samples.first + samples.count; ++sample) {
        const Hold& hold = m_holds[sample];
        if (hold.readings < several || hold.min <= m_steady.under(hold.min) + thresholdMargin) {
            return false;
        }
    }
    return true;
}

bool Examiner::isFree(const ChannelSamples& samples) const
{
    for (std::size_t sample = samples.first; sample < samples.first + samples.count; ++sample) {
        if (!isQuiet(sample)) {
            return false;
        }
    }
    const double centre_kHz = centreOf_kHz(samples.offset, m_plan);
    const double half_kHz = std::max(m_plan.channelSpacing_kHz / 2.0, halfFilter_kHz());
    return m_quiet.share({centre_kHz - half_kHz, centre_kHz + half_kHz}) >= coverage;
}

RasterState Examiner::stateOf(const ChannelSamples& samples, const OccupancyCount& count) const
{
    if (samples.offset == 0) {
        return RasterState::own;
    }
    if (!m_channel.survey.check().canTell()) {
        return RasterState::unknown;
    }
    if (isInUse(samples, count)) {
        return count.looks == 0 || count.share() >= alwaysFrom ? RasterState::occupied : RasterState::intermittent;
    }
    return count.on == 0 && isFree(samples) ? RasterState::free : RasterState::unknown;
}

RasterChannel Examiner::describe(const ChannelSamples& samples) const
{
    const ChannelOccupancy& occupancy = m_channel.survey.occupancy();
    const OccupancyCount count = occupancy.count(samples.offset);
    PowerMean average;
    double floor = m_steady.noise();
    std::int32_t max = m_holds[samples.first].max;
    for (std::size_t sample = samples.first; sample < samples.first + samples.count; ++sample) {
        average.add(m_holds[sample].average);
        max = std::max(max, m_holds[sample].max);
        floor = std::max(floor, m_highest.under(m_holds[sample].max));
    }
    RasterChannel channel{.offset = samples.offset,
        .centre_kHz = static_cast<std::uint32_t>(std::llround(centreOf_kHz(samples.offset, m_plan))),
        .state = stateOf(samples, count),
        .max = max,
        .average = average.mean(),
        .threshold = m_threshold.value_or(static_cast<std::int32_t>(std::lround(floor + thresholdMargin))),
        .sweeps = count.looks};
    if (count.looks > 0) {
        channel.occupancy = inHundredthsOfPercent(count.share());
        channel.sweepsNeeded = looksNeeded(count, occupancy.rule());
    }
    return channel;
}

std::vector<RasterChannel> Examiner::examine() const
{
    std::vector<RasterChannel> raster;
    for (const ChannelSamples& samples : channelSamples(m_average, m_plan, m_channel.receiver)) {
        if (!raster.empty() && samples.offset - raster.back().offset <= widestGap) {
            for (std::int64_t offset = raster.back().offset + 1; offset < samples.offset; ++offset) {
                raster.push_back({.offset = offset,
                    .centre_kHz = static_cast<std::uint32_t>(std::llround(centreOf_kHz(offset, m_plan)))});
            }
        }
        raster.push_back(describe(samples));
    }
    return raster;
}

std::vector<RasterChannel> inState(RasterState state, const std::vector<RasterChannel>& raster)
{
    std::vector<RasterChannel> channels;
    std::ranges::copy_if(
        raster, std::back_inserter(channels), [state](const RasterChannel& channel) { return channel.state == state; });
    return channels;
}

} // namespace

std::vector<RasterChannel> rasterOf(const ChannelResult& channel)
{
    return Examiner(channel).examine();
}

std::vector<RasterChannel> freeChannels(const std::vector<RasterChannel>& raster)
{
    std::vector<RasterChannel> channels = inState(RasterState::free, raster);
    std::ranges::sort(channels, {}, [](const RasterChannel& channel) {
        return std::tuple(channel.max, channel.average, std::abs(channel.offset), channel.offset);
    });
    return channels;
}

} // namespace sdc

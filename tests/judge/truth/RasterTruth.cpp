#include "tests/judge/truth/RasterTruth.h"

#include "tests/judge/truth/ChannelTruth.h"
#include "tests/judge/truth/Reach.h"

#include "simulator/radio/Air.h"
#include "simulator/radio/Band.h"
#include "simulator/radio/Emitters.h"
#include "simulator/radio/Fading.h"
#include "simulator/radio/Link.h"
#include "tests/judge/trial/Scan.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace judge {

namespace {

constexpr double nothingLeaks_dB = 200.0;
constexpr std::int32_t noFringeBelow = 50; ///< hundredths of a dB
constexpr std::int32_t fringeFrom = 500;   ///< the same

/// Finds the truth of one channel of the raster.
class RasterExaminer {
public:
    RasterExaminer(const QuietAir& air, std::int64_t offset);
    RasterTruth examine() const;

private:
    double spacing_kHz() const { return m_air.link().channelSpacing_kHz; }
    std::uint32_t nearestStep() const;
    std::vector<std::int64_t> samples() const;
    bool isSeen() const;
    std::vector<std::int32_t> risesInFilter(const Emitters& rest) const;
    std::vector<std::int32_t> rises(const Emitters& rest) const;
    std::vector<std::int32_t> risesAtCentre(const Emitters& rest) const;
    simulator::Air airOf(const Emitters& emitters, double rejection_dB) const;

    const QuietAir& m_air;
    const std::int64_t m_offset;
    const double m_centre_kHz;
    const std::uint32_t m_step; ///< the nearest to the centre
};

RasterExaminer::RasterExaminer(const QuietAir& air, std::int64_t offset)
    : m_air(air)
    , m_offset(offset)
    , m_centre_kHz(air.link().rxFrequency_kHz + static_cast<double>(offset) * air.link().channelSpacing_kHz)
    , m_step(nearestStep())
{
}

std::uint32_t RasterExaminer::nearestStep() const
{
    const Course& course = m_air.course();
    const double steps = (m_centre_kHz - course.plan.lowest_kHz) / std::max(course.plan.step_kHz, 1U);
    return std::min(static_cast<std::uint32_t>(std::lround(std::max(steps, 0.0))), course.perSweep - 1);
}

std::vector<std::int64_t> RasterExaminer::samples() const
{
    std::vector<std::int64_t> all;
    for (std::int64_t sweep = 0; sweep < m_air.course().sweeps; ++sweep) {
        all.push_back(sweep * m_air.course().perSweep + m_step);
    }
    return all;
}

bool RasterExaminer::isSeen() const
{
    return std::abs(m_air.course().tuningOfStep_kHz(m_step) - m_centre_kHz) <= spacing_kHz() / 4.0;
}

simulator::Air RasterExaminer::airOf(const Emitters& emitters, double rejection_dB) const
{
    const simulator::Link& link = m_air.link();
    return {emitters, {link.filterWidth_kHz, link.noiseFigure_dB, rejection_dB, link.saturation_dBm},
        simulator::Fading(link.rain, link.notches)};
}

/// By how much what the filter takes in of all emitters but the rest raises the reading, sample by sample; of a receiver
/// that has settled. What it leaks of them, as of a line that sweeps and is elsewhere at the moment, is there without them,
/// too.
std::vector<std::int32_t> RasterExaminer::risesInFilter(const Emitters& rest) const
{
    const simulator::Air air = airOf(m_air.emitters(), m_air.link().ultimateRejection_dB);
    const simulator::Air withoutLeak = airOf(m_air.emitters(), nothingLeaks_dB);
    const simulator::Air restWithoutLeak = airOf(rest, nothingLeaks_dB);
    std::vector<std::int32_t> rises;
    for (const std::int64_t sample : samples()) {
        const auto heard_mW = [&](const simulator::Air& by) {
            return simulator::milliwatts(
                stored(by.rssi_dBm(m_air.course().tuning_kHz(sample), m_air.readAt_ms(sample))) / 100.0);
        };
        const double all_mW = heard_mW(air);
        const double inFilter_mW = heard_mW(withoutLeak) - heard_mW(restWithoutLeak);
        rises.push_back(stored(simulator::decibels(all_mW / (all_mW - inFilter_mW))));
    }
    return rises;
}

std::vector<std::int32_t> RasterExaminer::rises(const Emitters& rest) const
{
    const std::vector<std::int64_t> at = samples();
    const std::vector<std::int32_t> inFilter = risesInFilter(rest);
    std::vector<std::int32_t> rises = m_air.readings(m_air.emitters(), at);
    const std::vector<std::int32_t> floor = m_air.readings(rest, at);
    for (std::size_t index = 0; index < rises.size(); ++index) {
        rises[index] = std::min(rises[index] - floor[index], inFilter[index]);
    }
    return rises;
}

std::vector<std::int32_t> RasterExaminer::risesAtCentre(const Emitters& rest) const
{
    const simulator::Air all = airOf(m_air.emitters(), m_air.link().ultimateRejection_dB);
    const simulator::Air floor = airOf(rest, m_air.link().ultimateRejection_dB);
    std::vector<std::int32_t> rises;
    for (const std::int64_t sample : samples()) {
        const double time_ms = m_air.readAt_ms(sample);
        rises.push_back(stored(all.rssi_dBm(m_centre_kHz, time_ms)) - stored(floor.rssi_dBm(m_centre_kHz, time_ms)));
    }
    return rises;
}

RasterTruth RasterExaminer::examine() const
{
    const simulator::Band channel = channelAround(m_centre_kHz, spacing_kHz());
    Emitters rest;
    Reach farthest = Reach::none;
    for (const simulator::Emitter& emitter : m_air.emitters()) {
        const Reach reach = reachInto(channel, emitter);
        farthest = std::max(farthest, reach);
        if (reach != Reach::inside) {
            rest.push_back(emitter);
        }
    }
    RasterTruth truth{.offset = m_offset, .isSeen = isSeen(), .occupant = Occupant::uncertain};
    if (farthest == Reach::none) {
        const std::int32_t heard = std::ranges::max(risesInFilter({}));
        truth.occupant = heard >= fringeFrom ? Occupant::fringe
            : heard < noFringeBelow          ? Occupant::nobody
                                             : Occupant::uncertain;
    }
    if (farthest == Reach::inside) {
        const std::vector<std::int32_t> over = truth.isSeen ? rises(rest) : risesAtCentre(rest);
        truth.occupant = Occupant::somebody;
        truth.over = std::ranges::max(over);
        truth.comesAndGoes = isGoneOnce(over);
    }
    return truth;
}

} // namespace

std::vector<RasterTruth> rasterTruth(const QuietAir& air)
{
    const Course& course = air.course();
    const double spacing_kHz = air.link().channelSpacing_kHz;
    const double configured_kHz = air.link().rxFrequency_kHz;
    const auto channelsTo = [&](std::uint32_t step) {
        return (course.tuningOfStep_kHz(step) - configured_kHz) / spacing_kHz;
    };
    const auto lowest = static_cast<std::int64_t>(std::ceil(channelsTo(0)));
    const auto highest = static_cast<std::int64_t>(std::floor(channelsTo(course.perSweep - 1)));
    std::vector<RasterTruth> raster;
    for (std::int64_t offset = lowest; offset <= highest; ++offset) {
        if (offset != 0) {
            raster.push_back(RasterExaminer(air, offset).examine());
        }
    }
    return raster;
}

} // namespace judge

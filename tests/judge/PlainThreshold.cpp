#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "simulator/radio/Air.h"
#include "simulator/radio/Band.h"
#include "tests/judge/Answer.h"
#include "tests/judge/truth/QuietAir.h"
#include "tests/judge/truth/Reach.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace judge {

namespace {

using sdc::Hold;
using sdc::Judgement;
using sdc::RasterState;

// Hundredths of a dB.
constexpr std::int32_t margin = 500;
constexpr std::int32_t swing = 600;
constexpr std::int32_t slope = 400;

/// The receiver's noise, and what it leaks of all that was read. A reading stands for the part of the spectrum up to the
/// next.
std::int32_t floorOf(const sdc::ReceiverData& receiver, std::uint32_t step_kHz, const std::vector<Hold>& holds)
{
    const double saturation_mW = simulator::milliwatts(receiver.saturation_dBm);
    double all_mW = 0.0;
    for (const Hold& hold : holds) {
        const double read_mW = std::min(simulator::milliwatts(hold.average / 100.0), 0.9 * saturation_mW);
        all_mW += read_mW * saturation_mW / (saturation_mW - read_mW) * std::max(step_kHz / receiver.filterWidth_kHz, 1e-3);
    }
    const double noise_dBm = simulator::thermalNoise_dBm(receiver.filterWidth_kHz, receiver.noiseFigure_dB);
    return stored(simulator::decibels(
        simulator::milliwatts(noise_dBm) + all_mW * simulator::milliwatts(-receiver.ultimateRejection_dB)));
}

class PlainDetector {
public:
    explicit PlainDetector(const sdc::ChannelResult& channel);

    Judgement judge(sdc::FarEnd farEnd) const;
    std::vector<RasterAnswer> raster() const;

private:
    bool isHigh(const Hold& hold) const { return hold.max > m_floor + margin; }
    bool changes() const;
    bool isLopsided() const;
    RasterState stateOf(double centre_kHz) const;

    const sdc::ChannelResult& m_channel;
    const std::vector<Hold> m_holds;
    std::vector<Hold> m_own; ///< of the configured channel
    std::int32_t m_floor;
};

PlainDetector::PlainDetector(const sdc::ChannelResult& channel)
    : m_channel(channel)
    , m_holds(channel.survey.holds())
    , m_floor(floorOf(channel.receiver, channel.plan.step_kHz, m_holds))
{
    const simulator::Band band = channelAround(channel.plan.rxFrequency_kHz, channel.plan.channelSpacing_kHz);
    std::ranges::copy_if(
        m_holds, std::back_inserter(m_own), [&](const Hold& hold) { return band.contains(hold.frequency_kHz); });
}

bool PlainDetector::changes() const
{
    return std::ranges::any_of(m_own, [](const Hold& hold) { return hold.max - hold.min > swing; });
}

bool PlainDetector::isLopsided() const
{
    double below = 0.0;
    double above = 0.0;
    const std::size_t half = m_own.size() / 2;
    for (std::size_t index = 0; index < half; ++index) {
        below += m_own[index].average;
        above += m_own[m_own.size() - 1 - index].average;
    }
    constexpr std::size_t samplesOfAShape = 5;
    return m_own.size() >= samplesOfAShape && std::abs(below - above) > static_cast<double>(half) * slope;
}

Judgement PlainDetector::judge(sdc::FarEnd farEnd) const
{
    if (m_own.empty()) {
        return Judgement::cannotTell;
    }
    if (farEnd == sdc::FarEnd::on) {
        return changes() || isLopsided() ? Judgement::disturbed : Judgement::clear;
    }
    const auto middle = channelAround(m_channel.plan.rxFrequency_kHz, m_channel.plan.channelSpacing_kHz / 2.0);
    const bool isAnyHigh =
        std::ranges::any_of(m_own, [&](const Hold& hold) { return middle.contains(hold.frequency_kHz) && isHigh(hold); });
    const Judgement high = farEnd == sdc::FarEnd::muted ? Judgement::disturbed : Judgement::cannotTell;
    return isAnyHigh ? high : Judgement::clear;
}

RasterState PlainDetector::stateOf(double centre_kHz) const
{
    const auto distance = [centre_kHz](const Hold& hold) { return std::abs(hold.frequency_kHz - centre_kHz); };
    const Hold& nearest = *std::ranges::min_element(m_holds, {}, distance);
    if (distance(nearest) > m_channel.plan.channelSpacing_kHz / 4.0) {
        return RasterState::unknown;
    }
    const bool comesAndGoes = nearest.readings > 1 && nearest.max - nearest.min > swing;
    return !isHigh(nearest) ? RasterState::free : comesAndGoes ? RasterState::intermittent : RasterState::occupied;
}

std::vector<RasterAnswer> PlainDetector::raster() const
{
    std::vector<RasterAnswer> answers;
    if (m_holds.empty()) {
        return answers;
    }
    const double spacing_kHz = m_channel.plan.channelSpacing_kHz;
    const double own_kHz = m_channel.plan.rxFrequency_kHz;
    const auto lowest = static_cast<std::int64_t>(std::ceil((m_holds.front().frequency_kHz - own_kHz) / spacing_kHz));
    const auto highest = static_cast<std::int64_t>(std::floor((m_holds.back().frequency_kHz - own_kHz) / spacing_kHz));
    for (std::int64_t offset = lowest; offset <= highest; ++offset) {
        const double centre_kHz = own_kHz + static_cast<double>(offset) * spacing_kHz;
        answers.push_back({offset, offset == 0 ? RasterState::own : stateOf(centre_kHz)});
    }
    return answers;
}

} // namespace

Answer plainThreshold(const sdc::ChannelResult& channel, sdc::FarEnd farEnd)
{
    const PlainDetector detector(channel);
    return {.judgement = detector.judge(farEnd), .rule = "fixed thresholds", .raster = detector.raster()};
}

} // namespace judge

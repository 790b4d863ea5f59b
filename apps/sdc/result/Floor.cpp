#include "apps/sdc/result/Floor.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <optional>

namespace sdc {

namespace {

constexpr double density_dBmPerkHz = -174.0 + 30.0; ///< thermal noise at 290 K
constexpr double perDecibel = 100.0;

// The masks of transmitters, poorest first: in the channel beside their own, and in the one after that.
constexpr std::array<double, 2> masks_dB{25.0, 45.0};

double ratio(double decibels)
{
    return std::pow(10.0, decibels / 10.0);
}

/// The median of absolute values that scatter normally around 0, as their standard deviation.
double deviationOf(double median)
{
    return median / 0.6745;
}

/// Along a trace that is smooth but for the scatter: each sample against the middle between those beside it.
std::optional<double> scatterAlong(const std::vector<SDCResult>& trace)
{
    constexpr std::size_t leastCount = 20;
    std::vector<double> bends;
    for (std::size_t index = 1; index + 1 < trace.size(); ++index) {
        const std::int32_t lowest = std::min({trace[index - 1].rssi, trace[index].rssi, trace[index + 1].rssi});
        if (lowest > lowestReading) {
            const double middle = (static_cast<double>(trace[index - 1].rssi) + trace[index + 1].rssi) / 2.0;
            bends.push_back(std::abs(trace[index].rssi - middle));
        }
    }
    if (bends.size() < leastCount) {
        return std::nullopt;
    }
    const auto middle = bends.begin() + static_cast<std::ptrdiff_t>(bends.size() / 2);
    std::nth_element(bends.begin(), middle, bends.end());
    return deviationOf(*middle) / std::sqrt(1.5);
}

/// Part of a carrier's power between its centre and an offset above it.
double shareUpTo(double offset_kHz, double symbolRate_kBd, double rollOff)
{
    const double flat_kHz = (1.0 - rollOff) * symbolRate_kBd / 2.0;
    const double flank_kHz = rollOff * symbolRate_kBd;
    if (offset_kHz <= flat_kHz) {
        return offset_kHz / symbolRate_kBd;
    }
    const double into_kHz = std::min(offset_kHz - flat_kHz, flank_kHz);
    const double wave_kHz = flank_kHz / std::numbers::pi * std::sin(std::numbers::pi * into_kHz / flank_kHz);
    return (flat_kHz + (into_kHz + wave_kHz) / 2.0) / symbolRate_kBd;
}

} // namespace

double milliwatts(double level)
{
    return ratio(level / perDecibel);
}

double levelOf(double power_mW)
{
    return perDecibel * 10.0 * std::log10(power_mW);
}

double noise_mW(const ReceiverData& receiver)
{
    return ratio(density_dBmPerkHz + receiver.noiseFigure_dB) * receiver.filterWidth_kHz;
}

double readingOf(double power_mW)
{
    return std::max(levelOf(power_mW), static_cast<double>(lowestReading));
}

std::int32_t quietReading(const ReceiverData& receiver)
{
    return static_cast<std::int32_t>(std::lround(readingOf(noise_mW(receiver))));
}

/// Readings level off as P Ps / (P + Ps) does. Those at the very end tell no more than that.
double power_mW(std::int32_t reading, const ReceiverData& receiver)
{
    constexpr double mostOfSaturation = 0.9;
    const double read_mW = milliwatts(reading);
    const double saturation_mW = ratio(receiver.saturation_dBm);
    return read_mW / (1.0 - std::min(read_mW / saturation_mW, mostOfSaturation));
}

double scatterOf(const Survey& survey)
{
    std::optional<double> scatter = survey.medianStep();
    if (scatter) {
        scatter = deviationOf(*scatter) / std::numbers::sqrt2;
    } else {
        scatter = scatterAlong(survey.trace(TraceKind::max));
    }
    return std::clamp(scatter.value_or(mostScatter), leastScatter, mostScatter);
}

double shareOfCarrier(double centre_kHz, double channelWidth_kHz, double tuning_kHz, double filterWidth_kHz)
{
    constexpr double occupied = 0.98;
    constexpr double rollOff = 0.2;
    const double symbolRate_kBd = occupied * channelWidth_kHz / (1.0 + rollOff);
    const auto signedShareTo = [&](double offset_kHz) {
        return std::copysign(shareUpTo(std::abs(offset_kHz), symbolRate_kBd, rollOff), offset_kHz);
    };
    const double offset_kHz = tuning_kHz - centre_kHz;
    return signedShareTo(offset_kHz + filterWidth_kHz / 2.0) - signedShareTo(offset_kHz - filterWidth_kHz / 2.0);
}

Stretch channelAt(std::int64_t offset, const ScanPlan& plan)
{
    const double centre_kHz =
        plan.rxFrequency_kHz + static_cast<double>(offset) * static_cast<double>(plan.channelSpacing_kHz);
    const double half_kHz = plan.channelSpacing_kHz / 2.0;
    return {centre_kHz - half_kHz, centre_kHz + half_kHz};
}

Leakage::Leakage(const ReceiverData& receiver, const ScanPlan& plan, const std::vector<SDCResult>& trace)
    : m_receiver(receiver)
    , m_perReading(receiver.filterWidth_kHz > 0.0 ? plan.step_kHz / receiver.filterWidth_kHz : 0.0)
{
    for (const SDCResult& sample : trace) {
        const double heard_mW = power_mW(sample.rssi, receiver) - noise_mW(receiver);
        m_heard.push_back({static_cast<double>(sample.frequency_kHz), std::max(heard_mW, 0.0)});
    }
}

double Leakage::rejected_mW(const Stretch& channel) const
{
    const double half_kHz = m_receiver.filterWidth_kHz / 2.0;
    double outside_mW = 0.0;
    for (const Heard& heard : m_heard) {
        const bool isOutside =
            heard.frequency_kHz + half_kHz <= channel.low_kHz || heard.frequency_kHz - half_kHz >= channel.high_kHz;
        outside_mW += isOutside ? heard.power_mW * m_perReading : 0.0;
    }
    return outside_mW * ratio(-m_receiver.ultimateRejection_dB);
}

double Leakage::strongest_mW(double low_kHz, double high_kHz) const
{
    double strongest_mW = 0.0;
    for (const Heard& heard : m_heard) {
        const bool isThere = low_kHz <= heard.frequency_kHz && heard.frequency_kHz <= high_kHz;
        strongest_mW = isThere ? std::max(strongest_mW, heard.power_mW) : strongest_mW;
    }
    return strongest_mW;
}

double Leakage::mostByMasks_mW(const Stretch& channel) const
{
    const double spacing_kHz = channel.width_kHz();
    const double middle_kHz = (channel.low_kHz + channel.high_kHz) / 2.0;
    double most_mW = 0.0;
    for (const double side : {-1.0, 1.0}) {
        double away_kHz = spacing_kHz;
        for (const double mask_dB : masks_dB) {
            const double centre_kHz = middle_kHz + side * away_kHz;
            most_mW += strongest_mW(centre_kHz - spacing_kHz / 2.0, centre_kHz + spacing_kHz / 2.0) * ratio(-mask_dB);
            away_kHz += spacing_kHz;
        }
    }
    return most_mW;
}

double Leakage::mostOverEdges_mW(const Stretch& channel, std::uint32_t tuning_kHz) const
{
    const double spacing_kHz = channel.width_kHz();
    const double middle_kHz = (channel.low_kHz + channel.high_kHz) / 2.0;
    const double width_kHz = m_receiver.filterWidth_kHz;
    double most_mW = 0.0;
    for (const double side : {-1.0, 1.0}) {
        const double centre_kHz = middle_kHz + side * spacing_kHz;
        const double carrier_mW = strongest_mW(centre_kHz - spacing_kHz / 4.0, centre_kHz + spacing_kHz / 4.0)
            / shareOfCarrier(centre_kHz, spacing_kHz, centre_kHz, width_kHz);
        most_mW += carrier_mW * shareOfCarrier(centre_kHz, spacing_kHz, tuning_kHz, width_kHz);
    }
    return most_mW;
}

double Leakage::likelyReading(const Stretch& channel) const
{
    return readingOf(noise_mW(m_receiver) + rejected_mW(channel));
}

double Leakage::mostReading(const Stretch& channel, std::uint32_t tuning_kHz) const
{
    return readingOf(
        noise_mW(m_receiver) + rejected_mW(channel) + mostByMasks_mW(channel) + mostOverEdges_mW(channel, tuning_kHz));
}

} // namespace sdc

#include "apps/sdc/result/Floor.h"

#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/Sweep.h"

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

// The masks of transmitters in the channel beside their own, and in the one after that: the poorest, and the best that can
// be told from none.
struct Mask {
    double least_dB;
    double most_dB;
};
constexpr std::array<Mask, 2> masks{{{25.0, 38.0}, {45.0, 58.0}}};

constexpr double unbounded_mW = 1e30;

/// So near to the lowest reading those below it may be missing.
constexpr std::int32_t nearLowest = 300;

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
        if (lowest > lowestReading + nearLowest) {
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

/// What a carrier can leave in a channel by its mask, where so much is heard there.
double throughMask_mW(double carrier_mW, const Mask& mask, double heard_mW)
{
    return heard_mW < carrier_mW * ratio(-mask.most_dB) ? 0.0 : carrier_mW * ratio(-mask.least_dB);
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
double power_mW(double reading, const ReceiverData& receiver)
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
    } else if (survey.sweeps() == 1) {
        scatter = scatterAlong(survey.trace(TraceKind::max));
    }
    return std::clamp(scatter.value_or(mostScatter), leastScatter, mostScatter);
}

/// The first terms of the series for the quantile of a normal distribution.
double extremeOf(std::size_t readings)
{
    constexpr double oneIn = 2000.0;
    const double twiceLog = 2.0 * std::log(oneIn * static_cast<double>(std::max<std::size_t>(readings, 1)));
    const double first = std::sqrt(twiceLog);
    return first - std::log(twiceLog * 2.0 * std::numbers::pi) / (2.0 * first);
}

double shareOfCarrier(const CarrierShape& carrier, double tuning_kHz, double filterWidth_kHz)
{
    return shareOfCarrier(carrier, {tuning_kHz - filterWidth_kHz / 2.0, tuning_kHz + filterWidth_kHz / 2.0});
}

double shareOfCarrier(const CarrierShape& carrier, const Stretch& stretch)
{
    constexpr double occupied = 0.98;
    const double symbolRate_kBd = occupied * carrier.channelWidth_kHz / (1.0 + carrier.rollOff);
    const auto signedShareTo = [&](double offset_kHz) {
        return std::copysign(shareUpTo(std::abs(offset_kHz), symbolRate_kBd, carrier.rollOff), offset_kHz);
    };
    return signedShareTo(stretch.high_kHz - carrier.centre_kHz) - signedShareTo(stretch.low_kHz - carrier.centre_kHz);
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
    , m_spacing_kHz(plan.channelSpacing_kHz)
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

/// What the sample nearest to the centre of a channel hears; nothing where none lies near it.
std::optional<double> Leakage::heardAt_mW(double centre_kHz) const
{
    std::optional<double> heard_mW;
    double nearest_kHz = m_spacing_kHz / 2.0;
    for (const Heard& heard : m_heard) {
        const double distance_kHz = std::abs(heard.frequency_kHz - centre_kHz);
        if (distance_kHz <= nearest_kHz) {
            nearest_kHz = distance_kHz;
            heard_mW = heard.power_mW;
        }
    }
    return heard_mW;
}

/// A mask lies on both sides of its carrier alike, and is ten or more dB better in the channel after the one beside.
double Leakage::mostByMasks_mW(const Stretch& channel) const
{
    constexpr double uncertain = 1.4;
    constexpr double further_dB = 10.0;
    const double spacing_kHz = channel.width_kHz();
    const double middle_kHz = (channel.low_kHz + channel.high_kHz) / 2.0;
    const double here_mW = uncertain * heardAt_mW(middle_kHz).value_or(unbounded_mW);
    double most_mW = 0.0;
    for (const double side : {-1.0, 1.0}) {
        const auto heard_mW = [&](double channels) { return heardAt_mW(middle_kHz + side * channels * spacing_kHz); };
        const auto atMost_mW = [&](double channels) { return uncertain * heard_mW(channels).value_or(unbounded_mW); };
        const double beside_mW = throughMask_mW(heard_mW(1.0).value_or(0.0), masks[0], here_mW);
        const double after_mW = throughMask_mW(heard_mW(2.0).value_or(0.0), masks[1], here_mW);
        most_mW += std::min(beside_mW, atMost_mW(2.0));
        most_mW +=
            std::min({after_mW, atMost_mW(1.0) * ratio(-further_dB), atMost_mW(3.0) * ratio(-further_dB), atMost_mW(4.0)});
    }
    return most_mW;
}

} // namespace sdc

#include "simulator/radio/Air.h"

#include <cmath>
#include <numbers>

namespace simulator {

namespace {

constexpr double noiseDensity_dBmPerHz = -174.0;

double milliwatts(double level_dBm)
{
    return std::pow(10.0, level_dBm / 10.0);
}

double decibels(double ratio)
{
    return 10.0 * std::log10(ratio);
}

} // namespace

Carrier carrierInChannel(double centre_kHz, double level_dBm, double channelWidth_kHz, double rollOff, double occupied)
{
    return {centre_kHz, level_dBm, occupied * channelWidth_kHz / (1.0 + rollOff), rollOff};
}

double thermalNoise_dBm(double filterWidth_kHz, double noiseFigure_dB)
{
    constexpr double Hz_per_kHz = 1000.0;
    return noiseDensity_dBmPerHz + decibels(filterWidth_kHz * Hz_per_kHz) + noiseFigure_dB;
}

double shareInFilter(const Carrier& carrier, double tuning_kHz, double filterWidth_kHz)
{
    return Air::Hump(carrier).shareBetween(tuning_kHz - filterWidth_kHz / 2.0, tuning_kHz + filterWidth_kHz / 2.0);
}

Air::Air(const std::vector<Emitter>& emitters, double filterWidth_kHz, double noiseFigure_dB)
    : m_halfWidth_kHz(filterWidth_kHz / 2.0)
    , m_noise_mW(milliwatts(thermalNoise_dBm(filterWidth_kHz, noiseFigure_dB)))
{
    for (const Emitter& emitter : emitters) {
        if (const auto* carrier = std::get_if<Carrier>(&emitter.signal)) {
            m_humps.emplace_back(*carrier);
        } else if (const auto* wave = std::get_if<ContinuousWave>(&emitter.signal)) {
            m_lines.push_back({wave->frequency_kHz, milliwatts(wave->level_dBm)});
        }
    }
}

double Air::rssi_dBm(double tuning_kHz) const noexcept
{
    const double low_kHz = tuning_kHz - m_halfWidth_kHz;
    const double high_kHz = tuning_kHz + m_halfWidth_kHz;
    double power_mW = m_noise_mW;
    for (const Hump& hump : m_humps) {
        power_mW += hump.power_mW * hump.shareBetween(low_kHz, high_kHz);
    }
    for (const Line& line : m_lines) {
        power_mW += low_kHz <= line.frequency_kHz && line.frequency_kHz <= high_kHz ? line.power_mW : 0.0;
    }
    return decibels(power_mW);
}

Air::Hump::Hump(const Carrier& carrier)
    : centre_kHz(carrier.centre_kHz)
    , power_mW(milliwatts(carrier.level_dBm))
    , symbolRate_kBd(carrier.symbolRate_kBd)
    , flatHalf_kHz((1.0 - carrier.rollOff) * carrier.symbolRate_kBd / 2.0)
    , flank_kHz(carrier.rollOff * carrier.symbolRate_kBd)
{
}

/// Share of the power between the centre and an offset above it: the density is 1 / Rs in the flat part and
/// (1 + cos(pi u / flank)) / (2 Rs) at u into the flank.
double Air::Hump::shareFromCentreTo(double offset_kHz) const noexcept
{
    if (offset_kHz <= flatHalf_kHz) {
        return offset_kHz / symbolRate_kBd;
    }
    const double intoFlank_kHz = offset_kHz - flatHalf_kHz;
    if (intoFlank_kHz >= flank_kHz) {
        return 0.5;
    }
    constexpr double pi = std::numbers::pi;
    const double wave_kHz = flank_kHz / pi * std::sin(pi * intoFlank_kHz / flank_kHz);
    return (flatHalf_kHz + (intoFlank_kHz + wave_kHz) / 2.0) / symbolRate_kBd;
}

double Air::Hump::shareBetween(double low_kHz, double high_kHz) const noexcept
{
    const auto signedShareTo = [this](double frequency_kHz) {
        return std::copysign(shareFromCentreTo(std::abs(frequency_kHz - centre_kHz)), frequency_kHz - centre_kHz);
    };
    return signedShareTo(high_kHz) - signedShareTo(low_kHz);
}

} // namespace simulator

#include "simulator/radio/Spectra.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace simulator {

namespace {

constexpr double kHz_per_MHz = 1000.0;

} // namespace

Band Band::common(const Band& other) const noexcept
{
    return {std::max(low_kHz, other.low_kHz), std::min(high_kHz, other.high_kHz)};
}

double Band::overlap_kHz(const Band& other) const noexcept
{
    const Band both = common(other);
    return both.isEmpty() ? 0.0 : both.high_kHz - both.low_kHz;
}

double milliwatts(double level_dBm) noexcept
{
    return std::pow(10.0, level_dBm / 10.0);
}

double decibels(double ratio) noexcept
{
    return 10.0 * std::log10(ratio);
}

CarrierSpectrum::CarrierSpectrum(const Carrier& carrier) noexcept
    : m_centre_kHz(carrier.centre_kHz)
    , m_power_mW(milliwatts(carrier.level_dBm))
    , m_symbolRate_kBd(carrier.symbolRate_kBd)
    , m_flatHalf_kHz((1.0 - carrier.rollOff) * carrier.symbolRate_kBd / 2.0)
    , m_flank_kHz(carrier.rollOff * carrier.symbolRate_kBd)
{
    double reach_kHz = m_flatHalf_kHz + m_flank_kHz;
    if (carrier.shoulders) {
        m_channelWidth_kHz = carrier.shoulders->channelWidth_kHz;
        m_adjacent_mWPerkHz = milliwatts(carrier.level_dBm - carrier.shoulders->adjacent_dB) / m_channelWidth_kHz;
        m_further_mWPerkHz = milliwatts(carrier.level_dBm - carrier.shoulders->further_dB) / m_channelWidth_kHz;
        reach_kHz = std::max(reach_kHz, 2.5 * m_channelWidth_kHz);
    }
    setWhole({m_centre_kHz - reach_kHz, m_centre_kHz + reach_kHz}, power_mW({}));
}

double CarrierSpectrum::power_mW(const Band& band) const noexcept
{
    double power_mW = m_power_mW * share(band);
    if (m_channelWidth_kHz > 0.0) {
        const double first_kHz = 0.5 * m_channelWidth_kHz;
        const double second_kHz = 1.5 * m_channelWidth_kHz;
        const double end_kHz = 2.5 * m_channelWidth_kHz;
        power_mW += m_adjacent_mWPerkHz * onBothSides_kHz(band, first_kHz, second_kHz)
            + m_further_mWPerkHz * onBothSides_kHz(band, second_kHz, end_kHz);
    }
    return power_mW;
}

double CarrierSpectrum::onBothSides_kHz(const Band& band, double nearest_kHz, double farthest_kHz) const noexcept
{
    return band.overlap_kHz({m_centre_kHz + nearest_kHz, m_centre_kHz + farthest_kHz})
        + band.overlap_kHz({m_centre_kHz - farthest_kHz, m_centre_kHz - nearest_kHz});
}

double CarrierSpectrum::share(const Band& band) const noexcept
{
    const auto signedShareTo = [this](double frequency_kHz) {
        return std::copysign(shareFromCentreTo(std::abs(frequency_kHz - m_centre_kHz)), frequency_kHz - m_centre_kHz);
    };
    return signedShareTo(band.high_kHz) - signedShareTo(band.low_kHz);
}

/// Share of the power between the centre and an offset above it: the density is 1 / Rs in the flat part and
/// (1 + cos(pi u / flank)) / (2 Rs) at u into the flank.
double CarrierSpectrum::shareFromCentreTo(double offset_kHz) const noexcept
{
    if (offset_kHz <= m_flatHalf_kHz) {
        return offset_kHz / m_symbolRate_kBd;
    }
    const double intoFlank_kHz = offset_kHz - m_flatHalf_kHz;
    if (intoFlank_kHz >= m_flank_kHz) {
        return 0.5;
    }
    constexpr double pi = std::numbers::pi;
    const double wave_kHz = m_flank_kHz / pi * std::sin(pi * intoFlank_kHz / m_flank_kHz);
    return (m_flatHalf_kHz + (intoFlank_kHz + wave_kHz) / 2.0) / m_symbolRate_kBd;
}

Line::Line(const ContinuousWave& wave) noexcept
    : m_frequency_kHz(wave.frequency_kHz)
    , m_power_mW(milliwatts(wave.level_dBm))
    , m_drift_kHz(wave.drift_kHz)
    , m_radiansPerMs(wave.drift_kHz > 0.0 ? 2.0 * std::numbers::pi / wave.driftPeriod_ms : 0.0)
{
}

double Line::frequency_kHz(double time_ms) const noexcept
{
    return m_drift_kHz > 0.0 ? m_frequency_kHz + m_drift_kHz * std::sin(m_radiansPerMs * time_ms) : m_frequency_kHz;
}

FlatSpectrum::FlatSpectrum(const Band& band, double density_mWPerkHz) noexcept
    : m_density_mWPerkHz(density_mWPerkHz)
{
    setWhole(band, density_mWPerkHz * band.overlap_kHz({}));
}

EdgeSpectrum::EdgeSpectrum(const EdgeLeakage& leakage) noexcept
    : m_edge_kHz(leakage.edge_kHz)
    , m_oneSide_mW(0.0)
    , m_decayPerkHz(leakage.slope_dBPerMHz / 10.0 * std::numbers::ln10 / kHz_per_MHz)
{
    m_oneSide_mW = milliwatts(leakage.density_dBmPerMHz) / kHz_per_MHz / m_decayPerkHz;
    setWhole({}, 2.0 * m_oneSide_mW);
}

double EdgeSpectrum::power_mW(const Band& band) const noexcept
{
    const double low_kHz = band.low_kHz - m_edge_kHz;
    const double high_kHz = band.high_kHz - m_edge_kHz;
    if (low_kHz >= 0.0) {
        return onOneSide_mW(low_kHz, high_kHz);
    }
    if (high_kHz <= 0.0) {
        return onOneSide_mW(-high_kHz, -low_kHz);
    }
    return onOneSide_mW(0.0, -low_kHz) + onOneSide_mW(0.0, high_kHz);
}

/// As a product and not as a difference of two integrals from the edge: far from the edge these are alike in all digits.
double EdgeSpectrum::onOneSide_mW(double nearest_kHz, double farthest_kHz) const noexcept
{
    const double width_kHz = farthest_kHz - nearest_kHz;
    return m_oneSide_mW * std::exp(-m_decayPerkHz * nearest_kHz) * -std::expm1(-m_decayPerkHz * width_kHz);
}

BinnedSpectrum::BinnedSpectrum(Recording recording) noexcept
    : m_recording(std::move(recording))
{
    const double lowest_kHz = m_recording.lowest_kHz;
    setWhole({lowest_kHz, lowest_kHz + m_recording.bins->width_kHz()}, m_recording.bins->total_mW());
}

double BinnedSpectrum::power_mW(const Band& band) const noexcept
{
    return m_recording.bins->powerBelow_mW(band.high_kHz - m_recording.lowest_kHz)
        - m_recording.bins->powerBelow_mW(band.low_kHz - m_recording.lowest_kHz);
}

} // namespace simulator

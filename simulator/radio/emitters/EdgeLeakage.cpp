#include "simulator/radio/emitters/EdgeLeakage.h"

#include "support/Fields.h"

#include <cmath>
#include <numbers>

namespace simulator {

namespace {

constexpr double kHz_per_MHz = 1000.0;

} // namespace

const support::Record<EdgeLeakage>& EdgeLeakage::record()
{
    static const support::Record<EdgeLeakage> record{"edge", "what leaks in over an edge of the band",
        {
            {"edge_kHz", &EdgeLeakage::edge_kHz, frequency_kHz(), "edge of the band"},
            {"density_dBm_per_MHz", &EdgeLeakage::density_dBmPerMHz, support::number(-200, 60, "dBm per MHz"),
                "density at the edge"},
            {"slope_dB_per_MHz", &EdgeLeakage::slope_dBPerMHz, support::number(0.0001, 10000, "dB per MHz"),
                "how fast it falls off on both sides"},
        }};
    return record;
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

} // namespace simulator

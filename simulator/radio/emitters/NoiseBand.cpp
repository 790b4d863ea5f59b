#include "simulator/radio/emitters/NoiseBand.h"

#include "support/Fields.h"

namespace simulator {

const support::Record<NoiseBand>& NoiseBand::record()
{
    static const support::Record<NoiseBand> record{"noise_band", "noise over a band",
        {
            {"lowest_kHz", &NoiseBand::lowest_kHz, frequency_kHz(), "lower end"},
            {"highest_kHz", &NoiseBand::highest_kHz, frequency_kHz(), "upper end"},
            {"rise_dB", &NoiseBand::rise_dB, support::number(0, 100, "dB"), "how much the noise rises"},
        },
        {[](const NoiseBand& band) { return support::notAbove("lowest_kHz", band.lowest_kHz, band.highest_kHz); }}};
    return record;
}

FlatSpectrum::FlatSpectrum(const NoiseBand& band, double receiversNoise_mWPerkHz) noexcept
    : m_density_mWPerkHz(receiversNoise_mWPerkHz * (milliwatts(band.rise_dB) - 1.0))
{
    const Band whole{band.lowest_kHz, band.highest_kHz};
    setWhole(whole, m_density_mWPerkHz * whole.overlap_kHz({}));
}

} // namespace simulator

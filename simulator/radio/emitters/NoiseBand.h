#pragma once

#include "simulator/radio/Band.h"
#include "simulator/radio/emitters/Limits.h"

namespace simulator {

class FlatSpectrum;

/// Noise over a band that raises the receiver's own by so much, evenly over the band.
struct NoiseBand {
    double lowest_kHz;
    double highest_kHz;
    double rise_dB; ///< of the power behind a filter that lies within the band

    using Spectrum = FlatSpectrum;
    static constexpr KindOfEmitter kind{"noise_bands", "noise that raises the receiver's own", 100, false};
    static const support::Record<NoiseBand>& record();
};

class FlatSpectrum : public Spread {
public:
    FlatSpectrum(const NoiseBand& band, double receiversNoise_mWPerkHz) noexcept;
    double power_mW(const Band& band) const noexcept { return m_density_mWPerkHz * extent().overlap_kHz(band); }

private:
    double m_density_mWPerkHz;
};

} // namespace simulator

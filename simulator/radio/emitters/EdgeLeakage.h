#pragma once

#include "simulator/radio/Band.h"
#include "simulator/radio/emitters/Limits.h"

namespace simulator {

class EdgeSpectrum;

/// What leaks in over an edge of the band, such as the terminal's own transmitter through its duplexer: a density that falls
/// off exponentially on both sides of the edge.
struct EdgeLeakage {
    double edge_kHz;
    double density_dBmPerMHz; ///< at the edge
    double slope_dBPerMHz;    ///< by which the density falls with the distance from the edge; above 0

    using Spectrum = EdgeSpectrum;
    static constexpr KindOfEmitter kind{"edges", "leakage over an edge of the band", 100, false};
    static const support::Record<EdgeLeakage>& record();
};

class EdgeSpectrum : public Spread {
public:
    explicit EdgeSpectrum(const EdgeLeakage& leakage) noexcept;
    double power_mW(const Band& band) const noexcept;

private:
    double onOneSide_mW(double nearest_kHz, double farthest_kHz) const noexcept;

    double m_edge_kHz;
    double m_oneSide_mW; ///< everything on one side of the edge
    double m_decayPerkHz;
};

} // namespace simulator

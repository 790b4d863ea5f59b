#pragma once

#include "simulator/radio/emitters/Limits.h"

#include <optional>

namespace simulator {

class Line;

/// A swing to and fro, as a sine that begins at time 0 in the middle, upwards.
struct Drift {
    double reach_kHz; ///< farthest from the middle
    double period_ms; ///< of one swing there and back
};

/// An unmodulated line: a spur, a leaking oscillator. It may drift around its frequency.
struct ContinuousWave {
    double frequency_kHz;
    double level_dBm;
    std::optional<Drift> drift{};

    using Spectrum = Line;
    static constexpr KindOfEmitter kind{"continuous_waves", "unmodulated lines", 1000, true};
    static const support::Record<ContinuousWave>& record();
};

/// All power at one frequency.
class Line {
public:
    explicit Line(const ContinuousWave& wave) noexcept;

    double power_mW() const noexcept { return m_power_mW; }
    double frequency_kHz(double time_ms) const noexcept;

private:
    double m_frequency_kHz;
    double m_power_mW;
    double m_reach_kHz = 0.0;
    double m_radiansPerMs = 0.0;
};

} // namespace simulator

#pragma once

#include <variant>
#include <vector>

namespace simulator {

/// A modulated carrier. Its power density has raised-cosine flanks: flat to (1 - a) Rs / 2 from the centre, half of that at
/// Rs / 2, nothing from (1 + a) Rs / 2 on, with symbol rate Rs and roll-off a.
struct Carrier {
    double centre_kHz;
    double level_dBm; ///< power of the whole carrier
    double symbolRate_kBd;
    double rollOff; ///< 0 to 1; typical radios have 0.2 to 0.35
};

/// A carrier that occupies a part of a channel's width, 0 to 1; 0.98 is typical.
Carrier carrierInChannel(double centre_kHz, double level_dBm, double channelWidth_kHz, double rollOff, double occupied);

/// An unmodulated line: a spur, a leaking oscillator.
struct ContinuousWave {
    double frequency_kHz;
    double level_dBm;
};

/// Anything that radiates.
using Emitter = std::variant<Carrier, ContinuousWave>;

/// Thermal noise at 290 K that a receiver finds in its filter: -174 dBm per Hz, raised by its noise figure.
double thermalNoise_dBm(double filterWidth_kHz, double noiseFigure_dB);

/// The part of a carrier's power, 0 to 1, that passes a rectangular filter: the exact integral of the carrier's density.
double shareInFilter(const Carrier& carrier, double tuning_kHz, double filterWidth_kHz);

/// All emitters and the noise, seen through a receive filter.
///
/// The filter is rectangular, its edges included: channel filters of digital radios are steep against their width, and the
/// power behind it has a closed form. Immutable, so readable from any thread.
class Air {
public:
    Air(const std::vector<Emitter>& emitters, double filterWidth_kHz, double noiseFigure_dB);

    /// The power behind the filter tuned to a frequency. Allocates nothing.
    double rssi_dBm(double tuning_kHz) const noexcept;

private:
    /// A carrier's density with all that does not depend on the tuning worked out.
    struct Hump {
        explicit Hump(const Carrier& carrier);
        double shareFromCentreTo(double offset_kHz) const noexcept;
        double shareBetween(double low_kHz, double high_kHz) const noexcept;

        double centre_kHz;
        double power_mW;
        double symbolRate_kBd;
        double flatHalf_kHz; ///< from the centre to where the flank begins
        double flank_kHz;    ///< width of the flank
    };
    struct Line {
        double frequency_kHz;
        double power_mW;
    };
    friend double shareInFilter(const Carrier& carrier, double tuning_kHz, double filterWidth_kHz);

    std::vector<Hump> m_humps;
    std::vector<Line> m_lines;
    double m_halfWidth_kHz;
    double m_noise_mW;
};

} // namespace simulator

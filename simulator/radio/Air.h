#pragma once

#include <concepts>
#include <limits>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace simulator {

/// How far a transmitter's mask lies below its carrier, on both sides alike.
struct Shoulders {
    double channelWidth_kHz; ///< width of a channel; the first shoulder begins half a width from the carrier's centre
    double adjacent_dB;      ///< power in the first channel beside the carrier's own, below the carrier's; 25 to 35 typical
    double further_dB;       ///< the same of the second channel; 45 to 55 typical. Beyond it there is nothing
};

/// A modulated carrier. Its power density has raised-cosine flanks: flat to (1 - a) Rs / 2 from the centre, half of that at
/// Rs / 2, nothing from (1 + a) Rs / 2 on, with symbol rate Rs and roll-off a.
struct Carrier {
    double centre_kHz;
    double level_dBm; ///< power of the whole carrier, without its shoulders
    double symbolRate_kBd;
    double rollOff; ///< 0 to 1; typical radios have 0.2 to 0.35
    std::optional<Shoulders> shoulders{};
};

/// An unmodulated line: a spur, a leaking oscillator. It may drift to and fro around its frequency, as a sine.
struct ContinuousWave {
    double frequency_kHz;
    double level_dBm;
    double drift_kHz = 0.0;      ///< farthest from frequency_kHz; 0: it stands still
    double driftPeriod_ms = 0.0; ///< of one swing there and back, which begins at time 0 at frequency_kHz, upwards
};

/// Noise over a band that raises the receiver's own by so much.
struct NoiseBand {
    double lowest_kHz;
    double highest_kHz;
    double rise_dB; ///< of the power behind a filter that lies within the band
};

/// What leaks in over an edge of the band, such as the terminal's own transmitter through its duplexer: a density that falls
/// off exponentially on both sides of the edge.
struct EdgeLeakage {
    double edge_kHz;
    double density_dBmPerMHz; ///< at the edge
    double slope_dBPerMHz;    ///< above 0
};

/// The air as a recorded sweep shows it: a power per bin, evenly spread over the bin.
struct Recording {
    double lowest_kHz;              ///< lower edge of the first bin
    double step_kHz;                ///< width of each bin
    std::vector<double> levels_dBm; ///< power in each bin; not a number: nothing is known, nothing is on the air
};

/// When an emitter is on, in the simulated time of the channel's worker.
struct Schedule {
    double from_ms = 0.0;
    double duration_ms = std::numeric_limits<double>::infinity();
    double every_ms = 0.0; ///< from one beginning to the next; 0: it is on once
};

using Signal = std::variant<Carrier, ContinuousWave, NoiseBand, EdgeLeakage, Recording>;

/// Anything that radiates.
struct Emitter {
    template <std::convertible_to<Signal> Kind>
    Emitter(Kind theSignal, Schedule theSchedule = {}, bool theFades = false)
        : signal(std::move(theSignal))
        , schedule(theSchedule)
        , fades(theFades)
    {
    }

    Signal signal;
    Schedule schedule;
    bool fades; ///< comes over the path on which the channel's fading is
};

/// Rain on the path: the level falls at a rate, stays down, and comes back at the same rate. In simulated time.
struct Rain {
    double from_ms;
    double rate_dBPerS;
    double depth_dB;
    double hold_ms; ///< at full depth
};

/// A multipath notch that moves through the band: an attenuation within a width. Having come to its end, it begins anew.
struct Notch {
    double begin_kHz; ///< its centre at time 0
    double end_kHz;   ///< its centre at the end of its way, above or below; equal to begin_kHz for one that stands still
    double speed_kHzPerS;
    double width_kHz;
    double depth_dB;
};

/// A carrier that occupies a part of a channel's width, 0 to 1; 0.98 is typical.
Carrier carrierInChannel(double centre_kHz, double level_dBm, double channelWidth_kHz, double rollOff, double occupied);

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

#pragma once

#include "simulator/radio/RecordedBins.h"

#include <concepts>
#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <utility>
#include <variant>

// What is on the air of a radio channel, and what the path to it does. Records only: Air gives them effect.

namespace simulator {

/// How far a transmitter's mask lies below its carrier, on both sides alike. The power is spread evenly over each channel
/// beside the carrier's own, and beyond the second there is none.
struct Shoulders {
    double channelWidth_kHz; ///< width of a channel; the first shoulder begins half a width from the carrier's centre
    double adjacent_dB;      ///< power in the first channel beside the carrier's own, below the carrier's; 25 to 35 typical
    double further_dB;       ///< the same of the second channel; 45 to 55 typical
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

/// Noise over a band that raises the receiver's own by so much, evenly over the band.
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
    double slope_dBPerMHz;    ///< by which the density falls with the distance from the edge; above 0
};

/// The air as a recorded sweep shows it: a power per bin, evenly spread over the bin.
struct Recording {
    double lowest_kHz; ///< lower edge of the first bin
    std::shared_ptr<const RecordedBins> bins;
};

/// When an emitter is on, in simulated time: from the beginning of a turn on, and no longer at its end. Each thread has a
/// timeline of its own; what a sweep sees goes by that of the channel's worker.
struct Schedule {
    double from_ms = 0.0; ///< beginning of the first turn
    double duration_ms = std::numeric_limits<double>::infinity();
    double every_ms = 0.0; ///< from one beginning to the next, at least the duration; 0: it is on once
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

/// Rain on the path: the level falls at a rate, stays down, and comes back at the same rate. In simulated time; the decibels
/// of showers that overlap add up.
struct Rain {
    double from_ms;
    double rate_dBPerS; ///< above 0
    double depth_dB;
    double hold_ms; ///< at full depth
};

/// A multipath notch that moves through the band: an attenuation within a width. Having come to its end, it begins anew. The
/// decibels of notches that overlap add up where they do.
struct Notch {
    double begin_kHz;     ///< its centre at time 0
    double end_kHz;       ///< its centre at the end of its way, above or below; equal to begin_kHz for one that stands still
    double speed_kHzPerS; ///< of its centre; 0: it stays at begin_kHz
    double width_kHz;
    double depth_dB;
};

/// At most so many notches on one path.
constexpr std::size_t mostNotches = 8;

/// A carrier that occupies a part of a channel's width, 0 to 1; 0.98 is typical.
Carrier carrierInChannel(double centre_kHz, double level_dBm, double channelWidth_kHz, double rollOff, double occupied);

} // namespace simulator

#pragma once

#include "simulator/radio/emitters/Carrier.h"
#include "simulator/radio/emitters/ContinuousWave.h"
#include "simulator/radio/emitters/EdgeLeakage.h"
#include "simulator/radio/emitters/NoiseBand.h"
#include "simulator/radio/emitters/Recording.h"
#include "support/Fields.h"

#include <concepts>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

// What is on the air of a radio channel. Records only: Air gives them effect.

namespace simulator {

/// All kinds, in the order in which documents tell of them. Each is a file of emitters/: its record, how it stands in a
/// scenario, its spectrum.
using Signal = std::variant<Carrier, ContinuousWave, NoiseBand, EdgeLeakage, Recording>;

/// When an emitter is on, in simulated time: from the beginning of a turn on, and no longer at its end. Each thread has a
/// timeline of its own; what a sweep sees goes by that of the channel's worker.
struct Schedule {
    double from_ms = 0.0;                ///< beginning of the first turn
    std::optional<double> duration_ms{}; ///< for ever, if none
    std::optional<double> every_ms{};    ///< from one beginning to the next, at least the duration; it is on once, if none
};

/// Anything that radiates.
struct Emitter {
    Emitter() = default;

    template <std::convertible_to<Signal> Kind>
    Emitter(Kind theSignal, Schedule theSchedule = {}, bool theFades = false)
        : signal(std::move(theSignal))
        , schedule(theSchedule)
        , fades(theFades)
    {
    }

    Signal signal;
    Schedule schedule;
    bool fades = false; ///< comes over the path on which the channel's fading is
};

/// The table of a channel's emitters, which stand in a list for each kind.
const support::Record<std::vector<Emitter>>& emittersRecord();

} // namespace simulator

#pragma once

#include "apps/sdc/verdict/Profile.h"

#include <cstdint>
#include <vector>

// Which emitters a profile shows, besides what is known to be there.

namespace sdc {

/// What an emitter looks like that stays where it is.
enum class EmitterForm : std::uint8_t {
    line,
    carrier,  ///< up to as wide as a channel
    wideband, ///< wider
};

struct SeenEmitter {
    EmitterForm form{};
    double centre_kHz = 0.0; ///< from the channel's centre
    double width_kHz = 0.0;  ///< of a line 0
    double power_mW = 0.0;
    bool isInside = false; ///< reaches into the channel, by a tenth of itself or of the channel
    int hugs = 0;          ///< right beside the channel: -1 below, 1 above; 0: not
};

struct EmitterSearch {
    std::vector<SeenEmitter> emitters;
    double misfit = 0.0;            ///< of the whole profile, in squares of standard deviations
    std::vector<double> all_mW;     ///< what is explained at each point
    std::vector<double> outside_mW; ///< the same without the emitters in the channel

    /// Less is more likely: what explains as well with fewer emitters.
    double cost() const;
};

enum class SearchRange : std::uint8_t { everywhere, outsideOfTheChannel };

/// Adds one emitter after the other, each time the one that explains most of what is left, until nothing is left that is
/// worth an emitter.
EmitterSearch searchEmitters(
    const Profile& profile, double constant_mW, const std::vector<Shape>& known, const ShapeMaker& make, SearchRange range);

} // namespace sdc

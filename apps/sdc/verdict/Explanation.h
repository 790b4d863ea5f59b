#pragma once

#include "apps/sdc/verdict/EmitterSearch.h"
#include "apps/sdc/verdict/KnownShapes.h"
#include "apps/sdc/verdict/OwnChannel.h"

namespace sdc {

/// Readings against what may explain them.
struct Explained {
    double misfit = 0.0; ///< mean over the points, in squares of standard deviations
    double over = 0.0;   ///< a reading in the channel over what is explained, at most; hundredths of a dB
};

/// The best explanation of the readings across the channel by known shapes. With the own carrier, which shows how steep
/// edges are, anything beside the channel explains, too: a power for each part of the spectrum that filters begin or end
/// with.
Explained explain(const OwnChannel& own, OwnLevel level, const Assumed& assumed);

/// By how much emitters in the channel raise a reading in it, at most; hundredths of a dB.
/// @param search  over the readings of the channel
double raisedInside(const OwnChannel& own, const EmitterSearch& search);

} // namespace sdc

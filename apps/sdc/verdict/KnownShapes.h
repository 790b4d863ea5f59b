#pragma once

#include "apps/sdc/result/Floor.h"
#include "apps/sdc/verdict/OwnChannel.h"
#include "apps/sdc/verdict/Profile.h"

#include <vector>

// What may be heard in a channel in which no interferer is.

namespace sdc {

/// What may be taken to explain readings besides the carriers beside the channel.
struct Assumed {
    bool hasMasks = false;   ///< the poorest that there are, of transmitters that the scan shows
    bool hasUnseen = false;  ///< transmitters that it does not show
    bool mustBeSeen = false; ///< a carrier beside the channel counts only where a sample beside the channel hears it
    bool hasOwnCarrier = false;
    bool hasNeighbours = true; ///< carriers in the channels beside
    Stretch notch{0.0, 0.0};   ///< in which multipath takes away of the own carrier
};

/// Whether readings tell where what stands beside the channel begins.
bool hasEdges(const OwnChannel& own);

/// The shapes of leaks, of masks, of the carriers in the channels beside, and of the own carrier, none with more power than
/// readings allow.
std::vector<Shape> knownShapes(const OwnChannel& own, const ShapeMaker& make, OwnLevel level, const Assumed& assumed);

/// What a scan may not show, but leaves in the filter: a transmitter as strong as readings go, by its mask in the middle of
/// the channel, over its edges, and through the filter.
double unseen_mW(const OwnChannel& own, const OwnReading& reading);

/// The most that the masks of those that the scan shows leave in the channel.
double masksSeen_mW(const OwnChannel& own);

} // namespace sdc

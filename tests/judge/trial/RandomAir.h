#pragma once

#include "tests/judge/trial/RandomSite.h"

namespace judge {

/// Puts on the air of a site:
/// - the far end's carrier, -28 to -75 dBm, first of all, when it is on;
/// - neighbours on the raster of every strength, up to -20 dBm, with and without shoulders;
/// - 0 to 3 interferers of every kind, -10 to 40 dB over all that is there already: in the configured channel, in the
///   adjacent ones, elsewhere, on the raster and off it;
/// - satellites, what leaks in over the edge of the band, and fading, now and then.
void putOnAir(Dice& dice, Site& site, bool isFarEndOn);

} // namespace judge

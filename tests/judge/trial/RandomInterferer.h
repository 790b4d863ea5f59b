#pragma once

#include "simulator/radio/Emitters.h"
#include "tests/judge/trial/RandomSite.h"

#include <optional>

namespace judge {

/// An emitter of any kind, -10 to 40 dB over all that is on the air of the site already, but not stronger than -20 dBm: in
/// the configured channel, in the adjacent ones, elsewhere, on the raster and off it; always on, or in turns.
/// @return nothing where it cannot be heard in its channel at all
std::optional<simulator::Emitter> randomInterferer(Dice& dice, const Site& site);

} // namespace judge

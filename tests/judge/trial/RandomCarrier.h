#pragma once

#include "simulator/radio/emitters/Carrier.h"
#include "tests/support/Dice.h"

#include <optional>

namespace judge {

using tests::Dice;

/// No emitter is heard stronger: readings of what is would say little.
inline constexpr double strongest_dBm = -20.0;

/// As a file has it, with two decimals.
double hundredth(double value);

/// A carrier that fills a channel of this width, with a roll-off of 0.2 to 0.35.
simulator::Carrier randomCarrier(Dice& dice, double centre_kHz, double level_dBm, double channelWidth_kHz);

/// Of masks that occur: 25 to 35 dB below the carrier in the next channel, 45 to 55 dB in the one after.
std::optional<simulator::Shoulders> randomShoulders(Dice& dice, double spacing_kHz, double probability);

} // namespace judge

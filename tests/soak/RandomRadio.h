#pragma once

#include "tests/support/Dice.h"

#include "simulator/scenario/Scenario.h"

#include <optional>
#include <vector>

namespace soak {

using tests::Dice;

/// What the exceptions of injected faults say.
inline constexpr std::string_view faultText = "the soak's fault";

/// A unit type that no controller plans for.
inline constexpr std::string_view unknownUnit = "no such unit";

/// The links of all channels of the built-in scenarios.
std::vector<simulator::Link> builtInLinks();

/// One to eight channels, each with one of the links, and seeds and delays of its own.
std::vector<simulator::TerminalChannel> randomChannels(Dice& dice, const std::vector<simulator::Link>& links);

/// A fault of the calls that a sweep makes; it may wait for a later one.
simulator::Fault randomSweepFault(Dice& dice);

/// A fault of the next call of an operation that a start reads the radio with.
simulator::Fault randomStartFault(Dice& dice, const simulator::Link& link);

} // namespace soak

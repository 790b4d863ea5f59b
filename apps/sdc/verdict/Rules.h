#pragma once

#include "apps/sdc/verdict/Verdict.h"

#include <cstdint>
#include <optional>

namespace sdc {

/// What decided.
enum class Rule : std::uint8_t {
    noSample,
    noLevel,
    deadReceiver,
    noCarrier,
    quiet,
    neighboursOnly,
    overAllLeaks,
    maybeMask,
    shapedInChannel,
    burstInChannel,
    maybeLeak,
    overAnyLeak,
    overload,
    besideCarrierComes,
    besideCarrierShape,
    carrierUntold,
    carrierAlone,
};

/// @param over  hundredths of a dB over what is explained without an interferer: a disturbance by little is only suspected
Verdict verdictBy(Rule rule, std::optional<double> over = {});

} // namespace sdc

#pragma once

#include "apps/sdc/verdict/OwnChannel.h"

namespace sdc {

/// What is much higher at a tuning than at another time; hundredths of a dB.
double muchHigher(const OwnChannel& own);

/// Whether a line moves through the channel: most sweeps that hear something hear it as wide as the receive filter makes a
/// line, in places half a channel apart or more. One that moves on while the filter passes is heard too wide or too narrow.
bool hasMovingLine(const OwnChannel& own);

} // namespace sdc

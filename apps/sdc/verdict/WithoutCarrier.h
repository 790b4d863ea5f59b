#pragma once

#include "apps/sdc/verdict/OwnChannel.h"
#include "apps/sdc/verdict/Verdict.h"

namespace sdc {

/// The verdict where the far end is muted and something is heard over the noise.
Verdict judgeWithoutCarrier(const OwnChannel& own);

} // namespace sdc

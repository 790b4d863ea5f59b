#pragma once

#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/verdict/OwnChannel.h"
#include "apps/sdc/verdict/Verdict.h"

namespace sdc {

/// The verdict where the far end may be on and something is heard over the noise.
Verdict judgeBesideCarrier(const OwnChannel& own, FarEnd farEnd);

} // namespace sdc

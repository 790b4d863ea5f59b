#pragma once

#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/verdict/OwnChannel.h"
#include "apps/sdc/verdict/Verdict.h"

namespace sdc {

/// Adds kind and place of the interferer to a verdict that tells by how much it raises readings, and where the own carrier
/// is on the carrier to interference ratio.
void describeInterferer(Verdict& verdict, const OwnChannel& own, FarEnd farEnd);

} // namespace sdc

#pragma once

#include "tests/judge/QuietAir.h"
#include "tests/judge/Truth.h"

#include <vector>

namespace judge {

std::vector<RasterTruth> rasterTruth(const QuietAir& air);

} // namespace judge

#pragma once

#include "apps/sdc/results/ResultForm.h"

#include <string>
#include <vector>

namespace sdc {

/// Where a result that is of its form is at odds with itself: the first few places, one line each, which begins with the
/// place.
std::vector<std::string> contradictions(const ResultInFile& result);

} // namespace sdc

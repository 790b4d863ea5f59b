#pragma once

#include "tests/judge/Outcome.h"

#include <ostream>
#include <vector>

namespace judge {

/// A line a goal: what is asked, what was measured, and whether it is met.
/// @return whether all are
bool writeGoals(std::ostream& stream, const std::vector<Outcome>& outcomes);

/// Everything else: what was said of links by the level of their interferers and by their kind, of special cases, and of the
/// channels of the raster.
void writeTables(std::ostream& stream, const std::vector<Outcome>& outcomes);

} // namespace judge

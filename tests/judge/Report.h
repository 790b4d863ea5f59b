#pragma once

#include "tests/judge/Outcome.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace judge {

/// A line a goal: what is asked, what was measured, and whether it is met.
/// @return whether all are
bool writeGoals(std::ostream& stream, const std::vector<Outcome>& outcomes);

/// Everything else, in tables: what was said of links with interferers by their level, of those without, and of the
/// channels of the raster.
void writeTables(std::ostream& stream, const std::vector<Outcome>& outcomes);

/// The trials that were judged wrongly, goals or not, at most so many, with what it takes to look at them.
void writeFailures(std::ostream& stream, const std::vector<Outcome>& outcomes, std::size_t most);

} // namespace judge

#pragma once

#include "tests/judge/Outcome.h"

#include <cstddef>
#include <ostream>
#include <vector>

namespace judge {

/// Of each goal the links that count against it, at most so many, with what is so and what was said. All else about a link
/// tells its scenario.
void writeFailures(std::ostream& stream, const std::vector<Outcome>& outcomes, std::size_t most);

} // namespace judge

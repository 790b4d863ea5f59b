#pragma once

#include "apps/sdc/compare/Comparison.h"

#include <ostream>

namespace sdc {

/// Writes for people what has changed; says so when nothing has. Of many changes of a kind, the largest.
void writeComparison(std::ostream& stream, const Comparison& comparison);

} // namespace sdc

#pragma once

#include "simulator/terminal/SimulatedTerminal.h"

#include <cstddef>
#include <ostream>
#include <vector>

namespace sdc {

/// Samples as a table for people: frequency, level, and the level as a bar.
/// @param mostRows  where there are more samples than that, each row shows the strongest of several neighbours; 0: no limit
void writeTable(std::ostream& stream, const std::vector<SDCResult>& samples, std::size_t mostRows);

} // namespace sdc

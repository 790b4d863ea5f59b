#pragma once

#include "apps/sdc/results/Analysis.h"

#include <ostream>

namespace sdc {

/// For people, after an empty line: what a trace tells, one line each, at most 80 columns. Nothing when it tells nothing.
void writeSummary(std::ostream& stream, const Analysis& analysis, const terminal::ScanPlan& plan);

} // namespace sdc

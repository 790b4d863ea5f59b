#pragma once

#include "apps/sdc/plot/Chart.h"
#include "apps/sdc/plot/Plot.h"

#include <string>

namespace sdc {

/// A chart as text.
std::string chartText(const Chart& chart, const PlotOptions& options);

} // namespace sdc

#pragma once

#include "apps/sdc/plot/Chart.h"
#include "apps/sdc/plot/Plot.h"

#include <string>

namespace sdc {

/// The commands of gnuplot that draw a chart.
std::string chartProgram(const Chart& chart, const PlotOptions& options);

} // namespace sdc

#pragma once

#include "apps/sdc/plot/Chart.h"
#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/result/ScanResult.h"

#include <cstddef>
#include <string>
#include <vector>

// What is said of a chart in words.

namespace sdc {

/// Scenario, unit, kind of scan and, where there are several, channel; of several results what holds of all.
std::string titleOf(const std::vector<Member>& members);

/// "2026-01-02 03:04:05 UTC, 20 sweeps"
std::string whenOf(const ChannelResult& channel);

/// ", PARTIAL 5/13" of all sweeps together, or why the result is not complete although no sample is missing.
std::string incompletenessOf(const ChannelResult& channel);

/// "; configured channel: disturbed (line)"
std::string verdictOn(const Member& member);

/// Title and subtitle, in lines that fit.
std::vector<std::string> headLines(const Chart& chart, std::size_t width);

/// What was measured at the marks and above the limit, where the terminal transmits, what is not in the picture, and in what
/// the results differ.
std::vector<std::string> notesOf(const std::vector<Member>& members, const Chart& chart, const PlotOptions& options);

} // namespace sdc

#pragma once

#include "apps/sdc/results/Analysis.h"

#include <vector>

namespace sdc {

/// All peaks of a trace whose frequencies ascend, strongest first; of peaks that are equally strong the lower frequency
/// first.
std::vector<Peak> findPeaks(const std::vector<SDCResult>& samples);

} // namespace sdc

#pragma once

#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/result/Analysis.h"
#include "apps/sdc/result/ScanResult.h"

#include <cstddef>
#include <string>

namespace sdc {

/// The narrowest table.
inline constexpr int leastTableWidth = 80;

/// The rows of a channel under their header, each a level with its bar. Columns are as wide as what stands in them.
/// @param most  rows; 0: one for each sample or, of several sweeps, for each frequency
std::string tableRows(const ChannelResult& channel, const Analysis& analysis, const WriteOptions& options, std::size_t most);

} // namespace sdc

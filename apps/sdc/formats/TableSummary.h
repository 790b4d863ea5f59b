#pragma once

#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/result/Analysis.h"
#include "apps/sdc/result/ScanResult.h"

#include <string>

namespace sdc {

/// What stands below the rows of a channel: the verdict, and what a trace tells, a line each: noise floor, configured
/// channel, peaks, channels of the raster. Where the table has fewer rows than there are samples, the list of channels is
/// short, too.
std::string tableSummary(const ChannelResult& channel, FarEnd farEnd, const Analysis& analysis, const WriteOptions& options);

} // namespace sdc

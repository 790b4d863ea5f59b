#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/ReceiverData.h"
#include "terminal/ScanPlan.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace sdc {

/// The samples of a trace that stand for a channel of the raster, one after the other: those at which the receiver's filter
/// lies inside the channel, and in any case the nearest to its centre, or the two that are equally near.
struct ChannelSamples {
    std::int64_t offset = 0; ///< channels above the configured one; negative: below
    std::size_t first = 0;   ///< index in the trace
    std::size_t count = 0;   ///< at least one
    double distance_kHz = 0; ///< from the centre to the nearest
};

/// The channel in which a frequency lies; of two the higher. The spacing must not be 0.
std::int64_t channelOf(std::uint32_t frequency_kHz, const terminal::ScanPlan& plan);

/// Where a channel's centre is.
double centreOf_kHz(std::int64_t offset, const terminal::ScanPlan& plan);

/// Of all channels in which there is a sample, in the order of the trace. None without a channel spacing.
std::vector<ChannelSamples> channelSamples(
    const std::vector<SDCResult>& trace, const terminal::ScanPlan& plan, const ReceiverData& receiver);

} // namespace sdc

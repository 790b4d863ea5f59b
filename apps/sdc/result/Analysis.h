#pragma once

#include "apps/sdc/result/Peaks.h"
#include "apps/sdc/result/Raster.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace sdc {

/// Samples at each end of a trace that do not count for the noise floor: the first reading follows the longest move of the
/// receiver, and at both ends of a sub-band the unit's own filter begins to cut, so that they read lower than the band is.
inline constexpr std::size_t edgeSamples = 2;

/// What a scan of a channel tells. What cannot be said is absent.
struct Analysis {
    std::optional<std::int32_t> floor; ///< hundredths of a dBm
    std::vector<Peak> peaks;           ///< strongest first, at most `mostPeaks`
    std::vector<RasterChannel> raster; ///< ascending, the configured one among them

    /// The channel that the receiver belongs to; null where it was not seen.
    const RasterChannel* configured() const;
};

/// The noise floor is the median of the lowest tenth of the levels of the average trace, one at least, without `edgeSamples`
/// at each end. There is none when all of these lie in the configured channel, as in most channel scans: they read the
/// wanted carrier.
/// @param trace   in which peaks are sought; there are none where frequencies do not ascend, as in a sweep that stays in one
///                place
Analysis analyse(const ChannelResult& channel, TraceKind trace = usualTrace);

/// Whether a frequency lies in the channel that the receiver belongs to.
bool isConfigured(std::uint32_t frequency_kHz, const ScanPlan& plan);

} // namespace sdc

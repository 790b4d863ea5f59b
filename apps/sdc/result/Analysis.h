#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/Peaks.h"
#include "apps/sdc/result/ScanResult.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace sdc {

/// Samples at each end of a trace that do not count for the noise floor: the first reading follows the longest move of the
/// receiver, and at both ends of a sub-band the unit's own filter begins to cut, so that they read lower than the band is.
inline constexpr std::size_t edgeSamples = 2;

/// A place of the channel raster: the configured receive frequency and a number of channel spacings. Levels in hundredths of
/// a dBm.
struct RasterChannel {
    std::int64_t offset = 0; ///< channels above the configured one; negative: below
    std::uint32_t centre_kHz = 0;
    std::int32_t level = 0;     ///< mean power of its samples
    std::int32_t strongest = 0; ///< of its samples

    bool operator==(const RasterChannel&) const = default;
};

/// What a trace tells. What cannot be said of it is absent.
struct Analysis {
    std::optional<std::int32_t> floor;        ///< hundredths of a dBm
    std::optional<RasterChannel> configured;  ///< the channel that the receiver belongs to
    std::vector<Peak> peaks;                  ///< strongest first, at most `mostPeaks`
    std::vector<RasterChannel> otherChannels; ///< without the configured one, quietest first
};

/// - The floor is the median of the lowest tenth of the levels, one at least, without `edgeSamples` at each end. There is
/// none
///   when all of these lie in the configured channel, as in most channel scans: they read the wanted carrier.
/// - A sample stands for the slice of spectrum one step wide around it. A channel is one spacing wide; it counts when all of
/// it
///   lies in what the samples taken stand for. Its level is the mean power of the samples not more than half a spacing from
///   its centre. The configured channel counts even when only part of it was seen.
/// @param samples  frequencies ascending; where they do not ascend, as in a sweep that stays in one place, there are neither
///                 peaks nor other channels
/// @param resolution_kHz  see resolutionOf
Analysis analyse(const std::vector<SDCResult>& samples, const ScanPlan& plan, double resolution_kHz);

/// Whether a frequency lies in the channel that the receiver belongs to.
bool isConfigured(std::uint32_t frequency_kHz, const ScanPlan& plan);

} // namespace sdc

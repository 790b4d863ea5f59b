#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace sdc {

/// How far a peak stands above the higher of the two valleys beside it, in hundredths of a dB. Readings scatter by 0.3 to
/// 1 dB; the extremes of 500 of them lie about six times that apart. By chance alone a receiver of 0.5 dB shows no such
/// peak, one of 1 dB may show one in a single sweep of so many samples.
inline constexpr std::int32_t leastProminence = 600;

/// How far below its top a peak's width is taken, in hundredths of a dB. Less than the usual prominence, so that every peak
/// has one.
inline constexpr std::int32_t widthDrop = 300;

inline constexpr std::size_t mostPeaks = 10;

/// A hump of the spectrum. Levels in hundredths.
struct Peak {
    std::uint32_t frequency_kHz = 0;             ///< of its top; of a flat top the sample in the middle
    std::int32_t level = 0;                      ///< dBm
    std::int64_t prominence = 0;                 ///< dB above the higher of the two valleys beside it
    std::optional<std::uint32_t> width_kHz;      ///< between the places 3 dB below the top
    std::optional<std::uint32_t> widthBelow_kHz; ///< where it has none: it is narrower than this, which the scan resolves
};

/// All peaks of a trace whose frequencies ascend, strongest first; of peaks that are equally strong the lower frequency
/// first. A peak is higher than what is beside it on both sides and stands `least` above the higher valley; a
/// trace that ends while it rises has no peak there. Between samples, levels in dB are taken to run straight.
///
/// A scan shows what is narrower than its step or the receive filter as wide as these, or as the few samples that it happens
/// to meet: the wider of the two is what it resolves, and a peak that looks narrower has no width.
/// @param resolution_kHz  the wider of step and receive filter
/// @param least           prominence, from `widthDrop` on
std::vector<Peak> findPeaks(
    const std::vector<SDCResult>& samples, double resolution_kHz, std::int32_t least = leastProminence);

} // namespace sdc

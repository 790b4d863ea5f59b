#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace sdc {

/// How far a peak stands above the higher of the two valleys beside it, in hundredths of a dB. Readings fluctuate by about
/// 1 dB, so that 6 dB do not come about by chance.
inline constexpr std::int32_t leastProminence = 600;

/// How far below its top a peak's width is taken, in hundredths of a dB. Less than its prominence, so that every peak has
/// one.
inline constexpr std::int32_t widthDrop = 300;

inline constexpr std::size_t mostPeaks = 10;

/// A hump of the spectrum. Levels in hundredths.
struct Peak {
    std::uint32_t frequency_kHz = 0; ///< of its top; of a flat top the sample in the middle
    std::int32_t level = 0;          ///< dBm
    std::int64_t prominence = 0;     ///< dB above the higher of the two valleys beside it
    std::uint32_t width_kHz = 0;     ///< between the places 3 dB below the top
};

/// All peaks of a trace whose frequencies ascend, strongest first; of peaks that are equally strong the lower frequency
/// first. A peak is higher than what is beside it on both sides and stands `leastProminence` above the higher valley; a
/// trace that ends while it rises has no peak there. Between samples, levels in dB are taken to run straight.
std::vector<Peak> findPeaks(const std::vector<SDCResult>& samples);

} // namespace sdc

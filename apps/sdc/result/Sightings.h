#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/ReceiverData.h"
#include "terminal/ScanPlan.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace sdc {

/// How much the level of a channel must exceed what is read where nobody transmits, in hundredths of a dB. Readings scatter
/// by 1 dB at most, so that even the highest of many thousands does not.
inline constexpr std::int32_t thresholdMargin = 600;

/// What one sweep shows of a channel. Levels in hundredths of a dBm.
struct Sighting {
    std::int64_t offset = 0;                 ///< channels above the configured one; negative: below
    bool isOn = false;                       ///< whether a sample that stands for it exceeds the threshold
    std::optional<std::int32_t> strongest{}; ///< of those that do and that nothing but an emitter in the channel explains
};

/// One sweep, channel by channel.
///
/// A sample over the threshold is explained otherwise
/// - where the nearest one lies more than a quarter of a spacing from the centre, unless the filter lies inside the channel;
/// - by a slow receiver that still shows the sample before;
/// - of two samples that are equally near to the centre, by what stands beside the channel and is much stronger;
/// - as a leak of an emitter that was silent when the receiver stood on it, or that stands where the filter took in nothing:
///   such a leak is no louder than one that saturates the receiver, and alike at the tunings of several channels; and
///   somewhere in the sweep it is not, unless there are such gaps.
class Sightings {
public:
    /// @param trace      of the sweep
    /// @param threshold  pre-set; then nothing is explained otherwise but by the first of the above. Without one it is
    ///                   `thresholdMargin` over what the sweep lets expect where nobody transmits.
    Sightings(const std::vector<SDCResult>& trace, const terminal::ScanPlan& plan, const ReceiverData& receiver,
        std::optional<std::int32_t> threshold);

    const std::vector<Sighting>& channels() const { return m_channels; }

    /// How many of all samples exceed the threshold.
    std::size_t samplesOn() const { return m_samplesOn; }

    /// All power on the air that the sweep shows.
    double onAir_mW() const { return m_onAir_mW; }

private:
    double m_onAir_mW = 0.0;
    std::vector<Sighting> m_channels;
    std::size_t m_samplesOn = 0;
};

} // namespace sdc

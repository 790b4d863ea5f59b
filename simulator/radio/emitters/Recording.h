#pragma once

#include "simulator/radio/Band.h"
#include "simulator/radio/emitters/Limits.h"
#include "simulator/radio/emitters/RecordedBins.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace simulator {

class BinnedSpectrum;

/// The air as a recorded sweep shows it. Each level is the power of a bin, evenly spread over the bin, or what a filter read
/// that stood at its frequency.
struct Recording {
    std::optional<double> lowest_kHz; ///< where its lowest frequency is put: the lower edge of a bin, the place of a filter;
                                      ///< a receiver needs it
    std::shared_ptr<const RecordedBins> bins; ///< a receiver needs them
    std::optional<std::string> file{};        ///< where a scenario has them from,
    std::vector<std::string> rows{};          ///< or else the text itself, line by line
    std::optional<double> bandwidth_kHz{};    ///< of the filter that read the levels; none: they are those of bins

    using Spectrum = BinnedSpectrum;
    static constexpr KindOfEmitter kind{"recordings", "recorded sweeps", 10, true};
    static const support::Record<Recording>& record();
};

/// A recording of bins.
class BinnedSpectrum : public Spread {
public:
    explicit BinnedSpectrum(Recording recording) noexcept;
    double power_mW(const Band& band) const noexcept;

private:
    double m_lowest_kHz;
    std::shared_ptr<const RecordedBins> m_bins;
};

/// A recording of what a filter read, shown to a receiver. There is a filter like that wherever the receiver's own is as
/// wide; a wider one sees several of them side by side, a narrower one its part of what is between the edges.
///
/// Readings hold the noise of the receiver that made them, which takes the place of the noise of the one that sees them.
/// What is outside the filter, and where a receiver levels off, they hold as well.
class SeenReadings {
public:
    static constexpr double mostFilters = 100.0; ///< side by side

    /// @param noise_mW  what the receiver reads where there is nothing on the air
    SeenReadings(const Recording& recording, double filterWidth_kHz, double noise_mW) noexcept;

    /// By how much the receiver reads more than its noise, which is less than 0 where the recording has less; 0 where the
    /// recording has nothing.
    double aboveNoise_mW(double tuning_kHz) const noexcept;

private:
    double m_lowest_kHz;
    std::shared_ptr<const RecordedBins> m_bins;
    int m_filters;            ///< side by side
    double m_firstFilter_kHz; ///< from the tuning to the lowest of them
    double m_nextFilter_kHz;  ///< from each to the next
    double m_weight;          ///< of what each has read
    double m_noise_mW;        ///< in the place of which each stands
};

} // namespace simulator

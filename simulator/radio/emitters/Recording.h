#pragma once

#include "simulator/radio/Band.h"
#include "simulator/radio/emitters/Limits.h"
#include "simulator/radio/emitters/RecordedBins.h"

#include <memory>
#include <optional>
#include <string>

namespace simulator {

class BinnedSpectrum;

/// The air as a recorded sweep shows it: a power per bin, evenly spread over the bin.
struct Recording {
    double lowest_kHz;                        ///< lower edge of the first bin
    std::shared_ptr<const RecordedBins> bins; ///< a receiver needs them
    std::optional<std::string> file{};        ///< where a scenario has them from

    using Spectrum = BinnedSpectrum;
    static constexpr KindOfEmitter kind{"recordings", "recorded sweeps", 10, true};
    static const support::Record<Recording>& record();
};

class BinnedSpectrum : public Spread {
public:
    explicit BinnedSpectrum(Recording recording) noexcept;
    double power_mW(const Band& band) const noexcept;

private:
    Recording m_recording;
};

} // namespace simulator

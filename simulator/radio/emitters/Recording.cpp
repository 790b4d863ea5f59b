#include "simulator/radio/emitters/Recording.h"

#include "support/Fields.h"

#include <utility>

namespace simulator {

namespace {

std::optional<support::Wrong> withoutBins(const Recording& recording)
{
    if (recording.bins != nullptr || recording.file) {
        return std::nullopt;
    }
    return support::Wrong{"", "is empty; must have at least one bin"};
}

} // namespace

const support::Record<Recording>& Recording::record()
{
    static const support::Record<Recording> record{"recording", "a recorded sweep, shifted to the band",
        {
            {"file", &Recording::file, support::line(1, 1000), "the recorded sweep; its folder begins at the scenario's"},
            {"lowest_kHz", &Recording::lowest_kHz, frequency_kHz(), "where the lower edge of its lowest bin is put"},
        },
        {withoutBins}};
    return record;
}

BinnedSpectrum::BinnedSpectrum(Recording recording) noexcept
    : m_recording(std::move(recording))
{
    const double lowest_kHz = m_recording.lowest_kHz;
    setWhole({lowest_kHz, lowest_kHz + m_recording.bins->width_kHz()}, m_recording.bins->total_mW());
}

double BinnedSpectrum::power_mW(const Band& band) const noexcept
{
    return m_recording.bins->powerBelow_mW(band.high_kHz - m_recording.lowest_kHz)
        - m_recording.bins->powerBelow_mW(band.low_kHz - m_recording.lowest_kHz);
}

} // namespace simulator

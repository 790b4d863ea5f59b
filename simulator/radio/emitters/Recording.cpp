#include "simulator/radio/emitters/Recording.h"

#include "support/Fields.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace simulator {

namespace {

std::optional<support::Wrong> withoutBins(const Recording& recording)
{
    if (recording.file && !recording.rows.empty()) {
        return support::Wrong{"", "has a file and rows; must have one of them"};
    }
    if (recording.bins == nullptr && !recording.file && recording.rows.empty()) {
        return support::Wrong{"", "is empty; must have a file or rows"};
    }
    return std::nullopt;
}

} // namespace

const support::Record<Recording>& Recording::record()
{
    constexpr std::size_t longestRow = 60000; // what is longer is no value to the reader of a scenario
    constexpr std::size_t mostRows = 1000;
    static const support::Record<Recording> record{"recording", "a recorded sweep, put into the band",
        {
            {"file", &Recording::file, support::line(1, 1000), "the recorded sweep; its folder begins at the scenario's",
                support::optional},
            {"rows", &Recording::rows, support::list(support::line(0, longestRow), 0, mostRows, "a row of it"),
                "the sweep itself, in the place of a file", support::optional},
            {"lowest_kHz", &Recording::lowest_kHz, frequency_kHz(),
                "where its lowest frequency is put; where it was recorded unless given", support::optional},
            {"bandwidth_kHz", &Recording::bandwidth_kHz, width_kHz(),
                "of the filter whose readings the levels are; unless given, each is the power of a bin, one step wide",
                support::optional},
        },
        {withoutBins}};
    return record;
}

BinnedSpectrum::BinnedSpectrum(Recording recording) noexcept
    : m_lowest_kHz(recording.lowest_kHz.value_or(0.0))
    , m_bins(std::move(recording.bins))
{
    setWhole({m_lowest_kHz, m_lowest_kHz + m_bins->width_kHz()}, m_bins->total_mW());
}

double BinnedSpectrum::power_mW(const Band& band) const noexcept
{
    return m_bins->powerBelow_mW(band.high_kHz - m_lowest_kHz) - m_bins->powerBelow_mW(band.low_kHz - m_lowest_kHz);
}

SeenReadings::SeenReadings(const Recording& recording, double filterWidth_kHz, double noise_mW) noexcept
    : m_lowest_kHz(recording.lowest_kHz.value_or(0.0))
    , m_bins(recording.bins)
{
    const double width_kHz = recording.bandwidth_kHz.value_or(m_bins->step_kHz());
    const double filters = std::ceil(std::clamp(filterWidth_kHz / width_kHz, 1.0, mostFilters));
    const double room_kHz = std::max(filterWidth_kHz - width_kHz, 0.0); // of the middles of the filters side by side
    m_filters = static_cast<int>(filters);
    m_firstFilter_kHz = -room_kHz / 2.0;
    m_nextFilter_kHz = m_filters > 1 ? room_kHz / (filters - 1.0) : 0.0;
    m_weight = filterWidth_kHz / width_kHz / filters;
    m_noise_mW = noise_mW / filters;
}

double SeenReadings::aboveNoise_mW(double tuning_kHz) const noexcept
{
    double above_mW = 0.0;
    for (int filter = 0; filter < m_filters; ++filter) {
        const double place_kHz = tuning_kHz + m_firstFilter_kHz + filter * m_nextFilter_kHz - m_lowest_kHz;
        const double read_mW = m_bins->powerAt_mW(place_kHz / m_bins->step_kHz());
        above_mW += read_mW > 0.0 ? m_weight * read_mW - m_noise_mW : 0.0;
    }
    return above_mW;
}

} // namespace simulator

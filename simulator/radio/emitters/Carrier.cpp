#include "simulator/radio/emitters/Carrier.h"

#include "support/Fields.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace simulator {

using support::number;

namespace {

const support::Record<Shoulders>& shouldersRecord()
{
    static const support::Record<Shoulders> record{"shoulders", "how far the transmitter's mask lies below the carrier",
        {
            {"channel_width_kHz", &Shoulders::channelWidth_kHz, width_kHz(), "width of a channel"},
            {"adjacent_dB", &Shoulders::adjacent_dB, number(0.1, 200, "dB"),
                "power in the next channel below the carrier's; 25 to 35 typical"},
            {"further_dB", &Shoulders::further_dB, number(0.1, 200, "dB"),
                "power in the channel after that below the carrier's; 45 to 55 typical"},
        }};
    return record;
}

const support::Record<Row>& rowRecord()
{
    static const support::Record<Row> record{"row", "a row of such carriers; centre_kHz is that of the lowest",
        {
            {"count", &Row::count, support::integer(1, 1000), "how many stand there"},
            {"spacing_kHz", &Row::spacing_kHz, width_kHz(), "from one centre to the next above it"},
        }};
    return record;
}

} // namespace

const support::Record<Carrier>& Carrier::record()
{
    static const support::Record<Carrier> record{"carrier", "a modulated carrier",
        {
            {"centre_kHz", &Carrier::centre_kHz, frequency_kHz(), "centre"},
            {"level_dBm", &Carrier::level_dBm, simulator::level_dBm(), "power of the whole carrier"},
            {"symbol_rate_kBd", &Carrier::symbolRate_kBd, number(1, 10000000, "kBd"),
                "symbol rate; half power at half of it from the centre"},
            {"roll_off", &Carrier::rollOff, number(0, 1), "roll-off; 0.2 to 0.35 typical"},
            {"shoulders", &Carrier::shoulders, shouldersRecord(), shouldersRecord().sentence(), support::optional},
            {"row", &Carrier::row, rowRecord(), rowRecord().sentence(), support::optional},
        }};
    return record;
}

Carrier carrierInChannel(double centre_kHz, double level_dBm, double channelWidth_kHz, double rollOff, double occupied)
{
    return {centre_kHz, level_dBm, occupied * channelWidth_kHz / (1.0 + rollOff), rollOff};
}

CarrierSpectrum::CarrierSpectrum(const Carrier& carrier) noexcept
    : m_row(carrier.row.value_or(Row{1, 0.0}))
    , m_centre_kHz(carrier.centre_kHz)
    , m_power_mW(milliwatts(carrier.level_dBm))
    , m_symbolRate_kBd(carrier.symbolRate_kBd)
    , m_flatHalf_kHz((1.0 - carrier.rollOff) * carrier.symbolRate_kBd / 2.0)
    , m_flank_kHz(carrier.rollOff * carrier.symbolRate_kBd)
    , m_reach_kHz(m_flatHalf_kHz + m_flank_kHz)
{
    if (carrier.shoulders) {
        m_channelWidth_kHz = carrier.shoulders->channelWidth_kHz;
        m_adjacent_mWPerkHz = milliwatts(carrier.level_dBm - carrier.shoulders->adjacent_dB) / m_channelWidth_kHz;
        m_further_mWPerkHz = milliwatts(carrier.level_dBm - carrier.shoulders->further_dB) / m_channelWidth_kHz;
        m_reach_kHz = std::max(m_reach_kHz, 2.5 * m_channelWidth_kHz);
    }
    const double last_kHz = m_centre_kHz + (m_row.count - 1) * m_row.spacing_kHz;
    setWhole({m_centre_kHz - m_reach_kHz, last_kHz + m_reach_kHz}, m_row.count * powerOfOne_mW({}));
}

double CarrierSpectrum::power_mW(const Band& band) const noexcept
{
    double power_mW = 0.0;
    for (std::uint32_t index = 0; index < m_row.count; ++index) {
        const double above_kHz = index * m_row.spacing_kHz;
        const Band seen{band.low_kHz - above_kHz, band.high_kHz - above_kHz};
        const Band own{m_centre_kHz - m_reach_kHz, m_centre_kHz + m_reach_kHz};
        power_mW += seen.common(own).isEmpty() ? 0.0 : powerOfOne_mW(seen);
    }
    return power_mW;
}

double CarrierSpectrum::powerOfOne_mW(const Band& band) const noexcept
{
    double power_mW = m_power_mW * share(band);
    if (m_channelWidth_kHz > 0.0) {
        const double first_kHz = 0.5 * m_channelWidth_kHz;
        const double second_kHz = 1.5 * m_channelWidth_kHz;
        const double end_kHz = 2.5 * m_channelWidth_kHz;
        power_mW += m_adjacent_mWPerkHz * onBothSides_kHz(band, first_kHz, second_kHz)
            + m_further_mWPerkHz * onBothSides_kHz(band, second_kHz, end_kHz);
    }
    return power_mW;
}

double CarrierSpectrum::onBothSides_kHz(const Band& band, double nearest_kHz, double farthest_kHz) const noexcept
{
    return band.overlap_kHz({m_centre_kHz + nearest_kHz, m_centre_kHz + farthest_kHz})
        + band.overlap_kHz({m_centre_kHz - farthest_kHz, m_centre_kHz - nearest_kHz});
}

double CarrierSpectrum::share(const Band& band) const noexcept
{
    const auto signedShareTo = [this](double frequency_kHz) {
        return std::copysign(shareFromCentreTo(std::abs(frequency_kHz - m_centre_kHz)), frequency_kHz - m_centre_kHz);
    };
    return signedShareTo(band.high_kHz) - signedShareTo(band.low_kHz);
}

/// Share of the power between the centre and an offset above it: the density is 1 / Rs in the flat part and
/// (1 + cos(pi u / flank)) / (2 Rs) at u into the flank.
double CarrierSpectrum::shareFromCentreTo(double offset_kHz) const noexcept
{
    if (offset_kHz <= m_flatHalf_kHz) {
        return offset_kHz / m_symbolRate_kBd;
    }
    const double intoFlank_kHz = offset_kHz - m_flatHalf_kHz;
    if (intoFlank_kHz >= m_flank_kHz) {
        return 0.5;
    }
    constexpr double pi = std::numbers::pi;
    const double wave_kHz = m_flank_kHz / pi * std::sin(pi * intoFlank_kHz / m_flank_kHz);
    return (m_flatHalf_kHz + (intoFlank_kHz + wave_kHz) / 2.0) / m_symbolRate_kBd;
}

} // namespace simulator

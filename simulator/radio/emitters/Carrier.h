#pragma once

#include "simulator/radio/Band.h"
#include "simulator/radio/emitters/Limits.h"

#include <cstdint>
#include <optional>

namespace simulator {

class CarrierSpectrum;

/// How far a transmitter's mask lies below its carrier, on both sides alike. The power is spread evenly over each channel
/// beside the carrier's own, and beyond the second there is none.
struct Shoulders {
    double channelWidth_kHz; ///< the first shoulder begins half a width from the carrier's centre
    double adjacent_dB;      ///< power in the first channel beside the carrier's own, below the carrier's
    double further_dB;       ///< the same of the second channel
};

/// Several of them, each above the one before.
struct Row {
    std::uint32_t count;
    double spacing_kHz; ///< from one centre to the next
};

/// A modulated carrier. Its power density has raised-cosine flanks: flat to (1 - a) Rs / 2 from the centre, half of that at
/// Rs / 2, nothing from (1 + a) Rs / 2 on, with symbol rate Rs and roll-off a.
struct Carrier {
    double centre_kHz; ///< of the lowest, where they stand in a row
    double level_dBm;  ///< power of the whole carrier, without its shoulders
    double symbolRate_kBd;
    double rollOff; ///< 0 to 1
    std::optional<Shoulders> shoulders{};
    std::optional<Row> row{};

    using Spectrum = CarrierSpectrum;
    static constexpr KindOfEmitter kind{"carriers", "modulated carriers", 1000, true};
    static const support::Record<Carrier>& record();
};

/// A carrier that occupies a part of a channel's width, 0 to 1; 0.98 is typical.
Carrier carrierInChannel(double centre_kHz, double level_dBm, double channelWidth_kHz, double rollOff, double occupied);

class CarrierSpectrum : public Spread {
public:
    explicit CarrierSpectrum(const Carrier& carrier) noexcept;

    /// With the shoulders, of the whole row.
    double power_mW(const Band& band) const noexcept;
    /// Of one carrier's power, without its shoulders; 0 to 1.
    double share(const Band& band) const noexcept;

private:
    double powerOfOne_mW(const Band& band) const noexcept;
    double shareFromCentreTo(double offset_kHz) const noexcept;
    double onBothSides_kHz(const Band& band, double nearest_kHz, double farthest_kHz) const noexcept;

    Row m_row;
    double m_centre_kHz;
    double m_power_mW;
    double m_symbolRate_kBd;
    double m_flatHalf_kHz; ///< from the centre to where the flank begins
    double m_flank_kHz;    ///< width of the flank
    double m_reach_kHz;    ///< from the centre of one to where there is nothing
    double m_channelWidth_kHz = 0.0;
    double m_adjacent_mWPerkHz = 0.0; ///< 0 without shoulders
    double m_further_mWPerkHz = 0.0;
};

} // namespace simulator

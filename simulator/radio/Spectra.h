#pragma once

#include "simulator/radio/Emitters.h"

#include <limits>

// The emitters as Air integrates over them, with all that depends neither on the tuning nor on the time worked out. Each
// spectrum gives the power between two frequencies in closed form; no operation allocates or throws.

namespace simulator {

/// Part of the frequency axis, its ends included. Empty when the low end lies above the high one.
struct Band {
    double low_kHz = -std::numeric_limits<double>::infinity();
    double high_kHz = std::numeric_limits<double>::infinity();

    bool contains(double frequency_kHz) const noexcept { return low_kHz <= frequency_kHz && frequency_kHz <= high_kHz; }
    bool isEmpty() const noexcept { return low_kHz > high_kHz; }
    Band common(const Band& other) const noexcept;
    double overlap_kHz(const Band& other) const noexcept; ///< 0 when they have nothing in common
};

double milliwatts(double level_dBm) noexcept;
double decibels(double ratio) noexcept;

/// What all spectra have that are spread over frequencies. Most of them have nothing in common with most filters.
class Spread {
public:
    const Band& extent() const noexcept { return m_extent; } ///< there is no power outside
    double total_mW() const noexcept { return m_total_mW; }

protected:
    void setWhole(const Band& extent, double total_mW) noexcept
    {
        m_extent = extent;
        m_total_mW = total_mW;
    }

private:
    Band m_extent;
    double m_total_mW = 0.0;
};

class CarrierSpectrum : public Spread {
public:
    explicit CarrierSpectrum(const Carrier& carrier) noexcept;

    /// With the shoulders.
    double power_mW(const Band& band) const noexcept;
    /// Of the carrier's power, without its shoulders; 0 to 1.
    double share(const Band& band) const noexcept;

private:
    double shareFromCentreTo(double offset_kHz) const noexcept;
    double onBothSides_kHz(const Band& band, double nearest_kHz, double farthest_kHz) const noexcept;

    double m_centre_kHz;
    double m_power_mW;
    double m_symbolRate_kBd;
    double m_flatHalf_kHz; ///< from the centre to where the flank begins
    double m_flank_kHz;    ///< width of the flank
    double m_channelWidth_kHz = 0.0;
    double m_adjacent_mWPerkHz = 0.0; ///< 0 without shoulders
    double m_further_mWPerkHz = 0.0;
};

/// All power at one frequency, which may drift.
class Line {
public:
    explicit Line(const ContinuousWave& wave) noexcept;

    double power_mW() const noexcept { return m_power_mW; }
    double frequency_kHz(double time_ms) const noexcept;

private:
    double m_frequency_kHz;
    double m_power_mW;
    double m_drift_kHz;
    double m_radiansPerMs;
};

class FlatSpectrum : public Spread {
public:
    FlatSpectrum(const Band& band, double density_mWPerkHz) noexcept;
    double power_mW(const Band& band) const noexcept { return m_density_mWPerkHz * extent().overlap_kHz(band); }

private:
    double m_density_mWPerkHz;
};

class EdgeSpectrum : public Spread {
public:
    explicit EdgeSpectrum(const EdgeLeakage& leakage) noexcept;
    double power_mW(const Band& band) const noexcept;

private:
    double onOneSide_mW(double nearest_kHz, double farthest_kHz) const noexcept;

    double m_edge_kHz;
    double m_oneSide_mW; ///< everything on one side of the edge
    double m_decayPerkHz;
};

class BinnedSpectrum : public Spread {
public:
    explicit BinnedSpectrum(Recording recording) noexcept;
    double power_mW(const Band& band) const noexcept;

private:
    Recording m_recording;
};

} // namespace simulator

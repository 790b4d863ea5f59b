#pragma once

#include <limits>

// What the spectra of all emitters are made of. A spectrum is an emitter as Air integrates over it, with all that depends
// neither on the tuning nor on the time worked out: it gives the power between two frequencies in closed form; no operation
// allocates or throws.

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

} // namespace simulator

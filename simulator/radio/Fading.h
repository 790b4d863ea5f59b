#pragma once

#include "simulator/radio/Band.h"
#include "support/Fields.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace simulator {

/// Rain on the path: the level falls at a rate, stays down, and comes back at the same rate. In simulated time; the decibels
/// of showers that overlap add up.
struct Rain {
    double from_ms;
    double rate_dBPerS; ///< above 0
    double depth_dB;
    double hold_ms; ///< at full depth

    static const support::Record<Rain>& record();
};

/// A multipath notch that moves through the band: an attenuation within a width. Having come to its end, it begins anew. The
/// decibels of notches that overlap add up where they do.
struct Notch {
    double begin_kHz;     ///< its centre at time 0
    double end_kHz;       ///< its centre at the end of its way, above or below; equal to begin_kHz for one that stands still
    double speed_kHzPerS; ///< of its centre; 0: it stays at begin_kHz
    double width_kHz;
    double depth_dB;

    static const support::Record<Notch>& record();
};

/// At most so many showers, and so many notches, on one path.
constexpr std::size_t mostRain = 100;
constexpr std::size_t mostNotches = 8;

/// What a path does to whatever comes over it, at one moment: the rain takes a part everywhere, the notches within their
/// widths.
class PathAtOneMoment {
public:
    /// The power of a spectrum within a band that arrives.
    template <typename Spectrum>
    double arriving_mW(const Spectrum& spectrum, const Band& band) const noexcept
    {
        return m_rainGain * std::max(sent_mW(spectrum, band) - lostInNotches_mW(spectrum, band), 0.0);
    }

    /// All of its power that arrives.
    template <typename Spectrum>
    double arriving_mW(const Spectrum& spectrum) const noexcept
    {
        return m_rainGain * std::max(spectrum.total_mW() - lostInNotches_mW(spectrum, spectrum.extent()), 0.0);
    }

    /// The part that arrives of what is sent at one frequency.
    double gainAt(double frequency_kHz) const noexcept;

private:
    friend class Fading;

    /// A stretch of the axis on which the same notches lie.
    struct Stretch {
        Band band;
        double lost; ///< part of the power that does not arrive, 0 to 1
    };
    struct Attenuation {
        Band band;
        double gain;
    };

    template <typename Spectrum>
    static double sent_mW(const Spectrum& spectrum, const Band& band) noexcept
    {
        return band.common(spectrum.extent()).isEmpty() ? 0.0 : spectrum.power_mW(band);
    }

    template <typename Spectrum>
    double lostInNotches_mW(const Spectrum& spectrum, const Band& band) const noexcept
    {
        double lost_mW = 0.0;
        for (std::size_t index = 0; index < m_stretchCount; ++index) {
            const Band attenuated = m_stretches[index].band.common(band);
            lost_mW += attenuated.isEmpty() ? 0.0 : m_stretches[index].lost * sent_mW(spectrum, attenuated);
        }
        return lost_mW;
    }

    double notchGain(double frequency_kHz) const noexcept;
    void cutIntoStretches() noexcept;

    double m_rainGain = 1.0;
    std::size_t m_notchCount = 0;
    std::size_t m_stretchCount = 0;
    std::array<Attenuation, mostNotches> m_notches{};
    std::array<Stretch, 2 * mostNotches> m_stretches{};
};

/// The fading on the path to a terminal. Immutable, so readable from any thread.
class Fading {
public:
    Fading() = default;

    /// @throws std::length_error for more notches than there may be
    Fading(const std::vector<Rain>& rain, const std::vector<Notch>& notches);

    PathAtOneMoment at(double time_ms) const noexcept;

private:
    struct MovingNotch {
        double centre_kHz(double time_ms) const noexcept;

        Notch notch;
        double gain;
    };

    std::vector<Rain> m_rain;
    std::vector<MovingNotch> m_notches;
};

} // namespace simulator

#pragma once

#include "host/Clock.h"
#include "simulator/radio/Air.h"
#include "simulator/radio/Link.h"

#include <cstdint>
#include <mutex>
#include <random>

namespace simulator {

/// The tunable receiver of one radio channel.
///
/// After a tuning the reading runs from where it stood to the level at the new frequency, in dB and exponentially with the
/// link's settling time, also where that level itself changes with the time. Each reading has a jitter of its own, from a
/// generator that begins with the link's seed: the same calls at the same times give the same readings, whatever the
/// compiler or the library.
///
/// All operations may be called from any thread. Times are those of the calling thread; one whose clock is behind the last
/// tuning sees the moment of the tuning.
class Receiver {
public:
    /// Tuned to the link's configured frequency, and settled. The clock must outlive the receiver, the link need not.
    /// @throws std::invalid_argument when a terminal cannot work with the link
    Receiver(const Link& link, host::Clock& clock);

    /// Returns 0; or 32768, and stays where it is, for a frequency outside the link's receive range.
    std::int32_t tune(std::uint32_t frequency_kHz);

    /// The level now, in hundredths of a dBm.
    std::int32_t reading();

    std::uint32_t frequency_kHz() const;

private:
    double levelAt(host::Clock::Duration time) const;
    double normalDeviate();

    // Set once.
    const Air m_air;
    host::Clock& m_clock;
    const std::uint32_t m_lowest_kHz;
    const std::uint32_t m_highest_kHz;
    const double m_settlingTime_ms;
    const double m_jitter_dB;

    // Behind the guard.
    mutable std::mutex m_guard;
    std::uint32_t m_frequency_kHz;
    host::Clock::Duration m_tunedAt;
    double m_ahead_dB = 0.0; ///< by how much the reading was above the new level when the receiver was tuned
    std::mt19937_64 m_random;
};

} // namespace simulator

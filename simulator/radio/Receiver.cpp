#include "simulator/radio/Receiver.h"

#include "simulator/radio/Fading.h"

#include "Platform/Host/ResultCode.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numbers>
#include <ratio>

namespace simulator {

namespace {

double inMs(host::Clock::Duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

/// Uniform in (0, 1], 53 bits of it.
double uniform(std::mt19937_64& random)
{
    return static_cast<double>((random() >> 11) + 1) * 0x1p-53;
}

} // namespace

Receiver::Receiver(const Link& link, host::Clock& clock)
    : m_air(requirePossible(link).emitters,
        {link.filterWidth_kHz, link.noiseFigure_dB, link.ultimateRejection_dB, link.saturation_dBm},
        Fading(link.rain, link.notches))
    , m_clock(clock)
    , m_lowest_kHz(link.frequencyParameters.minRxFrequency_kHz)
    , m_highest_kHz(link.frequencyParameters.maxRxFrequency_kHz)
    , m_settlingTime_ms(link.settlingTime_ms)
    , m_jitter_dB(link.jitter_dB)
    , m_frequency_kHz(link.rxFrequency_kHz)
    , m_tunedAt(clock.now())
    , m_random(link.seed)
{
}

std::int32_t Receiver::tune(std::uint32_t frequency_kHz)
{
    if (frequency_kHz < m_lowest_kHz || frequency_kHz > m_highest_kHz) {
        return PLX_RC_FAILED;
    }
    const host::Clock::Duration now = m_clock.now();
    const std::lock_guard<std::mutex> guard(m_guard);
    const double shown_dBm = levelAt(now);
    m_ahead_dB = shown_dBm - m_air.rssi_dBm(frequency_kHz, inMs(now));
    m_tunedAt = now;
    m_frequency_kHz = frequency_kHz;
    return PLX_RC_OK;
}

std::int32_t Receiver::reading()
{
    constexpr double hundredthsPerDecibel = 100.0;
    const host::Clock::Duration now = m_clock.now();
    const std::lock_guard<std::mutex> guard(m_guard);
    const double level_dBm = levelAt(now) + m_jitter_dB * normalDeviate();
    return static_cast<std::int32_t>(std::lround(hundredthsPerDecibel * level_dBm));
}

std::uint32_t Receiver::frequency_kHz() const
{
    const std::lock_guard<std::mutex> guard(m_guard);
    return m_frequency_kHz;
}

double Receiver::levelAt(host::Clock::Duration time) const
{
    const host::Clock::Duration seen = std::max(time, m_tunedAt);
    const double remaining = std::exp(-inMs(seen - m_tunedAt) / m_settlingTime_ms);
    return m_air.rssi_dBm(m_frequency_kHz, inMs(seen)) + m_ahead_dB * remaining;
}

/// Box and Muller's method, because the standard library's normal distribution differs from one library to the next.
double Receiver::normalDeviate()
{
    const double radius = std::sqrt(-2.0 * std::log(uniform(m_random)));
    return radius * std::cos(2.0 * std::numbers::pi * uniform(m_random));
}

} // namespace simulator

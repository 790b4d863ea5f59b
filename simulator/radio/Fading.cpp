#include "simulator/radio/Fading.h"

#include "simulator/radio/emitters/Limits.h"

#include <cmath>
#include <cstddef>
#include <stdexcept>

namespace simulator {

namespace {

constexpr double ms_per_s = 1000.0;

/// The lowest of three straight lines: down at the rate, at full depth, back at the rate.
double attenuation_dB(const Rain& rain, double time_ms) noexcept
{
    const double falling_ms = rain.depth_dB / rain.rate_dBPerS * ms_per_s;
    const double end_ms = rain.from_ms + 2.0 * falling_ms + rain.hold_ms;
    const double nearestEnd_ms = std::min(time_ms - rain.from_ms, end_ms - time_ms);
    return std::clamp(rain.rate_dBPerS * nearestEnd_ms / ms_per_s, 0.0, rain.depth_dB);
}

} // namespace

const support::Record<Rain>& Rain::record()
{
    static const support::Record<Rain> record{"rain", "rain on the path",
        {
            {"from_ms", &Rain::from_ms, time_ms(), "when it begins"},
            {"rate_dB_per_s", &Rain::rate_dBPerS, support::number(0.0001, 1000, "dB per s"),
                "how fast the level falls and comes back; 0.1 to 1 typical"},
            {"depth_dB", &Rain::depth_dB, simulator::depth_dB(), "how far it falls"},
            {"hold_ms", &Rain::hold_ms, time_ms(), "how long it stays there"},
        }};
    return record;
}

const support::Record<Notch>& Notch::record()
{
    static const support::Record<Notch> record{"notch", "a notch that moves through the band",
        {
            {"begin_kHz", &Notch::begin_kHz, frequency_kHz(), "its centre at the beginning"},
            {"end_kHz", &Notch::end_kHz, frequency_kHz(), "its centre at the end of its way; then it begins anew"},
            {"speed_kHz_per_s", &Notch::speed_kHzPerS, support::number(0, 10000000, "kHz per s"), "how fast it moves"},
            {"width_kHz", &Notch::width_kHz, simulator::width_kHz(), "its width"},
            {"depth_dB", &Notch::depth_dB, simulator::depth_dB(), "attenuation in it; 10 to 30 typical"},
        }};
    return record;
}

double PathAtOneMoment::gainAt(double frequency_kHz) const noexcept
{
    return m_rainGain * notchGain(frequency_kHz);
}

double PathAtOneMoment::notchGain(double frequency_kHz) const noexcept
{
    double gain = 1.0;
    for (std::size_t index = 0; index < m_notchCount; ++index) {
        gain *= m_notches[index].band.contains(frequency_kHz) ? m_notches[index].gain : 1.0;
    }
    return gain;
}

/// Between two neighbouring ends of notches the attenuation is the same everywhere.
void PathAtOneMoment::cutIntoStretches() noexcept
{
    std::array<double, 2 * mostNotches> ends_kHz{};
    for (std::size_t index = 0; index < m_notchCount; ++index) {
        ends_kHz[2 * index] = m_notches[index].band.low_kHz;
        ends_kHz[2 * index + 1] = m_notches[index].band.high_kHz;
    }
    const std::size_t ends = 2 * m_notchCount;
    std::sort(ends_kHz.begin(), ends_kHz.begin() + static_cast<std::ptrdiff_t>(ends));
    for (std::size_t index = 1; index < ends; ++index) {
        const Band band{ends_kHz[index - 1], ends_kHz[index]};
        const double lost = 1.0 - notchGain((band.low_kHz + band.high_kHz) / 2.0);
        if (lost > 0.0) {
            m_stretches[m_stretchCount++] = {band, lost};
        }
    }
}

Fading::Fading(const std::vector<Rain>& rain, const std::vector<Notch>& notches)
    : m_rain(rain)
{
    if (notches.size() > mostNotches) {
        throw std::length_error("too many notches");
    }
    for (const Notch& notch : notches) {
        m_notches.push_back({notch, milliwatts(-notch.depth_dB)});
    }
}

double Fading::MovingNotch::centre_kHz(double time_ms) const noexcept
{
    const double way_kHz = notch.end_kHz - notch.begin_kHz;
    if (way_kHz == 0.0) {
        return notch.begin_kHz;
    }
    const double travelled_kHz = std::fmod(notch.speed_kHzPerS * time_ms / ms_per_s, std::abs(way_kHz));
    return notch.begin_kHz + std::copysign(travelled_kHz, way_kHz);
}

PathAtOneMoment Fading::at(double time_ms) const noexcept
{
    PathAtOneMoment path;
    double rain_dB = 0.0;
    for (const Rain& rain : m_rain) {
        rain_dB += attenuation_dB(rain, time_ms);
    }
    if (rain_dB > 0.0) {
        path.m_rainGain = milliwatts(-rain_dB);
    }
    for (const MovingNotch& moving : m_notches) {
        const double centre_kHz = moving.centre_kHz(time_ms);
        const double half_kHz = moving.notch.width_kHz / 2.0;
        path.m_notches[path.m_notchCount++] = {{centre_kHz - half_kHz, centre_kHz + half_kHz}, moving.gain};
    }
    path.cutIntoStretches();
    return path;
}

} // namespace simulator

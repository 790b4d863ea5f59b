#include "simulator/radio/emitters/ContinuousWave.h"

#include "simulator/radio/Band.h"
#include "support/Fields.h"

#include <cmath>
#include <numbers>

namespace simulator {

namespace {

const support::Record<Drift>& driftRecord()
{
    static const support::Record<Drift> record{"drift", "a swing to and fro, as a sine",
        {
            {"reach_kHz", &Drift::reach_kHz, support::number(0, 10000000, "kHz"), "farthest from its frequency"},
            {"period_ms", &Drift::period_ms, support::number(0.01, 100000000000, "ms"), "of one swing there and back"},
        }};
    return record;
}

} // namespace

const support::Record<ContinuousWave>& ContinuousWave::record()
{
    static const support::Record<ContinuousWave> record{"continuous_wave", "an unmodulated line",
        {
            {"frequency_kHz", &ContinuousWave::frequency_kHz, simulator::frequency_kHz(), "frequency"},
            {"level_dBm", &ContinuousWave::level_dBm, simulator::level_dBm(), "power"},
            {"drift", &ContinuousWave::drift, driftRecord(), driftRecord().sentence(), support::optional},
        }};
    return record;
}

Line::Line(const ContinuousWave& wave) noexcept
    : m_frequency_kHz(wave.frequency_kHz)
    , m_power_mW(milliwatts(wave.level_dBm))
{
    if (wave.drift) {
        m_reach_kHz = wave.drift->reach_kHz;
        m_radiansPerMs = 2.0 * std::numbers::pi / wave.drift->period_ms;
    }
}

double Line::frequency_kHz(double time_ms) const noexcept
{
    return m_reach_kHz > 0.0 ? m_frequency_kHz + m_reach_kHz * std::sin(m_radiansPerMs * time_ms) : m_frequency_kHz;
}

} // namespace simulator

#include "tests/judge/truth/QuietAir.h"

#include "simulator/radio/Air.h"
#include "simulator/radio/emitters/Carrier.h"
#include "simulator/radio/emitters/ContinuousWave.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ratio>
#include <variant>

namespace judge {

using sdc::InterferenceKind;

QuietAir::QuietAir(const simulator::Link& link, const Course& course)
    : m_link(quiet(link))
    , m_course(course)
{
}

std::vector<std::int32_t> QuietAir::readings(const Emitters& emitters, std::span<const std::int64_t> samples) const
{
    simulator::Link link = m_link;
    link.emitters = emitters;
    return judge::readings(link, m_course, samples);
}

std::int32_t QuietAir::noise() const
{
    return stored(simulator::thermalNoise_dBm(m_link.filterWidth_kHz, m_link.noiseFigure_dB));
}

double QuietAir::readAt_ms(std::int64_t sample) const
{
    return std::chrono::duration<double, std::milli>(m_course.read(sample)).count();
}

std::int32_t stored(double level_dBm)
{
    return std::max(static_cast<std::int32_t>(std::lround(100.0 * level_dBm)), rssiFloor);
}

InterferenceKind natureOf(const simulator::Emitter& emitter, double spacing_kHz)
{
    if (const auto* const wave = std::get_if<simulator::ContinuousWave>(&emitter.signal)) {
        const double reach_kHz = wave->drift ? wave->drift->reach_kHz : 0.0;
        return reach_kHz > spacing_kHz / 2.0 ? InterferenceKind::sweep : InterferenceKind::line;
    }
    return std::holds_alternative<simulator::Carrier>(emitter.signal) ? InterferenceKind::carrier
                                                                      : InterferenceKind::wideband;
}

bool looksWide(const simulator::Emitter& emitter, double spacing_kHz)
{
    if (const auto* const carrier = std::get_if<simulator::Carrier>(&emitter.signal)) {
        return (1.0 + carrier->rollOff) * carrier->symbolRate_kBd >= 2.0 * spacing_kHz;
    }
    return !std::holds_alternative<simulator::ContinuousWave>(emitter.signal);
}

} // namespace judge

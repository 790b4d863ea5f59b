#include "simulator/radio/Air.h"

#include "simulator/radio/Band.h"
#include "simulator/radio/emitters/Carrier.h"
#include "simulator/radio/emitters/ContinuousWave.h"
#include "simulator/radio/emitters/Recording.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <variant>

namespace simulator {

namespace {

constexpr double noiseDensity_dBmPerHz = -174.0;
constexpr double leastReading_mW = 1e-40; // where several recordings have less than the receiver's noise

/// Some emitters are told by how they compare with the receiver's own noise.
template <typename Kind>
typename Kind::Spectrum spectrumOf(const Kind& emitter, double noise_mWPerkHz)
{
    using Spectrum = typename Kind::Spectrum;
    if constexpr (std::is_constructible_v<Spectrum, const Kind&, double>) {
        return Spectrum(emitter, noise_mWPerkHz);
    } else {
        return Spectrum(emitter);
    }
}

} // namespace

double thermalNoise_dBm(double filterWidth_kHz, double noiseFigure_dB)
{
    constexpr double Hz_per_kHz = 1000.0;
    return noiseDensity_dBmPerHz + decibels(filterWidth_kHz * Hz_per_kHz) + noiseFigure_dB;
}

double shareInFilter(const Carrier& carrier, double tuning_kHz, double filterWidth_kHz)
{
    return CarrierSpectrum(carrier).share({tuning_kHz - filterWidth_kHz / 2.0, tuning_kHz + filterWidth_kHz / 2.0});
}

bool isOn(const Schedule& schedule, double time_ms) noexcept
{
    const double sinceFirst_ms = time_ms - schedule.from_ms;
    if (sinceFirst_ms < 0.0) {
        return false;
    }
    const double sinceBegin_ms = schedule.every_ms ? std::fmod(sinceFirst_ms, *schedule.every_ms) : sinceFirst_ms;
    return !schedule.duration_ms || sinceBegin_ms < *schedule.duration_ms;
}

/// The receiver at one moment, tuned to one frequency.
class Air::Listening {
public:
    Listening(const Band& filter, double leak, double time_ms, const PathAtOneMoment& path) noexcept
        : m_filter(filter)
        , m_leak(leak)
        , m_time_ms(time_ms)
        , m_path(path)
    {
    }

    template <typename Spectrum>
    double heard_mW(const std::vector<Source<Spectrum>>& sources) const noexcept
    {
        static constexpr PathAtOneMoment clear{};
        double power_mW = 0.0;
        for (const Source<Spectrum>& source : sources) {
            if (isOn(source.schedule, m_time_ms)) {
                power_mW += heardOver_mW(source.fades ? m_path : clear, source.spectrum);
            }
        }
        return power_mW;
    }

private:
    /// All that is behind the filter, and a little of the rest.
    template <typename Spectrum>
    double heardOver_mW(const PathAtOneMoment& path, const Spectrum& spectrum) const noexcept
    {
        const double inside_mW = path.arriving_mW(spectrum, m_filter);
        const double outside_mW = path.arriving_mW(spectrum) - inside_mW;
        return inside_mW + m_leak * outside_mW;
    }

    double heardOver_mW(const PathAtOneMoment& path, const Line& line) const noexcept
    {
        const double frequency_kHz = line.frequency_kHz(m_time_ms);
        const double arriving_mW = path.gainAt(frequency_kHz) * line.power_mW();
        return m_filter.contains(frequency_kHz) ? arriving_mW : m_leak * arriving_mW;
    }

    const Band m_filter;
    const double m_leak;
    const double m_time_ms;
    const PathAtOneMoment& m_path;
};

Air::Air(const std::vector<Emitter>& emitters, const Reception& reception, const Fading& fading)
    : m_fading(fading)
    , m_halfWidth_kHz(reception.filterWidth_kHz / 2.0)
    , m_noise_mW(milliwatts(thermalNoise_dBm(reception.filterWidth_kHz, reception.noiseFigure_dB)))
    , m_leak(milliwatts(-reception.ultimateRejection_dB))
    , m_saturation_mW(milliwatts(reception.saturation_dBm))
{
    for (const Emitter& emitter : emitters) {
        if (const auto* const recording = std::get_if<Recording>(&emitter.signal); recording && recording->bandwidth_kHz) {
            const SeenReadings seen(*recording, reception.filterWidth_kHz, leveledOff_mW(m_noise_mW));
            m_readings.push_back({seen, emitter.schedule, emitter.fades});
            continue;
        }
        const auto addToItsList = [&](const auto& signal) {
            const auto spectrum = spectrumOf(signal, m_noise_mW / reception.filterWidth_kHz);
            using Sources = std::vector<Source<std::remove_const_t<decltype(spectrum)>>>;
            std::get<Sources>(m_sources).push_back({spectrum, emitter.schedule, emitter.fades});
        };
        std::visit(addToItsList, emitter.signal);
    }
}

double Air::rssi_dBm(double tuning_kHz, double time_ms) const noexcept
{
    const Band filter{tuning_kHz - m_halfWidth_kHz, tuning_kHz + m_halfWidth_kHz};
    const PathAtOneMoment path = m_fading.at(time_ms);
    const Listening listening(filter, m_leak, time_ms, path);
    const auto heard_mW = [&](const auto&... lists) { return (listening.heard_mW(lists) + ...); };
    double read_mW = leveledOff_mW(m_noise_mW + std::apply(heard_mW, m_sources));
    for (const auto& [readings, schedule, fades] : m_readings) {
        if (isOn(schedule, time_ms)) {
            read_mW += (fades ? path.gainAt(tuning_kHz) : 1.0) * readings.aboveNoise_mW(tuning_kHz);
        }
    }
    return decibels(std::max(read_mW, leastReading_mW));
}

double Air::leveledOff_mW(double power_mW) const noexcept
{
    return power_mW * m_saturation_mW / (power_mW + m_saturation_mW);
}

} // namespace simulator

#include "simulator/radio/Air.h"

#include <cmath>

namespace simulator {

namespace {

constexpr double noiseDensity_dBmPerHz = -174.0;

struct SpectrumOf {
    double noiseDensity_mWPerkHz;

    CarrierSpectrum operator()(const Carrier& carrier) const { return CarrierSpectrum(carrier); }
    Line operator()(const ContinuousWave& wave) const { return Line(wave); }
    EdgeSpectrum operator()(const EdgeLeakage& leakage) const { return EdgeSpectrum(leakage); }
    BinnedSpectrum operator()(const Recording& recording) const { return BinnedSpectrum(recording); }
    FlatSpectrum operator()(const NoiseBand& band) const
    {
        return {{band.lowest_kHz, band.highest_kHz}, noiseDensity_mWPerkHz * (milliwatts(band.rise_dB) - 1.0)};
    }
};

} // namespace

Carrier carrierInChannel(double centre_kHz, double level_dBm, double channelWidth_kHz, double rollOff, double occupied)
{
    return {centre_kHz, level_dBm, occupied * channelWidth_kHz / (1.0 + rollOff), rollOff};
}

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
    const double sinceBegin_ms = schedule.every_ms > 0.0 ? std::fmod(sinceFirst_ms, schedule.every_ms) : sinceFirst_ms;
    return sinceBegin_ms < schedule.duration_ms;
}

class Air::Listening {
public:
    Listening(const Band& filter, double leak, double time_ms, const PathAtOneMoment& path) noexcept
        : m_filter(filter)
        , m_leak(leak)
        , m_time_ms(time_ms)
        , m_path(path)
    {
    }

    template <typename SpreadSpectrum>
    double operator()(const SpreadSpectrum& spectrum) const noexcept
    {
        const double inside_mW = m_path.arriving_mW(spectrum, m_filter);
        const double outside_mW = m_path.arriving_mW(spectrum) - inside_mW;
        return inside_mW + m_leak * outside_mW;
    }

    double operator()(const Line& line) const noexcept
    {
        const double frequency_kHz = line.frequency_kHz(m_time_ms);
        const double arriving_mW = m_path.gainAt(frequency_kHz) * line.power_mW();
        return m_filter.contains(frequency_kHz) ? arriving_mW : m_leak * arriving_mW;
    }

private:
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
    const double noiseDensity_mWPerkHz = m_noise_mW / reception.filterWidth_kHz;
    for (const Emitter& emitter : emitters) {
        const auto toSpectrum = [&](const auto& signal) -> Spectrum { return SpectrumOf{noiseDensity_mWPerkHz}(signal); };
        m_sources.push_back({std::visit(toSpectrum, emitter.signal), emitter.schedule, emitter.fades});
    }
}

double Air::rssi_dBm(double tuning_kHz, double time_ms) const noexcept
{
    static constexpr PathAtOneMoment clear{};
    const Band filter{tuning_kHz - m_halfWidth_kHz, tuning_kHz + m_halfWidth_kHz};
    const PathAtOneMoment path = m_fading.at(time_ms);
    double power_mW = m_noise_mW;
    for (const Source& source : m_sources) {
        if (isOn(source.schedule, time_ms)) {
            power_mW += std::visit(Listening(filter, m_leak, time_ms, source.fades ? path : clear), source.spectrum);
        }
    }
    return decibels(power_mW * m_saturation_mW / (power_mW + m_saturation_mW));
}

} // namespace simulator

#include "tests/judge/trial/RandomInterferer.h"

#include "Platform/Radio/IRadioCapability.h"
#include "simulator/radio/Air.h"
#include "simulator/radio/Band.h"
#include "simulator/radio/Link.h"
#include "simulator/radio/emitters/Carrier.h"
#include "simulator/radio/emitters/ContinuousWave.h"
#include "simulator/radio/emitters/NoiseBand.h"
#include "tests/judge/trial/RandomCarrier.h"

#include <algorithm>
#include <cmath>
#include <variant>

namespace judge {

namespace {

using simulator::Carrier;
using simulator::ContinuousWave;
using simulator::Emitter;
using simulator::NoiseBand;
using simulator::Schedule;

class InterfererMaker {
public:
    InterfererMaker(Dice& dice, const Site& site)
        : m_dice(dice)
        , m_site(site)
        , m_spacing_kHz(site.spacing_kHz())
    {
    }

    std::optional<Emitter> make();

private:
    double place_kHz();
    Emitter emitterAt(double centre_kHz);
    Emitter modulated(double centre_kHz);
    Emitter line(double centre_kHz);
    Emitter sweepingLine(double centre_kHz);
    Emitter radar(double centre_kHz);
    Emitter wideband(double centre_kHz);
    Schedule turns();

    simulator::Reception reception() const;
    double heard_dBm(const Emitter& emitter, double tuning_kHz) const;
    double tuningFor_kHz(double centre_kHz) const;
    bool setLevel(Emitter& emitter, double centre_kHz);

    Dice& m_dice;
    const Site& m_site;
    const double m_spacing_kHz;
};

/// Where an interferer stands: more often than elsewhere in the configured channel.
double InterfererMaker::place_kHz()
{
    const double offRaster = m_dice.oneIn(2) ? 0.0 : m_dice.uniform(-0.45, 0.45);
    const double own = m_site.own;
    if (m_dice.happens(0.5)) {
        return m_site.centre_kHz(own + offRaster);
    }
    if (m_dice.happens(0.4)) {
        return m_site.centre_kHz(own + (m_dice.oneIn(2) ? 1.0 : -1.0) + offRaster);
    }
    return m_site.centre_kHz(static_cast<double>(m_dice.below(m_site.channels)) + offRaster);
}

/// Most come again and again; some are on once.
Schedule InterfererMaker::turns()
{
    Schedule schedule;
    if (m_dice.oneIn(10)) {
        schedule.from_ms = std::round(m_dice.uniform(0.0, 60000.0));
        schedule.duration_ms = std::round(m_dice.logUniform(1000.0, 300000.0));
        return schedule;
    }
    schedule.every_ms = std::round(m_dice.logUniform(500.0, 200000.0));
    schedule.duration_ms = std::max(std::round(*schedule.every_ms * m_dice.uniform(0.05, 0.7)), 1.0);
    schedule.from_ms = std::round(m_dice.uniform(0.0, *schedule.every_ms));
    return schedule;
}

Emitter InterfererMaker::modulated(double centre_kHz)
{
    constexpr double widths[] = {1.0, 1.0, 1.0, 0.5, 0.25, 0.125, 2.0, 4.0};
    const double width = m_dice.pick(widths) * (m_dice.oneIn(2) ? 1.0 : m_dice.uniform(0.8, 1.2));
    Carrier one = randomCarrier(m_dice, centre_kHz, 0.0, width * m_spacing_kHz);
    one.shoulders = randomShoulders(m_dice, m_spacing_kHz, 0.3);
    return {one, Schedule{}, m_dice.happens(0.3)};
}

/// One in three drifts, by less than a fifth of a channel.
Emitter InterfererMaker::line(double centre_kHz)
{
    ContinuousWave wave{std::round(centre_kHz), 0.0};
    if (m_dice.oneIn(3)) {
        wave.drift = simulator::Drift{
            std::round(m_dice.uniform(0.01, 0.2) * m_spacing_kHz), std::round(m_dice.logUniform(30000.0, 3000000.0))};
    }
    return wave;
}

Emitter InterfererMaker::sweepingLine(double centre_kHz)
{
    ContinuousWave wave{std::round(centre_kHz), 0.0};
    wave.drift = simulator::Drift{
        std::round(m_dice.logUniform(0.7, 10.0) * m_spacing_kHz), std::round(m_dice.logUniform(1000.0, 300000.0))};
    return wave;
}

/// A beam that passes again and again.
Emitter InterfererMaker::radar(double centre_kHz)
{
    Emitter emitter = m_dice.oneIn(3)
        ? Emitter(ContinuousWave{std::round(centre_kHz), 0.0})
        : Emitter(randomCarrier(m_dice, centre_kHz, 0.0, m_spacing_kHz * m_dice.logUniform(0.5, 10.0)));
    emitter.schedule.every_ms = std::round(m_dice.uniform(2000.0, 12000.0));
    emitter.schedule.duration_ms = std::round(m_dice.logUniform(1.0, 100.0));
    emitter.schedule.from_ms = std::round(m_dice.uniform(0.0, *emitter.schedule.every_ms));
    return emitter;
}

/// Over the whole receive range, or a part of it that is wider than a channel.
Emitter InterfererMaker::wideband(double centre_kHz)
{
    const RadioFrequencyParameters& range = m_site.link.frequencyParameters;
    NoiseBand band{static_cast<double>(range.minRxFrequency_kHz), static_cast<double>(range.maxRxFrequency_kHz), 10.0};
    if (m_dice.oneIn(2)) {
        const double half_kHz = m_spacing_kHz * m_dice.uniform(0.8, 4.0);
        band.lowest_kHz = std::round(centre_kHz - half_kHz);
        band.highest_kHz = std::round(centre_kHz + half_kHz);
    }
    return band;
}

Emitter InterfererMaker::emitterAt(double centre_kHz)
{
    const double draw = m_dice.uniform(0.0, 1.0);
    if (draw < 0.08) {
        return radar(centre_kHz);
    }
    if (draw < 0.16) {
        return sweepingLine(centre_kHz);
    }
    Emitter emitter = draw < 0.3 ? wideband(centre_kHz) : draw < 0.65 ? modulated(centre_kHz) : line(centre_kHz);
    if (m_dice.happens(0.4)) {
        emitter.schedule = turns();
    }
    return emitter;
}

simulator::Reception InterfererMaker::reception() const
{
    const simulator::Link& link = m_site.link;
    return {link.filterWidth_kHz, link.noiseFigure_dB, link.ultimateRejection_dB, link.saturation_dBm};
}

double InterfererMaker::heard_dBm(const Emitter& emitter, double tuning_kHz) const
{
    Emitter always = emitter;
    always.schedule = {};
    simulator::Reception ideal = reception();
    ideal.ultimateRejection_dB = 200.0;
    ideal.saturation_dBm = 200.0;
    const double with_mW = simulator::milliwatts(simulator::Air({always}, ideal).rssi_dBm(tuning_kHz, 0.0));
    const double without_mW = simulator::milliwatts(simulator::Air({}, ideal).rssi_dBm(tuning_kHz, 0.0));
    return simulator::decibels(std::max(with_mW - without_mW, 1e-30));
}

/// The place in the configured channel that is nearest to an emitter; the emitter itself where it stands elsewhere.
double InterfererMaker::tuningFor_kHz(double centre_kHz) const
{
    const double own_kHz = m_site.link.rxFrequency_kHz;
    return std::abs(centre_kHz - own_kHz) <= m_spacing_kHz / 2.0 ? own_kHz : centre_kHz;
}

/// Sets the level, so that the emitter is heard -10 to 40 dB over all that is there. False where it cannot be heard at all,
/// as a line outside the filter.
bool InterfererMaker::setLevel(Emitter& emitter, double centre_kHz)
{
    const double tuning_kHz = tuningFor_kHz(centre_kHz);
    const double heard = heard_dBm(emitter, tuning_kHz);
    if (heard < -100.0) {
        return false;
    }
    const simulator::Air others(m_site.link.emitters, reception());
    const double wanted_dBm = std::min(others.rssi_dBm(tuning_kHz, 0.0) + m_dice.uniform(-10.0, 40.0), strongest_dBm);
    if (auto* const band = std::get_if<NoiseBand>(&emitter.signal)) {
        const double noise_dBm = simulator::thermalNoise_dBm(m_site.link.filterWidth_kHz, m_site.link.noiseFigure_dB);
        band->rise_dB = hundredth(simulator::decibels(1.0 + simulator::milliwatts(wanted_dBm - noise_dBm)));
        return true;
    }
    const auto raise = [&](auto& signal) {
        if constexpr (requires { signal.level_dBm; }) {
            signal.level_dBm = std::min(hundredth(signal.level_dBm + wanted_dBm - heard), strongest_dBm);
        }
    };
    std::visit(raise, emitter.signal);
    return true;
}

std::optional<Emitter> InterfererMaker::make()
{
    const double centre_kHz = place_kHz();
    Emitter emitter = emitterAt(centre_kHz);
    return setLevel(emitter, centre_kHz) ? std::optional(emitter) : std::nullopt;
}

} // namespace

std::optional<Emitter> randomInterferer(Dice& dice, const Site& site)
{
    return InterfererMaker(dice, site).make();
}

} // namespace judge

#include "tests/judge/trial/RandomAir.h"

#include "simulator/radio/Air.h"
#include "simulator/radio/Band.h"
#include "simulator/radio/Emitters.h"
#include "simulator/radio/Fading.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <utility>
#include <variant>

namespace judge {

namespace {

using simulator::Carrier;
using simulator::ContinuousWave;
using simulator::EdgeLeakage;
using simulator::Emitter;
using simulator::NoiseBand;
using simulator::Schedule;

constexpr double strongest_dBm = -20.0;

double hundredth(double value)
{
    return std::round(value * 100.0) / 100.0;
}

class AirMaker {
public:
    AirMaker(Dice& dice, Site& site)
        : m_dice(dice)
        , m_site(site)
        , m_spacing_kHz(site.spacing_kHz())
    {
    }

    void farEnd();
    void neighbours(bool isFarEndOn);
    void satellites();
    void edge();
    void interferer();
    void fading();

private:
    Carrier carrier(double centre_kHz, double level_dBm, double channelWidth_kHz);
    void addShoulders(Carrier& carrier, double probability);
    double neighbourLevel_dBm(double wanted_dBm);

    double place_kHz();
    Emitter emitterAt(double centre_kHz);
    Emitter modulated(double centre_kHz);
    Emitter line(double centre_kHz);
    Emitter sweepingLine(double centre_kHz);
    Emitter radar(double centre_kHz);
    Emitter wideband(double centre_kHz);
    Schedule turns();

    double heard_dBm(const Emitter& emitter, double tuning_kHz) const;
    double tuningFor_kHz(double centre_kHz) const;
    bool setLevel(Emitter& emitter, double centre_kHz);

    simulator::Reception reception() const;

    Dice& m_dice;
    Site& m_site;
    const double m_spacing_kHz;
};

simulator::Reception AirMaker::reception() const
{
    const simulator::Link& link = m_site.link;
    return {link.filterWidth_kHz, link.noiseFigure_dB, link.ultimateRejection_dB, link.saturation_dBm};
}

Carrier AirMaker::carrier(double centre_kHz, double level_dBm, double channelWidth_kHz)
{
    Carrier carrier = simulator::carrierInChannel(
        std::round(centre_kHz), hundredth(level_dBm), channelWidth_kHz, hundredth(m_dice.uniform(0.2, 0.35)), 0.98);
    carrier.symbolRate_kBd = std::max(std::round(carrier.symbolRate_kBd), 1.0);
    return carrier;
}

void AirMaker::addShoulders(Carrier& carrier, double probability)
{
    if (m_dice.happens(probability)) {
        carrier.shoulders = simulator::Shoulders{
            m_spacing_kHz, hundredth(m_dice.uniform(25.0, 35.0)), hundredth(m_dice.uniform(45.0, 55.0))};
    }
}

/// Typical designs have -30 to -50 dBm.
void AirMaker::farEnd()
{
    const double level_dBm = m_dice.happens(0.6) ? m_dice.uniform(-50.0, -30.0) : m_dice.uniform(-75.0, -28.0);
    Carrier own = carrier(m_site.link.rxFrequency_kHz, level_dBm, m_spacing_kHz);
    addShoulders(own, 0.5);
    m_site.link.emitters.emplace_back(own, Schedule{}, m_dice.happens(0.5));
}

/// Half of them as a plan allows, with a carrier to interference ratio of -24 to 10 dB, the others of any level.
double AirMaker::neighbourLevel_dBm(double wanted_dBm)
{
    const double level_dBm = m_dice.happens(0.5) ? wanted_dBm + m_dice.uniform(-10.0, 24.0) : m_dice.uniform(-100.0, -20.0);
    return std::min(level_dBm, strongest_dBm);
}

/// The nearest channels are taken more often than others.
void AirMaker::neighbours(bool isFarEndOn)
{
    const double wanted_dBm =
        isFarEndOn ? std::get<Carrier>(m_site.link.emitters.front().signal).level_dBm : m_dice.uniform(-50.0, -30.0);
    const std::uint64_t most = m_dice.happens(0.3) ? 0 : m_dice.happens(0.6) ? 3 : 12;
    std::set<std::int64_t> taken{m_site.own};
    for (std::uint64_t wanted = m_dice.between(0, most); wanted > 0; --wanted) {
        const std::int64_t offset = m_dice.oneIn(3) ? static_cast<std::int64_t>(m_dice.between(1, 2)) : 0;
        const std::int64_t channel = offset == 0 ? static_cast<std::int64_t>(m_dice.below(m_site.channels))
                                                 : m_site.own + (m_dice.oneIn(2) ? offset : -offset);
        if (channel < 0 || channel >= m_site.channels || !taken.insert(channel).second) {
            continue;
        }
        Carrier one =
            carrier(m_site.centre_kHz(static_cast<double>(channel)), neighbourLevel_dBm(wanted_dBm), m_spacing_kHz);
        addShoulders(one, 0.5);
        m_site.link.emitters.emplace_back(one, Schedule{}, m_dice.happens(0.3));
    }
}

/// Rows of transponders over the whole receive range.
void AirMaker::satellites()
{
    if (!m_site.plan.hasSatellites || !m_dice.happens(0.15)) {
        return;
    }
    const double width_kHz = std::round(m_dice.uniform(27000.0, 72000.0));
    const double low_kHz = m_site.link.frequencyParameters.minRxFrequency_kHz;
    const double high_kHz = m_site.link.frequencyParameters.maxRxFrequency_kHz;
    Carrier transponder = carrier(low_kHz + m_dice.uniform(0.0, width_kHz), m_dice.uniform(-99.0, -85.0), 0.9 * width_kHz);
    const double count = std::max((high_kHz - transponder.centre_kHz) / width_kHz, 0.0) + 1.0;
    transponder.row = simulator::Row{static_cast<std::uint32_t>(count), width_kHz};
    m_site.link.emitters.emplace_back(transponder);
}

/// The terminal's own transmitter, at the end of the receive range that is next to it.
void AirMaker::edge()
{
    if (!m_dice.happens(0.06)) {
        return;
    }
    const RadioFrequencyParameters& range = m_site.link.frequencyParameters;
    const double edge_kHz = m_dice.oneIn(2) ? range.minRxFrequency_kHz : range.maxRxFrequency_kHz;
    m_site.link.emitters.emplace_back(
        EdgeLeakage{edge_kHz, hundredth(m_dice.uniform(-110.0, -75.0)), hundredth(m_dice.uniform(0.2, 2.0))});
}

/// Where an interferer stands: more often than elsewhere in the configured channel.
double AirMaker::place_kHz()
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
Schedule AirMaker::turns()
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

Emitter AirMaker::modulated(double centre_kHz)
{
    constexpr double widths[] = {1.0, 1.0, 1.0, 0.5, 0.25, 0.125, 2.0, 4.0};
    const double width = m_dice.pick(widths) * (m_dice.oneIn(2) ? 1.0 : m_dice.uniform(0.8, 1.2));
    Carrier one = carrier(centre_kHz, 0.0, width * m_spacing_kHz);
    addShoulders(one, 0.3);
    return {one, Schedule{}, m_dice.happens(0.3)};
}

/// One in three drifts, by less than a fifth of a channel.
Emitter AirMaker::line(double centre_kHz)
{
    ContinuousWave wave{std::round(centre_kHz), 0.0};
    if (m_dice.oneIn(3)) {
        wave.drift = simulator::Drift{
            std::round(m_dice.uniform(0.01, 0.2) * m_spacing_kHz), std::round(m_dice.logUniform(30000.0, 3000000.0))};
    }
    return wave;
}

Emitter AirMaker::sweepingLine(double centre_kHz)
{
    ContinuousWave wave{std::round(centre_kHz), 0.0};
    wave.drift = simulator::Drift{
        std::round(m_dice.logUniform(0.7, 10.0) * m_spacing_kHz), std::round(m_dice.logUniform(1000.0, 300000.0))};
    return wave;
}

/// A beam that passes again and again.
Emitter AirMaker::radar(double centre_kHz)
{
    Emitter emitter = m_dice.oneIn(3) ? Emitter(ContinuousWave{std::round(centre_kHz), 0.0})
                                      : Emitter(carrier(centre_kHz, 0.0, m_spacing_kHz * m_dice.logUniform(0.5, 10.0)));
    emitter.schedule.every_ms = std::round(m_dice.uniform(2000.0, 12000.0));
    emitter.schedule.duration_ms = std::round(m_dice.logUniform(1.0, 100.0));
    emitter.schedule.from_ms = std::round(m_dice.uniform(0.0, *emitter.schedule.every_ms));
    return emitter;
}

/// Over the whole receive range, or a part of it that is wider than a channel.
Emitter AirMaker::wideband(double centre_kHz)
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

Emitter AirMaker::emitterAt(double centre_kHz)
{
    using Make = Emitter (AirMaker::*)(double);
    constexpr Make kinds[] = {&AirMaker::modulated, &AirMaker::modulated, &AirMaker::line, &AirMaker::line};
    const double draw = m_dice.uniform(0.0, 1.0);
    if (draw < 0.08) {
        return radar(centre_kHz);
    }
    if (draw < 0.16) {
        return sweepingLine(centre_kHz);
    }
    Emitter emitter = draw < 0.3 ? wideband(centre_kHz) : (this->*m_dice.pick(kinds))(centre_kHz);
    if (m_dice.happens(0.4)) {
        emitter.schedule = turns();
    }
    return emitter;
}

double AirMaker::heard_dBm(const Emitter& emitter, double tuning_kHz) const
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
double AirMaker::tuningFor_kHz(double centre_kHz) const
{
    const double own_kHz = m_site.link.rxFrequency_kHz;
    return std::abs(centre_kHz - own_kHz) <= m_spacing_kHz / 2.0 ? own_kHz : centre_kHz;
}

/// Sets the level, so that the emitter is heard -10 to 40 dB over all that is there. False where it cannot be heard at all,
/// as a line outside the filter.
bool AirMaker::setLevel(Emitter& emitter, double centre_kHz)
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
            signal.level_dBm = hundredth(signal.level_dBm + wanted_dBm - heard);
        }
    };
    std::visit(raise, emitter.signal);
    return true;
}

void AirMaker::interferer()
{
    const double centre_kHz = place_kHz();
    Emitter emitter = emitterAt(centre_kHz);
    if (setLevel(emitter, centre_kHz)) {
        m_site.link.emitters.push_back(emitter);
    }
}

void AirMaker::fading()
{
    if (m_dice.happens(0.1)) {
        m_site.link.rain.push_back({std::round(m_dice.uniform(0.0, 120000.0)), hundredth(m_dice.uniform(0.1, 1.0)),
            hundredth(m_dice.uniform(3.0, 25.0)), std::round(m_dice.uniform(0.0, 60000.0))});
    }
    constexpr std::uint32_t highestWithMultipath_GHz = 13;
    if (m_site.plan.band_GHz <= highestWithMultipath_GHz && m_dice.happens(0.04)) {
        const double own_kHz = m_site.link.rxFrequency_kHz;
        const double way_kHz = std::round(m_spacing_kHz * m_dice.uniform(0.5, 2.0));
        m_site.link.notches.push_back({own_kHz - way_kHz, own_kHz + way_kHz, std::round(m_dice.logUniform(10.0, 1000.0)),
            std::round(m_spacing_kHz * m_dice.uniform(0.2, 1.0)), hundredth(m_dice.uniform(10.0, 30.0))});
    }
}

} // namespace

void putOnAir(Dice& dice, Site& site, bool isFarEndOn)
{
    AirMaker maker(dice, site);
    if (isFarEndOn) {
        maker.farEnd();
    }
    maker.neighbours(isFarEndOn);
    maker.satellites();
    maker.edge();
    constexpr std::uint64_t interferers[] = {0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3};
    for (std::uint64_t left = dice.pick(interferers); left > 0; --left) {
        maker.interferer();
    }
    maker.fading();
}

} // namespace judge

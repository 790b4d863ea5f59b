#include "tests/judge/trial/RandomAir.h"

#include "Platform/Radio/IRadioCapability.h"
#include "simulator/radio/Emitters.h"
#include "simulator/radio/Link.h"
#include "simulator/radio/emitters/Carrier.h"
#include "simulator/radio/emitters/EdgeLeakage.h"
#include "tests/judge/trial/RandomCarrier.h"
#include "tests/judge/trial/RandomInterferer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <set>
#include <variant>

namespace judge {

namespace {

using simulator::Carrier;
using simulator::EdgeLeakage;
using simulator::Schedule;

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
    void interferers();
    void fading();

private:
    double neighbourLevel_dBm(double wanted_dBm);

    Dice& m_dice;
    Site& m_site;
    const double m_spacing_kHz;
};

/// Typical designs have -30 to -50 dBm.
void AirMaker::farEnd()
{
    const double level_dBm = m_dice.happens(0.6) ? m_dice.uniform(-50.0, -30.0) : m_dice.uniform(-75.0, -28.0);
    Carrier own = randomCarrier(m_dice, m_site.link.rxFrequency_kHz, level_dBm, m_spacing_kHz);
    own.shoulders = randomShoulders(m_dice, m_spacing_kHz, 0.5);
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
        Carrier one = randomCarrier(
            m_dice, m_site.centre_kHz(static_cast<double>(channel)), neighbourLevel_dBm(wanted_dBm), m_spacing_kHz);
        one.shoulders = randomShoulders(m_dice, m_spacing_kHz, 0.5);
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
    Carrier transponder =
        randomCarrier(m_dice, low_kHz + m_dice.uniform(0.0, width_kHz), m_dice.uniform(-99.0, -85.0), 0.9 * width_kHz);
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

void AirMaker::interferers()
{
    constexpr std::uint64_t counts[] = {0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3};
    for (std::uint64_t left = m_dice.pick(counts); left > 0; --left) {
        if (const auto interferer = randomInterferer(m_dice, m_site)) {
            m_site.link.emitters.push_back(*interferer);
        }
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
    maker.interferers();
    maker.fading();
}

} // namespace judge

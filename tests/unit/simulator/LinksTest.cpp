#include "simulator/radio/Air.h"
#include "simulator/radio/Link.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

namespace {

using simulator::Carrier;
using simulator::ContinuousWave;
using simulator::findLink;
using simulator::Link;
using simulator::links;
using simulator::whyImpossible;

TEST(BuiltInLinks, arePossibleAndFoundByTheirNames)
{
    std::set<std::string> names;
    for (const Link& link : links()) {
        EXPECT_FALSE(whyImpossible(link)) << link.name;
        EXPECT_EQ(findLink(link.name), &link);
        EXPECT_TRUE(names.insert(link.name).second) << link.name;
        EXPECT_NE(link.description, "");
        EXPECT_NE(link.source, "");
    }
    EXPECT_EQ(findLink("no such link"), nullptr);
    EXPECT_EQ(findLink(""), nullptr);
}

/// Upper half of Recommendation ITU-R F.595, 27.5 MHz: 18710 MHz and 27.5 MHz for each channel.
double f595_kHz(int channel)
{
    return (18710.0 + 27.5 * channel) * 1000.0;
}

TEST(Link18F595, comesFirstAndStandsOnChannel17)
{
    const Link& link = links().front();
    EXPECT_EQ(link.name, "18-f595");
    EXPECT_EQ(link.rxFrequency_kHz, 19177500U);
    EXPECT_EQ(link.rxFrequency_kHz, f595_kHz(17));
    EXPECT_EQ(link.channelSpacing_kHz, 27500U);
    EXPECT_THAT(link.unitTypeText, testing::HasSubstr("KLM6"));
    EXPECT_THAT(link.unitTypeText, testing::Not(testing::HasSubstr("KLM6 P")));
    EXPECT_THAT(link.source, testing::HasSubstr("ITU-R F.595"));
    EXPECT_THAT(link.source, testing::HasSubstr("typical"));
    const SDCProperties& properties = link.properties;
    EXPECT_EQ(properties.longHaul + properties.extendedRxWait + properties.slowRxWait + properties.spareFlag, 0);
}

TEST(Link18F595, coversTheUpperHalfWithARasterOf250kHz)
{
    const RadioFrequencyParameters& parameters = links().front().frequencyParameters;
    EXPECT_EQ(parameters.frequencyBand_GHz, 18U);
    EXPECT_EQ(parameters.minRxFrequency_kHz, 18700000U);
    EXPECT_EQ(parameters.maxRxFrequency_kHz, 19700000U);
    EXPECT_EQ(parameters.frequencyStepSize_kHz, 250U);
    EXPECT_EQ(parameters.rxBaseFrequency_kHz, 18000000U);
    EXPECT_EQ(parameters.stepLimitLow, 2800U);
    EXPECT_EQ(parameters.stepLimitHigh, 6800U);
    EXPECT_EQ(parameters.rxBaseFrequency_kHz + 250U * parameters.stepLimitLow, parameters.minRxFrequency_kHz);
    EXPECT_EQ(parameters.rxBaseFrequency_kHz + 250U * parameters.stepLimitHigh, parameters.maxRxFrequency_kHz);
    EXPECT_EQ(parameters.txBaseFrequency_kHz + 250U * parameters.txStepLimits[0], parameters.transmitAndDuplex[0]);
    EXPECT_EQ(parameters.txBaseFrequency_kHz + 250U * parameters.txStepLimits[1], parameters.transmitAndDuplex[1]);
    EXPECT_EQ(parameters.transmitAndDuplex[0], 17700000U);
    EXPECT_EQ(parameters.transmitAndDuplex[1], 18700000U);
    EXPECT_EQ(parameters.transmitAndDuplex[2], 1010000U);
}

TEST(Link18F595, hasTheWantedCarrierTwoNeighboursOnTheRasterAndAWeakSpur)
{
    std::map<double, double> levels_dBm;
    int nrOfWaves = 0;
    for (const simulator::Emitter& emitter : links().front().emitters) {
        if (const auto* carrier = std::get_if<Carrier>(&emitter.signal)) {
            levels_dBm[carrier->centre_kHz] = carrier->level_dBm;
            EXPECT_NEAR(carrier->symbolRate_kBd * (1.0 + carrier->rollOff), 0.98 * 27500.0, 0.001);
        } else {
            ++nrOfWaves;
            EXPECT_LT(std::get<ContinuousWave>(emitter.signal).level_dBm, -75.0);
        }
    }
    EXPECT_THAT(levels_dBm,
        testing::ElementsAre(testing::Key(f595_kHz(15)), testing::Key(f595_kHz(17)), testing::Key(f595_kHz(20))));
    EXPECT_EQ(levels_dBm[f595_kHz(15)], -41.0);
    EXPECT_EQ(levels_dBm[f595_kHz(17)], -35.0);
    EXPECT_EQ(levels_dBm[f595_kHz(20)], -45.0);
    EXPECT_EQ(nrOfWaves, 1);
}

TEST(Link18F595, hasTheReceiverOfATypicalRadio)
{
    const Link& link = links().front();
    EXPECT_EQ(link.filterWidth_kHz, 27500.0);
    EXPECT_EQ(link.noiseFigure_dB, 5.0);
    EXPECT_EQ(link.settlingTime_ms, 30.0);
    EXPECT_EQ(link.jitter_dB, 0.5);
    EXPECT_EQ(link.seed, 595U);
}

TEST(Link18F595, showsItsEmittersAboveTheNoise)
{
    const Link& link = links().front();
    const simulator::Air air(link.emitters, {link.filterWidth_kHz, link.noiseFigure_dB});
    const double noise_dBm = simulator::thermalNoise_dBm(link.filterWidth_kHz, link.noiseFigure_dB);
    EXPECT_NEAR(air.rssi_dBm(link.rxFrequency_kHz, 0.0), -35.0, 0.1);
    EXPECT_GT(noise_dBm, -99.7); // the floor of a scan: what lies above it can be seen
    EXPECT_NEAR(air.rssi_dBm(f595_kHz(30), 0.0), noise_dBm, 0.01);
    EXPECT_GT(air.rssi_dBm(std::get<ContinuousWave>(link.emitters.back().signal).frequency_kHz, 0.0), noise_dBm + 5.0);
    EXPECT_GE(300.0, 10.0 * link.settlingTime_ms); // the shortest settle delay of a scan leaves nothing to be seen
}

} // namespace

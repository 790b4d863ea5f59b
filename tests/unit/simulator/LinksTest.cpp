#include "simulator/radio/Link.h"

#include "tests/unit/simulator/TestLink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <set>

namespace {

using simulator::Carrier;
using simulator::ContinuousWave;
using simulator::findLink;
using simulator::Link;
using simulator::links;
using simulator::whyImpossible;
using tests::plainLink;

TEST(BuiltInLinks, arePossibleAndFoundByTheirNames)
{
    std::set<std::string> names;
    for (const Link& link : links()) {
        EXPECT_EQ(whyImpossible(link), "");
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
    const simulator::Air air(link.emitters, link.filterWidth_kHz, link.noiseFigure_dB);
    const double noise_dBm = simulator::thermalNoise_dBm(link.filterWidth_kHz, link.noiseFigure_dB);
    EXPECT_NEAR(air.rssi_dBm(link.rxFrequency_kHz), -35.0, 0.1);
    EXPECT_GT(noise_dBm, -99.7); // the floor of a scan: what lies above it can be seen
    EXPECT_NEAR(air.rssi_dBm(f595_kHz(30)), noise_dBm, 0.01);
    EXPECT_GT(air.rssi_dBm(std::get<ContinuousWave>(link.emitters.back().signal).frequency_kHz), noise_dBm + 5.0);
    EXPECT_GE(300.0, 10.0 * link.settlingTime_ms); // the shortest settle delay of a scan leaves nothing to be seen
}

struct Impossibility {
    std::function<void(Link&)> spoil;
    std::string why;
};

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

TEST(ImpossibleLinks, areToldApartWithWhatWouldBeRight)
{
    const Impossibility rows[] = {
        {[](Link& link) { link.channelSpacing_kHz = 0; }, "the channel spacing is 0 kHz; it must be 1 to 4294967295 kHz"},
        {[](Link& link) { link.frequencyParameters.frequencyStepSize_kHz = 0; },
            "the raster step is 0 kHz; it must be 1 to 4294967295 kHz"},
        {[](Link& link) { link.frequencyParameters.minRxFrequency_kHz = 19700001; },
            "the lowest receive frequency, 19700001 kHz, lies above the highest, 19700000 kHz; it must not"},
        {[](Link& link) { link.rxFrequency_kHz = 18699999; },
            "the configured receive frequency is 18699999 kHz; it must be 18700000 to 19700000 kHz"},
        {[](Link& link) { link.rxFrequency_kHz = 19700001; },
            "the configured receive frequency is 19700001 kHz; it must be 18700000 to 19700000 kHz"},
        {[](Link& link) { link.frequencyParameters.stepLimitLow = 6801; },
            "the lowest raster step, 6801, lies above the highest, 6800; it must not"},
        {[](Link& link) { link.frequencyParameters.stepLimitLow = 2799; },
            "the frequency of the lowest raster step is 18699750 kHz; it must be 18700000 to 19700000 kHz"},
        {[](Link& link) { link.frequencyParameters.stepLimitHigh = 6801; },
            "the frequency of the highest raster step is 19700250 kHz; it must be 18700000 to 19700000 kHz"},
        {[](Link& link) { link.filterWidth_kHz = 0.0; },
            "the receive filter's width is 0 kHz; it must be 1 to 10000000 kHz"},
        {[](Link& link) { link.filterWidth_kHz = infinite; },
            "the receive filter's width is inf kHz; it must be 1 to 10000000 kHz"},
        {[](Link& link) { link.noiseFigure_dB = -0.5; }, "the noise figure is -0.5 dB; it must be 0 to 50 dB"},
        {[](Link& link) { link.noiseFigure_dB = 50.5; }, "the noise figure is 50.5 dB; it must be 0 to 50 dB"},
        {[](Link& link) { link.settlingTime_ms = 0.0; }, "the settling time is 0 ms; it must be 0.01 to 60000 ms"},
        {[](Link& link) { link.settlingTime_ms = notANumber; }, "the settling time is nan ms; it must be 0.01 to 60000 ms"},
        {[](Link& link) { link.settlingTime_ms = 60001.0; }, "the settling time is 60001 ms; it must be 0.01 to 60000 ms"},
        {[](Link& link) { link.jitter_dB = -0.1; }, "the jitter is -0.1 dB; it must be 0 to 20 dB"},
        {[](Link& link) { link.jitter_dB = infinite; }, "the jitter is inf dB; it must be 0 to 20 dB"},
        {[](Link& link) { std::get<Carrier>(link.emitters[0].signal).centre_kHz = -1.0; },
            "emitter 1: the carrier's centre is -1 kHz; it must be 0 to 4294967295 kHz"},
        {[](Link& link) { std::get<Carrier>(link.emitters[0].signal).level_dBm = 61.0; },
            "emitter 1: the carrier's level is 61 dBm; it must be -200 to 60 dBm"},
        {[](Link& link) { std::get<Carrier>(link.emitters[0].signal).symbolRate_kBd = 0.0; },
            "emitter 1: the carrier's symbol rate is 0 kBd; it must be 1 to 10000000 kBd"},
        {[](Link& link) { std::get<Carrier>(link.emitters[0].signal).rollOff = 1.25; },
            "emitter 1: the carrier's roll-off is 1.25; it must be 0 to 1"},
        {[](Link& link) {
             link.emitters.emplace_back(ContinuousWave{notANumber, -60.0});
         },
            "emitter 2: the continuous wave's frequency is nan kHz; it must be 0 to 4294967295 kHz"},
        {[](Link& link) {
             link.emitters.emplace_back(ContinuousWave{19000000.0, -201.0});
         },
            "emitter 2: the continuous wave's level is -201 dBm; it must be -200 to 60 dBm"},
    };
    for (const Impossibility& row : rows) {
        Link link = plainLink();
        row.spoil(link);
        EXPECT_EQ(whyImpossible(link), "link \"plain\": " + row.why);
    }
}

TEST(PossibleLinks, mayStandAtTheVeryEdges)
{
    const std::function<void(Link&)> rows[] = {
        [](Link&) {},
        [](Link& link) { link.rxFrequency_kHz = 18700000; },
        [](Link& link) { link.rxFrequency_kHz = 19700000; },
        [](Link& link) {
            link.frequencyParameters.minRxFrequency_kHz = link.frequencyParameters.maxRxFrequency_kHz = link.rxFrequency_kHz;
            link.frequencyParameters.stepLimitLow = link.frequencyParameters.stepLimitHigh = 4710;
        },
        [](Link& link) { link.channelSpacing_kHz = 1; },
        [](Link& link) { link.filterWidth_kHz = 1.0; },
        [](Link& link) { link.filterWidth_kHz = 10000000.0; },
        [](Link& link) { link.noiseFigure_dB = 0.0; },
        [](Link& link) { link.settlingTime_ms = 0.01; },
        [](Link& link) { link.settlingTime_ms = 60000.0; },
        [](Link& link) { link.jitter_dB = 20.0; },
        [](Link& link) {
            link.emitters = {Carrier{0.0, -200.0, 1.0, 0.0}};
        },
        [](Link& link) {
            link.emitters = {Carrier{4294967295.0, 60.0, 10000000.0, 1.0}, ContinuousWave{0.0, 60.0}};
        },
        [](Link& link) { link.emitters.clear(); },
    };
    for (const auto& change : rows) {
        Link link = plainLink();
        change(link);
        EXPECT_EQ(whyImpossible(link), "");
    }
}

} // namespace

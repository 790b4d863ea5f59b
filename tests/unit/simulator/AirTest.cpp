#include "simulator/radio/Air.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using simulator::Air;
using simulator::Carrier;
using simulator::carrierInChannel;
using simulator::ContinuousWave;
using simulator::shareInFilter;
using simulator::thermalNoise_dBm;

constexpr double centre_kHz = 19000000.0;
constexpr double rate_kBd = 20000.0;

Carrier carrier(double rollOff, double level_dBm = -30.0)
{
    return {centre_kHz, level_dBm, rate_kBd, rollOff};
}

/// The raised-cosine density as it is defined, for a carrier of power 1.
double density(double offset_kHz, double rollOff)
{
    const double x = std::abs(offset_kHz) / rate_kBd;
    if (x <= (1.0 - rollOff) / 2.0) {
        return 1.0 / rate_kBd;
    }
    if (x >= (1.0 + rollOff) / 2.0) {
        return 0.0;
    }
    return (1.0 + std::cos(std::numbers::pi / rollOff * (x - (1.0 - rollOff) / 2.0))) / (2.0 * rate_kBd);
}

double integratedDensity(double tuningOffset_kHz, double filterWidth_kHz, double rollOff)
{
    constexpr int slices = 20000;
    const double slice_kHz = filterWidth_kHz / slices;
    double sum = 0.0;
    for (int i = 0; i < slices; ++i) {
        sum += density(tuningOffset_kHz - filterWidth_kHz / 2.0 + (i + 0.5) * slice_kHz, rollOff) * slice_kHz;
    }
    return sum;
}

TEST(ThermalNoise, isMinus174dBmPerHertzRaisedByTheNoiseFigure)
{
    constexpr struct {
        double width_kHz;
        double noise_dBm;
    } rows[] = {{3500, -103.5}, {7000, -100.5}, {14000, -97.5}, {27500, -94.6}, {28000, -94.5}, {40000, -93.0},
        {56000, -91.5}, {112000, -88.5}, {250000, -85.0}};
    for (const auto& row : rows) {
        EXPECT_NEAR(thermalNoise_dBm(row.width_kHz, 5.0), row.noise_dBm, 0.1) << row.width_kHz;
    }
    EXPECT_NEAR(thermalNoise_dBm(1.0, 0.0), -144.0, 1e-9);
    EXPECT_NEAR(thermalNoise_dBm(1000.0, 7.5), -106.5, 1e-9);
}

TEST(ThermalNoise, isAllThereIsWithoutEmitters)
{
    const Air air({}, {27500.0, 5.0});
    EXPECT_NEAR(air.rssi_dBm(centre_kHz, 0.0), thermalNoise_dBm(27500.0, 5.0), 1e-9);
    EXPECT_NEAR(air.rssi_dBm(0.0, 0.0), thermalNoise_dBm(27500.0, 5.0), 1e-9);
}

TEST(CarrierShare, isTheIntegralOfTheRaisedCosine)
{
    for (const double rollOff : {0.2, 0.25, 0.35, 1.0}) {
        for (const double width_kHz : {500.0, 3500.0, 14000.0, 20000.0, 27500.0}) {
            for (double offset_kHz = -30000.0; offset_kHz <= 30000.0; offset_kHz += 1250.0) {
                EXPECT_NEAR(shareInFilter(carrier(rollOff), centre_kHz + offset_kHz, width_kHz),
                    integratedDensity(offset_kHz, width_kHz, rollOff), 1e-7)
                    << rollOff << ' ' << width_kHz << ' ' << offset_kHz;
            }
        }
    }
}

TEST(CarrierShare, isFlatInTheMiddleAndHalfOfThatAtHalfTheSymbolRate)
{
    constexpr double narrow_kHz = 10.0;
    EXPECT_NEAR(shareInFilter(carrier(0.25), centre_kHz, narrow_kHz), narrow_kHz / rate_kBd, 1e-12);
    EXPECT_NEAR(shareInFilter(carrier(0.25), centre_kHz + 7490.0, narrow_kHz), narrow_kHz / rate_kBd, 1e-12);
    EXPECT_NEAR(shareInFilter(carrier(0.25), centre_kHz + rate_kBd / 2.0, narrow_kHz), narrow_kHz / rate_kBd / 2.0, 1e-12);
}

TEST(CarrierShare, ofACarrierWithoutRollOffIsThatOfARectangle)
{
    EXPECT_DOUBLE_EQ(shareInFilter(carrier(0.0), centre_kHz, rate_kBd), 1.0);
    EXPECT_DOUBLE_EQ(shareInFilter(carrier(0.0), centre_kHz, rate_kBd / 4.0), 0.25);
    EXPECT_DOUBLE_EQ(shareInFilter(carrier(0.0), centre_kHz + rate_kBd, rate_kBd), 0.0);
    EXPECT_DOUBLE_EQ(shareInFilter(carrier(0.0), centre_kHz + rate_kBd / 2.0, rate_kBd), 0.5);
}

TEST(CarrierShare, isHalfWhenTheFiltersEdgeLiesAtTheCentre)
{
    for (const double side : {-1.0, 1.0}) {
        EXPECT_DOUBLE_EQ(shareInFilter(carrier(0.25), centre_kHz + side * 20000.0, 40000.0), 0.5) << side;
    }
}

TEST(CarrierShare, endsWhereFilterAndCarrierNoLongerOverlap)
{
    const double reach_kHz = 1.25 * rate_kBd / 2.0 + 14000.0 / 2.0;
    for (const double side : {-1.0, 1.0}) {
        EXPECT_EQ(shareInFilter(carrier(0.25), centre_kHz + side * reach_kHz, 14000.0), 0.0) << side;
        EXPECT_GT(shareInFilter(carrier(0.25), centre_kHz + side * (reach_kHz - 100.0), 14000.0), 0.0) << side;
    }
}

TEST(CarrierInChannel, occupiesNearlyTheWholeChannel)
{
    const Carrier inChannel = carrierInChannel(centre_kHz, -42.0, 28000.0, 0.25, 0.98);
    EXPECT_EQ(inChannel.centre_kHz, centre_kHz);
    EXPECT_EQ(inChannel.level_dBm, -42.0);
    EXPECT_EQ(inChannel.rollOff, 0.25);
    EXPECT_NEAR(inChannel.symbolRate_kBd, 21952.0, 1e-6);
}

TEST(Rssi, ofACarrierInsideAWideFilterIsItsLevel)
{
    const Air air({carrier(0.25, -20.0)}, {40000.0, 0.0});
    EXPECT_NEAR(air.rssi_dBm(centre_kHz, 0.0), -20.0, 1e-6);
    EXPECT_NEAR(air.rssi_dBm(centre_kHz + 7500.0, 0.0), -20.0, 1e-6);
    EXPECT_NEAR(air.rssi_dBm(centre_kHz + 20000.0, 0.0), -23.0103, 1e-4);
}

TEST(Rssi, ofTwoEqualEmittersIsThreeDecibelsHigher)
{
    const Air carriers({carrier(0.25), carrier(0.35)}, {40000.0, 0.0});
    EXPECT_NEAR(carriers.rssi_dBm(centre_kHz, 0.0), -30.0 + 3.0103, 1e-4);
    const Air waves({ContinuousWave{centre_kHz - 100.0, -50.0}, ContinuousWave{centre_kHz + 100.0, -50.0}}, {1000.0, 0.0});
    EXPECT_NEAR(waves.rssi_dBm(centre_kHz, 0.0), -50.0 + 3.0103, 1e-4);
}

TEST(Rssi, addsTheNoiseToTheEmitters)
{
    const double noise_dBm = thermalNoise_dBm(14000.0, 6.0);
    const Air air({ContinuousWave{centre_kHz, noise_dBm}}, {14000.0, 6.0});
    EXPECT_NEAR(air.rssi_dBm(centre_kHz, 0.0), noise_dBm + 3.0103, 1e-4);
}

TEST(Rssi, ofAContinuousWaveIsThereOnlyInsideTheFilterItsEdgesIncluded)
{
    const Air air({ContinuousWave{centre_kHz, -60.0}}, {7000.0, 5.0});
    for (const double offset_kHz : {-3500.0, -3499.0, 0.0, 3500.0}) {
        EXPECT_NEAR(air.rssi_dBm(centre_kHz + offset_kHz, 0.0), -60.0, 0.001) << offset_kHz;
    }
    for (const double offset_kHz : {-3501.0, 3501.0}) {
        EXPECT_NEAR(air.rssi_dBm(centre_kHz + offset_kHz, 0.0), thermalNoise_dBm(7000.0, 5.0), 1e-9) << offset_kHz;
    }
}

TEST(Rssi, isTheSameOnBothSidesOfACarrier)
{
    const Air air({carrier(0.3)}, {14000.0, 5.0});
    for (double offset_kHz = 0.0; offset_kHz < 40000.0; offset_kHz += 1700.0) {
        EXPECT_NEAR(air.rssi_dBm(centre_kHz + offset_kHz, 0.0), air.rssi_dBm(centre_kHz - offset_kHz, 0.0), 1e-9)
            << offset_kHz;
    }
}

} // namespace

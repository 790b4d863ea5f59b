// What a quiet reading is, and what leaks into a channel from what stands beside it.

#include "apps/sdc/result/Floor.h"
#include "TestResults.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace testing_results;

constexpr sdc::ReceiverData receiver{28000.0, 5.0, 60.0, -20.0};

/// Channels 28 MHz apart, around 23 GHz, each with a sample at its centre.
constexpr sdc::ScanPlan raster{.rxFrequency_kHz = 23000000,
    .channelSpacing_kHz = 28000,
    .lowest_kHz = 22944000,
    .highest_kHz = 23056000,
    .samples = 5,
    .step_kHz = 28000};

sdc::Leakage leakageOf(const std::vector<std::int32_t>& levels, const sdc::ReceiverData& data = receiver)
{
    return {data, raster, traceOf(levels, 22944000, 28000)};
}

/// -174 + 10 log10(28e6) + 5 is -94.53; of 3.5 MHz it is -103.56, which no controller tells.
TEST(Floor, ofAQuietReceiverIsItsNoiseButNotBelowTheLowestReading)
{
    EXPECT_EQ(sdc::quietReading(receiver), -9453);
    EXPECT_EQ(sdc::quietReading({3500.0, 5.0, 60.0, -20.0}), -9970);
    EXPECT_NEAR(sdc::levelOf(sdc::noise_mW({3500.0, 5.0, 60.0, -20.0})), -10356.0, 1.0);
}

/// At -23.01 half of what comes in is seen.
TEST(Floor, ofAReadingNearSaturationIsMoreThanItTells)
{
    EXPECT_NEAR(sdc::levelOf(sdc::power_mW(-6000, receiver)), -6000.0, 0.1);
    EXPECT_NEAR(sdc::levelOf(sdc::power_mW(-2301, receiver)), -2000.0, 1.0);
    EXPECT_TRUE(std::isfinite(sdc::power_mW(-1000, receiver)));
}

/// A half of the steps are of 60 or less: 60 / 0.6745 / sqrt(2) is 63.
TEST(Scatter, isTheMedianOfWhatReadingsDifferFromSweepToSweep)
{
    const auto channel = channelOf(1, {sweepOf({-9000, -9000, -9000}), sweepOf({-8940, -9060, -5000})});
    EXPECT_NEAR(sdc::scatterOf(channel.survey), 62.9, 0.1);
}

TEST(Scatter, isWithinWhatReceiversHave)
{
    EXPECT_EQ(sdc::scatterOf(channelOf(1, {sweepOf({-9000}), sweepOf({-9001})}).survey), 30.0);
    EXPECT_EQ(sdc::scatterOf(channelOf(1, {sweepOf({-9000}), sweepOf({-8000})}).survey), 100.0);
}

TEST(Scatter, ofReadingsAtTheLowestIsNotKnown)
{
    EXPECT_EQ(sdc::scatterOf(channelOf(1, {sweepOf({-9970, -9970}), sweepOf({-9970, -9970})}).survey), 100.0);
    EXPECT_EQ(sdc::scatterOf(channelOf(1, {sweepOf({-9000, -9000})}).survey), 100.0);
    EXPECT_EQ(sdc::scatterOf({}), 100.0);
}

/// Half the readings near the lowest are missing: those that are left scatter less than all.
TEST(Scatter, ofReadingsMostlyNearTheLowestIsNotKnown)
{
    EXPECT_EQ(sdc::scatterOf(channelOf(1, {sweepOf({-9900, -9000, -9800}), sweepOf({-9970, -9001, -9750})}).survey), 100.0);
}

/// Each second reading of a sweep is 61.2 above the others: 61.2 / 0.6745 / sqrt(1.5) is 74.
TEST(Scatter, ofOneSweepIsSeenAlongIt)
{
    std::vector<std::int32_t> levels;
    for (int index = 0; index < 22; ++index) {
        levels.push_back(index % 2 == 0 ? -9000 : -8939);
    }
    EXPECT_NEAR(sdc::scatterOf(channelOf(1, {sweepOf(levels)}).survey), 73.8, 0.2);
}

/// A carrier of -40 two channels away, rejected by 60 dB.
TEST(Leakage, ofACarrierIsLessByTheRejection)
{
    const sdc::Leakage leakage = leakageOf({-4000, -9453, -9453, -9453, -9453});
    EXPECT_NEAR(sdc::levelOf(leakage.rejected_mW(sdc::channelAt(0, raster))), -9996.0, 5.0);
}

/// What a carrier leaves in its own channel is no leak. One of -30 reads 0.46 dB less than it is.
TEST(Leakage, ofACarrierIntoItsOwnChannelIsNone)
{
    const sdc::Leakage leakage = leakageOf({-9453, -9453, -3000, -9453, -9453});
    EXPECT_LT(leakage.rejected_mW(sdc::channelAt(0, raster)), 1e-15);
    EXPECT_NEAR(sdc::levelOf(leakage.rejected_mW(sdc::channelAt(1, raster))), -8954.0, 2.0);
}

/// A carrier of -40 beside a channel that reads -70, as its next channel does: at most 25 dB below the carrier.
TEST(Leakage, byAMaskIsAtMostThatOfThePoorest)
{
    const sdc::Leakage leakage = leakageOf({-9453, -9453, -6800, -4000, -6600});
    EXPECT_NEAR(sdc::levelOf(leakage.mostByMasks_mW(sdc::channelAt(0, raster))), -6500.0, 10.0);
}

/// 31 dB below the carrier is heard here, but nothing on its other side, and a mask has two.
TEST(Leakage, byAMaskIsNotMoreThanOnTheOtherSideOfTheCarrier)
{
    const sdc::Leakage leakage = leakageOf({-9453, -9453, -7100, -4000, -9453});
    EXPECT_LT(leakage.mostByMasks_mW(sdc::channelAt(0, raster)), sdc::milliwatts(-9453));
}

/// 45 dB below the carrier no mask is, other than one that cannot be told from none.
TEST(Leakage, byAMaskThatGoodIsNone)
{
    const sdc::Leakage leakage = leakageOf({-9453, -9453, -8500, -4000, -6600});
    EXPECT_LT(leakage.mostByMasks_mW(sdc::channelAt(0, raster)), sdc::milliwatts(-9453));
}

/// A normal deviate exceeds 3.29 in one case of two thousand, 4.42 in one of two hundred thousand.
TEST(Scatter, reachesFartherInManyReadings)
{
    EXPECT_NEAR(sdc::extremeOf(1), 3.29, 0.05);
    EXPECT_NEAR(sdc::extremeOf(100), 4.42, 0.05);
    EXPECT_NEAR(sdc::extremeOf(0), 3.29, 0.05);
}

/// Half of it up to its centre, nothing beyond 0.49 of the channel, half of its density at half the symbol rate.
TEST(CarrierShape, fillsItsChannel)
{
    const sdc::CarrierShape carrier{0.0, 28000.0, sdc::leastRollOff};
    EXPECT_NEAR(sdc::shareOfCarrier(carrier, {-28000.0, 28000.0}), 1.0, 1e-9);
    EXPECT_NEAR(sdc::shareOfCarrier(carrier, 14000.0, 28000.0), 0.5, 1e-9);
    EXPECT_NEAR(sdc::shareOfCarrier(carrier, {13720.0, 28000.0}), 0.0, 1e-9);
    EXPECT_NEAR(sdc::shareOfCarrier(carrier, {-1000.0, 1000.0}), 2000.0 / 22866.7, 1e-6);
}

TEST(Leakage, ofNothingIsNothing)
{
    const sdc::Leakage leakage(receiver, raster, {});
    EXPECT_EQ(leakage.rejected_mW(sdc::channelAt(0, raster)), 0.0);
    EXPECT_EQ(leakage.mostByMasks_mW(sdc::channelAt(0, raster)), 0.0);
}

} // namespace

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

/// Each second reading of a sweep is 61.2 above the others: 61.2 / 0.6745 / sqrt(1.5) is 74.
TEST(Scatter, ofOneSweepIsSeenAlongIt)
{
    std::vector<std::int32_t> levels;
    for (int index = 0; index < 22; ++index) {
        levels.push_back(index % 2 == 0 ? -9000 : -8939);
    }
    EXPECT_NEAR(sdc::scatterOf(channelOf(1, {sweepOf(levels)}).survey), 73.8, 0.2);
}

/// A carrier of -40 two channels away: rejected by 60 dB, or 45 dB lower by its mask.
TEST(Leakage, ofACarrierTwoChannelsAway)
{
    const sdc::Leakage leakage = leakageOf({-4000, -9453, -9453, -9453, -9453});
    const sdc::Stretch own = sdc::channelAt(0, raster);
    EXPECT_NEAR(sdc::levelOf(leakage.rejected_mW(own)), -9996.0, 5.0);
    EXPECT_NEAR(sdc::levelOf(leakage.mostByMasks_mW(own)), -8500.0, 5.0);
}

TEST(Leakage, ofACarrierBesideIsMuchMoreByItsMask)
{
    const sdc::Leakage leakage = leakageOf({-9453, -9453, -9453, -4000, -9453});
    EXPECT_NEAR(sdc::levelOf(leakage.mostByMasks_mW(sdc::channelAt(0, raster))), -6500.0, 5.0);
}

/// What a carrier leaves in its own channel is no leak.
TEST(Leakage, ofACarrierIntoItsOwnChannelIsNone)
{
    const sdc::Leakage leakage = leakageOf({-9453, -9453, -3000, -9453, -9453});
    EXPECT_NEAR(leakage.likelyReading(sdc::channelAt(0, raster)), -9453.0, 1.0);
    EXPECT_NEAR(leakage.likelyReading(sdc::channelAt(1, raster)), -8834.0, 5.0); // -89.54 before saturation, and the noise
}

/// A filter of 28 MHz that stands 14 MHz off the centre takes in half of the carrier beside it, one at the centre none.
TEST(Leakage, overAnEdgeGrowsTowardsIt)
{
    const sdc::Leakage leakage = leakageOf({-9453, -9453, -9453, -4000, -9453});
    const sdc::Stretch own = sdc::channelAt(0, raster);
    EXPECT_NEAR(sdc::levelOf(leakage.mostOverEdges_mW(own, 23014000)), -4301.0, 5.0);
    EXPECT_LT(leakage.mostOverEdges_mW(own, 23000000), 1e-12);
    EXPECT_NEAR(leakage.mostReading(own, 23014000), -4298.0, 10.0);
}

TEST(Leakage, ofNothingIsNothing)
{
    const sdc::Leakage leakage(receiver, raster, {});
    EXPECT_EQ(leakage.rejected_mW(sdc::channelAt(0, raster)), 0.0);
    EXPECT_NEAR(leakage.mostReading(sdc::channelAt(0, raster), 23000000), -9453.0, 1.0);
}

} // namespace

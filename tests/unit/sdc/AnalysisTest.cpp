#include "apps/sdc/result/Analysis.h"

#include "TestResults.h"

#include <gtest/gtest.h>

#include <limits>

using namespace testing_results;
using sdc::Analysis;
using sdc::RasterChannel;

namespace {

// The receiver belongs to 102000 kHz, channels are 2000 kHz wide: 101000 to 103000 kHz is the configured one.
Analysis analysisOf(const std::vector<std::int32_t>& levels)
{
    return sdc::analyse(traceOf(levels), planOf(static_cast<std::int32_t>(levels.size())), 0.0);
}

std::vector<std::int32_t> levelsFrom(std::int32_t first, std::size_t count)
{
    std::vector<std::int32_t> levels;
    for (std::size_t index = 0; index < count; ++index) {
        levels.push_back(first + static_cast<std::int32_t>(index) * 10);
    }
    return levels;
}

} // namespace

TEST(Floors, floorIsTheLowestOfFewLevelsWithoutTheEnds)
{
    // Lower levels in the first two and the last two samples do not count.
    EXPECT_EQ(analysisOf({-9900, -9900, -9000, -8000, -7000, -9900, -9900}).floor, -9000);
    EXPECT_EQ(analysisOf({-9900, -9900, -9000, -8000, -9100, -9900, -9900}).floor, -9100);
}

TEST(Floors, floorIsTheMedianOfTheLowestTenth)
{
    // 30 levels count, the lowest three are -9000, -8990, -8980: the one in the middle.
    std::vector<std::int32_t> levels{-9900, -9900};
    for (const std::int32_t level : levelsFrom(-9000, 30)) {
        levels.insert(levels.begin() + 2, level);
    }
    levels.insert(levels.end(), {-9900, -9900});
    EXPECT_EQ(analysisOf(levels).floor, -8990);
}

TEST(Floors, medianOfAnEvenNumberIsTheMiddleOfTheTwoInTheMiddle)
{
    // 20 levels count, the lowest two are -9000 and -8990.
    std::vector<std::int32_t> levels = levelsFrom(-9020, 24);
    EXPECT_EQ(analysisOf(levels).floor, -8995);
    // 19 are too few for two.
    levels.pop_back();
    EXPECT_EQ(analysisOf(levels).floor, -9000);
}

TEST(Floors, tracesThatAreAllEndsHaveNoFloor)
{
    EXPECT_FALSE(analysisOf({-9000, -9000, -9000, -9000}).floor.has_value());
    EXPECT_FALSE(analysisOf({}).floor.has_value());
    EXPECT_FALSE(analysisOf({-9000}).floor.has_value());
}

TEST(Floors, tracesOfTheConfiguredChannelAloneHaveNoFloor)
{
    // Of seven samples, 101000, 102000 and 103000 kHz are in the channel and 104000 kHz is not; of six, none is outside.
    const std::vector<std::int32_t> levels{-3000, -3000, -3000, -3000, -3000, -3000};
    auto plan = planOf(6);
    EXPECT_EQ(sdc::analyse(traceOf(levels, 99000), plan, 0.0).floor, std::nullopt) << "101000 and 102000 kHz count";
    EXPECT_EQ(sdc::analyse(traceOf(levels, 100000), plan, 0.0).floor, std::nullopt) << "102000 and 103000 kHz count";
    EXPECT_EQ(sdc::analyse(traceOf(levels, 101000), plan, 0.0).floor, -3000) << "103000 and 104000 kHz count";
    EXPECT_EQ(sdc::analyse(traceOf(levels, 98000), plan, 0.0).floor, -3000) << "100000 and 101000 kHz count";
}

TEST(Channels, configuredChannelHasTheMeanPowerOfItsSamples)
{
    // 101000 kHz 1 mW, 102000 kHz 0.1 mW, 103000 kHz 0.1 mW: 0.4 mW are -3.98 dBm. The strong neighbours lie outside.
    EXPECT_EQ(analysisOf({3000, 0, -1000, -1000, 3000}).configured, (RasterChannel{0, 102000, -398, 0}));
}

TEST(Channels, configuredChannelCountsWhenPartOfItWasSeen)
{
    EXPECT_EQ(analysisOf({-9000, -3000}).configured, (RasterChannel{0, 102000, -3000, -3000}));
    EXPECT_FALSE(analysisOf({-9000}).configured.has_value()) << "100000 kHz is not in it";
}

TEST(Channels, otherChannelsAreThoseSeenWholeQuietestFirst)
{
    // Ten samples stand for 99500 to 109500 kHz: the channels at 104000 to 108000 kHz fit, the one at 100000 kHz, from 99000
    // kHz on, does not.
    const auto channels = analysisOf({-9000, -9000, -9000, -4000, -4000, -4000, -9000, -7000, -7000, -7000}).otherChannels;
    // 104000 kHz: three of -40. 106000: -40, -90, -70: 1.001001e-4 mW over 3 are -44.77. 108000: three of -70.
    const std::vector<RasterChannel> expected{
        {3, 108000, -7000, -7000}, {2, 106000, -4477, -4000}, {1, 104000, -4000, -4000}};
    EXPECT_EQ(channels, expected);
}

TEST(Channels, channelIsSeenWholeWhenItEndsWhereTheSliceOfASampleEnds)
{
    // Samples every 2000 kHz stand for 1000 kHz to both sides, which is a whole channel.
    auto plan = planOf(3);
    plan.step_kHz = 2000;
    const std::vector<RasterChannel> expected{{-1, 100000, -9000, -9000}, {1, 104000, -8000, -8000}};
    EXPECT_EQ(sdc::analyse(traceOf({-9000, -3000, -8000}, 100000, 2000), plan, 0.0).otherChannels, expected);
    plan.step_kHz = 1999;
    EXPECT_TRUE(sdc::analyse(traceOf({-9000, -3000, -8000}, 100000, 2000), plan, 0.0).otherChannels.empty());
}

TEST(Channels, equallyQuietChannelsAreRankedByTheirStrongestSampleThenByTheirDistance)
{
    auto plan = planOf(5);
    plan.step_kHz = 2000;
    plan.rxFrequency_kHz = 104000;
    const std::vector<RasterChannel> expected{
        {-1, 102000, -9000, -9000}, {1, 106000, -9000, -9000}, {-2, 100000, -9000, -9000}, {2, 108000, -9000, -9000}};
    EXPECT_EQ(sdc::analyse(traceOf({-9000, -9000, -3000, -9000, -9000}, 100000, 2000), plan, 0.0).otherChannels, expected);
}

TEST(Channels, sampleOnTheEdgeOfTwoChannelsCountsInBoth)
{
    auto plan = planOf(9);
    const auto samples = traceOf({-9000, -9000, -9000, -3000, -9000, -9000, -9000}, 100000);
    const Analysis analysis = sdc::analyse(samples, plan, 0.0);
    EXPECT_EQ(analysis.configured->strongest, -3000);
    ASSERT_EQ(analysis.otherChannels.size(), 1U);
    EXPECT_EQ(analysis.otherChannels[0].strongest, -3000);
}

TEST(Channels, scanOfOnePlaceHasNoOtherChannels)
{
    auto plan = planOf(2);
    plan.step_kHz = 0;
    const Analysis analysis = sdc::analyse({{102000, -3000}, {102000, -4000}}, plan, 0.0);
    EXPECT_EQ(analysis.configured, (RasterChannel{0, 102000, -3260, -3000}));
    EXPECT_TRUE(analysis.otherChannels.empty());
    EXPECT_TRUE(analysis.peaks.empty());
}

TEST(Channels, linkWithoutAChannelSpacingHasNoChannels)
{
    auto plan = planOf(7);
    plan.channelSpacing_kHz = 0;
    const Analysis analysis = sdc::analyse(traceOf({-9000, -9000, -3000, -9000, -9000, -9000, -9000}), plan, 0.0);
    EXPECT_FALSE(analysis.configured.has_value());
    EXPECT_TRUE(analysis.otherChannels.empty());
    EXPECT_EQ(analysis.peaks.size(), 1U);
}

TEST(Analyses, nothingIsSaidOfAScanWithoutSamples)
{
    const Analysis analysis = sdc::analyse({}, sdc::ScanPlan{}, 0.0);
    EXPECT_FALSE(analysis.floor || analysis.configured || !analysis.peaks.empty() || !analysis.otherChannels.empty());
}

TEST(Analyses, oddestLevelsAreStoodThrough)
{
    constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    const Analysis analysis = analysisOf({lowest, lowest, highest, lowest, lowest, lowest, lowest});
    ASSERT_EQ(analysis.peaks.size(), 1U);
    EXPECT_EQ(analysis.peaks[0].prominence, std::int64_t{highest} - lowest);
    EXPECT_EQ(analysis.floor, lowest);
}

#include "apps/sdc/result/Analysis.h"

#include "TestResults.h"
#include "apps/sdc/result/Sweep.h"

#include <gtest/gtest.h>

#include <limits>

using namespace testing_results;
using sdc::Analysis;

namespace {

// The receiver belongs to 102000 kHz, channels are 2000 kHz wide: 101000 to 103000 kHz is the configured one.
Analysis analysisOf(const std::vector<std::int32_t>& levels, std::uint32_t lowest_kHz = 100000)
{
    sdc::Sweep sweep = sweepOf(levels);
    sweep.samples = samplesOf(levels, lowest_kHz);
    return sdc::analyse(channelOf(1, {sweep}));
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
    EXPECT_EQ(analysisOf(levels, 99000).floor, std::nullopt) << "101000 and 102000 kHz count";
    EXPECT_EQ(analysisOf(levels, 100000).floor, std::nullopt) << "102000 and 103000 kHz count";
    EXPECT_EQ(analysisOf(levels, 101000).floor, -3000) << "103000 and 104000 kHz count";
    EXPECT_EQ(analysisOf(levels, 98000).floor, -3000) << "100000 and 101000 kHz count";
}

TEST(Analyses, nothingIsSaidOfAScanWithoutSamples)
{
    const Analysis analysis = analysisOf({});
    EXPECT_FALSE(analysis.floor || analysis.configured() != nullptr || !analysis.peaks.empty() || !analysis.raster.empty());
}

TEST(Analyses, scanOfOnePlaceHasAConfiguredChannelAndNoPeaks)
{
    sdc::Sweep sweep = sweepOf({});
    sweep.samples = samplesOf({-3000}, 102000);
    const Analysis analysis = sdc::analyse(channelOf(1, {sweep}));
    ASSERT_NE(analysis.configured(), nullptr);
    EXPECT_EQ(analysis.configured()->max, -3000);
    EXPECT_TRUE(analysis.peaks.empty());
}

TEST(Analyses, oddestLevelsAreStoodThrough)
{
    constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    const auto result = neverSaturated(scanOf({lowest, lowest, highest, lowest, lowest, lowest, lowest}));
    const Analysis analysis = sdc::analyse(result.channels[0]);
    ASSERT_EQ(analysis.peaks.size(), 1U);
    EXPECT_EQ(analysis.peaks[0].prominence, std::int64_t{highest} - lowest);
    EXPECT_EQ(analysis.floor, lowest);
}

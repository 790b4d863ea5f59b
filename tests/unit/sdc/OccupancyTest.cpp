#include "apps/sdc/result/Occupancy.h"

#include "TestResults.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

using namespace testing_results;
using sdc::OccupancyCount;

namespace {

/// A look for each character; '1': the channel is on.
OccupancyCount countOf(std::string_view looks)
{
    OccupancyCount count;
    for (const char look : looks) {
        count.add({.offset = 1, .isOn = look == '1'});
    }
    return count;
}

// Two channels of 2000 kHz, read at 102000 and 104000 kHz.
sdc::ChannelOccupancy occupancyOf(const std::vector<std::vector<std::int32_t>>& sweeps, std::int32_t threshold)
{
    sdc::ChannelOccupancy occupancy({.threshold = threshold});
    sdc::TimePoint start = aMoment;
    for (const auto& levels : sweeps) {
        sdc::Sweep sweep = sweepOf({});
        sweep.samples = samplesOf(levels, 102000, 2000, start);
        auto plan = planOf(2);
        plan.step_kHz = 2000;
        occupancy.add(sweep, plan, {2000.0, 5.0, 55.0, -20.0});
        start += 10s;
    }
    return occupancy;
}

} // namespace

TEST(Occupancies, shareIsThatOfTheLooksThatAreOn)
{
    EXPECT_EQ(countOf("0010").share(), 0.25);
    EXPECT_EQ(countOf("1111").share(), 1.0);
}

TEST(Occupancies, looksThatFollowEachOtherByChanceDoNotDepend)
{
    EXPECT_EQ(countOf("110011001").dependence(), 0.0) << "half of the looks change";
    EXPECT_EQ(countOf("101010").dependence(), 0.0) << "more than by chance is no dependence";
    EXPECT_EQ(countOf("000111").dependence(), 0.0) << "one transition says nothing";
}

TEST(Occupancies, looksThatStayDepend)
{
    // A third of the looks after "on" and a third of those after "off" change.
    EXPECT_NEAR(countOf("1110001110001").dependence(), 1.0 / 3.0, 1e-9);
}

TEST(Occupancies, looksNeededFollowFromShareConfidenceAndAccuracy)
{
    // 1.96^2 * 0.5 * 0.5 / 0.1^2 = 96.04.
    EXPECT_EQ(looksNeeded(countOf("1001"), {}), 97U);
    // 2.5758^2 * 0.25 / 0.05^2 = 663.5.
    EXPECT_EQ(looksNeeded(countOf("1001"), {.threshold = {}, .confidence = 9900, .accuracy = 500}), 664U);
}

TEST(Occupancies, channelThatIsNeverOnNeedsLooksToo)
{
    // 0.9^28.43 is 0.05.
    EXPECT_EQ(looksNeeded(countOf("0"), {}), 29U);
    EXPECT_EQ(looksNeeded(countOf("111"), {}), 29U);
}

TEST(Occupancies, looksThatDependTellLess)
{
    // 1.96^2 * 7/13 * 6/13 / 0.1^2 = 95.47, and (1 + 1/3) / (1 - 1/3) = 2 times as many.
    EXPECT_EQ(looksNeeded(countOf("1110001110001"), {}), 191U);
}

TEST(Occupancies, sweepsAreCountedChannelByChannel)
{
    const auto occupancy = occupancyOf({{-9000, -5000}, {-9000, -7001}, {-9000, -6999}}, -7000);
    EXPECT_EQ(occupancy.count(0).looks, 3U);
    EXPECT_EQ(occupancy.count(0).on, 0U);
    EXPECT_EQ(occupancy.count(1).on, 2U);
    EXPECT_EQ(occupancy.count(2).looks, 0U);
    EXPECT_NEAR(*occupancy.bandShare(), 2.0 / 6.0, 1e-9);
}

TEST(Occupancies, revisitTimeIsThatFromSweepToSweep)
{
    EXPECT_EQ(occupancyOf({{-9000}, {-9000}, {-9000}}, -7000).revisitTime(), 10s);
    EXPECT_FALSE(occupancyOf({{-9000}}, -7000).revisitTime().has_value());
}

TEST(Occupancies, sweepsThatDidNotReachAChannelSayNothingOfIt)
{
    const auto occupancy = occupancyOf({{-9000, -5000}, {-9000}}, -7000);
    EXPECT_EQ(occupancy.count(0).looks, 2U);
    EXPECT_EQ(occupancy.count(1).looks, 1U);
}

TEST(Occupancies, refusedReadingsAreNoLevels)
{
    EXPECT_EQ(occupancyOf({{0, -9000}}, -7000).count(0).looks, 0U);
    EXPECT_EQ(occupancyOf({{2147483647, -9000}}, -7000).count(0).looks, 0U) << "nor what no receiver reads";
}

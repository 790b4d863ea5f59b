#include "apps/sdc/result/Survey.h"

#include "TestResults.h"

#include <gtest/gtest.h>

#include <limits>

using namespace testing_results;
using sdc::Hold;

// 1 mW and 0.1 mW have the mean 0.55 mW, which is -2.596 dBm.
TEST(PowerMeans, averageIsOfPowersAndNotOfDecibels)
{
    for (const auto& order : {std::vector<std::int32_t>{0, -1000}, {-1000, 0}}) {
        sdc::PowerMean mean;
        for (const std::int32_t level : order) {
            mean.add(level);
        }
        EXPECT_EQ(mean.mean(), -260);
        EXPECT_EQ(mean.strongest(), 0);
        EXPECT_EQ(mean.count(), 2U);
    }
}

TEST(PowerMeans, equalLevelsAverageToThemselves)
{
    for (const std::int32_t level : {-9970, 0, 4242}) {
        sdc::PowerMean mean;
        mean.add(level);
        mean.add(level);
        mean.add(level);
        EXPECT_EQ(mean.mean(), level);
    }
}

TEST(PowerMeans, noLevelIsTooOdd)
{
    sdc::PowerMean mean;
    mean.add(std::numeric_limits<std::int32_t>::min());
    mean.add(std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(mean.mean(), std::numeric_limits<std::int32_t>::max() - 301) << "half the power of the stronger one";
}

namespace {

std::vector<Hold> holdsOf(std::vector<sdc::Sweep> sweeps)
{
    return channelOf(1, std::move(sweeps)).survey.holds();
}

} // namespace

TEST(Holds, eachFrequencyHasItsMaxMinAndAverage)
{
    const std::vector<Hold> expected{{100000, -1000, -2000, -1260, 2}, {101000, -5000, -5000, -5000, 2}};
    EXPECT_EQ(holdsOf({sweepOf({-2000, -5000}), sweepOf({-1000, -5000})}), expected);
}

TEST(Holds, frequencyIsHeldOverTheSweepsThatReachedIt)
{
    const auto found = holdsOf({sweepOf({-9000, -6000}), sweepOf({-9000}), sweepOf({-7000, -4000, -3000})});
    // 1e-9 + 1e-9 + 1e-7 mW over 3 are -74.69 dBm; 1e-6 and 1e-4 mW over 2 are -42.97 dBm.
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[0], (Hold{100000, -7000, -9000, -7469, 3}));
    EXPECT_EQ(found[1], (Hold{101000, -4000, -6000, -4297, 2}));
    EXPECT_EQ(found[2], (Hold{102000, -3000, -3000, -3000, 1}));
}

TEST(Holds, ofReadingsThatAreNoLevelsAreNone)
{
    const std::vector<Hold> expected{{100000, -5000, -6000, -5260, 2}, {101000, -7000, -7000, -7000, 1}};
    EXPECT_EQ(holdsOf({sweepOf({-5000, 0, 0}), sweepOf({-6000, -7000, 999999})}), expected);
    EXPECT_TRUE(holdsOf({sweepOf({0, 0}), sweepOf({0, 0})}).empty());
}

TEST(Holds, sweepsWithoutSamplesHoldNothing)
{
    EXPECT_TRUE(sdc::Survey().holds().empty());
    EXPECT_TRUE(holdsOf({sweepOf({}), sweepOf({})}).empty());
}

TEST(Traces, ofOneSweepHasNoReadingsThatAreNoLevels)
{
    const auto trace = sdc::traceOf(channelOf(1, {sweepOf({-5000, 0, 999999, -6000})}), sdc::TraceKind::max);
    ASSERT_EQ(trace.size(), 2U);
    EXPECT_EQ(trace[1].frequency_kHz, 103000U);
}

TEST(Traces, ofOneSweepIsTheSweep)
{
    const auto trace = sdc::traceOf(channelOf(1, {sweepOf({-5000, -6000})}), sdc::TraceKind::max);
    ASSERT_EQ(trace.size(), 2U);
    EXPECT_EQ(trace[1].frequency_kHz, 101000U);
    EXPECT_EQ(trace[1].rssi, -6000);
}

TEST(Traces, ofSeveralSweepsHaveTheLevelAskedForAtEachFrequency)
{
    const std::tuple<sdc::TraceKind, std::int32_t> levels[] = {
        {sdc::TraceKind::max, -1000}, {sdc::TraceKind::average, -1260}, {sdc::TraceKind::min, -2000}};
    for (const auto& [kind, level] : levels) {
        const auto trace = sdc::traceOf(channelOf(1, {sweepOf({-1000, -5000}), sweepOf({-2000})}), kind);
        ASSERT_EQ(trace.size(), 2U);
        EXPECT_EQ(trace[0].rssi, level) << toText(kind);
        EXPECT_EQ(trace[1].frequency_kHz, 101000U);
        EXPECT_EQ(trace[1].rssi, -5000);
    }
}

TEST(Surveys, knowWhatForgottenSweepsFound)
{
    sdc::ChannelResult channel = channelOf(1, {sweepOf({-2000, -5000})});
    channel.add(sweepOf({-1000, -5000}), sdc::Keep::last);
    ASSERT_EQ(channel.sweeps.size(), 1U);
    EXPECT_EQ(channel.sweeps[0].samples[0].rssi, -1000);
    EXPECT_EQ(channel.survey.sweeps(), 2U);
    EXPECT_EQ(channel.survey.holds()[0], (Hold{100000, -1000, -2000, -1260, 2}));
}

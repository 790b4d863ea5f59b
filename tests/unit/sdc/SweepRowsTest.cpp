#include "apps/sdc/formats/LiveFormat.h"
#include "simulator/scenario/RecordedSweep.h"
#include "tests/support/Recordings.h"

#include "TestLines.h"
#include "TestResults.h"

#include <gtest/gtest.h>

using namespace testing_results;
using sdc::Ending;

namespace {

std::string rowsOf(const sdc::ScanResult& result)
{
    return linesOf(sdc::makeSweepRows, result, result.channels.size()).front().text;
}

} // namespace

TEST(SweepRows, rowIsWhatTheReadersExpect)
{
    EXPECT_EQ(
        rowsOf(scanOf({-9970, -4505, 5})), "2026-01-02, 03:04:05, 100000000, 103000000, 1000000, 3, -99.70, -45.05, 0.05\n");
}

TEST(SweepRows, frequenciesBeyond32BitsOfHertzAreWhole)
{
    auto channel = channelOf(1, {sweepOf({-9000, -8000})});
    channel.plan.lowest_kHz = 86'000'000;
    channel.plan.highest_kHz = 86'250'000;
    channel.plan.step_kHz = 250'000;
    channel.sweeps[0].samples = samplesOf({-9000, -8000}, 86'000'000, 250'000);
    EXPECT_EQ(rowsOf(resultOf({channel})), "2026-01-02, 03:04:05, 86000000000, 86500000000, 250000000, 2, -90.00, -80.00\n");
}

TEST(SweepRows, samplesThatWerePlannedAndNotTakenAreNan)
{
    auto channel = channelOf(1, {sweepOf({-9000, -8000, -7000, -6000})});
    channel.sweeps[0] = cutShort(channel.sweeps[0], 2, Ending::stopped);
    EXPECT_EQ(
        rowsOf(resultOf({channel})), "2026-01-02, 03:04:05, 100000000, 104000000, 1000000, 2, -90.00, -80.00, nan, nan\n");
    channel.sweeps[0] = cutShort(channel.sweeps[0], 1, Ending::stopped);
    EXPECT_EQ(
        rowsOf(resultOf({channel})), "2026-01-02, 03:04:05, 100000000, 104000000, 1000000, 1, -90.00, nan, nan, nan\n");
}

TEST(SweepRows, samplesThatTheRadioRefusedAreNan)
{
    EXPECT_EQ(rowsOf(scanOf({-9000, 0, 999999})),
        "2026-01-02, 03:04:05, 100000000, 103000000, 1000000, 2, -90.00, nan, 9999.99\n");
    auto still = channelOf(1, {sweepOf({-9000, 0, -8000})});
    for (sdc::Sample& sample : still.sweeps[0].samples) {
        sample.frequency_kHz = 100000;
    }
    EXPECT_EQ(rowsOf(resultOf({still})), "2026-01-02, 03:04:05, 100000000, 102000000, 2000000, 2, -82.60\n");
    still.sweeps[0].samples[0].rssi = still.sweeps[0].samples[2].rssi = 0;
    EXPECT_EQ(rowsOf(resultOf({still})), "2026-01-02, 03:04:05, 100000000, 102000000, 2000000, 0, nan\n");
}

TEST(SweepRows, planLargerThanItsRangeFillsTheRangeAlone)
{
    auto channel = channelOf(1, {sweepOf({-9000, -8000})});
    const std::string taken = "2, -90.00, -80.00";
    const struct {
        std::int32_t samples;
        std::uint32_t highest_kHz;
        std::string levels;
    } rows[]{{2'000'000'000, 102'999, taken + ", nan\n"}, {2'000'000'000, 1000, taken + "\n"}, {-1, 105'000, taken + "\n"}};
    for (const auto& row : rows) {
        channel.plan.samples = row.samples;
        channel.plan.highest_kHz = row.highest_kHz;
        EXPECT_THAT(rowsOf(resultOf({channel})), testing::EndsWith(row.levels));
    }
}

TEST(SweepRows, singleMeasurementHasTheChannelSpacingAsItsStep)
{
    auto channel = channelOf(1, {sweepOf({-4400})});
    EXPECT_EQ(rowsOf(resultOf({channel})), "2026-01-02, 03:04:05, 100000000, 102000000, 2000000, 1, -44.00\n");
    channel.plan.step_kHz = 0;
    EXPECT_EQ(rowsOf(resultOf({channel})), "2026-01-02, 03:04:05, 100000000, 102000000, 2000000, 1, -44.00\n");
    channel.plan.channelSpacing_kHz = 0;
    EXPECT_EQ(rowsOf(resultOf({channel})), "2026-01-02, 03:04:05, 100000000, 100001000, 1000, 1, -44.00\n");
}

TEST(SweepRows, samplesOfOnePlaceAreOneLevel)
{
    auto channel = channelOf(1, {sweepOf({-1000, -2000})});
    channel.plan.step_kHz = 0;
    channel.sweeps[0].samples = samplesOf({-1000, -2000}, 100000, 0);
    EXPECT_EQ(rowsOf(resultOf({channel})), "2026-01-02, 03:04:05, 100000000, 102000000, 2000000, 2, -12.60\n");
}

TEST(SweepRows, sweepsFollowByTimeInAFileForEachChannel)
{
    auto high = channelOf(1, {sweepOf({-9000}, aMoment), sweepOf({-8000}, aMoment + 7s)});
    for (auto& sweep : high.sweeps) {
        sweep.samples[0].frequency_kHz = 200000;
    }
    const auto low = channelOf(2, {sweepOf({-7000}, aMoment + 300ms), sweepOf({-6000}, aMoment + 7s)});
    const auto files = linesOf(sdc::makeSweepRows, resultOf({high, low}), 2);
    EXPECT_EQ(files[0].text,
        "2026-01-02, 03:04:05, 200000000, 202000000, 2000000, 1, -90.00\n"
        "2026-01-02, 03:04:12, 200000000, 202000000, 2000000, 1, -80.00\n");
    EXPECT_EQ(files[1].text,
        "2026-01-02, 03:04:05, 100000000, 102000000, 2000000, 1, -70.00\n"
        "2026-01-02, 03:04:12, 100000000, 102000000, 2000000, 1, -60.00\n");
}

TEST(SweepRows, sweepWithoutSamplesHasNoRow)
{
    EXPECT_EQ(rowsOf(resultOf({channelOf(1, {sweepOf({}), sweepOf({-9000})})})),
        "2026-01-02, 03:04:05, 100000000, 102000000, 2000000, 1, -90.00\n");
}

TEST(SweepRows, recordingsAreReadBackAsTheyWereTaken)
{
    auto channel = channelOf(1, {sweepOf({-9970, -4505, -3000, -8000})});
    channel.sweeps[0] = cutShort(channel.sweeps[0], 3, Ending::stopped);
    const auto recording = simulator::readRecordedSweep(rowsOf(resultOf({channel})), "sweep.csv");
    EXPECT_THAT(tests::levelsOf(recording),
        testing::ElementsAre(testing::DoubleNear(-99.70, 1e-6), testing::DoubleNear(-45.05, 1e-6),
            testing::DoubleNear(-30.00, 1e-6), testing::IsNan()));
}

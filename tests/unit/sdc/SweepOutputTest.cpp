#include "apps/sdc/results/Outputs.h"
#include "simulator/scenario/RecordedSweep.h"
#include "tests/support/Recordings.h"

#include "SweepRowReader.h"
#include "TestResults.h"

#include <gtest/gtest.h>

using namespace testing_results;
using sdc::Ending;

namespace {

std::string sweepTextOf(const sdc::ScanResult& result)
{
    return written([&](std::ostream& stream) { sdc::writeSweep(stream, result); });
}

} // namespace

TEST(SweepOutput, rowIsWhatTheReadersExpect)
{
    EXPECT_EQ(sweepTextOf(scanOf({-9970, -4505, 5})),
        "2026-01-02, 03:04:05, 100000000, 103000000, 1000000, 3, -99.70, -45.05, 0.05\n");
}

// The reader below stands for the real ones, so it must refuse what they fall over.
TEST(SweepOutput, pickyReaderIsPicky)
{
    const std::string good = "2026-01-02, 03:04:05, 100, 102, 1, 2, -99.70, nan";
    EXPECT_NO_THROW(readCommonRow(good));
    for (const char* const row : {"date, time, Hz_low, Hz_high, Hz_step, samples, dB", "# comment",
             "2026-01-02, 03:04:05, 100.0, 102, 1, 2, -99.70, nan", "2026-01-02, 03:04:05.678, 100, 102, 1, 2, -99.70, nan",
             "2026-01-02T03:04:05Z, 100, 102, 1, 2, -99.70, nan", "2026-01-02, 03:04:05, 100, 102, 1, 2, -99.70, ",
             "2026-01-02,03:04:05,100,102,1,2,-99.70,nan", "2026-01-02, 03:04:05, 100, 101, 1, 2, -99.70, nan",
             "2026-01-02, 03:04:05, 100, 100, 0, 2, -99.70, nan", "2026-01-02, 03:04:05, 100, 102, 1, 2, -99.7, nan"}) {
        EXPECT_THROW(readCommonRow(row), std::runtime_error) << row;
    }
    EXPECT_THROW(readCommonRows(good + "\n" + "2026-01-02, 03:04:04, 100, 102, 1, 2, -99.70, nan\n"), std::runtime_error);
}

TEST(SweepOutput, frequenciesBeyond32BitsOfHertzAreWhole)
{
    auto channel = channelOf(1, {sweepOf({-9000, -8000})});
    channel.plan.lowest_kHz = 86'000'000;
    channel.plan.highest_kHz = 86'250'000;
    channel.plan.step_kHz = 250'000;
    channel.sweeps[0].samples = samplesOf({-9000, -8000}, 86'000'000, 250'000);
    const auto rows = readCommonRows(sweepTextOf(resultOf({channel})));
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].low_Hz, 86'000'000'000);
    EXPECT_EQ(rows[0].high_Hz, 86'500'000'000);
    EXPECT_EQ(rows[0].step_Hz, 250'000'000);
}

TEST(SweepOutput, samplesThatWerePlannedAndNotTakenAreNan)
{
    auto channel = channelOf(1, {sweepOf({-9000, -8000, -7000, -6000})});
    channel.sweeps[0] = cutShort(channel.sweeps[0], 2, Ending::stopped);
    EXPECT_EQ(sweepTextOf(resultOf({channel})),
        "2026-01-02, 03:04:05, 100000000, 104000000, 1000000, 2, -90.00, -80.00, nan, nan\n");
    channel.sweeps[0] = cutShort(channel.sweeps[0], 1, Ending::stopped);
    EXPECT_EQ(
        sweepTextOf(resultOf({channel})), "2026-01-02, 03:04:05, 100000000, 104000000, 1000000, 1, -90.00, nan, nan, nan\n");
}

TEST(SweepOutput, planLargerThanItsRangeFillsTheRangeAlone)
{
    auto channel = channelOf(1, {sweepOf({-9000, -8000})});
    channel.plan.samples = 2'000'000'000;
    channel.plan.highest_kHz = 102'999;
    EXPECT_EQ(readCommonRows(sweepTextOf(resultOf({channel}))).at(0).levels_dBm.size(), 3U);
    channel.plan.highest_kHz = 1000;
    EXPECT_EQ(readCommonRows(sweepTextOf(resultOf({channel}))).at(0).levels_dBm.size(), 2U);
    channel.plan.samples = -1;
    channel.plan.highest_kHz = 105'000;
    EXPECT_EQ(readCommonRows(sweepTextOf(resultOf({channel}))).at(0).levels_dBm.size(), 2U);
}

TEST(SweepOutput, singleMeasurementHasTheChannelSpacingAsItsStep)
{
    auto channel = channelOf(1, {sweepOf({-4400})});
    EXPECT_EQ(sweepTextOf(resultOf({channel})), "2026-01-02, 03:04:05, 100000000, 102000000, 2000000, 1, -44.00\n");
    channel.plan.step_kHz = 0;
    EXPECT_EQ(sweepTextOf(resultOf({channel})), "2026-01-02, 03:04:05, 100000000, 102000000, 2000000, 1, -44.00\n");
    channel.plan.channelSpacing_kHz = 0;
    EXPECT_EQ(sweepTextOf(resultOf({channel})), "2026-01-02, 03:04:05, 100000000, 100001000, 1000, 1, -44.00\n");
}

TEST(SweepOutput, samplesOfOnePlaceAreOneLevel)
{
    auto channel = channelOf(1, {sweepOf({0, -1000})});
    channel.plan.step_kHz = 0;
    channel.sweeps[0].samples = samplesOf({0, -1000}, 100000, 0);
    EXPECT_EQ(sweepTextOf(resultOf({channel})), "2026-01-02, 03:04:05, 100000000, 102000000, 2000000, 2, -2.60\n");
}

TEST(SweepOutput, sweepsFollowByTimeAndChannelsOfOneTimeByFrequency)
{
    auto high = channelOf(1, {sweepOf({-9000}, aMoment), sweepOf({-8000}, aMoment + 7s)});
    for (auto& sweep : high.sweeps) {
        sweep.samples[0].frequency_kHz = 200000;
    }
    // Of one second, although some milliseconds later.
    auto low = channelOf(2, {sweepOf({-7000}, aMoment + 300ms), sweepOf({-6000}, aMoment + 7s)});
    EXPECT_EQ(sweepTextOf(resultOf({high, low})),
        "2026-01-02, 03:04:05, 100000000, 102000000, 2000000, 1, -70.00\n"
        "2026-01-02, 03:04:05, 200000000, 202000000, 2000000, 1, -90.00\n"
        "2026-01-02, 03:04:12, 100000000, 102000000, 2000000, 1, -60.00\n"
        "2026-01-02, 03:04:12, 200000000, 202000000, 2000000, 1, -80.00\n");
}

TEST(SweepOutput, sweepWithoutSamplesHasNoRow)
{
    EXPECT_EQ(sweepTextOf(resultOf({channelOf(1, {sweepOf({})}), channelOf(2, {sweepOf({-9000})})})),
        "2026-01-02, 03:04:05, 100000000, 102000000, 2000000, 1, -90.00\n");
}

TEST(SweepOutput, recordingsAreReadBackAsTheyWereTaken)
{
    auto channel = channelOf(1, {sweepOf({-9970, -4505, -3000, -8000})});
    channel.sweeps[0] = cutShort(channel.sweeps[0], 3, Ending::stopped);
    const auto recording = simulator::readRecordedSweep(sweepTextOf(resultOf({channel})), "sweep.csv");
    EXPECT_THAT(tests::levelsOf(recording),
        testing::ElementsAre(testing::DoubleNear(-99.70, 1e-6), testing::DoubleNear(-45.05, 1e-6),
            testing::DoubleNear(-30.00, 1e-6), testing::IsNan()));
}

#include "apps/sdc/result/Compare.h"

#include "apps/sdc/result/ResultFile.h"

#include "TestResults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

using namespace testing_results;
using sdc::compare;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string reportOf(const sdc::ScanResult& before, const sdc::ScanResult& after, double threshold_dB = 3.0)
{
    return written([&](std::ostream& stream) { sdc::writeComparison(stream, compare(before, after, threshold_dB)); });
}

/// A trace of eleven samples with a floor of -90 and one peak.
sdc::ScanResult withPeakAt(std::size_t index, std::int32_t level = -3000, std::int32_t floor = -9000)
{
    std::vector<std::int32_t> levels(11, floor);
    levels.at(index) = level;
    return scanOf(levels);
}

sdc::ScanResult from(std::uint32_t lowest_kHz, const std::vector<std::int32_t>& levels)
{
    auto result = scanOf(levels);
    result.channels[0].sweeps[0].samples = samplesOf(levels, lowest_kHz);
    return surveyed(std::move(result));
}

} // namespace

TEST(Comparisons, equalResultsHaveNoDifference)
{
    const auto comparison = compare(withPeakAt(5), withPeakAt(5), 0.0);
    ASSERT_EQ(comparison.channels.size(), 1U);
    const auto& channel = comparison.channels[0];
    EXPECT_EQ(channel.channel, 1U);
    EXPECT_EQ(channel.compared, 11U);
    EXPECT_TRUE(channel.changes.empty() && channel.onlyBefore_kHz.empty() && channel.onlyAfter_kHz.empty()
        && channel.newPeaks.empty() && channel.vanishedPeaks.empty());
    EXPECT_EQ(channel.floorBefore, channel.floorAfter);
    EXPECT_TRUE(comparison.channelsOnlyBefore.empty() && comparison.channelsOnlyAfter.empty());
    EXPECT_EQ(reportOf(withPeakAt(5), withPeakAt(5)),
        "channel 1: 11 frequencies compared, 0 changed by more than 3.00 dB\n  nothing changed\n");
}

TEST(Comparisons, noThresholdIsTooHigh)
{
    for (const double threshold_dB : {1e17, std::numeric_limits<double>::max()}) {
        EXPECT_THAT(reportOf(scanOf({-2147483600}), scanOf({2147483600}), threshold_dB), HasSubstr("  nothing changed\n"));
    }
}

TEST(Comparisons, onlyMoreThanTheThresholdIsAChange)
{
    const auto comparison = compare(scanOf({-9000, -9000, -9000, -9000}), scanOf({-8700, -9300, -8699, -9301}), 3.0);
    const auto& changes = comparison.channels.at(0).changes;
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_EQ(changes[0].frequency_kHz, 102000U);
    EXPECT_EQ(changes[0].before, -9000);
    EXPECT_EQ(changes[0].after, -8699);
    EXPECT_EQ(changes[1].frequency_kHz, 103000U);
    EXPECT_EQ(compare(scanOf({-9000, 0}), scanOf({-8999, 0}), 0.0).channels[0].changes.size(), 1U);
}

TEST(Comparisons, frequenciesOfOneResultAloneAreTold)
{
    const auto channel = compare(scanOf({-9000, -9000, -9000}), from(102000, {-9000, -9000}), 3.0).channels.at(0);
    EXPECT_EQ(channel.compared, 1U);
    EXPECT_THAT(channel.onlyBefore_kHz, ElementsAre(100000, 101000));
    EXPECT_THAT(channel.onlyAfter_kHz, ElementsAre(103000));
}

TEST(Comparisons, peaksComeAndGo)
{
    const auto channel = compare(withPeakAt(3), withPeakAt(7, -4000), 3.0).channels.at(0);
    ASSERT_EQ(channel.newPeaks.size(), 1U);
    EXPECT_EQ(channel.newPeaks[0].frequency_kHz, 107000U);
    EXPECT_EQ(channel.newPeaks[0].level, -4000);
    ASSERT_EQ(channel.vanishedPeaks.size(), 1U);
    EXPECT_EQ(channel.vanishedPeaks[0].frequency_kHz, 103000U);
}

TEST(Comparisons, peakThatMovesByHalfAChannelIsTheSame)
{
    // Channels are 2000 kHz wide, steps 1000.
    const auto moved = compare(withPeakAt(3), withPeakAt(4), 3.0).channels.at(0);
    EXPECT_TRUE(moved.newPeaks.empty() && moved.vanishedPeaks.empty());
    const auto other = compare(withPeakAt(3), withPeakAt(5), 3.0).channels.at(0);
    EXPECT_TRUE(other.newPeaks.size() == 1 && other.vanishedPeaks.size() == 1);
}

TEST(Comparisons, peakWhereTheOtherResultCouldShowNoneHasNotVanished)
{
    // The second trace ends at 103000 kHz; a peak needs a sample on each side.
    const std::vector<std::int32_t> few{-9000, -9000, -9000, -9000};
    EXPECT_TRUE(compare(withPeakAt(3), scanOf(few), 3.0).channels.at(0).vanishedPeaks.empty());
    EXPECT_EQ(compare(withPeakAt(2), scanOf(few), 3.0).channels.at(0).vanishedPeaks.size(), 1U);
    EXPECT_TRUE(compare(from(102000, few), withPeakAt(2), 3.0).channels.at(0).newPeaks.empty());
    EXPECT_EQ(compare(from(102000, few), withPeakAt(3), 3.0).channels.at(0).newPeaks.size(), 1U);
}

TEST(Comparisons, channelsOfOneResultAloneAreTold)
{
    const auto before = resultOf({channelOf(1, {sweepOf({-9000})}), channelOf(2, {sweepOf({-9000})})});
    const auto after = resultOf({channelOf(3, {sweepOf({-9000})}), channelOf(2, {sweepOf({-9000})})});
    const auto comparison = compare(before, after, 3.0);
    ASSERT_EQ(comparison.channels.size(), 1U);
    EXPECT_EQ(comparison.channels[0].channel, 2U);
    EXPECT_THAT(comparison.channelsOnlyBefore, ElementsAre(1));
    EXPECT_THAT(comparison.channelsOnlyAfter, ElementsAre(3));
    EXPECT_THAT(reportOf(before, after), testing::EndsWith("channel 1: only in the first\nchannel 3: only in the second\n"));
}

TEST(Comparisons, severalSweepsAreComparedByTheirAverages)
{
    const auto twice = resultOf({channelOf(1, {sweepOf({0}), sweepOf({-1000})})});
    const auto changes = compare(twice, scanOf({-5000}), 3.0).channels.at(0).changes;
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].before, -260);
}

TEST(Comparisons, resultsWithoutACommonFrequencyCannotBeCompared)
{
    const char* const reason = "the results cannot be compared: they have no frequency of the same radio channel in common";
    const auto errorOf = [](const sdc::ScanResult& before, const sdc::ScanResult& after) -> std::string {
        try {
            static_cast<void>(compare(before, after, 3.0));
            return "";
        } catch (const sdc::ResultError& error) {
            return error.what();
        }
    };
    EXPECT_EQ(errorOf(scanOf({-9000, -9000}), from(200000, {-9000, -9000})), reason);
    EXPECT_EQ(errorOf(scanOf({}), scanOf({-9000, -9000})), reason);
    EXPECT_EQ(errorOf(scanOf({-9000, -9000}), resultOf({channelOf(2, {sweepOf({-9000})})})), reason);
    EXPECT_EQ(errorOf(scanOf({-9000, -9000}), from(101000, {-9000, -9000})), "");
}

TEST(Comparisons, reportTellsEverythingInColumns)
{
    auto after = withPeakAt(7, -4000, -8500);
    after.channels[0].sweeps[0].samples.push_back({111000, -8500, {}});
    auto before = withPeakAt(3);
    before.channels[0].sweeps[0].samples.erase(before.channels[0].sweeps[0].samples.begin() + 10);
    before.channels[0].sweeps[0].samples.insert(before.channels[0].sweeps[0].samples.begin(), {99000, -9000, {}});
    EXPECT_EQ(reportOf(surveyed(before), surveyed(after), 5.5),
        "channel 1: 10 frequencies compared, 2 changed by more than 5.50 dB\n"
        "  new peak          107.000 MHz   -40.00 dBm\n"
        "  vanished peak     103.000 MHz   -30.00 dBm\n"
        "  level             103.000 MHz   -30.00 ->   -85.00 dBm    -55.00 dB\n"
        "  level             107.000 MHz   -90.00 ->   -40.00 dBm    +50.00 dB\n"
        "  1 frequency only in the first: 99.000 MHz\n"
        "  2 frequencies only in the second: 110.000 to 111.000 MHz\n");
    EXPECT_THAT(reportOf(before, after, 4.99),
        HasSubstr("\n  floor                           -90.00 ->   -85.00 dBm     +5.00 dB\n"));
    EXPECT_THAT(reportOf(before, after, 5.0), testing::Not(HasSubstr("floor")));
}

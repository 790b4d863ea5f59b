#include "apps/sdc/result/Analysis.h"

#include "TestResults.h"

#include <gtest/gtest.h>

using namespace testing_results;
using sdc::Peak;

namespace {

std::vector<Peak> peaksOf(const std::vector<std::int32_t>& levels, double resolution_kHz = 0.0)
{
    return sdc::findPeaks(traceOf(levels), resolution_kHz);
}

} // namespace

TEST(Peaks, peakHasItsFrequencyLevelProminenceAndWidth)
{
    // 3 dB below -30 are a tenth of the way to -60 at 101000 kHz, and a twentieth of the way to -90 at 103000 kHz:
    // 100 kHz below and 50 kHz above the top.
    const auto peaks = peaksOf({-9000, -6000, -3000, -9000, -9000});
    ASSERT_EQ(peaks.size(), 1U);
    EXPECT_EQ(peaks[0].frequency_kHz, 102000U);
    EXPECT_EQ(peaks[0].level, -3000);
    EXPECT_EQ(peaks[0].prominence, 6000);
    EXPECT_EQ(peaks[0].width_kHz, 150U);
}

TEST(Peaks, sampleExactly3DbBelowIsTheEdgeOfThePeak)
{
    EXPECT_EQ(peaksOf({-9000, -3300, -3000, -3300, -9000}).at(0).width_kHz, 2000U);
    EXPECT_EQ(peaksOf({-9000, -3299, -3000, -3299, -9000}).at(0).width_kHz, 2000U) << "a hair beyond the sample, rounded";
    EXPECT_EQ(peaksOf({-9000, -3290, -3000, -3290, -9000}).at(0).width_kHz, 2004U) << "10 of 5710 of a step on each side";
}

TEST(Peaks, peakNarrowerThanTheScanResolvesHasNoWidth)
{
    const std::vector<std::int32_t> levels{-9000, -3300, -3000, -3300, -9000}; // 2000 kHz wide
    const Peak resolved = peaksOf(levels, 2000.0).at(0);
    EXPECT_EQ(resolved.width_kHz, 2000U);
    EXPECT_EQ(resolved.widthBelow_kHz, std::nullopt);
    const Peak narrow = peaksOf(levels, 2000.5).at(0);
    EXPECT_EQ(narrow.width_kHz, std::nullopt);
    EXPECT_EQ(narrow.widthBelow_kHz, 2001U);
}

TEST(Peaks, scanResolvesTheWiderOfStepAndFilter)
{
    sdc::ChannelResult channel;
    channel.plan.step_kHz = 2000;
    channel.receiver.filterWidth_kHz = 3500.5;
    EXPECT_EQ(resolutionOf(channel), 3500.5);
    channel.plan.step_kHz = 10000;
    EXPECT_EQ(resolutionOf(channel), 10000.0);
}

TEST(Peaks, peakCountsFrom6DbAboveTheHigherValleyOn)
{
    EXPECT_EQ(peaksOf({-9000, -3600, -3000, -3600, -9000}).size(), 1U) << "the valleys are the ends of the trace";
    EXPECT_EQ(peaksOf({-3600, -3000, -9000}).size(), 1U);
    EXPECT_EQ(peaksOf({-3599, -3000, -9000}).size(), 0U);
    EXPECT_EQ(peaksOf({-9000, -3000, -3600}).size(), 1U);
    EXPECT_EQ(peaksOf({-9000, -3000, -3599}).size(), 0U);
    EXPECT_EQ(peaksOf({-9000, -3000, -3600}).at(0).prominence, 600);
}

TEST(Peaks, valleyLiesBetweenAPeakAndTheNextHigherOne)
{
    // The one of -40 stands 10 dB above the valley of -50 beside the higher one, though 50 above the one behind it.
    const auto peaks = peaksOf({-9000, -3000, -5000, -4000, -9000, -3500, -9000});
    ASSERT_EQ(peaks.size(), 3U);
    EXPECT_EQ(peaks[0].level, -3000);
    EXPECT_EQ(peaks[1].level, -3500);
    EXPECT_EQ(peaks[1].prominence, 5500);
    EXPECT_EQ(peaks[2].level, -4000);
    EXPECT_EQ(peaks[2].prominence, 1000);
    EXPECT_TRUE(peaksOf({-9000, -3000, -4500, -4000, -9000}).size() == 1U) << "5 dB are a ripple";
}

TEST(Peaks, equallyHighPeaksDoNotHideEachOther)
{
    const auto peaks = peaksOf({-9000, -3000, -3600, -3000, -9000});
    ASSERT_EQ(peaks.size(), 2U);
    EXPECT_EQ(peaks[0].frequency_kHz, 101000U);
    EXPECT_EQ(peaks[0].prominence, 6000) << "there is nothing higher";
    EXPECT_EQ(peaks[1].frequency_kHz, 103000U);
    EXPECT_EQ(peaks[1].prominence, 600);
}

TEST(Peaks, equalReadingsOnOneHumpAreOnePeak)
{
    const auto peaks = peaksOf({-9000, -3000, -3100, -3000, -3200, -3000, -9000});
    ASSERT_EQ(peaks.size(), 1U);
    EXPECT_EQ(peaks[0].frequency_kHz, 101000U);
    EXPECT_EQ(peaks[0].prominence, 6000);
}

TEST(Peaks, flatTopIsOnePeakInItsMiddle)
{
    const auto odd = peaksOf({-9000, -3000, -3000, -3000, -9000});
    ASSERT_EQ(odd.size(), 1U);
    EXPECT_EQ(odd[0].frequency_kHz, 102000U);
    EXPECT_EQ(odd[0].width_kHz, 2100U) << "a twentieth of a step beyond the flat top on each side";
    const auto even = peaksOf({-9000, -3000, -3000, -9000});
    ASSERT_EQ(even.size(), 1U);
    EXPECT_EQ(even[0].frequency_kHz, 101000U);
    EXPECT_EQ(even[0].width_kHz, 1100U);
}

TEST(Peaks, stepOnASlopeIsNoPeak)
{
    EXPECT_TRUE(peaksOf({-9000, -6000, -6000, -3000}).empty());
    EXPECT_TRUE(peaksOf({-3000, -6000, -6000, -9000}).empty());
}

TEST(Peaks, traceThatEndsHighHasNoPeakThere)
{
    EXPECT_TRUE(peaksOf({-3000, -9000, -3000}).empty());
    EXPECT_TRUE(peaksOf({-3000, -3000, -9000, -3000, -3000}).empty());
    EXPECT_TRUE(peaksOf({-3000}).empty());
    EXPECT_TRUE(peaksOf({-3000, -3000}).empty());
    EXPECT_TRUE(peaksOf({-3000, -3000, -3000, -3000}).empty());
}

TEST(Peaks, widthReachesIntoTheFirstAndTheLastStep)
{
    EXPECT_EQ(peaksOf({-3601, -3000, -3601}).at(0).width_kHz, 998U) << "300 of 601 of a step on each side";
}

TEST(Peaks, strongestTenComeFirst)
{
    std::vector<std::int32_t> levels{-9000};
    for (std::int32_t peak = 0; peak < 12; ++peak) {
        levels.insert(levels.end(), {-5000 + peak * 100, -9000});
    }
    const auto peaks = sdc::analyse(channelOf(1, {sweepOf(levels)})).peaks;
    ASSERT_EQ(peaks.size(), 10U);
    EXPECT_EQ(peaks.front().level, -3900);
    EXPECT_EQ(peaks.back().level, -4800);
}

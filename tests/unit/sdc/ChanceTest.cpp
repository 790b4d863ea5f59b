#include "apps/sdc/compare/Chance.h"

#include "TestResults.h"

#include <gtest/gtest.h>

using namespace testing_results;
using sdc::Reach;
using sdc::Tolerance;
using sdc::TraceKind;

namespace {

constexpr double nearness_dB = 0.001;

void expectReach(const Reach& reach, double least, double likely, double most)
{
    EXPECT_NEAR(reach.least, least, nearness_dB);
    EXPECT_NEAR(reach.likely, likely, nearness_dB);
    EXPECT_NEAR(reach.most, most, nearness_dB);
}

/// Sweeps at the same level, but for what two sweeps in turn differ by.
sdc::ChannelResult scattered(std::size_t sweeps, std::size_t samples, std::int32_t swing)
{
    std::vector<sdc::Sweep> all;
    for (std::size_t sweep = 0; sweep < sweeps; ++sweep) {
        all.push_back(sweepOf(std::vector<std::int32_t>(samples, -6000 + (sweep % 2 == 0 ? swing : 0))));
    }
    return channelOf(1, all);
}

} // namespace

TEST(Chance, oneReadingScattersEvenly)
{
    for (const TraceKind kind : {TraceKind::max, TraceKind::average, TraceKind::min}) {
        expectReach(sdc::reachOf(kind, 1, 0.5, 0.00135), -1.5, 0.0, 1.5);
    }
}

TEST(Chance, maximumRisesWithTheNumberOfReadings)
{
    // Half of the maxima of 100 normal deviates lie below 2.462, one in a hundred below 1.695 and above 3.718.
    expectReach(sdc::reachOf(TraceKind::max, 100, 1.0, 0.01), 1.6953, 2.4618, 3.7178);
    expectReach(sdc::reachOf(TraceKind::min, 100, 1.0, 0.01), -3.7178, -2.4618, -1.6953);
    EXPECT_NEAR(sdc::reachOf(TraceKind::max, 1'000'000, 1.0, 0.01).likely, 4.83, 0.01);
}

TEST(Chance, meanPowerOfManyReadingsScattersLessAndLiesAboveTheirMean)
{
    const Reach reach = sdc::reachOf(TraceKind::average, 100, 1.0, 0.00135);
    EXPECT_NEAR(reach.likely, 0.114, nearness_dB);
    EXPECT_NEAR(reach.most - reach.likely, 0.3, nearness_dB);
    EXPECT_NEAR(reach.likely - reach.least, 0.3, nearness_dB);
}

TEST(Chance, differencesOfEqualScansAreAsWideAsBothTogether)
{
    const Tolerance tolerance = sdc::toleranceOf({-3.0, 0.0, 3.0}, {-4.0, 0.0, 4.0}, 1);
    EXPECT_NEAR(tolerance.lowest_dB, -5.0, nearness_dB);
    EXPECT_NEAR(tolerance.highest_dB, 5.0, nearness_dB);
}

TEST(Chance, whatOneScanLiesHigherByChanceIsNoRise)
{
    const Reach few{-3.0, 0.0, 3.0};
    const Reach many{1.0, 2.5, 6.5};
    EXPECT_EQ(sdc::toleranceOf(few, many, 1), (Tolerance{-2.0, 7.5}));
    EXPECT_EQ(sdc::toleranceOf(many, few, 1), (Tolerance{-7.5, 2.0}));
}

TEST(Chance, meansOfManyPlacesScatterLessAndNeverByLessThanReceiversDo)
{
    const Tolerance four = sdc::toleranceOf({-6.0, 0.0, 6.0}, {-8.0, 0.0, 8.0}, 4);
    EXPECT_NEAR(four.highest_dB, 5.0, nearness_dB);
    const Tolerance many = sdc::toleranceOf({-6.0, 0.0, 6.0}, {-8.0, 0.0, 8.0}, 10000);
    EXPECT_EQ(many, (Tolerance{-2.0, 2.0}));
}

TEST(Chance, scatterIsWhatBothScansShow)
{
    // Steps of 50 between readings at one frequency: 0.524 dB.
    const auto known = scattered(100, 50, 50);
    EXPECT_NEAR(scatterOf(known, known), 0.525, 0.002);
    EXPECT_NEAR(scatterOf(scattered(100, 50, 70), known), 0.64, 0.01);
}

TEST(Chance, whatIsNotKnownScattersAsMuchAsReceiversDo)
{
    const auto nothing = scattered(1, 1, 0);
    EXPECT_NEAR(scatterOf(nothing, nothing), 1.0, nearness_dB);
    EXPECT_NEAR(scatterOf(scattered(2, 13, 50), nothing), 0.88, 0.02) << "13 steps do not tell much";
    EXPECT_NEAR(scatterOf(scattered(100, 50, 50), nothing), 0.528, 0.003);
}

TEST(Chance, readingsThatEndAtTheLowestTellNoScatter)
{
    auto channel = scattered(100, 50, 50);
    for (sdc::Sweep& sweep : channel.sweeps) {
        for (std::size_t sample = 0; sample < 6; ++sample) {
            sweep.samples[sample].rssi = sdc::lowestReading;
        }
    }
    EXPECT_NEAR(scatterOf(surveyed(channel), scattered(1, 1, 0)), 1.0, nearness_dB);
    for (sdc::Sweep& sweep : channel.sweeps) {
        sweep.samples[0].rssi = -6000;
    }
    EXPECT_LT(scatterOf(surveyed(channel), scattered(1, 1, 0)), 0.6) << "few of them do no harm";
}

// What is so in the other channels of the raster.

#include "tests/judge/truth/RasterTruth.h"
#include "tests/unit/judge/TestTrial.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using judge::Occupant;
using judge::RasterTruth;
using judge::Trial;
using tests::carrierAt;
using tests::courseOf;
using tests::linkOf;
using tests::own_kHz;
using tests::spacing_kHz;
using tests::trialOf;

const judge::Course channels = courseOf(28000, 3, 3, 1);

RasterTruth channelOf(const Trial& trial, const judge::Course& course, std::int64_t offset)
{
    const std::vector<RasterTruth> raster = judge::rasterTruth(judge::QuietAir(trial.link(), course));
    return *std::ranges::find(raster, offset, &RasterTruth::offset);
}

TEST(RasterTruth, allChannelsOfTheScanButTheConfiguredOneAreLookedAt)
{
    const Trial trial = trialOf({});
    std::vector<std::int64_t> offsets;
    for (const RasterTruth& one : judge::rasterTruth(judge::QuietAir(trial.link(), channels))) {
        offsets.push_back(one.offset);
        EXPECT_EQ(one.occupant, Occupant::nobody);
        EXPECT_TRUE(one.isSeen);
    }

    EXPECT_EQ(offsets, (std::vector<std::int64_t>{-3, -2, -1, 1, 2, 3}));
}

TEST(RasterTruth, occupantRaisesItsChannelByItsPower)
{
    const Trial trial = trialOf({carrierAt(own_kHz - spacing_kHz, -84.03)});

    EXPECT_EQ(channelOf(trial, channels, -1).occupant, Occupant::somebody);
    EXPECT_NEAR(channelOf(trial, channels, -1).over, 1041, 1);
    EXPECT_EQ(channelOf(trial, channels, -2).occupant, Occupant::nobody);
    EXPECT_EQ(channelOf(trial, channels, 1).occupant, Occupant::nobody);
}

TEST(RasterTruth, leakOfAStrongNeighbourLeavesAChannelEmpty)
{
    Trial trial = trialOf({carrierAt(own_kHz, -20.0)});
    linkOf(trial).ultimateRejection_dB = 50.0;

    EXPECT_EQ(channelOf(trial, channels, 2).occupant, Occupant::nobody);
}

// 40 dB over the noise, and 30 or 50 below that.
TEST(RasterTruth, maskAloneIsAFringe)
{
    simulator::Carrier carrier = carrierAt(own_kHz, -54.03);
    carrier.shoulders = simulator::Shoulders{spacing_kHz, 30.0, 50.0};
    const Trial trial = trialOf({carrier});

    EXPECT_EQ(channelOf(trial, channels, 1).occupant, Occupant::fringe);
    EXPECT_EQ(channelOf(trial, channels, 2).occupant, Occupant::nobody); // 0.41 dB
    EXPECT_EQ(channelOf(trial, channels, 3).occupant, Occupant::nobody);
}

TEST(RasterTruth, faintMaskIsUncertain)
{
    simulator::Carrier carrier = carrierAt(own_kHz, -54.03);
    carrier.shoulders = simulator::Shoulders{spacing_kHz, 38.0, 60.0};

    EXPECT_EQ(channelOf(trialOf({carrier}), channels, 1).occupant, Occupant::uncertain);
}

TEST(RasterTruth, edgeOfAFilterThatStandsBesideTheCentreIsAFringe)
{
    // 28 channels of 10 MHz: the sample nearest to the centre of channel 1 lies 2 MHz above it
    const judge::Course coarse = courseOf(10000, 8, 8, 1);
    const Trial trial = trialOf({carrierAt(own_kHz + 2.0 * spacing_kHz, -40.0)});

    EXPECT_TRUE(channelOf(trial, coarse, 1).isSeen);
    EXPECT_EQ(channelOf(trial, coarse, 1).occupant, Occupant::fringe);
    EXPECT_EQ(channelOf(trial, coarse, -1).occupant, Occupant::nobody);
}

TEST(RasterTruth, channelBetweenTwoSamplesIsNotSeenAndJudgedAtItsCentre)
{
    const judge::Course coarse = courseOf(40000, 2, 2, 1);
    const Trial trial = trialOf({simulator::ContinuousWave{own_kHz + spacing_kHz - 5000.0, -84.03}});
    const RasterTruth truth = channelOf(trial, coarse, 1);

    EXPECT_FALSE(truth.isSeen);
    EXPECT_EQ(truth.occupant, Occupant::somebody);
    EXPECT_NEAR(truth.over, 1041, 1);
}

// A line of -20 dBm that drifts through channel 1 and stands in another one when the receiver stands in that: there is but
// its leak of 50 dB less.
TEST(RasterTruth, lineThatIsElsewhereAtTheMomentRaisesNothing)
{
    simulator::ContinuousWave line{own_kHz - 2.0 * spacing_kHz, -20.0};
    line.drift = simulator::Drift{3.4 * spacing_kHz, 1e9};
    Trial trial = trialOf({line});
    linkOf(trial).ultimateRejection_dB = 50.0;

    EXPECT_EQ(channelOf(trial, channels, 1).occupant, Occupant::somebody) << "it will come through";
    EXPECT_EQ(channelOf(trial, channels, 1).over, 0);
    EXPECT_GT(channelOf(trial, channels, -2).over, 6000);
}

TEST(RasterTruth, comesAndGoesWhatIsGoneInOneOfThreeSweeps)
{
    // channel 1 is read every seven seconds, first after five
    const simulator::Schedule secondSweep{.from_ms = 11500.0, .duration_ms = 1000.0};
    const Trial trial = trialOf({simulator::Emitter(carrierAt(own_kHz + spacing_kHz, -60.0), secondSweep)});

    EXPECT_TRUE(channelOf(trial, courseOf(28000, 3, 3, 3), 1).comesAndGoes);
    EXPECT_FALSE(channelOf(trial, courseOf(28000, 3, 3, 2), 1).comesAndGoes);
    EXPECT_EQ(channelOf(trial, courseOf(28000, 3, 3, 1), 1).over, 0);
}

} // namespace

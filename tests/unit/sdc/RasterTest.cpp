#include "apps/sdc/result/Raster.h"

#include "TestResults.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/result/Sweep.h"

#include <gtest/gtest.h>

#include <string>

using namespace testing_results;
using sdc::RasterChannel;
using sdc::RasterState;

namespace {

using Levels = std::vector<std::int32_t>;

constexpr std::int32_t quiet = -9453; // the noise of a filter of 28 MHz, noise figure 5 dB

/// Channels of 28 MHz, the filter as wide, the configured one the fourth from below; read at their centres.
sdc::ChannelResult rasterScan()
{
    sdc::ChannelResult channel;
    channel.receiver = {28000.0, 5.0, 55.0, -20.0};
    channel.plan = {.rxFrequency_kHz = 184000,
        .channelSpacing_kHz = 28000,
        .lowest_kHz = 100000,
        .highest_kHz = 0,
        .samples = 0,
        .step_kHz = 28000,
        .setRxWait_ms = 300,
        .firstSetRxWait_ms = 3000};
    return channel;
}

std::vector<RasterChannel> rasterOf(sdc::ChannelResult channel, const std::vector<Levels>& sweeps)
{
    for (const Levels& levels : sweeps) {
        sdc::Sweep sweep = sweepOf({});
        sweep.samples = samplesOf(levels, channel.plan.lowest_kHz, channel.plan.step_kHz);
        channel.add(sweep);
    }
    return sdc::rasterOf(channel);
}

/// The first letter of each state; 'f' and 'o' are free and occupied, 'O' is the own one.
std::string statesOf(const std::vector<RasterChannel>& raster)
{
    std::string states;
    for (const RasterChannel& channel : raster) {
        states += channel.state == RasterState::own ? 'O' : toText(channel.state).front();
    }
    return states;
}

std::string statesOf(const std::vector<Levels>& sweeps)
{
    return statesOf(rasterOf(rasterScan(), sweeps));
}

} // namespace

TEST(Rasters, channelsInUseAreOccupiedAndQuietOnesFree)
{
    EXPECT_EQ(statesOf({{quiet, quiet, -6000, -4000, quiet, quiet + 40, quiet - 90}}), "ffoOfff");
}

TEST(Rasters, channelsBearTheirNumbers)
{
    const auto raster = rasterOf(rasterScan(), {{quiet, -7000, quiet, quiet}, {quiet, -6000, quiet, quiet}});
    ASSERT_EQ(raster.size(), 4U);
    EXPECT_EQ(raster[1].offset, -2);
    EXPECT_EQ(raster[1].centre_kHz, 128000U);
    EXPECT_EQ(raster[1].max, -6000);
    EXPECT_EQ(raster[1].average, -6260) << "the mean of 1e-7 and 1e-6 mW";
    EXPECT_EQ(raster[1].sweeps, 2U);
    EXPECT_EQ(raster[1].occupancy, 10000);
}

TEST(Rasters, useBegins6DecibelsOverTheNoise)
{
    EXPECT_EQ(statesOf({{quiet, quiet, -8852, quiet, quiet}}), "ffoOf");
    EXPECT_EQ(statesOf({{quiet, quiet, -8853, quiet, quiet}}), "ffuOf") << "neither nor";
    EXPECT_EQ(statesOf({{quiet, quiet, quiet + 250, quiet, quiet}}), "fffOf");
}

TEST(Rasters, channelThatIsOnInSomeSweepsIsIntermittent)
{
    const auto raster =
        rasterOf(rasterScan(), {{quiet, quiet + 1, quiet, quiet, quiet}, {quiet, quiet, quiet + 2, quiet, -7000}});
    EXPECT_EQ(statesOf(raster), "fffOi");
    EXPECT_EQ(raster[4].occupancy, 5000);
}

TEST(Rasters, configuredChannelIsOwnWhateverIsInIt)
{
    EXPECT_EQ(statesOf({{quiet, quiet, quiet + 1, quiet, quiet}}), "fffOf");
    EXPECT_EQ(rasterOf(rasterScan(), {{quiet, quiet, quiet, -4711}})[3].max, -4711);
}

TEST(Rasters, whatLeaksOfAStrongCarrierIsInNoChannel)
{
    // -25 dBm read are -23.35 dBm on the air below a saturation of -20 dBm; 55 dB less of it is heard everywhere else.
    const std::string states = statesOf({{-7980, -7985, -7975, -7980, -2500, -7980, -7975, -7985, -7980}});
    EXPECT_EQ(states, "fffOoffff");
    EXPECT_EQ(statesOf({{-7980, -7000, -7975, -7980, -2500, -7980}}).substr(0, 2), "fo") << "that is more than a leak";
}

TEST(Rasters, aMaskIsMoreThanALeak)
{
    // 3 dB over the leak of 55 dB, beside the carrier.
    EXPECT_EQ(statesOf({{-7980, -7985, -7975, -7980, -2500, -7500, -7975, -7985, -7980}}), "fffOoufff");
}

TEST(Rasters, moreSweepsMakeFreeSurer)
{
    // Readings that scatter by 1 dB around noise and the leak of the configured channel's carrier, which is as strong.
    const std::int32_t both = quiet + 301;
    const std::vector<Levels> sweep{{both + 240, both - 100, both - 90, -3953, both - 120, both + 90, both + 30}};
    std::vector<Levels> sweeps = sweep;
    for (const std::int32_t scatter : {-160, 70, -30, 120, -200, 40, -80, 20}) {
        sweeps.push_back({both + scatter, both - scatter, both + scatter, -3953 + scatter, both - scatter, both + scatter,
            both - scatter});
    }
    EXPECT_EQ(statesOf(sweeps), "fffOfff");
}

TEST(Rasters, edgeOfTheConfiguredCarrierIsNoUse)
{
    // Two samples equally near to the centre of each other channel: the inner one hears the carrier's edge, the outer one
    // nothing, but for a burst in the second sweep.
    sdc::ChannelResult channel = rasterScan();
    channel.plan.rxFrequency_kHz = 128000;
    channel.plan.lowest_kHz = 99000;
    channel.plan.step_kHz = 2000;
    Levels levels(30, -5000); // 99 to 157 MHz
    for (std::size_t sample = 0; sample < levels.size(); sample += 2) {
        levels[sample] += 7;
    }
    levels[0] = levels[29] = quiet;
    levels[1] = levels[28] = -8200;
    levels[2] = levels[27] = -6600;
    Levels burst = levels;
    burst[0] = -4400;
    const auto raster = rasterOf(channel, {levels, burst, levels, levels});
    ASSERT_EQ(statesOf(raster), "iOu");
    EXPECT_EQ(raster[0].occupancy, 2500);
    EXPECT_EQ(raster[2].occupancy, 0);
}

TEST(Rasters, whatASlowReceiverStillShowsOfTheSampleBeforeIsUnknown)
{
    // A fifth of the way down is left after each step.
    EXPECT_EQ(statesOf({{quiet, -3000, -8162, quiet + 258, quiet, quiet}}), "fouOff");
    // A deep fall elsewhere shows that the receiver is not slow.
    EXPECT_EQ(statesOf({{quiet, -3000, -8162, quiet, -3000, quiet, quiet, quiet}})[2], 'o');
}

TEST(Rasters, oneReadingOverAndOverTellsNothing)
{
    EXPECT_EQ(statesOf({{-9970, -9970, -9970, -9970, -9970}, {-9970, -9970, -9970, -9970, -9970}}), "uuuOu");
    EXPECT_EQ(statesOf({{-6012, -6012, -6012, -6012, -6012}}), "uuuOu");
}

TEST(Rasters, readingsFarBelowTheReceiversNoiseTellNothing)
{
    EXPECT_EQ(statesOf({{quiet, quiet, -9970, -4000, quiet}}), "ffuOf");
}

TEST(Rasters, channelOfWhichTheFilterTookInAPartIsNotFree)
{
    sdc::ChannelResult channel = rasterScan();
    channel.receiver.filterWidth_kHz = 14000.0;
    EXPECT_EQ(statesOf(rasterOf(channel, {{-9760, -9755, -5000, -4000, -9750}})), "uuoOu");
    channel.plan.step_kHz = 7000;
    Levels levels;
    for (std::int32_t sample = 0; sample < 17; ++sample) {
        levels.push_back(-9760 + sample);
    }
    EXPECT_EQ(statesOf(rasterOf(channel, {levels})), "uffOu") << "of the lowest and the highest a half";
}

TEST(Rasters, narrowChannelsBetweenTheStepsAreUnknown)
{
    sdc::ChannelResult channel = rasterScan();
    channel.plan.channelSpacing_kHz = 3500;
    channel.plan.rxFrequency_kHz = 100000;
    channel.plan.step_kHz = 10000;
    channel.receiver.filterWidth_kHz = 3500.0;
    const auto raster = rasterOf(channel, {{-9970, -9970, -9700, -6000}});
    // At 100, 110, 120 and 130 MHz; the channels' centres nearest to these are 110.5, 121 and 128.5 or 131.5 MHz.
    ASSERT_EQ(raster.size(), 10U);
    EXPECT_EQ(statesOf(raster), "Ouuuuuuuuu") << "even a strong reading does not tell in which channel it is";
    EXPECT_FALSE(raster[1].max.has_value());
    EXPECT_EQ(raster[1].sweeps, 0U);
}

TEST(Rasters, presetThresholdDecidesAlone)
{
    sdc::ChannelResult channel = rasterScan();
    channel.survey = sdc::Survey({.threshold = -7000});
    const auto raster = rasterOf(channel, {{quiet, -7001, -7000, quiet, -6999}});
    EXPECT_EQ(statesOf(raster), "fffOo");
    EXPECT_EQ(raster[0].threshold, -7000);
}

TEST(Rasters, freeChannelsAreRankedByTheirMaximum)
{
    const auto raster = rasterOf(rasterScan(),
        {{quiet + 200, quiet + 10, quiet, quiet, quiet + 5}, {quiet - 250, quiet + 10, quiet + 90, quiet, quiet + 5}});
    std::vector<std::int64_t> offsets;
    for (const RasterChannel& channel : sdc::freeChannels(raster)) {
        offsets.push_back(channel.offset);
    }
    EXPECT_EQ(offsets, (std::vector<std::int64_t>{1, -2, -1, -3})) << "the average of the last is the lowest";
}

TEST(Rasters, scanWithoutAChannelSpacingHasNone)
{
    sdc::ChannelResult channel = rasterScan();
    channel.plan.channelSpacing_kHz = 0;
    EXPECT_TRUE(rasterOf(channel, {{quiet, quiet}}).empty());
    EXPECT_TRUE(rasterOf(rasterScan(), {{}}).empty());
}

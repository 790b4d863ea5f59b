// Which emitters reach into a channel.

#include "tests/judge/truth/Reach.h"
#include "tests/unit/judge/TestTrial.h"

#include <gtest/gtest.h>

namespace {

using judge::channelAround;
using judge::Reach;
using judge::reachInto;
using simulator::ContinuousWave;
using simulator::EdgeLeakage;
using simulator::NoiseBand;
using tests::carrierAt;
using tests::own_kHz;
using tests::spacing_kHz;

const simulator::Band channel = channelAround(own_kHz, spacing_kHz);

TEST(Reach, neighbourOnTheRasterDoesNotReachIn)
{
    EXPECT_EQ(reachInto(channel, carrierAt(own_kHz + spacing_kHz, -40.0)), Reach::none);
    EXPECT_EQ(reachInto(channel, carrierAt(own_kHz - spacing_kHz, -40.0)), Reach::none);
    EXPECT_EQ(reachInto(channel, carrierAt(own_kHz, -40.0)), Reach::inside);
}

TEST(Reach, shouldersDoNotReachIn)
{
    simulator::Carrier carrier = carrierAt(own_kHz + spacing_kHz, -40.0);
    carrier.shoulders = simulator::Shoulders{spacing_kHz, 25.0, 45.0};

    EXPECT_EQ(reachInto(channel, carrier), Reach::none);
}

// A carrier 27.44 MHz wide: its lower end lies 13.72 MHz below its centre, the channel's end 14 MHz above its own.
TEST(Reach, lessThanATenthOfItselfGrazes)
{
    EXPECT_EQ(reachInto(channel, carrierAt(own_kHz + 27800.0, -40.0)), Reach::none);
    EXPECT_EQ(reachInto(channel, carrierAt(own_kHz + 25100.0, -40.0)), Reach::grazing);
    EXPECT_EQ(reachInto(channel, carrierAt(own_kHz + 24900.0, -40.0)), Reach::inside);
}

TEST(Reach, aTenthOfTheChannelCountsForWhatIsWiderThanIt)
{
    EXPECT_EQ(reachInto(channel, NoiseBand{own_kHz + 11300.0, own_kHz + 500000.0, 10.0}), Reach::grazing);
    EXPECT_EQ(reachInto(channel, NoiseBand{own_kHz + 11100.0, own_kHz + 500000.0, 10.0}), Reach::inside);
}

TEST(Reach, ofARowTheNearestCounts)
{
    simulator::Carrier carrier = carrierAt(own_kHz - 3.0 * spacing_kHz, -40.0);
    carrier.row = simulator::Row{3, spacing_kHz};
    EXPECT_EQ(reachInto(channel, carrier), Reach::none);

    carrier.row->count = 4;
    EXPECT_EQ(reachInto(channel, carrier), Reach::inside);
}

TEST(Reach, ofALineHowFarItDriftsCounts)
{
    ContinuousWave line{own_kHz + 14001.0, -40.0};
    EXPECT_EQ(reachInto(channel, line), Reach::none);

    line.drift = simulator::Drift{100000.0, 1000.0};
    EXPECT_EQ(reachInto(channel, line), Reach::inside);
}

// At 2 dB per MHz, 60 dB are lost in 30 MHz.
TEST(Reach, leakageReachesUntilItHasFallenBySixtyDecibels)
{
    EXPECT_EQ(reachInto(channel, EdgeLeakage{own_kHz + 45000.0, -80.0, 2.0}), Reach::none);
    EXPECT_EQ(reachInto(channel, EdgeLeakage{own_kHz + 40000.0, -80.0, 2.0}), Reach::inside);
}

TEST(Reach, whatHasItsMiddleOutsideComesFromBeside)
{
    EXPECT_TRUE(judge::comesFromBeside(channel, carrierAt(own_kHz + 15000.0, -40.0)));
    EXPECT_FALSE(judge::comesFromBeside(channel, carrierAt(own_kHz + 13000.0, -40.0)));
    EXPECT_FALSE(judge::comesFromBeside(channel, NoiseBand{own_kHz - 20000.0, own_kHz + 90000.0, 10.0}));
}

} // namespace

// What is so in the configured channel. Levels by hand: ten times the floor's power raises it by 10 log10(1 + 10) = 10.41
// dB.

#include "tests/judge/truth/ChannelTruth.h"
#include "tests/unit/judge/TestTrial.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using judge::ChannelTruth;
using judge::Course;
using judge::Trial;
using sdc::InterferenceKind;
using simulator::ContinuousWave;
using simulator::Schedule;
using tests::carrierAt;
using tests::courseOf;
using tests::linkOf;
using tests::noise;
using tests::own_kHz;
using tests::spacing_kHz;
using tests::trialOf;

constexpr double noise_dBm = -94.03;

/// Of seven channels, one sample each.
const Course channels = courseOf(28000, 3, 3, 1);

/// Of the configured channel alone, 2 MHz from one sample to the next.
const Course fine = courseOf(2000, 6, 6, 1);

ChannelTruth examined(Trial trial, const Course& course)
{
    trial.sweeps = course.sweeps;
    return judge::channelTruth(trial, judge::QuietAir(trial.link(), course));
}

TEST(ChannelTruth, whereThereIsNothingTheFloorIsTheReceiversNoise)
{
    const ChannelTruth truth = examined(trialOf({}), channels);

    EXPECT_EQ(truth.tunings, 1U);
    EXPECT_EQ(truth.over, 0);
    EXPECT_EQ(truth.level, noise);
    EXPECT_EQ(truth.raised, 0);
    EXPECT_TRUE(isClean(truth));
    EXPECT_FALSE(isRaised(truth));
    EXPECT_TRUE(truth.kinds.empty());
}

TEST(ChannelTruth, interfererRaisesTheFloorByItsPower)
{
    const ChannelTruth truth = examined(trialOf({carrierAt(own_kHz, noise_dBm + 10.0)}), channels);

    EXPECT_NEAR(truth.over, 1041, 1);
    EXPECT_NEAR(truth.level, noise + 1041, 1);
    EXPECT_EQ(truth.raised, 0);
    EXPECT_FALSE(isClean(truth));
    EXPECT_EQ(truth.kinds, std::vector{InterferenceKind::carrier});
}

// 100 in a thousand of the noise raise it by 0.41 dB, 20 by 0.09.
TEST(ChannelTruth, whatRaisesTheFloorByLessThanATenthOfADecibelIsNoInterferer)
{
    EXPECT_FALSE(isClean(examined(trialOf({carrierAt(own_kHz, noise_dBm - 10.0)}), channels)));
    EXPECT_TRUE(isClean(examined(trialOf({carrierAt(own_kHz, noise_dBm - 17.0)}), channels)));
}

// The readings go down to -99.70 dBm only: -99 dBm of noise in a 3.5 MHz filter at 5.5 dB do not, -103 do.
TEST(ChannelTruth, floorDoesNotLieBelowThatOfReadings)
{
    Trial trial = trialOf({ContinuousWave{own_kHz, -89.70}});
    linkOf(trial).filterWidth_kHz = 3500.0;
    const ChannelTruth truth = examined(trial, channels);

    // -89.70 and -103.06 dBm are -89.50 together
    EXPECT_NEAR(truth.over, 1020, 1);
    EXPECT_NEAR(truth.level, -8950, 1);
}

TEST(ChannelTruth, shouldersOfANeighbourBelongToTheFloor)
{
    simulator::Carrier neighbour = carrierAt(own_kHz + spacing_kHz, -54.03);
    neighbour.shoulders = simulator::Shoulders{spacing_kHz, 30.0, 50.0};
    const ChannelTruth truth = examined(trialOf({neighbour}), channels);

    EXPECT_EQ(truth.over, 0);
    EXPECT_NEAR(truth.raised, 1041, 1); // 40 dB over the noise, and 30 below that
    EXPECT_TRUE(isClean(truth));
    EXPECT_TRUE(isRaised(truth));
}

TEST(ChannelTruth, leakBelongsToTheFloor)
{
    Trial trial = trialOf({carrierAt(own_kHz + 3.0 * spacing_kHz, -34.03)});
    linkOf(trial).ultimateRejection_dB = 50.0;

    EXPECT_NEAR(examined(trial, channels).raised, 1041, 1);
}

// The second sample of the scan is the configured channel; the first, of the channel below, settles at -30 dBm. One second
// on, of 64.03 dB e^(-1000/500) are left: 8.67.
TEST(ChannelTruth, whatASlowReceiverStillShowsBelongsToTheFloor)
{
    Trial trial = trialOf({carrierAt(own_kHz - spacing_kHz, -30.0)});
    linkOf(trial).settlingTime_ms = 500.0;
    Course course = courseOf(28000, 1, 5, 1);
    course.plan.firstSetRxWait_ms = 10000;

    EXPECT_NEAR(examined(trial, course).raised, 867, 1);
}

TEST(ChannelTruth, emitterThatIsSilentWhenItIsReadIsNone)
{
    const simulator::Carrier carrier = carrierAt(own_kHz, noise_dBm + 30.0);
    const auto truthWith = [&](const Schedule& schedule) {
        return examined(trialOf({simulator::Emitter(carrier, schedule)}), channels);
    };

    EXPECT_TRUE(isClean(truthWith({.from_ms = 0.0, .duration_ms = 3999.0})));
    EXPECT_TRUE(isClean(truthWith({.from_ms = 4001.0})));
    EXPECT_FALSE(isClean(truthWith({.from_ms = 3999.0, .duration_ms = 2.0})));
}

TEST(ChannelTruth, carrierOfTheFarEndBelongsToTheFloor)
{
    Trial trial = trialOf({carrierAt(own_kHz, -50.0), carrierAt(own_kHz, -40.0)});
    trial.isFarEndOn = true;
    const ChannelTruth truth = examined(trial, channels);

    EXPECT_NEAR(truth.over, 1041, 1);
    EXPECT_NEAR(truth.level, -5000 + 1041, 1);
}

TEST(ChannelTruth, withoutTheFarEndTheFirstEmitterIsAnInterfererToo)
{
    EXPECT_NEAR(examined(trialOf({carrierAt(own_kHz, -50.0)}), channels).over, 4403, 1);
}

TEST(ChannelTruth, whatOnlyGrazesTheChannelIsInDoubt)
{
    // half of it behind the filter of the outermost sample
    const ChannelTruth truth = examined(trialOf({carrierAt(own_kHz + 25200.0, -60.0)}), courseOf(2000, 7, 7, 1));

    EXPECT_TRUE(truth.isGrazed);
    EXPECT_FALSE(isClean(truth));
}

TEST(ChannelTruth, comesAndGoesWhatIsGoneInOneOfThreeSweeps)
{
    // read every seven seconds, first after four
    const Schedule secondSweep{.from_ms = 10500.0, .duration_ms = 1000.0};
    const auto truthWith = [&](std::uint32_t sweeps) {
        return examined(
            trialOf({simulator::Emitter(carrierAt(own_kHz, -60.0), secondSweep)}), courseOf(28000, 3, 3, sweeps));
    };

    EXPECT_TRUE(truthWith(3).comesAndGoes);
    EXPECT_FALSE(truthWith(2).comesAndGoes); // too few to know
    EXPECT_FALSE(examined(trialOf({carrierAt(own_kHz, -60.0)}), courseOf(28000, 3, 3, 3)).comesAndGoes);
    EXPECT_EQ(truthWith(3).kinds, std::vector{InterferenceKind::burst});
}

TEST(ChannelTruth, anotherCarrierLikeTheOwnHasItsShape)
{
    const auto isLikeOwn = [](const simulator::Emitter& interferer, const Course& course) {
        Trial trial = trialOf({carrierAt(own_kHz, -50.0), interferer});
        trial.isFarEndOn = true;
        return examined(trial, course).isShapedLikeOwn;
    };

    EXPECT_TRUE(isLikeOwn(carrierAt(own_kHz, -40.0), fine));
    EXPECT_FALSE(isLikeOwn(carrierAt(own_kHz + 9000.0, -40.0), fine));
    EXPECT_FALSE(isLikeOwn(ContinuousWave{own_kHz + 8000.0, -40.0}, fine));
    EXPECT_FALSE(isLikeOwn(carrierAt(own_kHz, -40.0), channels)); // one sample has no shape
}

TEST(ChannelTruth, kindsAreThoseOfTheStrongest)
{
    const ContinuousWave strong{own_kHz, -60.0};
    const auto kindsWith = [&](double level_dBm) {
        return examined(trialOf({strong, carrierAt(own_kHz, level_dBm)}), channels).kinds;
    };

    EXPECT_EQ(kindsWith(-70.0), std::vector{InterferenceKind::line});
    EXPECT_EQ(kindsWith(-65.0), (std::vector{InterferenceKind::carrier, InterferenceKind::line}));
}

TEST(ChannelTruth, kindsSayWhatAnEmitterIsAndWhatItLooksLike)
{
    const auto kindsOf = [](const simulator::Emitter& emitter) { return examined(trialOf({emitter}), fine).kinds; };
    using enum InterferenceKind;

    EXPECT_EQ(kindsOf(ContinuousWave{own_kHz, -60.0, simulator::Drift{13000.0, 1e6}}), std::vector{line});
    EXPECT_EQ(kindsOf(ContinuousWave{own_kHz, -60.0, simulator::Drift{15000.0, 1e6}}), (std::vector{burst, sweep}));
    EXPECT_EQ(kindsOf(simulator::NoiseBand{18e6, 19e6, 20.0}), std::vector{wideband});
    EXPECT_EQ(kindsOf(simulator::carrierInChannel(own_kHz, -60.0, 60000.0, 0.25, 0.98)), (std::vector{carrier, wideband}));
    // one sweep cannot tell what is over from what lies elsewhere
    EXPECT_EQ(kindsOf(simulator::Emitter(carrierAt(own_kHz, -60.0), {.from_ms = 5000.0})), (std::vector{carrier, burst}));
}

TEST(ChannelTruth, noSampleInTheChannelTellsNothing)
{
    EXPECT_EQ(examined(trialOf({carrierAt(own_kHz, -60.0)}),
                  [] {
                      Course course = courseOf(60000, 1, 1, 1);
                      course.plan.lowest_kHz += 20000;
                      return course;
                  }())
                  .tunings,
        0U);
}

// A neighbour of -20 dBm leaves -45 dBm in the channel beside it, through the poorest mask, and -65 in the one after that.
TEST(ChannelTruth, inANarrowScanANeighbourThatIsNotShownMayExplainTheReading)
{
    const auto isExplainable = [](double level_dBm, const Course& course, sdc::ScanKind kind) {
        Trial trial = trialOf({carrierAt(own_kHz, level_dBm)});
        trial.kind = kind;
        return examined(trial, course).isExplainable;
    };
    const Course single = courseOf(28000, 0, 0, 1);

    EXPECT_TRUE(isExplainable(-45.5, single, sdc::ScanKind::channel));
    EXPECT_FALSE(isExplainable(-44.5, single, sdc::ScanKind::channel));
    EXPECT_TRUE(isExplainable(-65.5, fine, sdc::ScanKind::channel)); // five samples show the slope of the nearest
    EXPECT_FALSE(isExplainable(-64.5, fine, sdc::ScanKind::channel));
    EXPECT_FALSE(isExplainable(-80.0, channels, sdc::ScanKind::subBand));
}

TEST(ChannelTruth, whereTheNeighboursAreShownOnlyTheyMayExplainTheReading)
{
    const auto isExplainable = [](double level_dBm) {
        return examined(trialOf({carrierAt(own_kHz, level_dBm), carrierAt(own_kHz + spacing_kHz, -40.0)}), channels)
            .isExplainable;
    };

    EXPECT_TRUE(isExplainable(-65.5));
    EXPECT_FALSE(isExplainable(-64.5));
}

TEST(ChannelTruth, explainedByLeakIsWhatTheReceiverDoesNotReject)
{
    const auto isByLeak = [](double level_dBm) {
        Trial trial = trialOf({carrierAt(own_kHz, level_dBm)});
        linkOf(trial).ultimateRejection_dB = 50.0;
        trial.kind = sdc::ScanKind::channel;
        return examined(trial, courseOf(28000, 0, 0, 1)).isExplainableByLeak;
    };

    EXPECT_TRUE(isByLeak(-70.5));
    EXPECT_FALSE(isByLeak(-69.5));
}

} // namespace

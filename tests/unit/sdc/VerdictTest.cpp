// What is said of the configured channel, by traces whose levels follow from the rules of what receivers read.

#include "apps/sdc/verdict/Verdict.h"
#include "TestResults.h"
#include "apps/sdc/result/Floor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace {

using namespace testing_results;
using sdc::FarEnd;
using sdc::Help;
using sdc::InterferenceKind;
using sdc::InterferencePlace;
using sdc::Judgement;

using Levels = std::vector<std::int32_t>;

// A filter as wide as a channel, 28 MHz, whose noise reads -94.53 dBm, and one of 3.5 MHz, whose noise is below -99.70.
constexpr sdc::ReceiverData wide{28000.0, 5.0, 60.0, -20.0};
constexpr sdc::ReceiverData narrow{3500.0, 5.0, 60.0, -20.0};

sdc::ChannelResult scanned(
    const std::vector<Levels>& sweeps, const sdc::ReceiverData& receiver, std::uint32_t lowest_kHz, std::uint32_t step_kHz)
{
    sdc::ChannelResult channel{
        .channel = 1, .unitTypeText = "KLM6 18G", .receiver = receiver, .plan = {}, .sweeps = {}, .survey = {}};
    channel.plan = {.rxFrequency_kHz = 18000000,
        .channelSpacing_kHz = 28000,
        .lowest_kHz = lowest_kHz,
        .highest_kHz = lowest_kHz + static_cast<std::uint32_t>(sweeps.front().size() - 1) * step_kHz,
        .samples = static_cast<std::int32_t>(sweeps.front().size()),
        .step_kHz = step_kHz,
        .setRxWait_ms = 2000,
        .firstSetRxWait_ms = 3000};
    sdc::TimePoint start = aMoment;
    for (const Levels& levels : sweeps) {
        sdc::Sweep sweep = sweepOf(levels, start);
        sweep.samples = samplesOf(levels, lowest_kHz, step_kHz, start);
        channel.add(sweep);
        start += 60s;
    }
    return channel;
}

/// Fourteen samples across the channel, 2 MHz apart, 13 MHz to both sides of its centre.
sdc::ChannelResult channelScan(const std::vector<Levels>& sweeps, const sdc::ReceiverData& receiver = wide)
{
    return scanned(sweeps, receiver, 17987000, 2000);
}

/// One sample at the centre of each of nine channels, the configured one in the middle.
sdc::ChannelResult subBandScan(const std::vector<Levels>& sweeps, const sdc::ReceiverData& receiver = wide)
{
    return scanned(sweeps, receiver, 18000000 - 4 * 28000, 28000);
}

/// Readings of a level that scatter by some tenths of a dB.
Levels around(std::int32_t level, std::size_t count, std::int32_t shift = 0)
{
    constexpr std::int32_t scatter[] = {0, 40, -30, 10, -50, 20, 30, -20, 50, -40, -10};
    Levels levels;
    for (std::size_t index = 0; index < count; ++index) {
        levels.push_back(level + scatter[(index + static_cast<std::size_t>(shift)) % std::size(scatter)]);
    }
    return levels;
}

/// The hump of a carrier of 28 MHz in a filter as wide: half of it at the channel's edges.
Levels hump(std::int32_t level)
{
    constexpr std::int32_t below[] = {258, 207, 160, 118, 79, 44, 13, 13, 44, 79, 118, 160, 207, 258};
    Levels levels;
    for (const std::int32_t drop : below) {
        levels.push_back(level - drop);
    }
    return levels;
}

bool wouldHelp(const sdc::Verdict& verdict, Help help)
{
    return std::find(verdict.wouldHelp.begin(), verdict.wouldHelp.end(), help) != verdict.wouldHelp.end();
}

TEST(Verdict, ofAQuietChannelIsClear)
{
    const auto channel = channelScan({around(-9453, 14), around(-9453, 14, 3)});
    for (const FarEnd farEnd : {FarEnd::muted, FarEnd::unknown}) {
        EXPECT_EQ(judge(channel, farEnd).judgement, Judgement::clear);
    }
}

TEST(Verdict, cannotTellWhereNothingIsHeardOfAFarEndThatIsOn)
{
    const sdc::Verdict verdict = judge(channelScan({around(-9453, 14)}), FarEnd::on);
    EXPECT_EQ(verdict.judgement, Judgement::cannotTell);
    EXPECT_EQ(verdict.wouldHelp.front(), Help::checkReceiver);
}

/// A filter of 14 MHz has noise of -97.54 dBm. Chance makes four readings that low, but not forty.
TEST(Verdict, needsManyReadingsToTellAReceiverThatReadsLittleLessThanItsNoise)
{
    constexpr sdc::ReceiverData half{14000.0, 5.0, 60.0, -20.0};
    EXPECT_EQ(judge(channelScan({Levels(4, -9970)}, half), FarEnd::muted).judgement, Judgement::clear);
    EXPECT_EQ(judge(channelScan(std::vector(3, Levels(14, -9970)), half), FarEnd::muted).judgement, Judgement::cannotTell);
}

TEST(Verdict, ofANarrowFilterThatReadsNothingButTheLowestIsClear)
{
    EXPECT_EQ(judge(channelScan({Levels(14, -9970)}, narrow), FarEnd::muted).judgement, Judgement::clear);
}

TEST(Verdict, cannotTellByAReceiverThatReadsLessThanItsNoise)
{
    const sdc::Verdict verdict = judge(channelScan({Levels(14, -9970)}), FarEnd::muted);
    EXPECT_EQ(verdict.judgement, Judgement::cannotTell);
    EXPECT_TRUE(wouldHelp(verdict, Help::checkReceiver));
}

TEST(Verdict, cannotTellByAReceiverThatReadsOneLevelOverAndOver)
{
    EXPECT_EQ(judge(channelScan({Levels(14, -6012)}), FarEnd::muted).judgement, Judgement::cannotTell);
}

TEST(Verdict, ofAHumpWithTheFarEndMutedIsDisturbed)
{
    const sdc::Verdict verdict = judge(channelScan({hump(-5000)}), FarEnd::muted);
    EXPECT_EQ(verdict.judgement, Judgement::disturbed);
    EXPECT_EQ(verdict.kind, InterferenceKind::carrier);
    EXPECT_EQ(verdict.place, InterferencePlace::coChannel);
}

/// A narrow filter sees a line in no more than two samples of 2 MHz.
TEST(Verdict, ofALineWithTheFarEndMutedIsDisturbed)
{
    Levels levels(14, -9970);
    levels[6] = levels[7] = -8000;
    const sdc::Verdict verdict = judge(channelScan({levels}, narrow), FarEnd::muted);
    EXPECT_EQ(verdict.judgement, Judgement::disturbed);
    EXPECT_EQ(verdict.kind, InterferenceKind::line);
}

/// A neighbour of -20 dBm leaks -80 through a filter that rejects 60 dB.
TEST(Verdict, cannotTellALowFlatRiseInAScanOfTheChannelFromALeak)
{
    const sdc::Verdict verdict = judge(channelScan({around(-8200, 14), around(-8200, 14, 5)}), FarEnd::muted);
    EXPECT_EQ(verdict.judgement, Judgement::cannotTell);
    EXPECT_EQ(verdict.wouldHelp, std::vector{Help::subBandScan});
}

/// What leaks in may come from anywhere: a scan of the sub-band that has three samples shows no more of it than one of the
/// channel.
TEST(Verdict, cannotTellALowRiseFromALeakByThreeSamplesOfTheSubBand)
{
    const sdc::Verdict verdict = judge(scanned({{-9453, -8200, -9453}}, wide, 18000000 - 28000, 28000), FarEnd::muted);
    EXPECT_EQ(verdict.judgement, Judgement::cannotTell);
    EXPECT_EQ(verdict.wouldHelp, std::vector{Help::channelScan});
}

TEST(Verdict, ofAFlatRiseHigherThanAnyLeakIsDisturbed)
{
    EXPECT_EQ(judge(channelScan({around(-5500, 14), around(-5500, 14, 5)}), FarEnd::muted).judgement, Judgement::disturbed);
}

/// One sample at the centre: a mask of 25 dB leaves -45 of a neighbour of -20.
TEST(Verdict, cannotTellByOneSampleWhatAMaskMayLeave)
{
    EXPECT_EQ(judge(scanned({{-4700}}, wide, 18000000, 0), FarEnd::muted).judgement, Judgement::cannotTell);
    EXPECT_EQ(judge(scanned({{-3500}}, wide, 18000000, 0), FarEnd::muted).judgement, Judgement::disturbed);
}

/// The scan shows where the leak of -86 comes from.
TEST(Verdict, ofALeakThatTheSubBandExplainsIsClear)
{
    const Levels leak{-2600, -8530, -8540, -8560, -8550, -8520, -8560, -8540, -8550};
    EXPECT_EQ(judge(subBandScan({leak}), FarEnd::muted).judgement, Judgement::clear);
}

TEST(Verdict, ofARiseThatTheSubBandDoesNotExplainIsDisturbed)
{
    const Levels levels{-9440, -9480, -9450, -9420, -8300, -9460, -9430, -9450, -9470};
    const sdc::Verdict verdict = judge(subBandScan({levels}), FarEnd::muted);
    EXPECT_EQ(verdict.judgement, Judgement::disturbed);
    EXPECT_NEAR(verdict.overFloor.value_or(0), 1153, 60);
}

/// 30 dB below the carrier beside it, and so on its other side.
/// The one sample in the channel is off its centre, and the scan steps over the channel that its filter reaches.
TEST(Verdict, cannotTellByAnEdgeThatReachesOutWhatStandsBesideIt)
{
    const Levels levels{-9450, -9430, -3500, -9440, -9460};
    const auto scanFrom = [&](std::uint32_t lowest_kHz) { return scanned({levels}, wide, lowest_kHz, 80000); };
    const sdc::Verdict verdict = judge(scanFrom(18000000 + 10000 - 2 * 80000), FarEnd::muted);
    EXPECT_EQ(verdict.judgement, Judgement::cannotTell) << verdict.rule;
    EXPECT_TRUE(wouldHelp(verdict, Help::channelScan));
    EXPECT_EQ(judge(scanFrom(18000000 - 2 * 80000), FarEnd::muted).judgement, Judgement::disturbed);
}

/// What is beyond the ends of the scan is beyond the sub-band.
TEST(Verdict, ofARiseInTheFirstChannelOfTheSubBandIsDisturbed)
{
    const Levels levels{-3500, -9430, -9450, -9440, -9460};
    EXPECT_EQ(judge(scanned({levels}, wide, 18000000 - 10000, 80000), FarEnd::muted).judgement, Judgement::disturbed);
}

TEST(Verdict, ofARiseFromAMaskThatHasTwoSidesIsClearAndAdvisesAScanOfTheChannel)
{
    const Levels levels{-9440, -9480, -9450, -9420, -7000, -4000, -7010, -9450, -9470};
    const sdc::Verdict verdict = judge(subBandScan({levels}), FarEnd::muted);
    EXPECT_EQ(verdict.judgement, Judgement::clear);
    EXPECT_EQ(verdict.wouldHelp, std::vector{Help::channelScan});
}

TEST(Verdict, ofABurstInOneSweepOfManyIsDisturbed)
{
    std::vector<Levels> sweeps;
    for (std::int32_t sweep = 0; sweep < 20; ++sweep) {
        sweeps.push_back(around(-9453, 9, sweep));
    }
    sweeps[11][4] = -8000;
    const sdc::Verdict verdict = judge(subBandScan(sweeps), FarEnd::muted);
    EXPECT_EQ(verdict.judgement, Judgement::disturbed);
    EXPECT_EQ(verdict.kind, InterferenceKind::burst);
}

/// One sweep of three, the whole height of it and not that over a mean to which it adds.
TEST(Verdict, ofABurstTellsHowHighItWasOverTheFloor)
{
    std::vector<Levels> sweeps{around(-9450, 42), around(-9450, 42, 3), around(-9450, 42, 5)};
    std::ranges::copy(hump(-6000), sweeps[1].begin() + 14);
    const sdc::Verdict verdict = judge(scanned(sweeps, wide, 18000000 - 41000, 2000), FarEnd::muted);
    EXPECT_EQ(verdict.kind, InterferenceKind::burst) << verdict.rule;
    EXPECT_NEAR(verdict.overFloor.value_or(0), 3450, 150);
}

TEST(Verdict, cannotTellWhatLiesUnderTheOwnCarrier)
{
    const auto channel = channelScan({hump(-4500)});
    const sdc::Verdict on = judge(channel, FarEnd::on);
    EXPECT_EQ(on.judgement, Judgement::cannotTell);
    EXPECT_TRUE(wouldHelp(on, Help::muteFarEnd));
    const sdc::Verdict unknown = judge(channel, FarEnd::unknown);
    EXPECT_EQ(unknown.judgement, Judgement::cannotTell);
    EXPECT_TRUE(wouldHelp(unknown, Help::sayFarEnd));
}

TEST(Verdict, ofALineBesideTheOwnCarrierIsDisturbed)
{
    Levels levels(14, -5500);
    levels[9] = levels[10] = -4000;
    EXPECT_EQ(judge(channelScan({levels}, narrow), FarEnd::on).judgement, Judgement::disturbed);
}

TEST(Verdict, ofWhatComesAndGoesOnTheOwnCarrierIsDisturbed)
{
    std::vector<Levels> sweeps(6, hump(-5500));
    sweeps[3] = hump(-4000);
    const sdc::Verdict verdict = judge(channelScan(sweeps), FarEnd::on);
    EXPECT_EQ(verdict.judgement, Judgement::disturbed);
    EXPECT_EQ(verdict.kind, InterferenceKind::burst);
}

TEST(Verdict, ofALittleThatComesAndGoesOnTheOwnCarrierIsABurst)
{
    std::vector<Levels> sweeps(6, hump(-5500));
    sweeps[3] = hump(-5000);
    const sdc::Verdict verdict = judge(channelScan(sweeps), FarEnd::on);
    EXPECT_EQ(verdict.judgement, Judgement::suspected) << verdict.rule;
    EXPECT_EQ(verdict.kind, InterferenceKind::burst);
}

/// 5 dB down from one sweep to the next, a minute later, and back.
TEST(Verdict, ofACarrierThatFadesIsNoAlarm)
{
    std::vector<Levels> sweeps;
    for (const std::int32_t level : {-5000, -5500, -6000, -6500, -6000, -5500, -5000}) {
        sweeps.push_back(hump(level));
    }
    EXPECT_EQ(judge(channelScan(sweeps), FarEnd::on).judgement, Judgement::cannotTell);
}

/// The channel below is 30 dB stronger, and a slow receiver still shows two fifths of that in the next reading.
TEST(Verdict, takesWhatASlowReceiverSmearsIntoTheChannelForNoInterferer)
{
    const auto carrier_mW = [](double centre_kHz, double level, double offset_kHz) {
        return sdc::milliwatts(level) * sdc::shareOfCarrier({centre_kHz, 28000.0, 0.25}, offset_kHz, narrow.filterWidth_kHz);
    };
    Levels levels;
    double read = -9500.0;
    for (int offset_kHz = -41000; offset_kHz <= 41000; offset_kHz += 2000) {
        const double power_mW = carrier_mW(-28000.0, -2500.0, offset_kHz) + carrier_mW(0.0, -5500.0, offset_kHz);
        const double settled = sdc::levelOf(power_mW + sdc::milliwatts(-9500.0));
        read = settled + 0.4 * (read - settled);
        levels.push_back(static_cast<std::int32_t>(read));
    }
    sdc::ChannelResult channel = scanned({levels, levels}, narrow, 18000000 - 41000, 2000);
    EXPECT_EQ(judge(channel, FarEnd::on).judgement, Judgement::disturbed);
    channel.plan.setRxWait_ms = 100;
    EXPECT_EQ(judge(channel, FarEnd::on).judgement, Judgement::cannotTell);
}

TEST(Verdict, cannotTellWithoutASampleInTheChannel)
{
    const sdc::Verdict verdict = judge(scanned({around(-9453, 5)}, wide, 18020000, 28000), FarEnd::muted);
    EXPECT_EQ(verdict.judgement, Judgement::cannotTell);
    EXPECT_EQ(verdict.wouldHelp, std::vector{Help::channelScan});
}

/// The controller stores 0.00 dBm for a reading that the radio refuses.
TEST(Verdict, cannotTellByAReceiverThatRefusesEveryReadingInTheChannel)
{
    const sdc::Verdict verdict = judge(scanned({{-9453, 0, -9453}}, wide, 18000000 - 28000, 28000), FarEnd::muted);
    EXPECT_EQ(verdict.judgement, Judgement::cannotTell);
    EXPECT_EQ(verdict.wouldHelp, std::vector{Help::checkReceiver});
}

TEST(Verdict, cannotTellOfNothing)
{
    sdc::ChannelResult channel = channelScan({Levels{-9453}});
    channel.survey = {};
    EXPECT_EQ(judge(channel, FarEnd::muted).judgement, Judgement::cannotTell);
    channel = channelScan({around(-9453, 14)});
    channel.plan.channelSpacing_kHz = 0;
    EXPECT_EQ(judge(channel, FarEnd::muted).judgement, Judgement::cannotTell);
}

TEST(Verdict, ofASweepCutShortIsOfWhatItSaw)
{
    auto channel = channelScan({hump(-5000)});
    channel.plan.samples = 30;
    EXPECT_EQ(judge(channel, FarEnd::muted).judgement, Judgement::disturbed);
}

TEST(Verdict, saysWhichRuleDecidedInOneSentence)
{
    for (const FarEnd farEnd : {FarEnd::muted, FarEnd::on}) {
        const std::string rule = judge(channelScan({hump(-5000)}), farEnd).rule;
        EXPECT_FALSE(rule.empty());
        EXPECT_EQ(rule.find('\n'), std::string::npos);
    }
}

} // namespace

// What is said of the configured channel of simulated links: of emitters in it, beside it, and of fading.

#include "SimulatedScans.h"

#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/verdict/Verdict.h"
#include "simulator/radio/Emitters.h"
#include "simulator/radio/Link.h"
#include "simulator/radio/emitters/Carrier.h"
#include "simulator/radio/emitters/ContinuousWave.h"
#include "simulator/radio/emitters/NoiseBand.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace {

using namespace sdc;
using simulator::Carrier;
using simulator::ContinuousWave;
using simulator::Emitter;
using simulator::NoiseBand;
using testing_results::SimulatedScans;

// The channel lies around 23002 MHz and is 28 MHz wide.
constexpr double centre_kHz = 23002000.0;

/// Scans with nothing but these on the air.
class Link : public SimulatedScans {
public:
    Link(ScanKind kind, const std::vector<Emitter>& emitters)
        : SimulatedScans("23-hunt", kind)
    {
        link.emitters = emitters;
    }

    Verdict judged(FarEnd farEnd, std::size_t sweeps = 1) const
    {
        constexpr std::uint64_t seed = 7;
        return judge(scan(seed, sweeps).channels.front(), farEnd);
    }
};

Carrier carrierAt(double offset_kHz, double level_dBm, double symbolRate_kBd)
{
    Carrier carrier;
    carrier.centre_kHz = centre_kHz + offset_kHz;
    carrier.level_dBm = level_dBm;
    carrier.symbolRate_kBd = symbolRate_kBd;
    carrier.rollOff = 0.25;
    return carrier;
}

struct Beside {
    const char* name;
    Carrier carrier;
};

void PrintTo(const Beside& beside, std::ostream* out)
{
    *out << beside.name;
}

class CarrierBesideTheChannel : public testing::TestWithParam<Beside> {};

INSTANTIATE_TEST_SUITE_P(Verdict, CarrierBesideTheChannel,
    testing::Values(Beside{"narrowTwoMHzAway", carrierAt(16000, -60, 3000)},
        Beside{"sixMHzAway", carrierAt(20000, -60, 5000)}, Beside{"below", carrierAt(-18000, -60, 5000)},
        Beside{"ofHalfAChannel", carrierAt(21500, -70, 11000)}, Beside{"onTheRaster", carrierAt(28000, -45, 22000)},
        Beside{"onTheRasterTwoChannelsBelow", carrierAt(-56000, -30, 22000)}),
    [](const auto& one) { return one.param.name; });

TEST_P(CarrierBesideTheChannel, isNoneInItAsTheSubBandShows)
{
    const Verdict verdict = Link(ScanKind::subBand, {GetParam().carrier}).judged(FarEnd::muted);
    EXPECT_EQ(verdict.judgement, Judgement::clear) << verdict.rule;
}

TEST_P(CarrierBesideTheChannel, isNoAlarmInAScanOfTheChannel)
{
    const Verdict verdict = Link(ScanKind::channel, {GetParam().carrier}).judged(FarEnd::muted);
    EXPECT_TRUE(verdict.judgement == Judgement::clear || verdict.judgement == Judgement::cannotTell) << verdict.rule;
}

struct Inside {
    const char* name;
    Emitter emitter;
    InterferenceKind kind;
};

void PrintTo(const Inside& inside, std::ostream* out)
{
    *out << inside.name;
}

class EmitterInTheChannel : public testing::TestWithParam<Inside> {};

INSTANTIATE_TEST_SUITE_P(Verdict, EmitterInTheChannel,
    testing::Values(Inside{"carrier", carrierAt(0, -70, 22000), InterferenceKind::carrier},
        Inside{"narrowCarrierOffTheCentre", carrierAt(-6000, -75, 6000), InterferenceKind::carrier},
        Inside{"line", ContinuousWave{centre_kHz + 3300, -75}, InterferenceKind::line},
        Inside{"lineNearTheEdge", ContinuousWave{centre_kHz - 9300, -70}, InterferenceKind::line},
        Inside{"lineAtTheEdge", ContinuousWave{centre_kHz + 13500, -70}, InterferenceKind::line},
        Inside{"noiseOverAllOfTheBand", NoiseBand{22e6, 24e6, 15}, InterferenceKind::wideband},
        Inside{"noiseOverThreeChannels", NoiseBand{centre_kHz - 42000, centre_kHz + 42000, 15}, InterferenceKind::wideband}),
    [](const auto& one) { return one.param.name; });

TEST_P(EmitterInTheChannel, isFoundAndNamedInTheSubBand)
{
    const Verdict verdict = Link(ScanKind::subBand, {GetParam().emitter}).judged(FarEnd::muted);
    EXPECT_EQ(verdict.judgement, Judgement::disturbed) << verdict.rule;
    EXPECT_EQ(verdict.kind, GetParam().kind);
    EXPECT_EQ(verdict.place, InterferencePlace::coChannel);
}

TEST(VerdictOfScans, isBurstOfAnEmitterThatComesAndGoesInTheChannel)
{
    Emitter burst = ContinuousWave{centre_kHz, -60};
    burst.schedule.every_ms = 40000.0;
    burst.schedule.duration_ms = 6000.0;
    const Verdict verdict = Link(ScanKind::subBand, {burst}).judged(FarEnd::muted, 20);
    EXPECT_EQ(verdict.judgement, Judgement::disturbed);
    EXPECT_EQ(verdict.kind, InterferenceKind::burst);
}

TEST(VerdictOfScans, isSweepOfALineThatMovesSlowly)
{
    const Emitter moving = ContinuousWave{centre_kHz, -60, simulator::Drift{.reach_kHz = 12000, .period_ms = 700000}};
    const Verdict verdict = Link(ScanKind::subBand, {moving}).judged(FarEnd::muted, 20);
    EXPECT_EQ(verdict.judgement, Judgement::disturbed);
    EXPECT_EQ(verdict.kind, InterferenceKind::sweep);
}

TEST(VerdictOfScans, isNoAlarmOfOneThatComesAndGoesBesideTheChannel)
{
    Emitter burst = ContinuousWave{centre_kHz + 18000, -60};
    burst.schedule.every_ms = 40000.0;
    burst.schedule.duration_ms = 6000.0;
    const Verdict verdict = Link(ScanKind::subBand, {burst}).judged(FarEnd::muted, 20);
    EXPECT_TRUE(verdict.judgement == Judgement::clear || verdict.judgement == Judgement::cannotTell) << verdict.rule;
}

/// A notch that moves by some MHz from one sweep to the next.
TEST(VerdictOfScans, isNoAlarmOfMultipath)
{
    for (const ScanKind kind : {ScanKind::channel, ScanKind::subBand}) {
        for (const std::size_t sweeps : {1U, 2U, 3U, 5U, 10U}) {
            const SimulatedScans scans("13-fade", kind);
            const Verdict verdict = judge(scans.scan(3, sweeps).channels.front(), FarEnd::on);
            EXPECT_EQ(verdict.judgement, Judgement::cannotTell) << sweeps << " sweeps: " << verdict.rule;
        }
    }
}

/// A notch takes little of what a filter as wide as the channel reads in its middle: what jumps there by 12 dB is no fading,
/// though it is there more than half of the time.
TEST(VerdictOfScans, isDisturbedByWhatJumpsMoreThanANotchCan)
{
    SimulatedScans scans("13-fade", ScanKind::channel);
    scans.link.notches.clear();
    scans.link.filterWidth_kHz = 28000;
    Emitter burst = ContinuousWave{scans.link.rxFrequency_kHz + 100.0, -24};
    burst.schedule.every_ms = 7000.0;
    burst.schedule.duration_ms = 4500.0;
    scans.link.emitters.push_back(burst);
    const Verdict verdict = judge(scans.scan(3, 3).channels.front(), FarEnd::on);
    EXPECT_EQ(verdict.judgement, Judgement::disturbed) << verdict.rule;
    EXPECT_EQ(verdict.kind, InterferenceKind::burst);
}

/// A notch moves: what is of one shape in five sweeps is none.
TEST(VerdictOfScans, isDisturbedByAnotherShapeThatStaysWhereMultipathIs)
{
    SimulatedScans scans("13-fade", ScanKind::channel);
    scans.link.notches.clear();
    scans.link.emitters.push_back(ContinuousWave{scans.link.rxFrequency_kHz + 12000.0, -38});
    EXPECT_EQ(judge(scans.scan(3, 3).channels.front(), FarEnd::on).judgement, Judgement::cannotTell);
    const Verdict verdict = judge(scans.scan(3, 5).channels.front(), FarEnd::on);
    EXPECT_EQ(verdict.judgement, Judgement::disturbed) << verdict.rule;
}

/// It is not higher than the carrier itself, and nothing beside the channel is like it.
TEST(VerdictOfScans, isSuspectedByAHumpOnTheOwnCarrier)
{
    const std::vector<Emitter> links{carrierAt(0, -50, 22000), carrierAt(28000, -40, 22000)};
    EXPECT_EQ(Link(ScanKind::subBand, links).judged(FarEnd::on, 10).judgement, Judgement::cannotTell);
    std::vector<Emitter> emitters = links;
    emitters.push_back(ContinuousWave{centre_kHz - 6000, -48});
    const Verdict verdict = Link(ScanKind::subBand, emitters).judged(FarEnd::on, 10);
    EXPECT_EQ(verdict.judgement, Judgement::suspected) << verdict.rule;
}

/// The controller stores 0.00 dBm for a reading that the radio refuses.
TEST(VerdictOfScans, takesNoRefusedReadingForALevel)
{
    const Link quiet(ScanKind::channel, {});
    ChannelResult channel = quiet.scan(7, 1).channels.front();
    Sweep refused = channel.sweeps.front();
    refused.samples[refused.samples.size() / 2].rssi = 0;
    refused.samples[1].rssi = 2147483647;
    ChannelResult again{
        .channel = 1, .unitTypeText = "", .receiver = channel.receiver, .plan = channel.plan, .sweeps = {}, .survey = {}};
    again.add(refused);
    EXPECT_EQ(judge(again, FarEnd::muted).judgement, Judgement::clear);
    EXPECT_EQ(judge(again, FarEnd::on).rule, judge(channel, FarEnd::on).rule);
}

TEST(VerdictOfScans, isNoneOfACarrierOfWhichNobodySaidWhoseItIs)
{
    for (const Emitter& emitter : {Emitter(carrierAt(-6000, -60, 6000)), Emitter(carrierAt(0, -22, 22000))}) {
        const Link link(ScanKind::subBand, {emitter});
        EXPECT_NE(link.judged(FarEnd::on).judgement, Judgement::cannotTell);
        const Verdict verdict = link.judged(FarEnd::unknown);
        EXPECT_EQ(verdict.judgement, Judgement::cannotTell) << verdict.rule;
        EXPECT_EQ(verdict.wouldHelp.front(), Help::sayFarEnd);
    }
}

bool advises(const Verdict& verdict, Help help)
{
    return std::ranges::find(verdict.wouldHelp, help) != verdict.wouldHelp.end();
}

TEST(VerdictOfScans, advisesMoreSweepsWhereFewHideWhatComesAndGoes)
{
    const Link link(ScanKind::subBand, {carrierAt(0, -50, 22000)});
    for (const FarEnd farEnd : {FarEnd::on, FarEnd::unknown}) {
        EXPECT_TRUE(advises(link.judged(farEnd, 2), Help::moreSweeps)) << toText(farEnd);
        EXPECT_FALSE(advises(link.judged(farEnd, 3), Help::moreSweeps)) << toText(farEnd);
    }
    EXPECT_FALSE(advises(link.judged(FarEnd::muted, 1), Help::moreSweeps));
}

TEST(VerdictOfScans, advisesMoreSweepsOfWhatIsOnlySuspected)
{
    const Verdict verdict = Link(ScanKind::subBand, {ContinuousWave{centre_kHz, -90}}).judged(FarEnd::muted);
    EXPECT_EQ(verdict.judgement, Judgement::suspected) << verdict.rule;
    EXPECT_EQ(verdict.wouldHelp, std::vector{Help::moreSweeps});
}

TEST(VerdictOfScans, ofAChannelThatANeighbourLeaksIntoAdvisesTheSubBand)
{
    const Verdict verdict = Link(ScanKind::channel, {carrierAt(28000, -30, 22000)}).judged(FarEnd::muted);
    EXPECT_EQ(verdict.wouldHelp, std::vector{Help::subBandScan});
}

} // namespace

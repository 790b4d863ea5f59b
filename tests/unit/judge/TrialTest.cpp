// The random links that are judged.

#include "tests/judge/trial/Trial.h"
#include "simulator/scenario/Scenario.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace {

using judge::Trial;

constexpr std::uint64_t many = 600;

const std::vector<Trial>& trials()
{
    static const std::vector<Trial> all = [] {
        std::vector<Trial> made;
        for (std::uint64_t seed = 1; seed <= many; ++seed) {
            made.push_back(judge::makeTrial(seed));
        }
        return made;
    }();
    return all;
}

/// How many of the trials are so.
template <typename Is>
std::ptrdiff_t count(Is is)
{
    return std::ranges::count_if(trials(), is);
}

TEST(Trials, ofOneSeedAreTheSameAndOfAnotherOthers)
{
    EXPECT_EQ(judge::scenarioText(judge::makeTrial(5)), judge::scenarioText(judge::makeTrial(5)));
    EXPECT_NE(judge::scenarioText(judge::makeTrial(5)), judge::scenarioText(judge::makeTrial(6)));
}

TEST(Trials, areWhatTheirFilesSay)
{
    for (const Trial& trial : trials()) {
        const std::string text = judge::scenarioText(trial);
        const simulator::Scenario read = simulator::parseScenario(text, "link.json");
        ASSERT_EQ(read.channels.front().link.seed, trial.link().seed);
        ASSERT_EQ(read.channels.front().link.emitters.size(), trial.link().emitters.size());
        Trial again = trial;
        again.scenario = read;
        ASSERT_EQ(judge::scenarioText(again), text);
    }
}

TEST(Trials, tellTheOptionsOfTheirScan)
{
    Trial trial;
    trial.kind = sdc::ScanKind::subBand;
    trial.sweeps = 7;
    trial.told = sdc::FarEnd::muted;

    EXPECT_EQ(judge::scanOptions(trial), "sub-band --repeat 7 --far-end muted");
}

TEST(Trials, beginWithTheFarEndsCarrierWhereItIsOn)
{
    for (const Trial& trial : trials()) {
        if (trial.isFarEndOn) {
            const auto* const own = std::get_if<simulator::Carrier>(&trial.link().emitters.at(0).signal);
            ASSERT_NE(own, nullptr);
            EXPECT_EQ(own->centre_kHz, trial.link().rxFrequency_kHz);
            EXPECT_GE(own->level_dBm, -75.0);
            EXPECT_LE(own->level_dBm, -28.0);
        }
    }
}

TEST(Trials, saysNobodyTheContraryOfTheFarEnd)
{
    for (const Trial& trial : trials()) {
        EXPECT_NE(trial.told, trial.isFarEndOn ? sdc::FarEnd::muted : sdc::FarEnd::on);
    }
    EXPECT_GT(count([](const Trial& one) { return one.told == sdc::FarEnd::muted; }), 150);
    EXPECT_GT(count([](const Trial& one) { return one.told == sdc::FarEnd::on; }), 150);
    EXPECT_GT(count([](const Trial& one) { return one.told == sdc::FarEnd::unknown; }), 30);
}

TEST(Trials, haveFromOneToFiftySweeps)
{
    for (const Trial& trial : trials()) {
        EXPECT_GE(trial.sweeps, 1U);
        EXPECT_LE(trial.sweeps, 50U);
    }
    EXPECT_GT(count([](const Trial& one) { return one.sweeps == 1; }), 100);
    EXPECT_GT(count([](const Trial& one) { return one.sweeps > 20; }), 20);
}

template <typename Kind>
std::ptrdiff_t countWith(bool isScheduled)
{
    return count([isScheduled](const Trial& one) {
        return std::ranges::any_of(one.link().emitters, [isScheduled](const simulator::Emitter& emitter) {
            return std::holds_alternative<Kind>(emitter.signal) && emitter.schedule.duration_ms.has_value() == isScheduled;
        });
    });
}

TEST(Trials, haveEmittersOfEveryKindThatStayAndThatComeAndGo)
{
    for (const bool isScheduled : {false, true}) {
        EXPECT_GT(countWith<simulator::Carrier>(isScheduled), 50);
        EXPECT_GT(countWith<simulator::ContinuousWave>(isScheduled), 30);
        EXPECT_GT(countWith<simulator::NoiseBand>(isScheduled), 15);
    }
    EXPECT_GT(countWith<simulator::EdgeLeakage>(false), 15);
}

TEST(Trials, haveReceiversThatOccur)
{
    for (const Trial& trial : trials()) {
        const simulator::Link& link = trial.link();
        EXPECT_TRUE(4.0 <= link.noiseFigure_dB && link.noiseFigure_dB <= 10.0) << trial.seed;
        EXPECT_TRUE(0.3 <= link.jitter_dB && link.jitter_dB <= 1.0) << trial.seed;
        EXPECT_TRUE(50.0 <= link.ultimateRejection_dB && link.ultimateRejection_dB <= 60.0) << trial.seed;
        EXPECT_TRUE(30.0 <= link.settlingTime_ms && link.settlingTime_ms <= 200.0) << trial.seed;
        EXPECT_TRUE(link.filterWidth_kHz <= 1.16 * link.channelSpacing_kHz) << trial.seed;
    }
    EXPECT_GT(count([](const Trial& one) { return one.link().settlingTime_ms > 100.0; }), 30);
    EXPECT_GT(count([](const Trial& one) { return one.isReceiverDead(); }), 8);
    EXPECT_LT(count([](const Trial& one) { return one.isReceiverDead(); }), 40);
}

} // namespace

#include "tests/unit/simulator/PeersWithFaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <thread>

namespace {

using simulator::Fault;
using testing::ElementsAre;
using testing::StartsWith;
using tests::PeersWithFaults;
using tests::quiet_kHz;
using enum simulator::Operation;
using enum simulator::FaultAction;

/// Which of the first calls of a tuning are refused.
std::string refusals(PeersWithFaults& it, int calls)
{
    std::string found;
    for (int call = 0; call < calls; ++call) {
        found += it.tune(quiet_kHz) == 32768 ? 'X' : '.';
    }
    return found;
}

TEST(FaultyCalls, areThoseThatTheFaultNames)
{
    const struct {
        std::uint64_t firstCall, calls;
        std::string expected;
    } rows[] = {{1, 1, "X......"}, {2, 1, ".X....."}, {3, 2, "..XX..."}, {7, 1, "......X"}, {8, 9, "......."},
        {4, Fault::all, "...XXXX"}, {1, Fault::all, "XXXXXXX"}, {1000000000, Fault::all, "......."}};
    for (const auto& [firstCall, calls, expected] : rows) {
        PeersWithFaults it({{setRxFrequency, refuse, firstCall, calls}});
        EXPECT_EQ(refusals(it, 7), expected) << firstCall << ' ' << calls;
        EXPECT_EQ(it.radio.calls(setRxFrequency), 7U);
    }
}

TEST(FaultyCalls, ofOneOperationLeaveTheOthersAlone)
{
    PeersWithFaults it({{readRssi, refuse, 1, Fault::all}});
    EXPECT_EQ(refusals(it, 3), "...");
    EXPECT_EQ(it.read().first, 32768);
    EXPECT_EQ(it.radio.calls(readRssi), 1U);
    EXPECT_EQ(it.radio.calls(setRxFrequency), 3U);
    EXPECT_EQ(it.radio.calls(getRxFrequency), 0U);
    EXPECT_EQ(it.radio.calls(createPropertiesProvider), 1U);
}

TEST(FaultyCalls, areDecidedByTheFirstFaultThatMatches)
{
    PeersWithFaults it(
        {{setRxFrequency, answer, 2, 2, 5}, {setRxFrequency, answer, 1, 3, 6}, {setRxFrequency, answer, 3, 2, 7}});
    std::vector<std::int32_t> results;
    for (int call = 0; call < 5; ++call) {
        results.push_back(it.tune(quiet_kHz));
    }
    EXPECT_THAT(results, ElementsAre(6, 5, 5, 7, 0));
}

TEST(InjectedFaults, countCallsFromNow)
{
    PeersWithFaults it;
    EXPECT_EQ(refusals(it, 3), "...");
    it.radio.inject({setRxFrequency, refuse, 2, 2});
    EXPECT_EQ(refusals(it, 5), ".XX..");
    it.radio.inject({setRxFrequency, refuse});
    EXPECT_EQ(refusals(it, 2), "X.");
    EXPECT_EQ(it.radio.calls(setRxFrequency), 10U);
    it.radio.inject({setRxFrequency, fail, 2});
    EXPECT_EQ(it.thrownBy(setRxFrequency), "");
    EXPECT_EQ(it.thrownBy(setRxFrequency), "simulated fault in setRxFrequency, call 12");
}

TEST(InjectedFaults, comeAfterThoseThatAreThere)
{
    PeersWithFaults it({{setRxFrequency, answer, 2, 1, 5}});
    it.radio.inject({setRxFrequency, refuse, 1, Fault::all});
    EXPECT_EQ(it.tune(quiet_kHz), 32768);
    EXPECT_EQ(it.tune(quiet_kHz), 5);
    EXPECT_EQ(it.tune(quiet_kHz), 32768);
}

std::string whyNotInjected(PeersWithFaults& it, const Fault& fault)
{
    try {
        it.radio.inject(fault);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return {};
}

TEST(InjectedFaults, areRefusedWhereALinkWithThemIsImpossible)
{
    PeersWithFaults it({{getRxFrequency, answer, 1, 1, 18700001}});
    EXPECT_EQ(whyNotInjected(it, {getUnitInfo, stick}),
        "faults[1].action: is \"stick\"; must be \"throw\" or \"answer\" where operation is \"getUnitInfo\"");
    EXPECT_THAT(whyNotInjected(it, {setRxFrequency, refuse, 0}), StartsWith("faults[1].first_call: is 0; must be "));
    EXPECT_THAT(whyNotInjected(it, {getChannelSpacing, answer}), StartsWith("faults[1].value: is 0 kHz; must be from 2"));
    EXPECT_EQ(it.tune(quiet_kHz), 0);
    EXPECT_EQ(it.spacing(), 27500U);

    EXPECT_EQ(whyNotInjected(it, {readRssi, refuse}), "");
    EXPECT_THAT(whyNotInjected(it, {readRssi, refuse, 0}), StartsWith("faults[2].first_call: is 0; must be "));
}

TEST(PropertiesProvider, keepsItsFaultsWhenThePeersAreGone)
{
    std::unique_ptr<IRadioPropertiesProvider> provider;
    {
        PeersWithFaults it({{getProperties, refuse, 2}, {getUnitInfo, fail, 1, 1, 0, "no unit"}});
        provider = std::move(it.held);
        SDCProperties properties{};
        EXPECT_EQ(provider->getProperties(properties), 0);
    }
    SDCProperties properties{};
    EXPECT_EQ(provider->getProperties(properties), 32768);
    EXPECT_EQ(provider->getProperties(properties), 0);
    UnitInfo unitInfo;
    EXPECT_THROW(provider->getUnitInfo(unitInfo), std::runtime_error);
    EXPECT_NO_THROW(provider->getUnitInfo(unitInfo));
    EXPECT_EQ(unitInfo.typeText, "KLM6 18G");
}

TEST(PropertiesProviders, ofOneRadioShareTheCount)
{
    PeersWithFaults it({{getProperties, refuse, 2}});
    const auto other = it.provider();
    SDCProperties properties{};
    EXPECT_EQ(it.held->getProperties(properties), 0);
    EXPECT_EQ(other->getProperties(properties), 32768);
    EXPECT_EQ(it.radio.calls(getProperties), 2U);
}

TEST(FaultyCalls, areExactWhenSeveralThreadsCall)
{
    constexpr int callsPerThread = 500;
    PeersWithFaults it({{setRxFrequency, refuse, 300, 400}});
    std::array<int, 2> refused{};
    const auto tuneOften = [&it](int& count) {
        for (int call = 0; call < callsPerThread; ++call) {
            count += it.tune(quiet_kHz) == 32768 ? 1 : 0;
        }
    };
    std::thread one(tuneOften, std::ref(refused[0]));
    std::thread other(tuneOften, std::ref(refused[1]));
    it.radio.inject({readRssi, refuse});
    EXPECT_EQ(it.read().first, 32768);
    one.join();
    other.join();
    EXPECT_EQ(refused[0] + refused[1], 400);
    EXPECT_EQ(it.radio.calls(setRxFrequency), 2U * callsPerThread);
}

} // namespace

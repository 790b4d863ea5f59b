#include "simulator/radio/Fault.h"
#include "simulator/radio/RadioPeers.h"

#include "Platform/Host/InterfaceBroker.h"
#include "Platform/Radio/IFrameFormat.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"
#include "Platform/Radio/IRssiHandler.h"
#include "tests/unit/simulator/TestLink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <stdexcept>
#include <thread>

namespace {

using simulator::Fault;
using simulator::FaultAction;
using simulator::Link;
using simulator::Operation;
using simulator::RadioPeers;
using simulator::VirtualClock;
using testing::ElementsAre;
using tests::plainLink;
using tests::quiet_kHz;
using enum simulator::Operation;
using enum simulator::FaultAction;

constexpr std::array operations{setRxFrequency, readRssi, getRxFrequency, getChannelSpacing, getFrequencyParameters,
    createPropertiesProvider, getProperties, getUnitInfo};
constexpr std::array actions{refuse, fail, answer, stick};

template <typename Interface>
Interface& find(const std::string& name)
{
    return dynamic_cast<Interface&>(*InterfaceBroker::getInstance().interfaces().at(name));
}

/// The peers of plainLink with faults, and short ways to call them. What a call throws becomes its answer.
class PeersWithFaults {
public:
    explicit PeersWithFaults(const std::vector<Fault>& faults = {})
        : peers(linkWith(faults), RadioChannel{7}, clock)
    {
    }

    static Link linkWith(const std::vector<Fault>& faults)
    {
        Link link = plainLink();
        link.properties = {1, 2, 3, 4};
        link.faults = faults;
        return link;
    }

    std::int32_t tune(std::uint32_t frequency_kHz)
    {
        return find<IFrequencyController>("IFrequencyController_7").setRxFrequency(frequency_kHz, true);
    }
    std::uint32_t configured() { return find<IFrequencyController>("IFrequencyController_7").getRxFrequency(); }
    std::uint32_t spacing() { return find<IFrameFormat>("IFrameFormat_7").getChannelSpacing(); }
    std::unique_ptr<IRadioPropertiesProvider> provider() { return find<IRadio>("IRadio_7").createPropertiesProvider(); }

    /// The result and what is in the variable then, which held 77.
    std::pair<std::int32_t, std::int32_t> read()
    {
        std::int32_t rssi = 77;
        const std::int32_t result = find<IRssiHandler>("IRssiHandler_7").readRssi(rssi);
        return {result, rssi};
    }

    void call(Operation operation)
    {
        SDCProperties properties{};
        UnitInfo unitInfo;
        switch (operation) {
        case setRxFrequency: tune(quiet_kHz); break;
        case readRssi: read(); break;
        case getRxFrequency: configured(); break;
        case getChannelSpacing: spacing(); break;
        case getFrequencyParameters: find<IRadioCapability>("IRadioCapability_7").getFrequencyParameters(); break;
        case createPropertiesProvider: provider(); break;
        case getProperties: held->getProperties(properties); break;
        case getUnitInfo: held->getUnitInfo(unitInfo); break;
        }
    }

    /// What the operation throws; empty when it does not.
    std::string thrownBy(Operation operation)
    {
        try {
            call(operation);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    }

    VirtualClock clock;
    RadioPeers peers;
    std::unique_ptr<IRadioPropertiesProvider> held = find<IRadio>("IRadio_7").createPropertiesProvider();
};

TEST(FaultNames, areThoseOfTheEnumeratorsButThrow)
{
    const std::array<std::string_view, 8> operationNames{"setRxFrequency", "readRssi", "getRxFrequency", "getChannelSpacing",
        "getFrequencyParameters", "createPropertiesProvider", "getProperties", "getUnitInfo"};
    for (std::size_t index = 0; index < operations.size(); ++index) {
        EXPECT_EQ(toString(operations[index]), operationNames[index]);
        EXPECT_EQ(simulator::operationFromString(operationNames[index]), operations[index]);
    }
    const std::array<std::string_view, 4> actionNames{"refuse", "throw", "answer", "stick"};
    for (std::size_t index = 0; index < actions.size(); ++index) {
        EXPECT_EQ(toString(actions[index]), actionNames[index]);
        EXPECT_EQ(simulator::faultActionFromString(actionNames[index]), actions[index]);
    }
    for (const std::string_view other : {"", "fail", "SetRxFrequency", "setRxFrequency ", "refuse1"}) {
        EXPECT_FALSE(simulator::operationFromString(other)) << other;
        EXPECT_FALSE(simulator::faultActionFromString(other)) << other;
    }
    EXPECT_EQ(toString(static_cast<Operation>(8)), "unknown");
    EXPECT_EQ(toString(static_cast<FaultAction>(4)), "unknown");
}

TEST(FaultActions, areKnownToTheOperationsThatCanDoThem)
{
    const std::array<std::string, 8> known{"refuse throw answer stick ", "refuse throw answer stick ", "throw answer ",
        "throw answer ", "throw ", "throw ", "refuse throw ", "throw answer "};
    for (std::size_t index = 0; index < operations.size(); ++index) {
        std::string found;
        for (const FaultAction action : actions) {
            found += knows(operations[index], action) ? std::string(toString(action)) + ' ' : "";
        }
        EXPECT_EQ(found, known[index]) << toString(operations[index]);
    }
    for (const FaultAction action : {refuse, fail, answer, stick, static_cast<FaultAction>(4)}) {
        EXPECT_FALSE(knows(static_cast<Operation>(8), action));
    }
    EXPECT_FALSE(knows(setRxFrequency, static_cast<FaultAction>(4)));
}

TEST(PeersThatThrow, sayWhatTheFaultSaysAndDoNothing)
{
    for (const Operation operation : operations) {
        PeersWithFaults it({{operation, fail, 2, 1, 0, "the bus is gone"}, {operation, fail, 4}});
        if (operation == createPropertiesProvider) {
            it.held.reset(); // its making was the first call
        } else {
            EXPECT_EQ(it.thrownBy(operation), "");
        }
        EXPECT_EQ(it.thrownBy(operation), "the bus is gone");
        EXPECT_EQ(it.thrownBy(operation), "");
        EXPECT_EQ(it.thrownBy(operation), "simulated fault in " + std::string(toString(operation)) + ", call 4");
        EXPECT_EQ(it.thrownBy(operation), "");
        EXPECT_EQ(it.peers.calls(operation), 5U) << toString(operation);
    }
}

TEST(TuningThatThrows, leavesTheReceiverWhereItIs)
{
    PeersWithFaults it({{setRxFrequency, fail}});
    EXPECT_THROW(it.tune(quiet_kHz), std::runtime_error);
    EXPECT_EQ(it.peers.receiver().frequency_kHz(), 19177500U);
}

TEST(TuningThatIsRefused, returns32768AndLeavesTheReceiverWhereItIs)
{
    PeersWithFaults it({{setRxFrequency, refuse}});
    EXPECT_EQ(it.tune(quiet_kHz), 32768);
    EXPECT_EQ(it.peers.receiver().frequency_kHz(), 19177500U);
    EXPECT_EQ(it.tune(quiet_kHz), 0);
    EXPECT_EQ(it.peers.receiver().frequency_kHz(), quiet_kHz);
}

TEST(TuningThatSticks, returns0AndLeavesTheReceiverWhereItIs)
{
    PeersWithFaults it({{setRxFrequency, stick, 2}});
    EXPECT_EQ(it.tune(quiet_kHz), 0);
    EXPECT_EQ(it.tune(19300000), 0);
    EXPECT_EQ(it.peers.receiver().frequency_kHz(), quiet_kHz);
    it.clock.sleepMs(5000);
    EXPECT_EQ(it.read().second, -9461) << "and settles there";
}

TEST(TuningWithAnOddAnswer, tunesAllTheSame)
{
    PeersWithFaults it({{setRxFrequency, answer, 1, 1, 40000}, {setRxFrequency, answer, 2, 1, -7}});
    EXPECT_EQ(it.tune(quiet_kHz), 40000);
    EXPECT_EQ(it.peers.receiver().frequency_kHz(), quiet_kHz);
    EXPECT_EQ(it.tune(19300000), -7);
    EXPECT_EQ(it.peers.receiver().frequency_kHz(), 19300000U);
}

TEST(ReadingsThatGoWrong, doAsTheFaultSays)
{
    PeersWithFaults it({{readRssi, refuse, 2}, {readRssi, answer, 3, 1, -12345}, {readRssi, stick, 4, 2}});
    EXPECT_EQ(it.read(), std::pair(0, -3500));
    it.tune(quiet_kHz);
    it.clock.sleepMs(5000);
    EXPECT_EQ(it.read(), std::pair(32768, 77)) << "the variable is left alone";
    EXPECT_EQ(it.read(), std::pair(0, -12345));
    EXPECT_EQ(it.read(), std::pair(0, -12345)) << "stuck at the reading before";
    EXPECT_EQ(it.read(), std::pair(0, -12345));
    EXPECT_EQ(it.read(), std::pair(0, -9461));
}

TEST(StuckReading, afterARefusedOneIsTheLastThatWasRead)
{
    PeersWithFaults it({{readRssi, refuse, 2}, {readRssi, stick, 3}});
    EXPECT_EQ(it.read(), std::pair(0, -3500));
    it.tune(quiet_kHz);
    it.clock.sleepMs(5000);
    EXPECT_EQ(it.read(), std::pair(32768, 77));
    EXPECT_EQ(it.read(), std::pair(0, -3500));
    EXPECT_EQ(it.read(), std::pair(0, -9461));
}

TEST(StuckReading, ofTheFirstCallIsTakenAndKept)
{
    PeersWithFaults it({{readRssi, stick, 1, Fault::all}});
    EXPECT_EQ(it.read(), std::pair(0, -3500));
    it.tune(quiet_kHz);
    it.clock.sleepMs(5000);
    EXPECT_EQ(it.read(), std::pair(0, -3500));
}

TEST(OddAnswers, takeThePlaceOfTheLinksFigures)
{
    PeersWithFaults it({{getRxFrequency, answer, 1, 1, 19205000}, {getChannelSpacing, answer, 1, 1, 7000},
        {getUnitInfo, answer, 1, 1, 0, "toaster"}, {getUnitInfo, answer, 2}});
    EXPECT_EQ(it.configured(), 19205000U);
    EXPECT_EQ(it.configured(), 19177500U);
    EXPECT_EQ(it.spacing(), 7000U);
    EXPECT_EQ(it.spacing(), 27500U);
    for (const std::string expected : {"toaster", "", "KLM6 18G"}) {
        UnitInfo unitInfo{"before"};
        it.held->getUnitInfo(unitInfo);
        EXPECT_EQ(unitInfo.typeText, expected);
    }
}

TEST(AnsweredFrequency, mayNeedAllBitsOfAWord)
{
    Link link = plainLink();
    link.frequencyParameters = {80, {}, 2000000000, 4200000000, 100000, 0, 0, {}, 30000, 40000};
    link.rxFrequency_kHz = 3000000000;
    link.faults = {{getRxFrequency, answer, 1, 1, 4000000000}};
    VirtualClock clock;
    const RadioPeers peers(link, RadioChannel{7}, clock);
    EXPECT_EQ(find<IFrequencyController>("IFrequencyController_7").getRxFrequency(), 4000000000U);
}

TEST(PropertiesThatAreRefused, leaveTheRecordAlone)
{
    PeersWithFaults it({{getProperties, refuse}});
    SDCProperties properties{9, 9, 9, 9};
    EXPECT_EQ(it.held->getProperties(properties), 32768);
    EXPECT_EQ(properties.longHaul, 9);
    EXPECT_EQ(properties.spareFlag, 9);
    EXPECT_EQ(it.held->getProperties(properties), 0);
    EXPECT_EQ(properties.longHaul, 1);
}

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
        {4, Fault::all, "...XXXX"}, {1, Fault::all, "XXXXXXX"}, {Fault::all, Fault::all, "......."}};
    for (const auto& [firstCall, calls, expected] : rows) {
        PeersWithFaults it({{setRxFrequency, refuse, firstCall, calls}});
        EXPECT_EQ(refusals(it, 7), expected) << firstCall << ' ' << calls;
        EXPECT_EQ(it.peers.calls(setRxFrequency), 7U);
    }
}

TEST(FaultyCalls, ofOneOperationLeaveTheOthersAlone)
{
    PeersWithFaults it({{readRssi, refuse, 1, Fault::all}});
    EXPECT_EQ(refusals(it, 3), "...");
    EXPECT_EQ(it.read().first, 32768);
    EXPECT_EQ(it.peers.calls(readRssi), 1U);
    EXPECT_EQ(it.peers.calls(setRxFrequency), 3U);
    EXPECT_EQ(it.peers.calls(getRxFrequency), 0U);
    EXPECT_EQ(it.peers.calls(createPropertiesProvider), 1U);
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
    it.peers.inject({setRxFrequency, refuse, 2, 2});
    EXPECT_EQ(refusals(it, 5), ".XX..");
    it.peers.inject({setRxFrequency, refuse});
    EXPECT_EQ(refusals(it, 2), "X.");
    EXPECT_EQ(it.peers.calls(setRxFrequency), 10U);
    it.peers.inject({setRxFrequency, fail, 2});
    EXPECT_EQ(it.thrownBy(setRxFrequency), "");
    EXPECT_EQ(it.thrownBy(setRxFrequency), "simulated fault in setRxFrequency, call 12");
}

TEST(InjectedFaults, comeAfterThoseThatAreThere)
{
    PeersWithFaults it({{setRxFrequency, answer, 2, 1, 5}});
    it.peers.inject({setRxFrequency, refuse, 1, Fault::all});
    EXPECT_EQ(it.tune(quiet_kHz), 32768);
    EXPECT_EQ(it.tune(quiet_kHz), 5);
    EXPECT_EQ(it.tune(quiet_kHz), 32768);
}

std::string whyNotInjected(PeersWithFaults& it, const Fault& fault)
{
    try {
        it.peers.inject(fault);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return {};
}

TEST(InjectedFaults, areRefusedWhereALinkWithThemIsImpossible)
{
    PeersWithFaults it({{getRxFrequency, answer, 1, 1, 18700001}});
    EXPECT_EQ(whyNotInjected(it, {getUnitInfo, stick}),
        "faults[1]: the action stick is none that getUnitInfo knows; it must be one of: throw, answer");
    EXPECT_EQ(whyNotInjected(it, {setRxFrequency, refuse, 0}), "faults[1]: the first call is 0; it must be at least 1");
    EXPECT_EQ(whyNotInjected(it, {getChannelSpacing, answer}),
        "faults[1]: with its answer the channel spacing is 0 kHz; it must be 1 to 18700000 kHz");
    EXPECT_EQ(it.tune(quiet_kHz), 0);
    EXPECT_EQ(it.spacing(), 27500U);

    EXPECT_EQ(whyNotInjected(it, {readRssi, refuse}), "");
    EXPECT_EQ(whyNotInjected(it, {readRssi, refuse, 0}), "faults[2]: the first call is 0; it must be at least 1");
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
    EXPECT_EQ(it.peers.calls(getProperties), 2U);
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
    it.peers.inject({readRssi, refuse});
    EXPECT_EQ(it.read().first, 32768);
    one.join();
    other.join();
    EXPECT_EQ(refused[0] + refused[1], 400);
    EXPECT_EQ(it.peers.calls(setRxFrequency), 2U * callsPerThread);
}

} // namespace

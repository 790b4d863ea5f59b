#include "tests/unit/simulator/PeersWithFaults.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using host::VirtualClock;
using simulator::Fault;
using simulator::FaultAction;
using simulator::Link;
using simulator::Operation;
using simulator::Radio;
using tests::PeersWithFaults;
using tests::plainLink;
using tests::quiet_kHz;
using enum simulator::Operation;
using enum simulator::FaultAction;

constexpr std::array operations{setRxFrequency, readRssi, getRxFrequency, getChannelSpacing, getFrequencyParameters,
    createPropertiesProvider, getProperties, getUnitInfo};
constexpr std::array actions{refuse, fail, answer, stick};

TEST(FaultNames, areThoseOfTheEnumeratorsButThrow)
{
    const std::array<std::string_view, 8> operationNames{"setRxFrequency", "readRssi", "getRxFrequency", "getChannelSpacing",
        "getFrequencyParameters", "createPropertiesProvider", "getProperties", "getUnitInfo"};
    for (std::size_t index = 0; index < operations.size(); ++index) {
        EXPECT_EQ(toString(operations[index]), operationNames[index]);
    }
    const std::array<std::string_view, 4> actionNames{"refuse", "throw", "answer", "stick"};
    for (std::size_t index = 0; index < actions.size(); ++index) {
        EXPECT_EQ(toString(actions[index]), actionNames[index]);
    }
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
        EXPECT_EQ(it.radio.calls(operation), 5U) << toString(operation);
    }
}

TEST(TuningThatThrows, leavesTheReceiverWhereItIs)
{
    PeersWithFaults it({{setRxFrequency, fail}});
    EXPECT_THROW(it.tune(quiet_kHz), std::runtime_error);
    EXPECT_EQ(it.radio.receiver().frequency_kHz(), 19177500U);
}

TEST(TuningThatIsRefused, returns32768AndLeavesTheReceiverWhereItIs)
{
    PeersWithFaults it({{setRxFrequency, refuse}});
    EXPECT_EQ(it.tune(quiet_kHz), 32768);
    EXPECT_EQ(it.radio.receiver().frequency_kHz(), 19177500U);
    EXPECT_EQ(it.tune(quiet_kHz), 0);
    EXPECT_EQ(it.radio.receiver().frequency_kHz(), quiet_kHz);
}

TEST(TuningThatSticks, returns0AndLeavesTheReceiverWhereItIs)
{
    PeersWithFaults it({{setRxFrequency, stick, 2}});
    EXPECT_EQ(it.tune(quiet_kHz), 0);
    EXPECT_EQ(it.tune(19300000), 0);
    EXPECT_EQ(it.radio.receiver().frequency_kHz(), quiet_kHz);
    it.clock.sleepMs(5000);
    EXPECT_EQ(it.read().second, -9461) << "and settles there";
}

TEST(TuningWithAnOddAnswer, tunesAllTheSame)
{
    PeersWithFaults it({{setRxFrequency, answer, 1, 1, 40000}, {setRxFrequency, answer, 2, 1, -7}});
    EXPECT_EQ(it.tune(quiet_kHz), 40000);
    EXPECT_EQ(it.radio.receiver().frequency_kHz(), quiet_kHz);
    EXPECT_EQ(it.tune(19300000), -7);
    EXPECT_EQ(it.radio.receiver().frequency_kHz(), 19300000U);
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

} // namespace

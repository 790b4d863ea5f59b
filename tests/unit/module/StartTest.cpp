// What a start does, step by step: peers, settle delays, plan, status and state.

#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using testing::ContainerEq;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using tests::Calls;

constexpr ESDCCommand starts[] = {SDC_CMD_CHANNEL_SCAN_START, SDC_CMD_SUB_BAND_SCAN_START};
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();

/// The peer operations that a start calls, in this order.
const Calls peerCalls{"IFrameFormat.getChannelSpacing", "IFrequencyController.getRxFrequency",
    "IRadioCapability.getFrequencyParameters", "provider.getUnitInfo with \"\""};

/// Without a worker: all members have values of their own before the start, and the state stays as it is set.
class Start : public tests::ControllerFixture {
protected:
    Start() { prepare(); }

    /// Gives a start as if none had been given before; the log holds only its calls.
    std::int32_t freshStart(ESDCCommand command, const std::string& typeText, std::int32_t setRxWait_ms = 500)
    {
        fillMembers();
        peers.radio.typeText = typeText;
        return controller->setCommand(command, setRxWait_ms);
    }

    /// The members as a start must have left them when it calls each of its peer operations.
    Members membersAt(std::size_t peer, ESDCCommand command, std::uint32_t setRxWait_ms)
    {
        fillMembers();
        Members at = members();
        at["m_command"] = command;
        at["m_status"] = 0;
        at["m_progress"] = 0;
        at["m_setRxWait_ms"] = setRxWait_ms;
        if (peer > 0) {
            at["m_channelSpacing_kHz"] = 28000;
        }
        if (peer > 1) {
            at["m_currentRxFrequency_kHz"] = 18000000;
        }
        if (peer > 2) {
            at["m_rxBaseFrequency_kHz"] = 17000000;
            at["m_frequencyBand_GHz"] = 18;
            at["m_minRxFrequency_kHz"] = 17700000;
            at["m_maxRxFrequency_kHz"] = 19700000;
            at["m_frequencyStepSize_kHz"] = 250;
            at["m_stepLimitLow"] = 2800;
            at["m_stepLimitHigh"] = 10800;
            at["m_setRxWait_ms"] = 300;
            at["m_firstSetRxWait_ms"] = 3000;
        }
        return at;
    }
};

TEST_F(Start, callsPeersAndTracesInThisOrder)
{
    EXPECT_EQ(freshStart(SDC_CMD_SUB_BAND_SCAN_START, "18G 4742/2", -5), 0);
    EXPECT_THAT(log.calls(),
        ElementsAre("enter 6 setCommand: m_radioChannelId=7, SDCStatus::toString(m_status)=channel-scan-finished"
                    ", SDCCommand::toString(command)=sub-band-scan-start, setRxWait_ms=-5",
            "IFrameFormat.getChannelSpacing", "IFrequencyController.getRxFrequency", "enter 6 setGeneralParams",
            "IRadioCapability.getFrequencyParameters", "trace 5   m_rxBaseFrequency_kHz = 17000000",
            "trace 5     m_frequencyBand_GHz = 18", "trace 5    m_minRxFrequency_kHz = 17700000",
            "trace 5    m_maxRxFrequency_kHz = 19700000", "trace 5 m_frequencyStepSize_kHz = 250",
            "trace 5          m_stepLimitLow = 2800", "trace 5         m_stepLimitHigh = 10800", "enter 6 getOduType",
            "provider.getUnitInfo with \"\"", "trace 5 Radio type is : 4742(18G 4742/2)", "enter 6 prepSubBandScan4742"));
}

TEST_F(Start, hasWrittenJustSoMuchWhenItCallsEachPeerAndLeavesItWhereThatThrows)
{
    const std::pair<std::int32_t, std::uint32_t> waits[] = {
        {0, 0}, {500, 500}, {highest, 2147483647U}, {-1, 4294967295U}, {lowest, 2147483648U}};
    for (const auto& [argument, stored] : waits) {
        for (const ESDCCommand command : starts) {
            for (std::size_t peer = 0; peer < peerCalls.size(); ++peer) {
                SCOPED_TRACE(peerCalls[peer] + ", command " + std::to_string(command) + " " + std::to_string(argument));
                const Members expected = membersAt(peer, command, stored);
                at(peerCalls[peer], [] { throw 4711; });
                try {
                    freshStart(command, "4742", argument);
                    ADD_FAILURE() << "no exception";
                } catch (int thrown) {
                    EXPECT_EQ(thrown, 4711);
                }
                EXPECT_THAT(members(), ContainerEq(expected));
            }
        }
    }
}

TEST_F(Start, stopWhileItReadsTheRadioIsLost)
{
    for (const std::string& call : peerCalls) {
        SCOPED_TRACE(call);
        at(call, [this] { EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), 0); });
        EXPECT_EQ(freshStart(SDC_CMD_CHANNEL_SCAN_START, "4742"), 0);
        EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_CHANNEL_SCAN_ONGOING);
    }
}

TEST_F(Start, leavesPlanStatusAndStateWhenAccepted)
{
    Members expected = membersAt(peerCalls.size(), SDC_CMD_SUB_BAND_SCAN_START, 0);
    expected["m_scanStep_kHz"] = 28000;
    expected["m_frequencyMargin_kHz"] = 0;
    expected["m_scanLowestRxFrequency_kHz"] = 17972000;
    expected["m_scanHighestRxFrequency_kHz"] = 18028000;
    expected["m_totalNrOfSamples"] = 3;
    expected["m_status"] = SDC_STATUS_SUB_BAND_ONGOING;
    expected["m_state"] = State::STATE_SCAN;
    EXPECT_EQ(freshStart(SDC_CMD_SUB_BAND_SCAN_START, "4742"), 0);
    EXPECT_THAT(members(), ContainerEq(expected));
}

TEST_F(Start, plansByUnitTypeAndCommand)
{
    const std::string channelStd = "prepChannelScanStd";
    const std::string subBandStd = "prepSubBandScanStd";
    const std::string channelSingle = "prepChannelScan4742_4743";
    const std::vector<std::string> rows[] = {{"QRU7 K", channelStd, subBandStd}, {"4741", channelStd, subBandStd},
        {"4742", channelSingle, "prepSubBandScan4742"}, {"4743", channelSingle, "prepSubBandScan4743"},
        {"KLM", channelStd, subBandStd}, {"KLM5", channelSingle, "prepSubBandScan4743"}, {"KLM6", channelStd, subBandStd},
        {"KLM6 P", channelSingle, "prepSubBandScan4743"}, {"SDC", channelStd, subBandStd}};
    for (const std::vector<std::string>& row : rows) {
        for (const ESDCCommand command : starts) {
            SCOPED_TRACE(row[0] + ", command " + std::to_string(command));
            EXPECT_EQ(freshStart(command, "unit " + row[0] + ".18G"), 0);
            EXPECT_THAT(log.callsStartingWith("enter 6 prep"), ElementsAre("enter 6 " + row[1 + command]));
            EXPECT_EQ(inspect().m_command(), command);
            EXPECT_EQ(inspect().m_status(), command == 0 ? SDC_STATUS_CHANNEL_SCAN_ONGOING : SDC_STATUS_SUB_BAND_ONGOING);
            EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
            EXPECT_THAT(traceTexts(PLX_TRACE_LEVEL_ERROR), IsEmpty());
        }
    }
}

TEST_F(Start, failsForAnUnsupportedUnitTypeBeforeAnyPlan)
{
    for (const ESDCCommand command : starts) {
        for (const std::string typeText : {"QRU9", "", "klm6", "QRU7K"}) {
            SCOPED_TRACE(typeText + ", command " + std::to_string(command));
            const Members expected = membersAt(peerCalls.size(), command, 0);
            EXPECT_EQ(freshStart(command, typeText), 32768);
            EXPECT_THAT(log.callsStartingWith("trace 1"),
                ElementsAre("trace 1 Unknown radio type : (" + typeText + ")", "trace 1 Unsupported QRU"));
            EXPECT_THAT(log.callsStartingWith("enter 6 prep"), IsEmpty());
            EXPECT_THAT(members(), ContainerEq(expected));
        }
    }
}

TEST_F(Start, hasNoPlanForATypeBeyondTheLastKnown)
{
    for (const ESDCCommand command : starts) {
        for (const std::uint32_t type : {9U, 10U, 4294967295U}) {
            EXPECT_EQ(inspect().planFor(OduType{type}, command), nullptr) << type;
        }
    }
}

TEST_F(Start, choosesTheSettleDelaysByThePropertiesAlone)
{
    const struct {
        SDCProperties properties;
        std::uint32_t first_ms;
        std::uint32_t later_ms;
    } rows[] = {{{0, 0, 0, 0}, 3000, 300}, {{255, 0, 0, 255}, 3000, 300}, {{0, 0, 1, 0}, 3000, 2000},
        {{0, 0, 2, 0}, 3000, 2000}, {{0, 0, 128, 0}, 3000, 2000}, {{0, 0, 255, 0}, 3000, 2000}, {{0, 1, 0, 0}, 60000, 60000},
        {{0, 2, 0, 0}, 60000, 60000}, {{0, 128, 0, 0}, 60000, 60000}, {{0, 255, 0, 0}, 60000, 60000},
        {{0, 1, 1, 0}, 60000, 60000}, {{0, 2, 255, 0}, 60000, 60000}};
    peers.radio.typeText = "4742";
    for (const auto& row : rows) {
        for (const std::int32_t argument : {0, 500, -5}) {
            for (const ESDCCommand command : starts) {
                SCOPED_TRACE(testing::Message()
                    << int{row.properties.extendedRxWait} << ' ' << int{row.properties.slowRxWait} << ", command " << command
                    << " with " << argument);
                fillMembers();
                inspect().m_properties() = row.properties;
                EXPECT_EQ(controller->setCommand(command, argument), 0);
                EXPECT_EQ(inspect().m_firstSetRxWait_ms(), row.first_ms);
                EXPECT_EQ(inspect().m_setRxWait_ms(), row.later_ms);
            }
        }
    }
}

/// With a running worker.
class StartOfASweep : public tests::ControllerFixture {};

TEST_F(StartOfASweep, usesThePropertiesOfTheSweepBeforeOrOfAQuery)
{
    peers.radio.typeText = "4742";
    start();
    peers.radio.properties = {0, 0, 1, 0};
    ASSERT_TRUE(scan(SDC_CMD_SUB_BAND_SCAN_START)); // the first: nobody has asked for them
    peers.radio.properties = {0, 1, 0, 0};
    ASSERT_TRUE(scan(SDC_CMD_SUB_BAND_SCAN_START));
    ASSERT_TRUE(scan(SDC_CMD_SUB_BAND_SCAN_START));
    peers.radio.properties = {0, 0, 0, 0};
    controller->getSpectrumDiagnosticsProperties();
    peers.radio.properties = {0, 1, 0, 0};
    ASSERT_TRUE(scan(SDC_CMD_SUB_BAND_SCAN_START));
    EXPECT_THAT(log.callsStartingWith("sleepMs"),
        ElementsAre("sleepMs 3000", "sleepMs 300", "sleepMs 300", "sleepMs 3000", "sleepMs 2000", "sleepMs 2000",
            "sleepMs 60000", "sleepMs 60000", "sleepMs 60000", "sleepMs 3000", "sleepMs 300", "sleepMs 300"));
}

TEST_F(StartOfASweep, isPlannedAsLongHaulOnceTheSweepBeforeOrAQueryHasReadIt)
{
    peers.radio.typeText = "KLM";
    peers.radio.properties.longHaul = 1;
    peers.radioCapability.parameters.frequencyBand_GHz = 80;
    start();
    ASSERT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START)); // the first
    EXPECT_EQ(inspect().m_scanStep_kHz(), 10000U);
    ASSERT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START));
    EXPECT_EQ(inspect().m_scanStep_kHz(), 2000U);
    peers.radio.properties.longHaul = 0;
    controller->getSpectrumDiagnosticsProperties();
    ASSERT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START));
    EXPECT_EQ(inspect().m_scanStep_kHz(), 10000U);
}

} // namespace

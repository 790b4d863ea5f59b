#include "tests/support/WorkerlessFixture.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using testing::ContainerEq;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr ESDCCommand starts[] = {SDC_CMD_CHANNEL_SCAN_START, SDC_CMD_SUB_BAND_SCAN_START};
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();

struct PeerFailure {
    std::size_t peer;
};

class Start : public support::WorkerlessFixture {
protected:
    /// Hooks the n-th of the peer operations that a start calls, in the order in which it must call them.
    void onPeer(std::size_t n, const std::function<void()>& hook)
    {
        std::function<void()>* const hooks[] = {&peers.frameFormat.onGetChannelSpacing,
            &peers.frequencyController.onGetRxFrequency, &peers.radioCapability.onGetFrequencyParameters,
            &peers.radio.onGetUnitInfo};
        *hooks[n] = hook;
    }

    /// The members as a start must have left them when it calls each of those operations.
    static std::vector<Members> membersAtEachPeer(const Members& before, ESDCCommand command, std::uint32_t setRxWait_ms)
    {
        std::vector<Members> at(4, before);
        for (Members& members : at) {
            members["m_command"] = command;
            members["m_status"] = 0;
            members["m_progress"] = 0;
            members["m_setRxWait_ms"] = setRxWait_ms;
        }
        at[1]["m_channelSpacing_kHz"] = at[2]["m_channelSpacing_kHz"] = 28000;
        at[2]["m_currentRxFrequency_kHz"] = 18000000;
        at[3] = afterPreparation(before, command);
        return at;
    }

    /// The members when a start has read the radio and chosen the delays, and has not planned yet.
    static Members afterPreparation(Members members, ESDCCommand command)
    {
        members["m_command"] = command;
        members["m_status"] = 0;
        members["m_progress"] = 0;
        members["m_channelSpacing_kHz"] = 28000;
        members["m_currentRxFrequency_kHz"] = 18000000;
        members["m_rxBaseFrequency_kHz"] = 17000000;
        members["m_frequencyBand_GHz"] = 18;
        members["m_minRxFrequency_kHz"] = 17700000;
        members["m_maxRxFrequency_kHz"] = 19700000;
        members["m_frequencyStepSize_kHz"] = 250;
        members["m_stepLimitLow"] = 2800;
        members["m_stepLimitHigh"] = 10800;
        members["m_setRxWait_ms"] = 300;
        members["m_firstSetRxWait_ms"] = 3000;
        return members;
    }

    /// Gives a start as if none had been given before; the log holds only its calls.
    std::int32_t freshStart(ESDCCommand command, const std::string& typeText)
    {
        fillMembers();
        log.clear();
        peers.radio.typeText = typeText;
        return controller->setCommand(command, 500);
    }

    static std::vector<std::string> startLog(const std::string& command, const std::string& setRxWait_ms)
    {
        return {"enter 6 setCommand: m_radioChannelId=7, SDCStatus::toString(m_status)=channel-scan-finished"
                ", SDCCommand::toString(command)="
                + command + ", setRxWait_ms=" + setRxWait_ms,
            "IFrameFormat.getChannelSpacing", "IFrequencyController.getRxFrequency", "enter 6 setGeneralParams",
            "IRadioCapability.getFrequencyParameters", "trace 5   m_rxBaseFrequency_kHz = 17000000",
            "trace 5     m_frequencyBand_GHz = 18", "trace 5    m_minRxFrequency_kHz = 17700000",
            "trace 5    m_maxRxFrequency_kHz = 19700000", "trace 5 m_frequencyStepSize_kHz = 250",
            "trace 5          m_stepLimitLow = 2800", "trace 5         m_stepLimitHigh = 10800", "enter 6 getOduType",
            "provider.getUnitInfo with \"\""};
    }
};

TEST_F(Start, stopWhileItReadsTheRadioIsLost)
{
    for (std::size_t peer = 0; peer < 4; ++peer) {
        SCOPED_TRACE(peer);
        onPeer(peer, [this] { EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), 0); });
        EXPECT_EQ(freshStart(SDC_CMD_CHANNEL_SCAN_START, "4742"), 0);
        EXPECT_EQ(inspect().getState(), SpectrumDiagnosticsController::STATE_SCAN);
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_CHANNEL_SCAN_ONGOING);
        onPeer(peer, {});
    }
}

TEST_F(Start, callsPeersAndTracesInThisOrder)
{
    std::vector<std::string> expected = startLog("sub-band-scan-start", "-5");
    expected.insert(expected.end(), {"trace 5 Radio type is : 4742(18G 4742/2)", "enter 6 prepSubBandScan4742"});
    peers.radio.typeText = "18G 4742/2";
    EXPECT_EQ(controller->setCommand(SDC_CMD_SUB_BAND_SCAN_START, -5), 0);
    EXPECT_THAT(log.calls(), ElementsAreArray(expected));
}

TEST_F(Start, hasWrittenJustSoMuchWhenItCallsEachPeer)
{
    const std::pair<std::int32_t, std::uint32_t> waits[] = {
        {0, 0}, {500, 500}, {highest, 2147483647U}, {-1, 4294967295U}, {lowest, 2147483648U}};
    for (const auto& [argument, stored] : waits) {
        for (const ESDCCommand command : starts) {
            SCOPED_TRACE(std::to_string(command) + " with " + std::to_string(argument));
            fillMembers();
            const std::vector<Members> expected = membersAtEachPeer(members(), command, stored);
            std::vector<Members> seen;
            for (std::size_t peer = 0; peer < expected.size(); ++peer) {
                onPeer(peer, [this, &seen] { seen.push_back(members()); });
            }
            EXPECT_EQ(controller->setCommand(command, argument), 0);
            ASSERT_EQ(seen.size(), expected.size());
            for (std::size_t peer = 0; peer < expected.size(); ++peer) {
                SCOPED_TRACE(peer);
                EXPECT_THAT(seen[peer], ContainerEq(expected[peer]));
            }
        }
    }
}

TEST_F(Start, letsTheExceptionOfEachPeerPassToTheCallerAndLeavesWhatWasWritten)
{
    for (std::size_t peer = 0; peer < 4; ++peer) {
        SCOPED_TRACE(peer);
        fillMembers();
        const Members expected = membersAtEachPeer(members(), SDC_CMD_SUB_BAND_SCAN_START, 500)[peer];
        onPeer(peer, [peer] { throw PeerFailure{peer}; });
        try {
            controller->setCommand(SDC_CMD_SUB_BAND_SCAN_START, 500);
            ADD_FAILURE() << "no exception";
        } catch (const PeerFailure& failure) {
            EXPECT_EQ(failure.peer, peer);
        }
        EXPECT_THAT(members(), ContainerEq(expected));
        onPeer(peer, {});
    }
    EXPECT_EQ(freshStart(SDC_CMD_SUB_BAND_SCAN_START, "4742"), 0);
    EXPECT_EQ(inspect().getState(), SpectrumDiagnosticsController::STATE_SCAN);
}

TEST_F(Start, leavesPlanStatusAndStateWhenAccepted)
{
    Members expected = afterPreparation(members(), SDC_CMD_SUB_BAND_SCAN_START);
    expected["m_scanStep_kHz"] = 28000;
    expected["m_frequencyMargin_kHz"] = 0;
    expected["m_scanLowestRxFrequency_kHz"] = 17972000;
    expected["m_scanHighestRxFrequency_kHz"] = 18028000;
    expected["m_totalNrOfSamples"] = 3;
    expected["m_status"] = SDC_STATUS_SUB_BAND_ONGOING;
    expected["m_state"] = SpectrumDiagnosticsController::STATE_SCAN;
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
            EXPECT_EQ(inspect().getState(), SpectrumDiagnosticsController::STATE_SCAN);
            EXPECT_THAT(traceTexts(PLX_TRACE_LEVEL_ERROR), IsEmpty());
        }
    }
}

TEST_F(Start, failsForAnUnsupportedUnitTypeBeforeAnyPlan)
{
    for (const ESDCCommand command : starts) {
        for (const std::string typeText : {"QRU9", "", "klm6", "QRU7K"}) {
            SCOPED_TRACE(typeText + ", command " + std::to_string(command));
            const Members expected = afterPreparation(members(), command);
            std::vector<std::string> expectedLog = startLog(SDCCommand::toString(command), "500");
            expectedLog.insert(
                expectedLog.end(), {"trace 1 Unknown radio type : (" + typeText + ")", "trace 1 Unsupported QRU"});
            EXPECT_EQ(freshStart(command, typeText), 32768);
            EXPECT_THAT(log.calls(), ElementsAreArray(expectedLog));
            EXPECT_THAT(members(), ContainerEq(expected));
        }
    }
}

TEST_F(Start, choosesTheSettleDelaysByThePropertiesAlone)
{
    struct Row {
        SDCProperties properties;
        std::uint32_t first_ms;
        std::uint32_t later_ms;
    };
    const Row rows[] = {{{0, 0, 0, 0}, 3000, 300}, {{1, 0, 0, 1}, 3000, 300}, {{255, 0, 0, 255}, 3000, 300},
        {{0, 0, 1, 0}, 3000, 2000}, {{0, 0, 2, 0}, 3000, 2000}, {{0, 0, 128, 0}, 3000, 2000}, {{0, 0, 255, 0}, 3000, 2000},
        {{0, 1, 0, 0}, 60000, 60000}, {{0, 2, 0, 0}, 60000, 60000}, {{0, 128, 0, 0}, 60000, 60000},
        {{0, 255, 0, 0}, 60000, 60000}, {{0, 1, 1, 0}, 60000, 60000}, {{0, 2, 255, 0}, 60000, 60000}};
    for (const Row& row : rows) {
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

TEST_F(Start, takesThePropertiesAsTheyStandAndOnlyAQueryRefreshesThem)
{
    peers.radio.properties = {0, 1, 0, 0};
    EXPECT_EQ(freshStart(SDC_CMD_CHANNEL_SCAN_START, "4742"), 0);
    EXPECT_EQ(inspect().m_firstSetRxWait_ms(), 3000U);
    fillMembers();
    controller->getSpectrumDiagnosticsProperties();
    peers.radio.properties = {0, 0, 1, 0};
    EXPECT_EQ(controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 500), 0);
    EXPECT_EQ(inspect().m_firstSetRxWait_ms(), 60000U);
    EXPECT_EQ(inspect().m_setRxWait_ms(), 60000U);
    EXPECT_EQ(log.count("provider.getProperties"), 1U);
}

/// With a running worker.
class StartOfASweep : public support::ControllerFixture {};

TEST_F(StartOfASweep, usesTheDelaysOfThePropertiesBeforeItsStart)
{
    peers.radio.typeText = "4742";
    start();
    peers.radio.properties = {0, 0, 1, 0};
    ASSERT_TRUE(scan(SDC_CMD_SUB_BAND_SCAN_START));
    peers.radio.properties = {0, 1, 0, 0};
    ASSERT_TRUE(scan(SDC_CMD_SUB_BAND_SCAN_START));
    ASSERT_TRUE(scan(SDC_CMD_SUB_BAND_SCAN_START));
    EXPECT_THAT(log.callsStartingWith("sleepMs"),
        ElementsAre("sleepMs 3000", "sleepMs 300", "sleepMs 300", "sleepMs 3000", "sleepMs 2000", "sleepMs 2000",
            "sleepMs 60000", "sleepMs 60000", "sleepMs 60000"));
}

} // namespace

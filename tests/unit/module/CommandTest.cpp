// Commands: which are refused or rejected, what a stop does, and that none waits for a sweep.

#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using testing::ContainerEq;
using testing::ElementsAre;
using State = SpectrumDiagnosticsController::State;

constexpr State allStates[] = {State::STATE_EXIT, State::STATE_IDLE, State::STATE_SCAN, State::STATE_STOP};
constexpr State busyStates[] = {State::STATE_EXIT, State::STATE_SCAN, State::STATE_STOP};
constexpr ESDCCommand starts[] = {SDC_CMD_CHANNEL_SCAN_START, SDC_CMD_SUB_BAND_SCAN_START};
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();

ESDCCommand commandOf(std::int32_t number)
{
    return static_cast<ESDCCommand>(number);
}

std::string entry(const std::string& status, const std::string& command, const std::string& setRxWait_ms)
{
    return "enter 6 setCommand: m_radioChannelId=7, SDCStatus::toString(m_status)=" + status
        + ", SDCCommand::toString(command)=" + command + ", setRxWait_ms=" + setRxWait_ms;
}

/// Without a worker: a state stays as it is set.
class Commands : public tests::ControllerFixture {
protected:
    Commands()
    {
        prepare();
        fillMembers();
    }
};

TEST_F(Commands, entryTellsStatusAndCommandByTheirTextsAndTheDelaySigned)
{
    const struct {
        std::uint32_t status;
        std::int32_t command;
        std::int32_t setRxWait_ms;
        std::string entry;
    } rows[] = {
        {0, 0, -500, entry("scan-not-started", "channel-scan-start", "-500")},
        {1, 1, 0, entry("sub-band-ongoing", "sub-band-scan-start", "0")},
        {2, 2, lowest, entry("channel-scan-ongoing", "scan-stop", "-2147483648")},
        {3, 3, 1, entry("sub-band-scan-finished", "get-status", "1")},
        {4, 4, 1, entry("channel-scan-finished", "get-result", "1")},
        {5, 5, highest, entry("unknown", "get-scan-properties", "2147483647")},
        {4294967295U, -1, 1, entry("unknown", "unknown", "1")},
    };
    for (const auto& row : rows) {
        fillMembers();
        inspect().m_state() = State::STATE_SCAN;
        inspect().m_status() = ESDCStatus{row.status};
        controller->setCommand(commandOf(row.command), row.setRxWait_ms);
        EXPECT_EQ(log.calls().front(), row.entry);
    }
}

TEST_F(Commands, entryTellsTheChannelUnsigned)
{
    prepare({}, 4294967295U);
    controller->setCommand(SDC_CMD_GET_STATUS, 0);
    EXPECT_THAT(log.calls().front(), testing::StartsWith("enter 6 setCommand: m_radioChannelId=4294967295, SDC"));
}

TEST_F(Commands, commandsThatAreNotActedUponAreRejectedAndChangeNothing)
{
    for (const std::int32_t number : {3, 4, 5, 6, 77, highest, -1, -2, lowest}) {
        for (const State state : allStates) {
            SCOPED_TRACE(std::to_string(number) + " in state " + std::to_string(state));
            fillMembers();
            inspect().m_state() = state;
            const Members before = members();
            EXPECT_EQ(controller->setCommand(commandOf(number), 500), 32770);
            EXPECT_THAT(log.calls(),
                ElementsAre(entry("channel-scan-finished", SDCCommand::toString(commandOf(number)), "500"),
                    "trace 1 Unknown command " + std::to_string(number)));
            EXPECT_THAT(members(), ContainerEq(before));
        }
    }
}

TEST_F(Commands, startIsRefusedInEveryStateButIdleAndTouchesNothing)
{
    const std::pair<std::uint32_t, std::string> statuses[] = {
        {0, "0"}, {1, "1"}, {2, "2"}, {3, "3"}, {4, "4"}, {4294967295U, "-1"}};
    for (const State state : busyStates) {
        for (const ESDCCommand command : starts) {
            for (const auto& [status, number] : statuses) {
                SCOPED_TRACE("state " + std::to_string(state) + ", command " + std::to_string(command) + ", " + number);
                fillMembers();
                inspect().m_state() = state;
                inspect().m_status() = ESDCStatus{status};
                const Members before = members();
                EXPECT_EQ(controller->setCommand(command, 500), 0);
                EXPECT_THAT(log.calls(),
                    ElementsAre(entry(SDCStatus::toString(ESDCStatus{status}), SDCCommand::toString(command), "500"),
                        "trace 5 Scan already in progress " + number));
                EXPECT_THAT(members(), ContainerEq(before));
            }
        }
    }
}

TEST_F(Commands, stopWhileIdleResetsStatusAndProgressAndNothingElse)
{
    Members expected = members();
    expected["m_status"] = 0;
    expected["m_progress"] = 0;
    EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 500), 0);
    EXPECT_THAT(log.calls(), ElementsAre(entry("channel-scan-finished", "scan-stop", "500"), "trace 5 Scan is not running"));
    EXPECT_THAT(members(), ContainerEq(expected));
}

TEST_F(Commands, stopInEveryStateButIdleAsksTheWorkerToStop)
{
    for (const State state : busyStates) {
        SCOPED_TRACE(state);
        fillMembers();
        inspect().m_state() = state;
        Members expected = members();
        expected["m_command"] = 2;
        expected["m_state"] = State::STATE_STOP;
        expected["m_status"] = 0;
        expected["m_progress"] = 0;
        EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 500), 0);
        EXPECT_THAT(log.calls(), ElementsAre(entry("channel-scan-finished", "scan-stop", "500")));
        EXPECT_THAT(members(), ContainerEq(expected));
    }
}

/// To a controller whose worker runs; a sub-band scan has three samples, a channel scan one.
class CommandsToAWorker : public tests::ControllerFixture {
protected:
    CommandsToAWorker()
    {
        peers.radio.typeText = "4742";
        start();
    }

    /// Starts a sub-band scan, which then stands in its second delay.
    void holdASubBandScan()
    {
        sleep.close();
        ASSERT_EQ(command(SDC_CMD_SUB_BAND_SCAN_START), 0);
        ASSERT_TRUE(sleep.waitForSleeper());
        sleep.letOnePass();
        ASSERT_TRUE(sleep.waitForSleeper());
        log.clear();
    }
};

TEST_F(CommandsToAWorker, acceptedStartWakesTheWorker)
{
    for (const ESDCCommand command : starts) {
        ASSERT_TRUE(scan(command));
        EXPECT_EQ(samples().size(), command == SDC_CMD_CHANNEL_SCAN_START ? 1U : 3U);
    }
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SUB_BAND_SCAN_FINISHED);
}

TEST_F(CommandsToAWorker, secondStartDuringASweepIsRefusedAndLeavesTheSweepAlone)
{
    ASSERT_NO_FATAL_FAILURE(holdASubBandScan());
    sleep.letOnePass();
    ASSERT_TRUE(sleep.waitForSleeper());
    log.clear();
    EXPECT_EQ(controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 500), 0);
    EXPECT_THAT(log.calls(),
        ElementsAre(entry("sub-band-ongoing", "channel-scan-start", "500"), "trace 5 Scan already in progress 1"));
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SUB_BAND_ONGOING);
    EXPECT_EQ(controller->getProgress(), 33);
    sleep.open();
    ASSERT_TRUE(waitForIdle());
    EXPECT_THAT(samples(), ElementsAre(SDCResult{17972000, -4500}, SDCResult{18000000, -4500}, SDCResult{18028000, -4500}));
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SUB_BAND_SCAN_FINISHED);
}

TEST_F(CommandsToAWorker, stopDoesNotWaitForASweepInItsSleepAndEndsItAfterThatStep)
{
    ASSERT_NO_FATAL_FAILURE(holdASubBandScan());
    inspect().m_progress() = 50; // no step ends before the gate opens
    EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), 0);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(controller->getProgress(), 0);
    EXPECT_EQ(inspect().m_command(), SDC_CMD_SCAN_STOP);
    EXPECT_EQ(inspect().getState(), State::STATE_STOP);
    EXPECT_EQ(controller->setCommand(SDC_CMD_SUB_BAND_SCAN_START, 0), 0);
    EXPECT_EQ(log.count("trace 5 Scan already in progress 0"), 1U);
    EXPECT_EQ(log.count("IRssiHandler.readRssi"), 0U) << "a command has waited for the sweep";
    sleep.open();
    ASSERT_TRUE(waitForIdle());
    EXPECT_THAT(samples(), ElementsAre(SDCResult{17972000, -4500}, SDCResult{18000000, -4500}));
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
}

TEST_F(CommandsToAWorker, stopAfterASweepClearsItsStatusAndKeepsItsSamples)
{
    ASSERT_TRUE(scan(SDC_CMD_SUB_BAND_SCAN_START));
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SUB_BAND_SCAN_FINISHED);
    EXPECT_EQ(controller->getProgress(), 66);
    EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), 0);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(controller->getProgress(), 0);
    EXPECT_EQ(samples().size(), 3U);
    ASSERT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START));
    EXPECT_THAT(samples(), ElementsAre(SDCResult{18000000, -4500}));
}

} // namespace

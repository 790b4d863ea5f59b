#include "tests/support/GroupingLocale.h"
#include "tests/support/WorkerlessFixture.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <limits>
#include <set>

namespace {

using testing::ContainerEq;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using State = SpectrumDiagnosticsController::State;

constexpr State allStates[] = {SpectrumDiagnosticsController::STATE_EXIT, SpectrumDiagnosticsController::STATE_IDLE,
    SpectrumDiagnosticsController::STATE_SCAN, SpectrumDiagnosticsController::STATE_STOP};
constexpr State busyStates[] = {SpectrumDiagnosticsController::STATE_EXIT, SpectrumDiagnosticsController::STATE_SCAN,
    SpectrumDiagnosticsController::STATE_STOP};
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

class Commands : public support::WorkerlessFixture {};

TEST_F(Commands, entryTellsTheCommandByItsText)
{
    const std::pair<std::int32_t, std::string> rows[] = {{0, "channel-scan-start"}, {1, "sub-band-scan-start"},
        {2, "scan-stop"}, {3, "get-status"}, {4, "get-result"}, {5, "get-scan-properties"}, {6, "unknown"}, {-1, "unknown"},
        {lowest, "unknown"}};
    for (const auto& [number, text] : rows) {
        SCOPED_TRACE(number);
        fillMembers();
        inspect().m_state() = SpectrumDiagnosticsController::STATE_SCAN;
        log.clear();
        controller->setCommand(commandOf(number), -500);
        EXPECT_EQ(log.calls().front(), entry("channel-scan-finished", text, "-500"));
    }
}

TEST_F(Commands, entryTellsTheStatusBeforeTheCommandByItsText)
{
    const std::pair<std::uint32_t, std::string> rows[] = {{0, "scan-not-started"}, {1, "sub-band-ongoing"},
        {2, "channel-scan-ongoing"}, {3, "sub-band-scan-finished"}, {4, "channel-scan-finished"}, {5, "unknown"},
        {4294967295U, "unknown"}};
    for (const auto& [number, text] : rows) {
        SCOPED_TRACE(number);
        inspect().m_status() = ESDCStatus{number};
        log.clear();
        controller->setCommand(SDC_CMD_SCAN_STOP, lowest);
        EXPECT_EQ(log.calls().front(), entry(text, "scan-stop", "-2147483648"));
    }
}

TEST_F(Commands, entryTellsTheChannelUnsigned)
{
    destroy();
    construct(4294967295U);
    log.clear();
    controller->setCommand(SDC_CMD_GET_STATUS, 0);
    EXPECT_THAT(log.calls().front(), testing::StartsWith("enter 6 setCommand: m_radioChannelId=4294967295, SDC"));
}

TEST_F(Commands, commandsThatAreNotActedUponAreRejectedAndChangeNothing)
{
    for (const std::int32_t number : {3, 4, 5, 6, 77, highest, -1, -2, lowest}) {
        for (const State state : allStates) {
            SCOPED_TRACE(std::to_string(number) + " in state " + std::to_string(state));
            inspect().m_state() = state;
            const Members before = members();
            log.clear();
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
                inspect().m_state() = state;
                inspect().m_status() = ESDCStatus{status};
                const Members before = members();
                log.clear();
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
        expected["m_state"] = SpectrumDiagnosticsController::STATE_STOP;
        expected["m_status"] = 0;
        expected["m_progress"] = 0;
        log.clear();
        EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 500), 0);
        EXPECT_THAT(log.calls(), ElementsAre(entry("channel-scan-finished", "scan-stop", "500")));
        EXPECT_THAT(members(), ContainerEq(expected));
    }
}

/// Waits for a wake-up on the controller's condition while a stop is given.
TEST_F(Commands, stopWakesWhoeverWaits)
{
    inspect().m_state() = SpectrumDiagnosticsController::STATE_SCAN;
    std::unique_lock<std::mutex> testsTurn(inspect().m_mutex());
    std::atomic<bool> waits = false;
    bool woken = false;
    std::thread waiter([&] {
        std::unique_lock<std::mutex> lock(inspect().m_mutex());
        waits = true;
        woken = inspect().m_condition().wait_for(lock, support::hangLimit) == std::cv_status::no_timeout;
    });
    testsTurn.unlock();
    EXPECT_TRUE(support::eventually([&waits] { return waits.load(); }));
    testsTurn.lock(); // the waiter has gone to wait
    testsTurn.unlock();
    controller->setCommand(SDC_CMD_SCAN_STOP, 0);
    waiter.join();
    EXPECT_TRUE(woken);
}

/// What a series of commands answers and logs: an unknown one, a stop while idle, a failed, an accepted and a refused start.
class CommandTrace : public Commands {
protected:
    std::vector<std::int32_t> giveAll()
    {
        fillMembers();
        log.clear();
        std::vector<std::int32_t> results = {give(SDC_CMD_GET_STATUS), give(SDC_CMD_SCAN_STOP)};
        peers.radio.typeText = "QRU9";
        results.push_back(give(SDC_CMD_CHANNEL_SCAN_START));
        peers.radio.typeText = "4742";
        results.push_back(give(SDC_CMD_CHANNEL_SCAN_START));
        results.push_back(give(SDC_CMD_SUB_BAND_SCAN_START));
        return results;
    }

    std::int32_t give(ESDCCommand command)
    {
        errno = EDOM;
        const std::int32_t result = controller->setCommand(command, 500);
        EXPECT_EQ(errno, EDOM) << command;
        return result;
    }

    static bool isAbove(std::uint32_t level, const std::string& call)
    {
        const bool isRecord = call.starts_with("trace ") || call.starts_with("enter ");
        return isRecord && call.substr(6, 1) > std::to_string(level);
    }
};

TEST_F(CommandTrace, levelDecidesOnTheRecordsAndOnNothingElse)
{
    giveAll();
    const std::vector<std::string> all = log.calls();
    for (std::uint32_t level = 0; level < 8; ++level) {
        SCOPED_TRACE(level);
        std::vector<std::string> expected = all;
        std::erase_if(expected, [level](const std::string& call) { return isAbove(level, call); });
        setTraceLevel(level);
        EXPECT_THAT(giveAll(), ElementsAre(32770, 0, 32768, 0, 0));
        EXPECT_THAT(log.calls(), ElementsAreArray(expected));
    }
}

TEST_F(CommandTrace, errnoSurvivesAHostThatChangesIt)
{
    traceIntoLog.onWrite = [](const host::TraceRecord&) { errno = ERANGE; };
    for (const std::uint32_t level : {0U, 1U, 5U, 6U, 7U}) {
        SCOPED_TRACE(level);
        setTraceLevel(level);
        giveAll();
    }
}

TEST_F(CommandTrace, eachSiteHasItsOwnHeaderAndKeepsIt)
{
    trace.clear();
    giveAll();
    giveAll();
    std::map<std::string, std::set<const PlxTraceHeader*>> headersOf;
    std::set<const PlxTraceHeader*> headers;
    for (const host::TraceRecord& record : trace.records()) {
        const std::string site = record.isEntry ? std::string("enter ") + record.header->function : record.text;
        headersOf[site].insert(record.header);
        headers.insert(record.header);
    }
    EXPECT_EQ(headers.size(), headersOf.size());
    for (const auto& [site, ofSite] : headersOf) {
        EXPECT_EQ(ofSite.size(), 1U) << site;
    }
}

TEST_F(CommandTrace, globalLocaleChangesNoText)
{
    const support::GroupingLocale grouping;
    controller->setCommand(ESDCCommand{1234567}, -1234567);
    inspect().m_state() = SpectrumDiagnosticsController::STATE_SCAN;
    inspect().m_status() = ESDCStatus{1000000};
    controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 7654321);
    EXPECT_THAT(log.calls(),
        ElementsAre(entry("channel-scan-finished", "unknown", "-1234567"), "trace 1 Unknown command 1234567",
            entry("unknown", "channel-scan-start", "7654321"), "trace 5 Scan already in progress 1000000"));
}

TEST_F(CommandTrace, initializeTracesItsCallAndDoesNothing)
{
    const Members before = members();
    EXPECT_EQ(controller->initialize(), 0);
    EXPECT_THAT(log.calls(), ElementsAre("enter 6 initialize: m_radioChannelId=7"));
    EXPECT_THAT(members(), ContainerEq(before));
}

/// Commands to a controller whose worker runs; three samples or, on a channel scan, one.
class CommandsToAWorker : public support::ControllerFixture {
protected:
    CommandsToAWorker()
    {
        peers.radio.typeText = "4742";
        start();
    }

    bool scanHeldInItsSleep(ESDCCommand command)
    {
        sleep.close();
        return ControllerFixture::command(command) == SDC_RC_OK && sleep.waitForSleeper();
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
    ASSERT_TRUE(scanHeldInItsSleep(SDC_CMD_SUB_BAND_SCAN_START));
    sleep.letOnePass();
    ASSERT_TRUE(sleep.waitForSleeper());
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
    ASSERT_TRUE(scanHeldInItsSleep(SDC_CMD_SUB_BAND_SCAN_START));
    sleep.letOnePass();
    ASSERT_TRUE(sleep.waitForSleeper());
    inspect().m_progress() = 50; // no step ends before the gate opens
    EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), 0);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(controller->getProgress(), 0);
    EXPECT_EQ(inspect().m_command(), SDC_CMD_SCAN_STOP);
    EXPECT_EQ(inspect().getState(), SpectrumDiagnosticsController::STATE_STOP);
    EXPECT_EQ(controller->setCommand(SDC_CMD_SUB_BAND_SCAN_START, 0), 0);
    EXPECT_EQ(log.count("trace 5 Scan already in progress 0"), 1U);
    EXPECT_EQ(log.count("IRssiHandler.readRssi"), 1U) << "a command has waited for the sweep";
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

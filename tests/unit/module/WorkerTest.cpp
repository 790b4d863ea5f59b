// The worker on its own thread: what wakes it, and the calls that wait for it.

#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <ctime>

#include <pthread.h>

namespace {

using tests::AtScopeEnd;
using tests::BackgroundCall;
using tests::Calls;
using tests::eventually;
using tests::operator+;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class Worker : public tests::ControllerFixture {};

TEST_F(Worker, freshOneLogsItsEntryAndTheWaitingTextOnce)
{
    start();
    ASSERT_TRUE(waitForWaits(1));
    EXPECT_THAT(log.callsStartingWith("enter 6 scanThread"), ElementsAre(workerEntry));
    EXPECT_EQ(log.count(waiting), 1U);
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    EXPECT_EQ(samples().size(), 0U);
}

TEST_F(Worker, spuriousWakeUpNeitherLogsAgainNorRunsSweep)
{
    startAndWait();
    for (int round = 0; round < 5; ++round) {
        const std::uint64_t times = worker.timesBlocked();
        inspect().m_condition().notify_all();
        ASSERT_TRUE(worker.blocks(times + 1));
    }
    EXPECT_THAT(log.calls(), IsEmpty());
    launch();
    ASSERT_TRUE(waitForWaits(1));
    EXPECT_THAT(lifeOfTheWorker(), ElementsAre(sweepEntry, restore, waiting));
}

TEST_F(Worker, startCommandRunsExactlyOneSweepAndWaitsAgain)
{
    startAndWait();
    const std::pair<ESDCCommand, ESDCStatus> rows[] = {{SDC_CMD_CHANNEL_SCAN_START, SDC_STATUS_CHANNEL_SCAN_FINISHED},
        {SDC_CMD_SUB_BAND_SCAN_START, SDC_STATUS_SUB_BAND_SCAN_FINISHED}};
    for (const auto& [start, finished] : rows) {
        log.clear();
        ASSERT_TRUE(scan(start));
        ASSERT_TRUE(waitForWaits(1));
        EXPECT_EQ(log.count(sweepEntry), 1U);
        EXPECT_EQ(log.count(waiting), 1U);
        EXPECT_EQ(controller->getStatus(), finished);
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    }
    EXPECT_GT(samples().size(), 0U);
}

TEST_F(Worker, wakeUpThatWasLostIsMadeUpForByTheNextNotification)
{
    startAndWait();
    setPlan({}); // the state is stored, nobody is notified
    EXPECT_TRUE(worker.blocks());
    EXPECT_THAT(log.calls(), IsEmpty());
    inspect().m_condition().notify_all();
    ASSERT_TRUE(waitForWaits(1));
    EXPECT_THAT(lifeOfTheWorker(), ElementsAre(sweepEntry, restore, waiting));
}

TEST_F(Worker, lostStartIsClearedByOnPhaseStop)
{
    startAndWait();
    const std::uint64_t times = worker.timesBlocked();
    setPlan({}); // the state is stored, nobody is notified
    EXPECT_EQ(controller->onPhaseStop(), 0U);
    ASSERT_TRUE(worker.blocks(times + 1));
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    EXPECT_THAT(log.calls(), ElementsAre("enter 6 onPhaseStop"));
}

TEST_F(Worker, stopCommandReachesRunningSweepAndTheWorkerWaitsAgain)
{
    startAndWait();
    launchAndHold();
    EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), SDC_RC_OK);
    EXPECT_EQ(inspect().getState(), State::STATE_STOP);
    sleep.open();
    ASSERT_TRUE(waitForWaits(1));
    EXPECT_THAT(log.calls(),
        ElementsAre(testing::StartsWith("enter 6 setCommand: "), "IRssiHandler.readRssi", "trace 7 Read RSSI -4500", restore,
            waiting));
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
}

TEST_F(Worker, onPhaseStopWaitsForRunningSweepAndKeepsItsStatus)
{
    startAndWait();
    launchAndHold();
    {
        BackgroundCall stop([this] {
            EXPECT_EQ(controller->onPhaseStop(), 0U);
            log.add("returned");
        });
        const AtScopeEnd release([this] { sleep.open(); });
        ASSERT_TRUE(waitFor("enter 6 onPhaseStop"));
        EXPECT_TRUE(stop.isStuck());
        EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
    }
    EXPECT_THAT(log.calls(), ElementsAreArray(Calls{"enter 6 onPhaseStop"} + restOfTheSweep + Calls{waiting, "returned"}));
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    EXPECT_EQ(samples().size(), 3U);
}

TEST_F(Worker, exitThreadEndsTheWorkerButDoesNotJoinIt)
{
    startAndWait();
    inspect().exitThread();
    ASSERT_TRUE(waitFor(exited + "scan-not-started"));
    EXPECT_TRUE(inspect().m_thread().joinable());
    EXPECT_EQ(inspect().getState(), State::STATE_EXIT);
    EXPECT_TRUE(isMutexFree());
    EXPECT_THAT(log.calls(), ElementsAre(exitEntry, exited + "scan-not-started"));
    destroy();
    EXPECT_EQ(log.count(exitEntry), 2U);
}

/// A stop that is stored just after the end of a sweep.
class LeftOverStop : public tests::ControllerFixture {
protected:
    void leaveOver()
    {
        ASSERT_NO_FATAL_FAILURE(startAndWait());
        launch();
        ASSERT_TRUE(waitForWaits(1));
        ASSERT_TRUE(eventually([this] { return isMutexFree(); }));
        log.clear();
        setState(State::STATE_STOP);
        ASSERT_TRUE(eventually([this] { return !isMutexFree(); }));
    }

    std::int64_t processorTime_ns() const
    {
        clockid_t clock{};
        timespec time{};
        pthread_getcpuclockid(inspect().m_thread().native_handle(), &clock);
        clock_gettime(clock, &time);
        return std::int64_t{time.tv_sec} * 1000000000 + time.tv_nsec;
    }
};

TEST_F(LeftOverStop, keepsTheWorkerRunningWithTheLockHeldUntilTheStateIsSetFromOutside)
{
    ASSERT_NO_FATAL_FAILURE(leaveOver());
    const std::int64_t before_ns = processorTime_ns();
    int timesFree = 0;
    EXPECT_TRUE(eventually([&] {
        timesFree += isMutexFree() ? 1 : 0;
        return processorTime_ns() - before_ns > 2000000; // the worker does not sleep
    }));
    EXPECT_EQ(timesFree, 0);
    EXPECT_EQ(inspect().getState(), State::STATE_STOP);
    EXPECT_THAT(log.calls(), IsEmpty());
    setState(State::STATE_IDLE);
    ASSERT_TRUE(waitForWaits(1));
    EXPECT_THAT(log.calls(), ElementsAre(waiting));
}

TEST_F(LeftOverStop, refusesStartsAndStaysAfterAnotherStop)
{
    ASSERT_NO_FATAL_FAILURE(leaveOver());
    EXPECT_EQ(controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 0), SDC_RC_OK);
    EXPECT_EQ(log.count("trace 5 Scan already in progress 4"), 1U);
    EXPECT_EQ(inspect().getState(), State::STATE_STOP);
    EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), SDC_RC_OK);
    EXPECT_EQ(inspect().getState(), State::STATE_STOP);
    EXPECT_FALSE(isMutexFree());
    EXPECT_THAT(lifeOfTheWorker(),
        ElementsAre(testing::StartsWith("enter 6 setCommand: "), "trace 5 Scan already in progress 4",
            testing::StartsWith("enter 6 setCommand: ")));
}

TEST_F(LeftOverStop, blocksOnPhaseStopAndExitUntilTheStateIsSetFromOutside)
{
    ASSERT_NO_FATAL_FAILURE(leaveOver());
    {
        BackgroundCall stop([this] { controller->onPhaseStop(); });
        const AtScopeEnd release([this] { setState(State::STATE_IDLE); });
        ASSERT_TRUE(waitFor("enter 6 onPhaseStop"));
        EXPECT_TRUE(stop.isStuck());
        EXPECT_EQ(inspect().getState(), State::STATE_STOP);
    }
    setState(State::STATE_STOP);
    ASSERT_TRUE(eventually([this] { return !isMutexFree(); }));
    {
        BackgroundCall exit([this] { inspect().exitThread(); });
        const AtScopeEnd release([this] { setState(State::STATE_IDLE); });
        ASSERT_TRUE(waitFor(exitEntry));
        EXPECT_TRUE(exit.isStuck());
        EXPECT_EQ(inspect().getState(), State::STATE_STOP);
    }
    EXPECT_TRUE(waitFor(exited + "channel-scan-finished"));
}

TEST_F(LeftOverStop, endsOnExitFromOutside)
{
    ASSERT_NO_FATAL_FAILURE(leaveOver());
    setState(State::STATE_EXIT);
    ASSERT_TRUE(waitFor(exited + "channel-scan-finished"));
    EXPECT_THAT(log.calls(), ElementsAre(exited + "channel-scan-finished"));
}

} // namespace

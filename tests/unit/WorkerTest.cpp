// The worker: its loop, what wakes it, and the calls that wait for it.

#include "tests/support/WorkerFixture.h"

#include <gmock/gmock.h>

#include <ctime>

#include <pthread.h>

namespace {

using support::AtScopeEnd;
using support::BackgroundCall;
using support::Calls;
using support::eventually;
using support::operator+;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using State = SpectrumDiagnosticsController::State;

/// The loop, called on the test's own thread.
class WorkerLoop : public support::WorkerFixture {
protected:
    WorkerLoop() { prepare(); }
};

TEST_F(WorkerLoop, endsAtOnceInStateExit)
{
    setState(State::STATE_EXIT);
    inspect().scanThread();
    EXPECT_THAT(log.calls(), ElementsAre(entry, exited + "channel-scan-ongoing"));
    EXPECT_EQ(inspect().getState(), State::STATE_EXIT);
}

TEST_F(WorkerLoop, leavesItsWaitOnExitWithoutSweep)
{
    setState(State::STATE_IDLE);
    at(waiting, [this] { setState(State::STATE_EXIT); });
    inspect().scanThread();
    EXPECT_THAT(log.calls(), ElementsAre(entry, waiting, exited + "channel-scan-ongoing"));
}

TEST_F(WorkerLoop, runsSweepThatIsRequestedAlreadyWithoutWaitingFirst)
{
    at(waiting, [this] { setState(State::STATE_EXIT); });
    inspect().scanThread();
    EXPECT_THAT(lifeOfTheWorker(), ElementsAre(entry, sweepEntry, restore, waiting, exited + "channel-scan-finished"));
    EXPECT_EQ(samples().size(), 3U);
}

TEST_F(WorkerLoop, runsOneSweepForEachRequestAndWaitsInBetween)
{
    setState(State::STATE_IDLE);
    log.onAdd = [this, waits = 0](const std::string& call) mutable {
        if (call == waiting && ++waits == 3) {
            setState(State::STATE_EXIT);
        } else if (call == waiting) {
            setPlan({});
        }
    };
    inspect().scanThread();
    EXPECT_THAT(lifeOfTheWorker(),
        ElementsAre(
            entry, waiting, sweepEntry, restore, waiting, sweepEntry, restore, waiting, exited + "channel-scan-finished"));
}

TEST_F(WorkerLoop, exitDuringSweepIsOverwrittenAndTheWorkerWaitsAgain)
{
    log.onAdd = [this](const std::string& call) {
        if (call == "sleepMs 300" || call == waiting) {
            setState(State::STATE_EXIT);
        }
    };
    inspect().scanThread();
    EXPECT_THAT(lifeOfTheWorker(), ElementsAre(entry, sweepEntry, restore, waiting, exited + "channel-scan-finished"));
    EXPECT_EQ(samples().size(), 2U);
}

TEST_F(WorkerLoop, holdsTheLockFromAfterItsEntryToBeforeItsLastText)
{
    std::vector<std::pair<std::string, bool>> isFree;
    log.onAdd = [&](const std::string& call) {
        isFree.emplace_back(call, isMutexFree());
        if (call == waiting) {
            setState(State::STATE_EXIT);
        }
    };
    inspect().scanThread();
    for (const auto& [call, free] : isFree) {
        EXPECT_EQ(free, call == entry || call == exited + "channel-scan-finished") << call;
    }
    EXPECT_TRUE(isMutexFree());
}

TEST_F(WorkerLoop, lastTextNamesTheStatus)
{
    const std::pair<std::uint32_t, const char*> rows[] = {{0, "scan-not-started"}, {1, "sub-band-ongoing"},
        {2, "channel-scan-ongoing"}, {3, "sub-band-scan-finished"}, {4, "channel-scan-finished"}, {5, "unknown"}};
    for (const auto& [status, text] : rows) {
        prepare();
        inspect().m_status() = static_cast<ESDCStatus>(status);
        setState(State::STATE_EXIT);
        inspect().scanThread();
        EXPECT_THAT(log.calls(), ElementsAre(entry, exited + text));
    }
}

TEST_F(WorkerLoop, textsNameTheThreadWhateverItsName)
{
    inspect().m_threadName() = "SpectDiagCtrl-2147483648";
    setState(State::STATE_IDLE);
    at("trace 5 Thread SpectDiagCtrl-2147483648 waiting for none idle state", [this] { setState(State::STATE_EXIT); });
    inspect().scanThread();
    EXPECT_THAT(log.calls(),
        ElementsAre("enter 6 scanThread: m_threadName=SpectDiagCtrl-2147483648",
            "trace 5 Thread SpectDiagCtrl-2147483648 waiting for none idle state", exited + "channel-scan-ongoing"));
}

TEST_F(WorkerLoop, asksForEachLevelAndRunsTheSameWithTraceOff)
{
    setTraceLevel(PLX_TRACE_LEVEL_OFF);
    setState(State::STATE_IDLE);
    logQuestions();
    at("trace.isEnabled 5", [this] { setState(State::STATE_EXIT); });
    inspect().scanThread();
    EXPECT_THAT(log.calls(), ElementsAre("trace.isEnabled 6", "trace.isEnabled 5", "trace.isEnabled 5"));
}

TEST_F(WorkerLoop, eachTextHasHeaderOfItsOwn)
{
    setState(State::STATE_IDLE);
    at(waiting, [this] { setState(State::STATE_EXIT); });
    inspect().scanThread();
    const std::vector<simulator::TraceRecord> records = trace.records();
    ASSERT_EQ(records.size(), 3U);
    EXPECT_LT(records[0].header->line, records[1].header->line);
    EXPECT_LT(records[1].header->line, records[2].header->line);
    EXPECT_STREQ(records[2].header->function, "scanThread");
}

/// The worker on its own thread.
class Worker : public support::WorkerFixture {};

TEST_F(Worker, freshOneLogsItsEntryAndTheWaitingTextOnce)
{
    start();
    ASSERT_TRUE(waitForWaits(1));
    EXPECT_THAT(log.callsStartingWith("enter 6 scanThread"), ElementsAre(entry));
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

TEST_F(Worker, stateThatIsSetToIdleAgainOnlyWakesTheWorkerInVain)
{
    startAndWait();
    const std::uint64_t times = worker.timesBlocked();
    setState(State::STATE_IDLE);
    ASSERT_TRUE(worker.blocks(times + 1));
    EXPECT_THAT(log.calls(), IsEmpty());
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

TEST_F(Worker, stopCommandWhileIdleDoesNotTouchIt)
{
    startAndWait();
    const std::uint64_t times = worker.timesBlocked();
    EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), SDC_RC_OK);
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    EXPECT_THAT(log.calls(), ElementsAre(testing::StartsWith("enter 6 setCommand: "), "trace 5 Scan is not running"));
    EXPECT_TRUE(worker.blocks());
    EXPECT_EQ(worker.timesBlocked(), times);
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
        ASSERT_TRUE(eventually([this] { return log.count("enter 6 onPhaseStop") == 1; }));
        EXPECT_TRUE(stop.isStuck());
        EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
    }
    EXPECT_THAT(log.calls(), ElementsAreArray(Calls{"enter 6 onPhaseStop"} + restOfTheSweep + Calls{waiting, "returned"}));
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    EXPECT_EQ(samples().size(), 3U);
}

TEST_F(Worker, onPhaseStopDoesNotEndTheThread)
{
    startAndWait();
    EXPECT_EQ(controller->onPhaseStop(), 0U);
    EXPECT_TRUE(isMutexFree());
    log.clear();
    launch();
    ASSERT_TRUE(waitForWaits(1));
    EXPECT_EQ(samples().size(), 3U);
    EXPECT_THAT(log.callsStartingWith(exited), IsEmpty());
}

TEST_F(Worker, exitThreadEndsTheWorkerButDoesNotJoinIt)
{
    startAndWait();
    inspect().exitThread();
    ASSERT_TRUE(eventually([this] { return log.count(exited + "scan-not-started") == 1; }));
    EXPECT_TRUE(inspect().m_thread().joinable());
    EXPECT_EQ(inspect().getState(), State::STATE_EXIT);
    EXPECT_TRUE(isMutexFree());
    EXPECT_THAT(log.calls(), ElementsAre(exitEntry, exited + "scan-not-started"));
    destroy();
    EXPECT_EQ(log.count(exitEntry), 2U);
}

TEST_F(Worker, exitThreadWaitsForRunningSweep)
{
    startAndWait();
    launchAndHold();
    {
        BackgroundCall exit([this] { inspect().exitThread(); });
        const AtScopeEnd release([this] { sleep.open(); });
        ASSERT_TRUE(eventually([this] { return log.count(exitEntry) == 1; }));
        EXPECT_TRUE(exit.isStuck());
        EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
    }
    ASSERT_TRUE(eventually([this] { return log.count(exited + "channel-scan-finished") == 1; }));
    EXPECT_THAT(
        log.calls(), ElementsAreArray(Calls{exitEntry} + restOfTheSweep + Calls{waiting, exited + "channel-scan-finished"}));
}

/// A stop that is stored just after the end of a sweep.
class LeftOverStop : public support::WorkerFixture {
protected:
    void leaveOver()
    {
        startAndWait();
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
    leaveOver();
    const AtScopeEnd release([this] { setState(State::STATE_IDLE); });
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
    leaveOver();
    const AtScopeEnd release([this] { setState(State::STATE_IDLE); });
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
    leaveOver();
    {
        BackgroundCall stop([this] { controller->onPhaseStop(); });
        const AtScopeEnd release([this] { setState(State::STATE_IDLE); });
        ASSERT_TRUE(eventually([this] { return log.count("enter 6 onPhaseStop") == 1; }));
        EXPECT_TRUE(stop.isStuck());
        EXPECT_EQ(inspect().getState(), State::STATE_STOP);
    }
    setState(State::STATE_STOP);
    ASSERT_TRUE(eventually([this] { return !isMutexFree(); }));
    {
        BackgroundCall exit([this] { inspect().exitThread(); });
        const AtScopeEnd release([this] { setState(State::STATE_IDLE); });
        ASSERT_TRUE(eventually([this] { return log.count(exitEntry) == 1; }));
        EXPECT_TRUE(exit.isStuck());
        EXPECT_EQ(inspect().getState(), State::STATE_STOP);
    }
    EXPECT_TRUE(eventually([this] { return log.count(exited + "channel-scan-finished") == 1; }));
}

TEST_F(LeftOverStop, runsSweepThatIsSetFromOutside)
{
    leaveOver();
    setPlan({});
    ASSERT_TRUE(waitForWaits(1));
    EXPECT_THAT(lifeOfTheWorker(), ElementsAre(sweepEntry, restore, waiting));
}

TEST_F(LeftOverStop, endsOnExitFromOutside)
{
    leaveOver();
    setState(State::STATE_EXIT);
    ASSERT_TRUE(eventually([this] { return log.count(exited + "channel-scan-finished") == 1; }));
    EXPECT_THAT(log.calls(), ElementsAre(exited + "channel-scan-finished"));
}

/// setState and getState, without a worker.
class WorkerState : public support::WorkerFixture {
protected:
    WorkerState() { construct(); }
};

TEST_F(WorkerState, hasItsValuesAndIsReadAsItWasSet)
{
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    const State states[] = {State::STATE_EXIT, State::STATE_IDLE, State::STATE_SCAN, State::STATE_STOP};
    for (std::uint32_t value = 0; value < 4; ++value) {
        EXPECT_EQ(static_cast<std::uint32_t>(states[value]), value);
        inspect().setState(states[value]);
        EXPECT_EQ(inspect().getState(), states[value]);
        EXPECT_EQ(inspect().m_state(), states[value]);
    }
}

TEST_F(WorkerState, isSetAndReadWithoutLock)
{
    BackgroundCall call([this] {
        inspect().setState(State::STATE_STOP);
        EXPECT_EQ(inspect().getState(), State::STATE_STOP);
    });
    const std::lock_guard<std::mutex> held(inspect().m_mutex());
    inspect().setState(State::STATE_STOP);
    EXPECT_TRUE(call.returns());
}

TEST_F(WorkerState, everyStoreWakesAllWaitersWithAndWithoutTheLock)
{
    for (const bool isLocked : {false, true}) {
        SCOPED_TRACE(isLocked);
        int nrOfWaiters = 0;
        const auto wait = [&] {
            std::unique_lock<std::mutex> lock(inspect().m_mutex());
            ++nrOfWaiters;
            inspect().m_condition().wait(lock);
        };
        BackgroundCall one(wait);
        BackgroundCall two(wait);
        const AtScopeEnd release([this] { inspect().m_condition().notify_all(); });
        ASSERT_TRUE(eventually([&] {
            const std::lock_guard<std::mutex> guard(inspect().m_mutex());
            return nrOfWaiters == 2;
        }));
        {
            std::unique_lock<std::mutex> lock(inspect().m_mutex(), std::defer_lock);
            if (isLocked) {
                lock.lock();
            }
            setState(State::STATE_IDLE); // as it was: the store counts, not the change
        }
        EXPECT_TRUE(one.returns());
        EXPECT_TRUE(two.returns());
    }
}

TEST_F(WorkerState, onPhaseStopForcesIdleFromEveryStateAlsoWithoutWorker)
{
    for (const State state : {State::STATE_EXIT, State::STATE_IDLE, State::STATE_SCAN, State::STATE_STOP}) {
        setState(state);
        log.clear();
        EXPECT_EQ(controller->onPhaseStop(), 0U);
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
        EXPECT_THAT(log.calls(), ElementsAre("enter 6 onPhaseStop"));
        EXPECT_TRUE(isMutexFree());
    }
}

TEST_F(WorkerState, exitThreadSetsExitFromEveryStateAndLetsTheLockGo)
{
    inspect().m_threadName() = "SpectDiagCtrl7";
    for (const State state : {State::STATE_EXIT, State::STATE_IDLE, State::STATE_SCAN, State::STATE_STOP}) {
        setState(state);
        log.clear();
        inspect().exitThread();
        EXPECT_EQ(inspect().getState(), State::STATE_EXIT);
        EXPECT_THAT(log.calls(), ElementsAre(exitEntry));
        EXPECT_TRUE(isMutexFree());
    }
}

TEST_F(WorkerState, entriesOfStopAndExitAreAskedForAtLevelSix)
{
    setTraceLevel(PLX_TRACE_LEVEL_INFO);
    log.clear();
    logQuestions();
    controller->onPhaseStop();
    inspect().exitThread();
    controller->initialize();
    EXPECT_THAT(log.calls(), ElementsAre("trace.isEnabled 6", "trace.isEnabled 6", "trace.isEnabled 6"));
}

TEST_F(WorkerState, initializeTracesAndStartsNothing)
{
    for (const std::uint32_t channel : {0U, 7U, 4294967295U}) {
        prepare({}, channel);
        setState(State::STATE_STOP);
        EXPECT_EQ(controller->initialize(), 0);
        EXPECT_THAT(log.calls(), ElementsAre("enter 6 initialize: m_radioChannelId=" + std::to_string(channel)));
        EXPECT_FALSE(inspect().m_thread().joinable());
        EXPECT_EQ(inspect().getState(), State::STATE_STOP);
    }
}

} // namespace

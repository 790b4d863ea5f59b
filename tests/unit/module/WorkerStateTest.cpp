// The worker's state and the worker's loop, called on the test's own thread.

#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using tests::AtScopeEnd;
using tests::BackgroundCall;
using State = SpectrumDiagnosticsController::State;

constexpr State allStates[] = {State::STATE_EXIT, State::STATE_IDLE, State::STATE_SCAN, State::STATE_STOP};

class WorkerState : public tests::ControllerFixture {
protected:
    WorkerState() { prepare(); }
};

TEST_F(WorkerState, isSetAndReadWithoutTheLock)
{
    const std::lock_guard<std::mutex> sweepRuns(inspect().m_mutex());
    for (const State state : allStates) {
        BackgroundCall call([this, state] { setState(state); });
        EXPECT_TRUE(call.returns());
        EXPECT_EQ(inspect().getState(), state);
    }
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
        ASSERT_TRUE(tests::eventually([&] {
            const std::lock_guard<std::mutex> guard(inspect().m_mutex());
            return nrOfWaiters == 2;
        }));
        {
            std::unique_lock<std::mutex> lock(inspect().m_mutex(), std::defer_lock);
            if (isLocked) {
                lock.lock();
            }
            setState(State::STATE_SCAN); // as it was: the store counts, not the change
        }
        EXPECT_TRUE(one.returns());
        EXPECT_TRUE(two.returns());
    }
}

TEST_F(WorkerState, stopPhaseAndExitSetTheirStateFromEveryOtherOnceTheyHaveTheLock)
{
    for (const State before : allStates) {
        for (const bool isExit : {false, true}) {
            SCOPED_TRACE(testing::Message() << before << (isExit ? ", exitThread" : ", onPhaseStop"));
            setState(before);
            log.clear();
            unsigned int result = 0;
            {
                std::unique_lock<std::mutex> sweepRuns(inspect().m_mutex());
                const BackgroundCall host([&] {
                    if (isExit) {
                        inspect().exitThread();
                    } else {
                        result = controller->onPhaseStop();
                    }
                });
                const AtScopeEnd letGo([&sweepRuns] { sweepRuns.unlock(); });
                EXPECT_TRUE(host.isStuck());
                EXPECT_EQ(inspect().getState(), before);
            }
            EXPECT_EQ(inspect().getState(), isExit ? State::STATE_EXIT : State::STATE_IDLE);
            EXPECT_EQ(result, 0U);
            EXPECT_THAT(log.calls(), ElementsAre(isExit ? exitEntry : "enter 6 onPhaseStop"));
            EXPECT_TRUE(isMutexFree());
        }
    }
}

class WorkerLoop : public tests::ControllerFixture {
protected:
    WorkerLoop() { prepare(); }
};

TEST_F(WorkerLoop, endsAtOnceInStateExitAndNamesTheStatus)
{
    const std::pair<std::uint32_t, const char*> rows[] = {{0, "scan-not-started"}, {1, "sub-band-ongoing"},
        {2, "channel-scan-ongoing"}, {3, "sub-band-scan-finished"}, {4, "channel-scan-finished"}, {5, "unknown"}};
    for (const auto& [status, text] : rows) {
        prepare();
        inspect().m_status() = static_cast<ESDCStatus>(status);
        setState(State::STATE_EXIT);
        inspect().scanThread();
        EXPECT_THAT(log.calls(), ElementsAre(workerEntry, exited + text));
        EXPECT_EQ(inspect().getState(), State::STATE_EXIT);
    }
}

TEST_F(WorkerLoop, leavesItsWaitOnExitWithoutSweepWhateverTheThreadsName)
{
    const std::string text = "trace 5 Thread SpectDiagCtrl-2147483648 waiting for none idle state";
    inspect().m_threadName() = "SpectDiagCtrl-2147483648";
    setState(State::STATE_IDLE);
    at(text, [this] { setState(State::STATE_EXIT); });
    inspect().scanThread();
    EXPECT_THAT(log.calls(),
        ElementsAre("enter 6 scanThread: m_threadName=SpectDiagCtrl-2147483648", text, exited + "channel-scan-ongoing"));
}

TEST_F(WorkerLoop, runsSweepThatIsRequestedAlreadyWithoutWaitingFirst)
{
    at(waiting, [this] { setState(State::STATE_EXIT); });
    inspect().scanThread();
    EXPECT_THAT(lifeOfTheWorker(), ElementsAre(workerEntry, sweepEntry, restore, waiting, exited + "channel-scan-finished"));
    EXPECT_EQ(samples().size(), 3U);
}

TEST_F(WorkerLoop, runsOneSweepForEachRequestAndWaitsInBetween)
{
    setState(State::STATE_IDLE);
    log.onAdd([this, waits = std::make_shared<int>(0)](const std::string& call) {
        if (call == waiting && ++*waits == 3) {
            setState(State::STATE_EXIT);
        } else if (call == waiting) {
            setPlan({});
        }
    });
    inspect().scanThread();
    EXPECT_THAT(lifeOfTheWorker(),
        ElementsAre(workerEntry, waiting, sweepEntry, restore, waiting, sweepEntry, restore, waiting,
            exited + "channel-scan-finished"));
}

TEST_F(WorkerLoop, exitDuringSweepIsOverwrittenAndTheWorkerWaitsAgain)
{
    log.onAdd([this](const std::string& call) {
        if (call == "sleepMs 300" || call == waiting) {
            setState(State::STATE_EXIT);
        }
    });
    inspect().scanThread();
    EXPECT_THAT(lifeOfTheWorker(), ElementsAre(workerEntry, sweepEntry, restore, waiting, exited + "channel-scan-finished"));
    EXPECT_EQ(samples().size(), 2U);
}

TEST_F(WorkerLoop, holdsTheLockFromAfterItsEntryToBeforeItsLastText)
{
    std::vector<std::pair<std::string, bool>> free;
    log.onAdd([&](const std::string& call) {
        free.emplace_back(call, isMutexFree());
        if (call == waiting) {
            setState(State::STATE_EXIT);
        }
    });
    inspect().scanThread();
    for (const auto& [call, isFree] : free) {
        EXPECT_EQ(isFree, call == workerEntry || call == exited + "channel-scan-finished") << call;
    }
    EXPECT_GT(free.size(), 30U);
    EXPECT_TRUE(isMutexFree());
}

} // namespace

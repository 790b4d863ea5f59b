// The worker's state: setState and getState, and the operations that set it, without a worker.

#include "tests/support/WorkerFixture.h"

#include <gmock/gmock.h>

namespace {

using support::AtScopeEnd;
using support::BackgroundCall;
using support::eventually;
using testing::ElementsAre;
using State = SpectrumDiagnosticsController::State;

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
    std::unique_lock<std::mutex> held(inspect().m_mutex());
    BackgroundCall call([this] {
        inspect().setState(State::STATE_STOP);
        EXPECT_EQ(inspect().getState(), State::STATE_STOP);
    });
    const AtScopeEnd release([&held] { held.unlock(); });
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

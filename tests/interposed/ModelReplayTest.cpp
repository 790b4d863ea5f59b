// The runs that the model of the threads finds (tests/model), replayed on the controller itself. This program defines
// getState, so that a thread can be held right after it has read the state: there the orders of steps part.

#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <list>
#include <optional>

namespace {

using Action = std::function<void(SpectrumDiagnosticsController::State state)>;

thread_local bool isWorker = false;
thread_local Action afterMyReading; // of a caller's thread

/// What the worker does after a reading of the state. Set at any time.
class WorkersAction {
public:
    void set(Action action)
    {
        const std::lock_guard<std::mutex> guard(m_guard);
        m_action = action ? std::make_shared<const Action>(std::move(action)) : nullptr;
    }

    void run(SpectrumDiagnosticsController::State state)
    {
        if (const std::shared_ptr<const Action> action = current(); action != nullptr) {
            (*action)(state);
        }
    }

private:
    std::shared_ptr<const Action> current()
    {
        const std::lock_guard<std::mutex> guard(m_guard);
        return m_action;
    }

    std::mutex m_guard;
    std::shared_ptr<const Action> m_action;
};

WorkersAction afterTheWorkersReading;

} // namespace

SpectrumDiagnosticsController::State SpectrumDiagnosticsController::getState() const
{
    const State state = m_state;
    if (isWorker) {
        afterTheWorkersReading.run(state);
    } else if (afterMyReading) {
        afterMyReading(state);
    }
    return state;
}

namespace {

using tests::AtScopeEnd;
using tests::BackgroundCall;
using tests::eventually;

class ModelReplay : public tests::ControllerFixture {
protected:
    ~ModelReplay() override { afterTheWorkersReading.set({}); }

    void startAndWait()
    {
        ControllerFixture::startAndWait(7, [] { isWorker = true; });
    }

    /// Starts a controller; its worker does something between its last test of the state and its first wait.
    void startWithAtFirstWait(const std::function<void()>& action)
    {
        const auto isStarted = std::make_shared<std::atomic<bool>>(false);
        afterTheWorkersReading.set([this, isStarted, action, readings = std::make_shared<int>(0)](State) {
            if (++*readings == 2) { // one to say that it waits, one to wait
                EXPECT_TRUE(eventually([&] { return isStarted->load(); }));
                action();
                m_isActionDone = true;
            }
        });
        log.onAdd([this](const std::string& call) {
            if (call == workerEntry) {
                isWorker = true;
                worker = tests::KernelThread::current();
            }
        });
        start();
        *isStarted = true;
        ASSERT_TRUE(eventually([this] { return m_isActionDone.load(); }));
    }

    /// Gives a command on a thread of its own and waits, bounded, until it has returned.
    void give(ESDCCommand command)
    {
        m_commands.emplace_back([this, command] { EXPECT_EQ(controller->setCommand(command, 0), SDC_RC_OK); });
        EXPECT_TRUE(m_commands.back().returns());
    }

    /// Gives a stop that goes no further than its reading of the state, which is to be this one, until it may.
    void giveStopAndHold(State expected)
    {
        m_stop.emplace([this, expected] {
            afterMyReading = [this, expected](State state) {
                EXPECT_EQ(state, expected);
                m_isStopHeld = true;
                EXPECT_TRUE(eventually([this] { return m_mayStopGoOn.load(); }));
            };
            EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), SDC_RC_OK);
        });
        ASSERT_TRUE(eventually([this] { return m_isStopHeld.load(); }));
    }

    void letStopGoOn()
    {
        m_mayStopGoOn = true;
        EXPECT_TRUE(m_stop->returns());
    }

    /// Lets a sweep that is held end, and a stop fall between the worker's test of the state and its wait.
    void loseStopAtTheSweepsEnd()
    {
        ASSERT_NO_FATAL_FAILURE(giveStopAndHold(State::STATE_SCAN));
        afterTheWorkersReading.set([this, readings = std::make_shared<int>(0)](State state) {
            if (state == State::STATE_IDLE && ++*readings == 3) { // one to go on, one to say that it waits, one to wait
                letStopGoOn();
            }
        });
        sleep.open();
        ASSERT_TRUE(eventually([this] { return inspect().getState() == State::STATE_STOP; }));
        ASSERT_TRUE(workerRests());
        EXPECT_EQ(inspect().getState(), State::STATE_STOP);
        afterTheWorkersReading.set({});
    }

    /// Waits, bounded, until the worker has given the lock up, as it does in its wait alone.
    bool workerRests() const
    {
        return eventually([this] { return isMutexFree(); }) && worker.blocks();
    }

    /// Waits, bounded, until the worker has found STATE_STOP again and again, and looks whether it kept the lock meanwhile.
    bool workerSpins()
    {
        const auto readings = std::make_shared<std::atomic<int>>(0);
        afterTheWorkersReading.set([readings](State state) { *readings += state == State::STATE_STOP ? 1 : 0; });
        bool isHeld = true;
        const bool goesRound = eventually([&] { return *readings > 3; }) && eventually([&, from = readings->load()] {
            isHeld = isHeld && !isMutexFree();
            return *readings > from + 3000;
        });
        return goesRound && isHeld;
    }

    void expectStartsRefused()
    {
        give(SDC_CMD_CHANNEL_SCAN_START);
        EXPECT_EQ(log.callsStartingWith("trace 5 Scan already in progress").size(), 1U);
    }

    /// The host clears what was left over, and the next start sweeps.
    void expectClearedByOnPhaseStop()
    {
        EXPECT_EQ(controller->onPhaseStop(), 0U);
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
        ASSERT_TRUE(workerRests());
        EXPECT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START));
        EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    }

    std::optional<BackgroundCall> m_destruction;

private:
    std::atomic<bool> m_isActionDone{false};
    std::atomic<bool> m_isStopHeld{false};
    std::atomic<bool> m_mayStopGoOn{false};
    std::optional<BackgroundCall> m_stop; // after what its call uses
    std::list<BackgroundCall> m_commands;
};

TEST_F(ModelReplay, startBetweenTestAndWaitIsLostUntilTheHostClearsIt)
{
    ASSERT_NO_FATAL_FAILURE(startWithAtFirstWait([this] { give(SDC_CMD_CHANNEL_SCAN_START); }));
    ASSERT_TRUE(workerRests());
    EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_ONGOING);
    expectStartsRefused();
    EXPECT_EQ(log.count(sweepEntry), 0U);
    expectClearedByOnPhaseStop();
    EXPECT_EQ(log.count(sweepEntry), 1U);
}

TEST_F(ModelReplay, stopOnLostStartMakesTheWorkerSpin)
{
    ASSERT_NO_FATAL_FAILURE(startWithAtFirstWait([this] { give(SDC_CMD_CHANNEL_SCAN_START); }));
    ASSERT_TRUE(workerRests());
    give(SDC_CMD_SCAN_STOP);
    EXPECT_TRUE(workerSpins());
    EXPECT_EQ(log.count(sweepEntry), 0U);
}

TEST_F(ModelReplay, exitBetweenTestAndWaitIsNotLost)
{
    SpectrumDiagnosticsController* destroyed = nullptr;
    startWithAtFirstWait([&] {
        destroyed = controller.get();
        m_destruction.emplace([this] { destroy(); });
        EXPECT_TRUE(waitFor(exitEntry));
        EXPECT_TRUE(m_destruction->isStuck());
    });
    ASSERT_TRUE(m_destruction.has_value());
    if (!m_destruction->returns()) {
        ADD_FAILURE() << "the exit is lost";
        ControllerInspector(*destroyed).m_condition().notify_all();
        return;
    }
    EXPECT_EQ(log.count(exited + "scan-not-started"), 1U);
}

TEST_F(ModelReplay, stopBeforeTheSweepBeginsMakesTheWorkerSpin)
{
    startAndWait();
    {
        const std::lock_guard<std::mutex> workerCannotWake(inspect().m_mutex());
        give(SDC_CMD_CHANNEL_SCAN_START);
        give(SDC_CMD_SCAN_STOP);
    }
    EXPECT_TRUE(workerSpins());
    EXPECT_EQ(log.count(sweepEntry), 0U);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
}

TEST_F(ModelReplay, stopAfterTheSweepsEndMakesTheWorkerSpin)
{
    startAndWait();
    launchAndHold();
    ASSERT_NO_FATAL_FAILURE(giveStopAndHold(State::STATE_SCAN));
    sleep.open();
    ASSERT_TRUE(waitForWaits(1));
    ASSERT_TRUE(workerRests());
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    letStopGoOn();
    EXPECT_TRUE(workerSpins());
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    expectStartsRefused();
}

// A stop that is a little later is taken back: StopTakenBackTest.cpp.
TEST_F(ModelReplay, stopBetweenTheSweepsLastTwoReadingsKeepsTheStatusCleared)
{
    startAndWait();
    afterTheWorkersReading.set([this, isGiven = std::make_shared<bool>(false)](State state) {
        if (log.count(restore) == 1 && !*isGiven) { // the reading of the state; the one of the status follows
            *isGiven = true;
            EXPECT_EQ(state, State::STATE_SCAN);
            give(SDC_CMD_SCAN_STOP);
        }
    });
    launch();
    ASSERT_TRUE(waitForWaits(1));
    ASSERT_TRUE(workerRests());
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(controller->getProgress(), 0);
    EXPECT_EQ(samples().size(), 3U);
}

TEST_F(ModelReplay, stopBetweenTestAndWaitIsLostAndTheWorkerRests)
{
    startAndWait();
    launchAndHold();
    ASSERT_NO_FATAL_FAILURE(loseStopAtTheSweepsEnd());
    expectStartsRefused();
    expectClearedByOnPhaseStop();
}

TEST_F(ModelReplay, wakeUpWithoutAReasonAfterALostStopMakesTheWorkerSpin)
{
    startAndWait();
    launchAndHold();
    ASSERT_NO_FATAL_FAILURE(loseStopAtTheSweepsEnd());
    inspect().m_condition().notify_all();
    EXPECT_TRUE(workerSpins());
}

TEST_F(ModelReplay, startThatTheHostClearsBeforeTheWorkerWakesIsDroppedAndStaysOngoing)
{
    startAndWait();
    ASSERT_TRUE(worker.blocks());
    const std::uint64_t times = worker.timesBlocked();
    {
        const std::lock_guard<std::mutex> hostIsFirst(inspect().m_mutex());
        give(SDC_CMD_CHANNEL_SCAN_START);
        setState(State::STATE_IDLE); // onPhaseStop, with the lock
    }
    ASSERT_TRUE(worker.blocks(times + 1));
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_ONGOING);
    EXPECT_EQ(log.count(sweepEntry), 0U);
    EXPECT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START));
}

TEST_F(ModelReplay, stopOverTheIdleOfThePhaseStopMakesTheWorkerSpin)
{
    startAndWait();
    const std::uint64_t times = worker.timesBlocked();
    {
        const std::lock_guard<std::mutex> hostIsFirst(inspect().m_mutex());
        give(SDC_CMD_CHANNEL_SCAN_START);
        ASSERT_NO_FATAL_FAILURE(giveStopAndHold(State::STATE_SCAN));
        setState(State::STATE_IDLE); // onPhaseStop, with the lock
    }
    ASSERT_TRUE(worker.blocks(times + 1));
    letStopGoOn();
    EXPECT_TRUE(workerSpins());
    EXPECT_EQ(log.count(sweepEntry), 0U);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
}

TEST_F(ModelReplay, slowStopThatFoundNoScanClearsTheStatusOfTheNext)
{
    startAndWait();
    ASSERT_NO_FATAL_FAILURE(giveStopAndHold(State::STATE_IDLE));
    sleep.close();
    const AtScopeEnd open([this] { sleep.open(); });
    ASSERT_EQ(command(SDC_CMD_CHANNEL_SCAN_START), SDC_RC_OK);
    ASSERT_TRUE(sleep.waitForSleeper());
    letStopGoOn();
    EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    sleep.open();
    ASSERT_TRUE(waitForWaits(1));
    EXPECT_EQ(samples().size(), static_cast<std::size_t>(inspect().m_totalNrOfSamples()));
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
}

} // namespace

// What ends the worker besides exit: exceptions out of a sweep, of the trace, and of the lock.

#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <new>
#include <stdexcept>
#include <system_error>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

/// Something thrown, and the text that the worker leaves of it.
struct Exception {
    std::function<void()> raise;
    std::string text;
};

class WorkerFailure : public tests::ControllerFixture {
protected:
    WorkerFailure() { prepare(); }

    const std::vector<Exception> exceptions{
        {[] { throw std::runtime_error("receiver does not answer"); },
            "trace 1 Exception timerThread SpectDiagCtrl7: receiver does not answer"},
        {[] { throw std::logic_error(""); }, "trace 1 Exception timerThread SpectDiagCtrl7: "},
        {[] { throw std::bad_alloc(); }, "trace 1 Exception timerThread SpectDiagCtrl7: std::bad_alloc"},
        {[] { throw 5; }, "trace 1 Unknown exception in timerThread SpectDiagCtrl7"},
        {[] { throw "text"; }, "trace 1 Unknown exception in timerThread SpectDiagCtrl7"},
    };
};

TEST_F(WorkerFailure, exceptionAnywhereInSweepEndsTheWorkerAndLeavesTheStateAndTheReceiver)
{
    const struct {
        std::string place;
        std::size_t nrOfSamples;
    } rows[] = {
        {"provider.getProperties", 0},
        {tune(100000), 0},
        {"sleep.get", 0},
        {"sleepMs 3000", 0},
        {"IRssiHandler.readRssi", 0},
        {tune(100050), 1},
        {"sleepMs 300", 1},
        {restore, 3},
        {sweepEntry, 0},
        {"trace 5                m_setRxWait_ms = 300", 0},
        {"trace 7 Read RSSI -4500", 0},
    };
    for (const auto& row : rows) {
        for (const Exception& exception : exceptions) {
            SCOPED_TRACE(row.place + ", " + exception.text);
            prepare();
            inspect().m_progress() = 42;
            std::vector<bool> free;
            log.onAdd([&](const std::string& call) {
                if (call == row.place && free.empty()) {
                    free.push_back(isMutexFree());
                    exception.raise();
                } else if (!free.empty()) {
                    free.push_back(isMutexFree());
                }
            });
            inspect().scanThread();
            const tests::Calls calls = log.calls();
            EXPECT_THAT(tests::Calls(std::ranges::find(calls, row.place), calls.end()),
                ElementsAre(row.place, exception.text, exited + "channel-scan-ongoing"));
            EXPECT_THAT(free, ElementsAre(false, true, true)) << "the lock is released before the exception is traced";
            EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
            EXPECT_EQ(inspect().m_status(), SDC_STATUS_CHANNEL_SCAN_ONGOING);
            EXPECT_EQ(inspect().m_results().size(), row.nrOfSamples);
            EXPECT_EQ(inspect().m_nrOfSamplesDone(), static_cast<std::int32_t>(row.nrOfSamples));
            EXPECT_EQ(inspect().m_progress(), row.nrOfSamples == 0 ? 42 : row.nrOfSamples == 1 ? 0 : 66);
            EXPECT_TRUE(isMutexFree());
        }
    }
}

TEST_F(WorkerFailure, stateThatWasSetMeanwhileStaysToo)
{
    for (const State state : {State::STATE_STOP, State::STATE_EXIT, State::STATE_IDLE}) {
        prepare();
        at("sleepMs 3000", [this, state] {
            setState(state);
            throw std::runtime_error("no sleep");
        });
        inspect().scanThread();
        EXPECT_EQ(inspect().getState(), state);
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_CHANNEL_SCAN_ONGOING);
        EXPECT_EQ(log.count(restore), 0U);
    }
}

TEST_F(WorkerFailure, restoreThatThrowsAfterARefusedTuningLeavesAStopAndAnOngoingScan)
{
    peers.frequencyController.onSetRxFrequency = [](std::uint32_t frequency_kHz) {
        return frequency_kHz == configured_kHz ? throw std::runtime_error("no answer") : 32768;
    };
    inspect().scanThread();
    EXPECT_EQ(inspect().getState(), State::STATE_STOP);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_ONGOING);
    EXPECT_EQ(log.count("trace 1 Exception timerThread SpectDiagCtrl7: no answer"), 1U);
}

TEST_F(WorkerFailure, readingThatThrowsInAStoppedSweepLeavesAStopAndAScanNotStarted)
{
    at("IRssiHandler.readRssi", [this] {
        controller->setCommand(SDC_CMD_SCAN_STOP, 0);
        throw std::runtime_error("no answer");
    });
    inspect().scanThread();
    EXPECT_EQ(inspect().getState(), State::STATE_STOP);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(log.count(restore), 0U);
}

TEST_F(WorkerFailure, exceptionOfItsOwnTraceIsCaughtToo)
{
    for (const std::string& text : {workerEntry, waiting}) {
        for (const Exception& exception : exceptions) {
            SCOPED_TRACE(text + ", " + exception.text);
            prepare();
            setState(State::STATE_IDLE);
            at(text, exception.raise);
            inspect().scanThread();
            tests::Calls expected{workerEntry, text, exception.text, exited + "channel-scan-ongoing"};
            expected.erase(expected.begin(), expected.begin() + (text == workerEntry ? 1 : 0));
            EXPECT_THAT(log.calls(), ElementsAreArray(expected));
            EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
            EXPECT_TRUE(isMutexFree());
        }
    }
}

TEST_F(WorkerFailure, endedWorkerIsNotRestartedAndIsJoinedByDestruction)
{
    for (const Exception& exception : {exceptions.front(), exceptions.back()}) {
        SCOPED_TRACE(exception.text);
        log.onAdd(nullptr);
        destroy();
        peers.unregister();
        startAndWait();
        at("IRssiHandler.readRssi", exception.raise, 2);
        launch();
        ASSERT_TRUE(waitFor(exited + "channel-scan-ongoing"));
        EXPECT_EQ(log.count(exception.text), 1U);
        EXPECT_EQ(log.count(restore), 0U);
        EXPECT_EQ(samples().size(), 1U);
        EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
        EXPECT_EQ(controller->setCommand(SDC_CMD_SUB_BAND_SCAN_START, 0), SDC_RC_OK);
        EXPECT_EQ(log.count("trace 5 Scan already in progress 2"), 1U);
        EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), SDC_RC_OK);
        EXPECT_EQ(inspect().getState(), State::STATE_STOP);
        EXPECT_EQ(controller->onPhaseStop(), 0U);
        EXPECT_EQ(controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 0), SDC_RC_OK);
        EXPECT_EQ(inspect().getState(), State::STATE_SCAN); // nobody acts on it
        log.clear();
        destroy();
        EXPECT_THAT(log.calls(),
            ElementsAre("enter 6 ~SpectrumDiagnosticsController", exitEntry, "broker.getInstance",
                "broker.unregister ISpectrumDiagnosticsController_7", "provider.destroyed", "module.unregister"));
    }
}

TEST_F(WorkerFailure, lockThatFailsEndsTheWorker)
{
    makeCheckErrors(inspect().m_mutex());
    const std::string what = std::system_error(EDEADLK, std::generic_category()).what();
    const std::lock_guard<std::mutex> held(inspect().m_mutex());
    inspect().scanThread();
    EXPECT_THAT(log.calls(),
        ElementsAre(workerEntry, "trace 1 Exception timerThread SpectDiagCtrl7: " + what, exited + "channel-scan-ongoing"));
    EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
}

TEST_F(WorkerFailure, lockThatFailsReachesTheCallersOfStopAndExit)
{
    makeCheckErrors(inspect().m_mutex());
    const std::function<void()> calls[] = {[this] { controller->onPhaseStop(); }, [this] { inspect().exitThread(); }};
    for (const auto& call : calls) {
        const std::lock_guard<std::mutex> held(inspect().m_mutex());
        try {
            call();
            ADD_FAILURE() << "no exception";
        } catch (const std::system_error& error) {
            EXPECT_EQ(error.code(), std::errc::resource_deadlock_would_occur);
        }
        EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
    }
    EXPECT_THAT(log.calls(), ElementsAre("enter 6 onPhaseStop", exitEntry));
    EXPECT_TRUE(isMutexFree());
}

} // namespace

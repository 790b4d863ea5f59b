// The worker's loop, called on the test's own thread.

#include "tests/support/WorkerFixture.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using State = SpectrumDiagnosticsController::State;

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
    const std::vector<host::TraceRecord> records = trace.records();
    ASSERT_EQ(records.size(), 3U);
    EXPECT_LT(records[0].header->line, records[1].header->line);
    EXPECT_LT(records[1].header->line, records[2].header->line);
    EXPECT_STREQ(records[2].header->function, "scanThread");
}

} // namespace

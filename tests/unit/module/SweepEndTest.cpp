// How a sweep ends: failures, stops and other states, the restore and the final status.

#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using tests::Calls;
using tests::operator+;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr std::int32_t signedMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t signedMin = std::numeric_limits<std::int32_t>::min();

class SweepEnd : public tests::ControllerFixture {
protected:
    SweepEnd() { prepare(); }

    /// A sweep of which the n-th setRxFrequency (from 1) answers this.
    void sweepWithTuning(int nth, std::int32_t result, ESDCStatus ongoing = SDC_STATUS_CHANNEL_SCAN_ONGOING)
    {
        prepare();
        setPlan({}, ongoing);
        peers.frequencyController.onSetRxFrequency = [nth, result, calls = 0](
                                                         std::uint32_t) mutable { return ++calls == nth ? result : 0; };
        inspect().runScan();
    }

    /// The calls of the peers, and the failures.
    Calls callsAndFailures() const { return log.callsWithout({"trace 5", "trace 7", "enter"}); }
};

TEST_F(SweepEnd, tuningFailsFrom32768UpwardsAndKeepsTheSamplesTakenBefore)
{
    for (const std::int32_t result : {1, 32767, -1, signedMin, 32768, 40000, signedMax}) {
        for (const ESDCStatus ongoing : {SDC_STATUS_CHANNEL_SCAN_ONGOING, SDC_STATUS_SUB_BAND_ONGOING}) {
            SCOPED_TRACE(result);
            sweepWithTuning(3, result, ongoing);
            const bool isFailure = result >= 32768;
            const Calls failed = Calls{"provider.getProperties"} + step(100000, firstWait_ms) + step(100050, wait_ms)
                + Calls{tune(100100), "trace 1 Failed to set RX frequency 100100", restore};
            EXPECT_THAT(callsAndFailures(), ElementsAreArray(isFailure ? failed : sweepOver({100000, 100050, 100100})));
            EXPECT_EQ(samples().size(), isFailure ? 2U : 3U);
            EXPECT_EQ(inspect().m_nrOfSamplesDone(), isFailure ? 2 : 3);
            EXPECT_EQ(inspect().m_progress(), isFailure ? 33 : 66);
            EXPECT_EQ(inspect().m_status() == SDC_STATUS_SCAN_NOT_STARTED, isFailure);
            EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
        }
    }
}

TEST_F(SweepEnd, restoringFailsFrom32768UpwardsAndChangesNothingElse)
{
    for (const std::int32_t result : {1, 32767, -1, signedMin, 32768, 40000, signedMax}) {
        SCOPED_TRACE(result);
        sweepWithTuning(4, result);
        const Calls failure = result >= 32768 ? Calls{"trace 1 Failed to restore RX frequency 18000000"} : Calls{};
        EXPECT_THAT(callsAndFailures(), ElementsAreArray(sweepOver({100000, 100050, 100100}) + failure));
        EXPECT_EQ(samples().size(), 3U);
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    }
}

TEST_F(SweepEnd, tuningFailureIsTracedBeforeItBecomesStopWhateverTheStateWas)
{
    peers.frequencyController.onSetRxFrequency = [](std::uint32_t) { return 32768; };
    for (const State state : {State::STATE_SCAN, State::STATE_EXIT, State::STATE_IDLE}) {
        prepare();
        std::vector<State> states;
        log.onAdd([&](const std::string& call) {
            if (call == tune(100000)) {
                setState(state);
            } else if (call.starts_with("trace 1") || call == restore) {
                states.push_back(inspect().getState());
            }
        });
        inspect().runScan();
        EXPECT_THAT(states, ElementsAre(state, State::STATE_STOP, State::STATE_STOP));
        EXPECT_THAT(callsAndFailures(),
            ElementsAre("provider.getProperties", tune(100000), "trace 1 Failed to set RX frequency 100000", restore,
                "trace 1 Failed to restore RX frequency 18000000"));
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_SCAN_NOT_STARTED);
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    }
}

TEST_F(SweepEnd, stopTakesEffectBeforeTheNextTuningAndNeverWithinStep)
{
    const struct {
        const char* moment;
        std::size_t nrOfSamples;
        std::int32_t progress;
    } rows[] = {
        {"enter 6 runScan: m_threadName=SpectDiagCtrl7", 0, 42},
        {"provider.getProperties", 0, 42},
        {"trace 5              m_radioChannelId = 7", 0, 42},
        {"trace 5           m_firstSetRxWait_ms = 3000", 0, 42},
        {"trace 7 Set RX frequency kHz 100000", 1, 0},
        {"IFrequencyController.setRxFrequency 100000 true", 1, 0},
        {"sleep.get", 1, 0},
        {"sleepMs 3000", 1, 0},
        {"IRssiHandler.readRssi", 1, 0},
        {"trace 7 Read RSSI -4500", 1, 0},
        {"trace 7 Set RX frequency kHz 100050", 2, 33},
        {"sleepMs 300", 2, 33},
        {"IFrequencyController.setRxFrequency 100100 true", 3, 66},
        {"IFrequencyController.setRxFrequency 18000000 true", 3, 66},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.moment);
        prepare();
        inspect().m_progress() = 42;
        at(row.moment, [this] { setState(State::STATE_STOP); });
        inspect().runScan();
        EXPECT_EQ(samples().size(), row.nrOfSamples);
        EXPECT_EQ(log.callsStartingWith("IFrequencyController").size(), row.nrOfSamples + 1);
        EXPECT_EQ(log.count(restore), 1U);
        EXPECT_EQ(inspect().m_progress(), row.progress);
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_SCAN_NOT_STARTED);
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    }
}

TEST_F(SweepEnd, stopCommandDuringSettleStillStoresThatSample)
{
    setTraceLevel(PLX_TRACE_LEVEL_OFF);
    at("sleepMs 300", [this] { EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), SDC_RC_OK); });
    inspect().runScan();
    EXPECT_THAT(log.calls(), ElementsAreArray(sweepOver({100000, 100050})));
    EXPECT_THAT(sampledFrequencies(), ElementsAre(100000, 100050));
    EXPECT_EQ(inspect().m_progress(), 33);
    EXPECT_EQ(inspect().m_status(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
}

TEST_F(SweepEnd, everyStateButScanEndsTheSweepAndIsOverwrittenWithIdle)
{
    for (const State state : {State::STATE_EXIT, State::STATE_IDLE, State::STATE_STOP, static_cast<State>(4)}) {
        SCOPED_TRACE(state);
        prepare();
        at("sleepMs 300", [&] { setState(state); });
        inspect().runScan();
        EXPECT_THAT(callsAndFailures(), ElementsAreArray(sweepOver({100000, 100050})));
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
        prepare();
        setState(state); // already at its begin
        inspect().runScan();
        EXPECT_THAT(callsAndFailures(), ElementsAreArray(sweepOver({})));
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    }
}

TEST_F(SweepEnd, finalStatusFollowsFromStateAndStatusAfterTheRestore)
{
    const std::pair<std::uint32_t, ESDCStatus> rows[] = {
        {0, SDC_STATUS_SCAN_NOT_STARTED},
        {1, SDC_STATUS_SUB_BAND_SCAN_FINISHED},
        {2, SDC_STATUS_CHANNEL_SCAN_FINISHED},
        {3, SDC_STATUS_SCAN_NOT_STARTED},
        {4, SDC_STATUS_SCAN_NOT_STARTED},
        {5, SDC_STATUS_SCAN_NOT_STARTED},
        {4294967295, SDC_STATUS_SCAN_NOT_STARTED},
    };
    for (const State state : {State::STATE_EXIT, State::STATE_IDLE, State::STATE_SCAN, State::STATE_STOP}) {
        for (const auto& [status, finalStatus] : rows) {
            SCOPED_TRACE(testing::Message() << "state " << state << ", status " << status);
            prepare();
            at(restore, [this, state, number = status] {
                setState(state);
                inspect().m_status() = static_cast<ESDCStatus>(number);
            });
            inspect().runScan();
            EXPECT_EQ(inspect().m_status(), state == State::STATE_STOP ? SDC_STATUS_SCAN_NOT_STARTED : finalStatus);
            EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
        }
    }
}

TEST_F(SweepEnd, stepZeroWithNegativeTotalIsEndedOnlyByStopOrTuningFailure)
{
    for (const bool byStop : {true, false}) {
        SCOPED_TRACE(byStop);
        prepare({100000, 100100, 0, -2});
        if (byStop) {
            at(
                "IRssiHandler.readRssi", [this] { setState(State::STATE_STOP); }, 250);
        } else {
            peers.frequencyController.onSetRxFrequency = [calls = 0](
                                                             std::uint32_t) mutable { return ++calls > 250 ? 32768 : 0; };
        }
        inspect().runScan();
        EXPECT_EQ(sampledFrequencies(), std::vector<std::uint32_t>(250, 100000));
        EXPECT_EQ(inspect().m_progress(), -12450);
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_SCAN_NOT_STARTED);
    }
}

} // namespace

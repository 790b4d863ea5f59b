// How a sweep ends: failures, stops and other states, the restore and the final status.

#include "tests/support/SweepFixture.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using support::Calls;
using support::operator+;
using testing::ElementsAre;
using testing::ElementsAreArray;
using State = SpectrumDiagnosticsController::State;

constexpr std::uint32_t unsignedMax = std::numeric_limits<std::uint32_t>::max();
constexpr std::int32_t signedMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t signedMin = std::numeric_limits<std::int32_t>::min();

/// Trace is down to errors here, so that the log holds the peers' calls.
class SweepEnd : public support::SweepFixture {
protected:
    SweepEnd()
    {
        setTraceLevel(PLX_TRACE_LEVEL_ERROR);
        prepare();
    }

    /// Makes the n-th setRxFrequency of a sweep (from 1) answer something else than success.
    void answerTuning(int nth, std::int32_t result)
    {
        peers.frequencyController.onSetRxFrequency = [nth, result, calls = 0](
                                                         std::uint32_t) mutable { return ++calls == nth ? result : 0; };
    }
};

TEST_F(SweepEnd, tuningFailsFrom32768Upwards)
{
    const std::pair<std::int32_t, bool> rows[] = {
        {1, true}, {32767, true}, {-1, true}, {signedMin, true}, {32768, false}, {40000, false}, {signedMax, false}};
    for (const auto& [result, isSuccess] : rows) {
        SCOPED_TRACE(result);
        prepare();
        answerTuning(1, result);
        inspect().runScan();
        const std::vector<std::uint32_t> all{100000, 100050, 100100};
        EXPECT_THAT(log.calls(),
            ElementsAreArray(isSuccess ? sweepOver(all)
                                       : Calls{"provider.getProperties", tune(100000),
                                           "trace 1 Failed to set RX frequency 100000", tune(configured_kHz)}));
        EXPECT_EQ(samples().size(), isSuccess ? 3U : 0U);
        EXPECT_EQ(inspect().m_status(), isSuccess ? SDC_STATUS_CHANNEL_SCAN_FINISHED : SDC_STATUS_SCAN_NOT_STARTED);
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    }
}

TEST_F(SweepEnd, restoringFailsFrom32768UpwardsAndChangesNothingElse)
{
    for (const std::int32_t result : {1, 32767, -1, signedMin, 32768, 40000, signedMax}) {
        SCOPED_TRACE(result);
        prepare();
        answerTuning(4, result);
        inspect().runScan();
        const Calls failure = result >= 32768 ? Calls{"trace 1 Failed to restore RX frequency 18000000"} : Calls{};
        EXPECT_THAT(log.calls(), ElementsAreArray(sweepOver({100000, 100050, 100100}) + failure));
        EXPECT_EQ(samples().size(), 3U);
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    }
}

TEST_F(SweepEnd, tuningFailureKeepsTheSamplesTakenBefore)
{
    for (const ESDCStatus ongoing : {SDC_STATUS_CHANNEL_SCAN_ONGOING, SDC_STATUS_SUB_BAND_ONGOING}) {
        prepare();
        setPlan({}, ongoing);
        answerTuning(3, 32768);
        inspect().runScan();
        EXPECT_THAT(log.calls(),
            ElementsAreArray(Calls{"provider.getProperties"} + step(100000, firstWait_ms) + step(100050, wait_ms)
                + Calls{tune(100100), "trace 1 Failed to set RX frequency 100100", tune(configured_kHz)}));
        EXPECT_THAT(sampledFrequencies(), ElementsAre(100000, 100050));
        EXPECT_EQ(inspect().m_nrOfSamplesDone(), 2);
        EXPECT_EQ(inspect().m_progress(), 33);
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_SCAN_NOT_STARTED);
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    }
}

TEST_F(SweepEnd, tuningFailureIsTracedBeforeItBecomesStop)
{
    answerTuning(1, 32768);
    State atTrace{};
    State atRestore{};
    log.onAdd = [&](const std::string& call) {
        if (call.starts_with("trace 1")) {
            atTrace = inspect().getState();
        } else if (call == tune(configured_kHz)) {
            atRestore = inspect().getState();
        }
    };
    inspect().runScan();
    EXPECT_EQ(atTrace, State::STATE_SCAN);
    EXPECT_EQ(atRestore, State::STATE_STOP);
}

TEST_F(SweepEnd, tuningFailureIsStopWhateverTheStateWas)
{
    State atRestoring{};
    peers.frequencyController.onSetRxFrequency = [&](std::uint32_t frequency_kHz) {
        if (frequency_kHz != configured_kHz) {
            setState(State::STATE_EXIT);
            return 32768;
        }
        atRestoring = inspect().getState();
        return 32768;
    };
    inspect().runScan();
    EXPECT_EQ(atRestoring, State::STATE_STOP);
    EXPECT_THAT(log.calls(),
        ElementsAre("provider.getProperties", tune(100000), "trace 1 Failed to set RX frequency 100000", tune(18000000),
            "trace 1 Failed to restore RX frequency 18000000"));
    EXPECT_EQ(inspect().m_status(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
}

TEST_F(SweepEnd, stopTakesEffectBeforeTheNextTuningAndNeverWithinStep)
{
    setTraceLevel(PLX_TRACE_LEVEL_DETAIL);
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
        EXPECT_EQ(log.count(tune(configured_kHz)), 1U);
        EXPECT_EQ(inspect().m_progress(), row.progress);
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_SCAN_NOT_STARTED);
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    }
}

TEST_F(SweepEnd, stopCommandDuringSettleStillStoresThatSample)
{
    at("sleepMs 300", [this] { EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), SDC_RC_OK); });
    inspect().runScan();
    EXPECT_THAT(log.calls(), ElementsAreArray(sweepOver({100000, 100050})));
    EXPECT_THAT(sampledFrequencies(), ElementsAre(100000, 100050));
    EXPECT_EQ(inspect().m_progress(), 33);
    EXPECT_EQ(inspect().m_status(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
}

TEST_F(SweepEnd, stopCountsAsStopAlsoWhenRangeAndCountAreExhausted)
{
    prepare({100000, 100000, 50, 1});
    at("IRssiHandler.readRssi", [this] { setState(State::STATE_STOP); });
    inspect().runScan();
    EXPECT_EQ(samples().size(), 1U);
    EXPECT_EQ(inspect().m_status(), SDC_STATUS_SCAN_NOT_STARTED);
}

TEST_F(SweepEnd, everyStateButScanEndsTheSweepAndIsOverwrittenWithIdle)
{
    for (const State state : {State::STATE_EXIT, State::STATE_IDLE, State::STATE_STOP, static_cast<State>(4)}) {
        SCOPED_TRACE(state);
        prepare();
        at("sleepMs 300", [&] { setState(state); });
        inspect().runScan();
        EXPECT_THAT(log.calls(), ElementsAreArray(sweepOver({100000, 100050})));
        EXPECT_EQ(inspect().m_status(),
            state == State::STATE_STOP ? SDC_STATUS_SCAN_NOT_STARTED : SDC_STATUS_CHANNEL_SCAN_FINISHED);
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    }
}

TEST_F(SweepEnd, stateThatIsNoLongerScanAtTheStartMeansNoTuning)
{
    for (const State state : {State::STATE_EXIT, State::STATE_IDLE, State::STATE_STOP}) {
        SCOPED_TRACE(state);
        prepare();
        setState(state);
        inspect().runScan();
        EXPECT_THAT(log.calls(), ElementsAreArray(sweepOver({})));
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
        {unsignedMax, SDC_STATUS_SCAN_NOT_STARTED},
    };
    for (const State state : {State::STATE_EXIT, State::STATE_IDLE, State::STATE_SCAN, State::STATE_STOP}) {
        for (const auto& [status, finalStatus] : rows) {
            SCOPED_TRACE(testing::Message() << "state " << state << ", status " << status);
            prepare();
            at(tune(configured_kHz), [this, state, number = status] {
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
            answerTuning(251, 32768);
        }
        inspect().runScan();
        EXPECT_EQ(sampledFrequencies(), std::vector<std::uint32_t>(250, 100000));
        EXPECT_EQ(inspect().m_progress(), -12450);
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_SCAN_NOT_STARTED);
        peers.frequencyController.onSetRxFrequency = {};
    }
}

} // namespace

// A stop that comes when a sweep has decided that it is finished and has not said so yet (tests/model, stop-taken-back). No
// function lies between the two, so this program compiles the worker's code once more, with a call where "finished" is
// named.

#include "tests/support/WorkerFixture.h"

#include "Control/SpectrumDiagnosticsController/private/Trace.h"
#include "Platform/Host/DefaultSleepApi.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <locale>
#include <optional>
#include <utility>

namespace {

std::function<void()> onFinished; // set while no sweep runs

void finishedIsNamed()
{
    if (onFinished) {
        onFinished();
    }
}

} // namespace

// The headers are included above: what follows changes the copy alone. A macro does not expand in itself.
#define SDC_STATUS_SUB_BAND_SCAN_FINISHED (finishedIsNamed(), SDC_STATUS_SUB_BAND_SCAN_FINISHED)
#define SDC_STATUS_CHANNEL_SCAN_FINISHED (finishedIsNamed(), SDC_STATUS_CHANNEL_SCAN_FINISHED)
#include "Control/SpectrumDiagnosticsController/private/SpectrumDiagnosticsControllerExecution.cpp"
#undef SDC_STATUS_SUB_BAND_SCAN_FINISHED
#undef SDC_STATUS_CHANNEL_SCAN_FINISHED
#include "Control/SpectrumDiagnosticsController/private/Trace.cpp" // the library keeps its own to itself

namespace {

using State = SpectrumDiagnosticsController::State;

class StopTakenBack : public support::WorkerFixture, public testing::WithParamInterface<std::pair<ESDCStatus, ESDCStatus>> {
protected:
    ~StopTakenBack() override
    {
        destroy();
        onFinished = nullptr;
    }

    /// A stop from another thread, at most once; the worker stands still until it has returned.
    void stopWhenFinishedIsDecided()
    {
        onFinished = [this] {
            m_stop.emplace([this] { EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), SDC_RC_OK); });
            EXPECT_TRUE(m_stop->returns());
            stateAfterStop = inspect().getState();
            statusAfterStop = controller->getStatus();
        };
    }

    std::optional<State> stateAfterStop;
    std::optional<ESDCStatus> statusAfterStop;

private:
    std::optional<support::BackgroundCall> m_stop;
};

TEST_P(StopTakenBack, stopBetweenDecisionAndStatusLeavesTheScanFinished)
{
    const auto [ongoing, finished] = GetParam();
    startAndWait();
    stopWhenFinishedIsDecided();
    launch(ongoing);
    ASSERT_TRUE(waitForWaits(1));
    const std::lock_guard<std::mutex> workerWaits(inspect().m_mutex());
    EXPECT_EQ(stateAfterStop, State::STATE_STOP);
    EXPECT_EQ(statusAfterStop, SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(controller->getStatus(), finished);
    EXPECT_EQ(controller->getProgress(), 0);
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    EXPECT_EQ(samples().size(), 3U);
}

TEST_P(StopTakenBack, nextStopClearsIt)
{
    startAndWait();
    stopWhenFinishedIsDecided();
    launch(GetParam().first);
    ASSERT_TRUE(waitForWaits(1));
    ASSERT_TRUE(worker.blocks());
    ASSERT_EQ(controller->getStatus(), GetParam().second);
    EXPECT_EQ(command(SDC_CMD_SCAN_STOP), SDC_RC_OK);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
}

INSTANTIATE_TEST_SUITE_P(BothScans, StopTakenBack,
    testing::Values(std::pair{SDC_STATUS_SUB_BAND_ONGOING, SDC_STATUS_SUB_BAND_SCAN_FINISHED},
        std::pair{SDC_STATUS_CHANNEL_SCAN_ONGOING, SDC_STATUS_CHANNEL_SCAN_FINISHED}));

} // namespace

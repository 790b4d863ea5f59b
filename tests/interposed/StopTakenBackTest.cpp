// A stop that comes when a sweep has decided that it is finished and has not said so yet (tests/model, stop-taken-back). No
// function lies between the two, so this program compiles the worker's code once more, with a call where "finished" is
// named.

#include "tests/support/ControllerFixture.h"

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

class StopTakenBack : public tests::ControllerFixture {};

TEST_F(StopTakenBack, stopBetweenDecisionAndStatusLeavesTheScanFinishedAndTheNextStopClearsIt)
{
    const std::pair<ESDCStatus, ESDCStatus> rows[] = {{SDC_STATUS_SUB_BAND_ONGOING, SDC_STATUS_SUB_BAND_SCAN_FINISHED},
        {SDC_STATUS_CHANNEL_SCAN_ONGOING, SDC_STATUS_CHANNEL_SCAN_FINISHED}};
    for (const auto& [ongoing, finished] : rows) {
        startAndWait();
        std::optional<State> stateAfterStop;
        std::optional<ESDCStatus> statusAfterStop;
        onFinished = [&] { // from another thread; the worker stands still until the stop has returned
            const tests::BackgroundCall stop([this] { EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), SDC_RC_OK); });
            EXPECT_TRUE(stop.returns());
            stateAfterStop = inspect().getState();
            statusAfterStop = controller->getStatus();
        };
        launch(ongoing);
        ASSERT_TRUE(waitForWaits(1));
        ASSERT_TRUE(worker.blocks());
        EXPECT_EQ(stateAfterStop, State::STATE_STOP);
        EXPECT_EQ(statusAfterStop, SDC_STATUS_SCAN_NOT_STARTED);
        EXPECT_EQ(controller->getStatus(), finished);
        EXPECT_EQ(controller->getProgress(), 0);
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
        EXPECT_EQ(samples().size(), 3U);
        EXPECT_EQ(command(SDC_CMD_SCAN_STOP), SDC_RC_OK);
        EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
        destroy();
        peers.unregister();
        onFinished = nullptr;
    }
}

} // namespace

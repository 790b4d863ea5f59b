#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <thread>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// Queries to a controller whose worker runs; a sub-band scan has three samples, a channel scan one.
class QueriesToAWorker : public support::ControllerFixture {
protected:
    QueriesToAWorker()
    {
        peers.radio.typeText = "4742";
        peers.rssiHandler.onReadRssi = [this](std::int32_t& rssi) {
            rssi = --m_rssi;
            return 0;
        };
        start();
    }

private:
    std::int32_t m_rssi = -4000;
};

TEST_F(QueriesToAWorker, neverWaitForASweepInItsSleep)
{
    sleep.close();
    ASSERT_EQ(command(SDC_CMD_CHANNEL_SCAN_START), 0);
    ASSERT_TRUE(sleep.waitForSleeper());
    peers.radio.properties = {1, 2, 3, 4};
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_ONGOING);
    EXPECT_EQ(controller->getProgress(), 0);
    EXPECT_THAT(samples(), IsEmpty());
    EXPECT_EQ(controller->getSpectrumDiagnosticsProperties().spareFlag, 4);
    EXPECT_EQ(log.count("IRssiHandler.readRssi"), 0U) << "a query has waited for the sweep";
    sleep.open();
    ASSERT_TRUE(waitForIdle());
}

TEST_F(QueriesToAWorker, duringASweepGiveTheSamplesTakenSoFar)
{
    sleep.close();
    ASSERT_EQ(command(SDC_CMD_SUB_BAND_SCAN_START), 0);
    const std::vector<SDCResult> all = {{17972000, -4001}, {18000000, -4002}, {18028000, -4003}};
    const std::int32_t progress[] = {0, 0, 33};
    for (std::size_t taken = 0; taken < all.size(); ++taken) {
        SCOPED_TRACE(taken);
        ASSERT_TRUE(sleep.waitForSleeper());
        EXPECT_EQ(samples(), std::vector<SDCResult>(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(taken)));
        EXPECT_EQ(controller->getProgress(), progress[taken]);
        EXPECT_EQ(controller->getStatus(), SDC_STATUS_SUB_BAND_ONGOING);
        sleep.letOnePass();
    }
    ASSERT_TRUE(waitForIdle());
    EXPECT_THAT(samples(), ElementsAreArray(all));
    EXPECT_EQ(controller->getProgress(), 66);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SUB_BAND_SCAN_FINISHED);
}

TEST_F(QueriesToAWorker, afterAStopGiveTheSamplesTakenBeforeIt)
{
    sleep.close();
    ASSERT_EQ(command(SDC_CMD_SUB_BAND_SCAN_START), 0);
    ASSERT_TRUE(sleep.waitForSleeper());
    EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), 0);
    sleep.open();
    ASSERT_TRUE(waitForIdle());
    EXPECT_THAT(samples(), ElementsAre(SDCResult{17972000, -4001}));
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(controller->getProgress(), 0);
}

TEST_F(QueriesToAWorker, afterAFailedStartGiveTheSamplesOfThePreviousSweep)
{
    ASSERT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START));
    peers.radio.typeText = "QRU9";
    EXPECT_EQ(command(SDC_CMD_SUB_BAND_SCAN_START), 32768);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_THAT(samples(), ElementsAre(SDCResult{18000000, -4001}));
    EXPECT_THAT(samples(), ElementsAre(SDCResult{18000000, -4001}));
}

TEST_F(QueriesToAWorker, afterAHundredSamplesShowFinishedAtNinetyNinePercent)
{
    peers.radio.typeText = "KLM6";
    peers.frameFormat.channelSpacing_kHz = 200000;
    ASSERT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START));
    EXPECT_EQ(samples().size(), 100U);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    EXPECT_EQ(controller->getProgress(), 99);
}

/// What pollers see of a sweep is always its beginning, and complete once the status says so.
TEST_F(QueriesToAWorker, fromSeveralThreadsSeeTheBeginningOfTheSweepAtAnyMoment)
{
    peers.radio.typeText = "KLM6";
    peers.frameFormat.channelSpacing_kHz = 200000;
    setTraceLevel(PLX_TRACE_LEVEL_OFF);
    const auto poll = [this] {
        bool finished = false;
        EXPECT_TRUE(support::eventually([&] {
            finished = controller->getStatus() == SDC_STATUS_CHANNEL_SCAN_FINISHED;
            const std::vector<SDCResult> seen = samples();
            for (std::size_t n = 0; n < seen.size(); ++n) {
                const auto step = static_cast<std::uint32_t>(n);
                EXPECT_EQ(seen[n], (SDCResult{17901000 + 2000 * step, -4001 - static_cast<std::int32_t>(n)}));
            }
            EXPECT_LT(controller->getProgress(), 100);
            EXPECT_EQ(controller->getSpectrumDiagnosticsProperties().longHaul, 0);
            EXPECT_TRUE(!finished || seen.size() == 100);
            return finished;
        }));
    };
    std::thread first(poll);
    std::thread second(poll);
    EXPECT_EQ(command(SDC_CMD_CHANNEL_SCAN_START), 0);
    first.join();
    second.join();
    ASSERT_TRUE(waitForIdle());
}

} // namespace

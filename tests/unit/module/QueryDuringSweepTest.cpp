// Queries while a sweep runs and after it, and the guard that they share the samples under.

#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr SDCResult untouched{111, 222};

/// To a controller whose worker runs; a sub-band scan has three samples, a channel scan one.
class QueriesToAWorker : public tests::ControllerFixture {
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

    /// So that a channel scan has a hundred samples.
    void makeHundredSamples()
    {
        peers.radio.typeText = "KLM6";
        peers.frameFormat.channelSpacing_kHz = 200000;
    }

    static void expectBeginningOfTheHundred(const std::vector<SDCResult>& seen)
    {
        for (std::size_t n = 0; n < seen.size(); ++n) {
            const auto step = static_cast<std::uint32_t>(n);
            EXPECT_EQ(seen[n], (SDCResult{17901000 + 2000 * step, -4001 - static_cast<std::int32_t>(n)}));
        }
    }

private:
    std::int32_t m_rssi = -4000;
};

TEST_F(QueriesToAWorker, duringASweepGiveTheSamplesTakenSoFarAndNeverWaitForItsSleep)
{
    sleep.close();
    ASSERT_EQ(command(SDC_CMD_SUB_BAND_SCAN_START), 0);
    const std::vector<SDCResult> all = {{17972000, -4001}, {18000000, -4002}, {18028000, -4003}};
    const std::int32_t progress[] = {0, 0, 33};
    for (std::size_t taken = 0; taken < all.size(); ++taken) {
        SCOPED_TRACE(taken);
        ASSERT_TRUE(sleep.waitForSleeper());
        peers.radio.properties.spareFlag = static_cast<std::uint8_t>(taken);
        EXPECT_EQ(controller->getSpectrumDiagnosticsProperties().spareFlag, taken);
        EXPECT_EQ(samples(), std::vector<SDCResult>(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(taken)));
        EXPECT_EQ(controller->getProgress(), progress[taken]);
        EXPECT_EQ(controller->getStatus(), SDC_STATUS_SUB_BAND_ONGOING);
        EXPECT_EQ(log.count("IRssiHandler.readRssi"), taken) << "a query has waited for the sweep";
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
}

TEST_F(QueriesToAWorker, afterAHundredSamplesShowFinishedAtNinetyNinePercent)
{
    makeHundredSamples();
    ASSERT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START));
    EXPECT_EQ(samples().size(), 100U);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    EXPECT_EQ(controller->getProgress(), 99);
}

/// What pollers see of a sweep is always its beginning, and complete once the status says so. The sweep goes on when both
/// have seen it with some of its samples.
TEST_F(QueriesToAWorker, fromSeveralThreadsSeeTheBeginningOfTheSweepAtAnyMoment)
{
    makeHundredSamples();
    setTraceLevel(PLX_TRACE_LEVEL_OFF);
    sleep.close();
    std::atomic<int> haveSeenSome{0};
    const auto poll = [this, &haveSeenSome] {
        bool hasSeenSome = false;
        EXPECT_TRUE(tests::eventually([&] {
            const bool finished = controller->getStatus() == SDC_STATUS_CHANNEL_SCAN_FINISHED;
            const std::vector<SDCResult> seen = samples();
            expectBeginningOfTheHundred(seen);
            EXPECT_LT(controller->getProgress(), 100);
            EXPECT_EQ(controller->getSpectrumDiagnosticsProperties().longHaul, 0);
            EXPECT_TRUE(!finished || seen.size() == 100);
            haveSeenSome += !finished && !seen.empty() && !std::exchange(hasSeenSome, true) ? 1 : 0;
            return finished;
        }));
    };
    std::thread first(poll);
    std::thread second(poll);
    EXPECT_EQ(command(SDC_CMD_CHANNEL_SCAN_START), 0);
    sleep.letOnePass();
    EXPECT_TRUE(tests::eventually([&] { return haveSeenSome == 2; }));
    sleep.open();
    first.join();
    second.join();
    ASSERT_TRUE(waitForIdle());
}

/// A caller that acts when the progress moves, with a stop for example, finds all that was done before. Only a thread
/// sanitizer can tell: nothing but the progress may order the two threads.
TEST_F(QueriesToAWorker, whenTheyShowThatTheProgressHasMovedShowWhatTheRadioDidBefore)
{
    std::array<std::int32_t, 3> readings{};
    std::size_t taken = 0;
    peers.rssiHandler.onReadRssi = [&](std::int32_t& rssi) {
        rssi = readings.at(taken) = -4500;
        ++taken;
        return 0;
    };
    setTraceLevel(PLX_TRACE_LEVEL_OFF);
    EXPECT_EQ(command(SDC_CMD_SUB_BAND_SCAN_START), 0);
    EXPECT_TRUE(tests::eventually([this] { return controller->getProgress() > 0; }));
    EXPECT_EQ(readings[1], -4500);
    ASSERT_TRUE(waitForIdle());
}

/// The guard of the samples: what waits for it.
class SamplesGuard : public tests::ControllerFixture {
protected:
    SamplesGuard() { prepare({100000, 100000, 50, 9}); }

    std::unique_lock<std::mutex> hold() const { return std::unique_lock<std::mutex>(inspect().m_resultsGuard()); }
};

TEST_F(SamplesGuard, isWaitedForByTheCopy)
{
    inspect().m_results() = {{17000001, -101}, {17000002, -102}};
    std::array<SDCResult, 2> copy{};
    std::int32_t count = 5;
    std::unique_lock<std::mutex> held = hold();
    tests::BackgroundCall call([&] { controller->getResult(&count, copy.data()); });
    EXPECT_TRUE(call.isStuck());
    inspect().m_results().pop_back();
    held.unlock();
    EXPECT_TRUE(call.returns());
    EXPECT_EQ(count, 1);
    EXPECT_THAT(copy, ElementsAre(SDCResult{17000001, -101}, SDCResult{0, 0}));
}

TEST_F(SamplesGuard, isWaitedForByTheClearOfASweep)
{
    inspect().m_results() = {{17000001, -101}, {17000002, -102}};
    std::unique_lock<std::mutex> held = hold();
    tests::BackgroundCall call([this] { inspect().runScan(); });
    EXPECT_TRUE(call.isStuck());
    EXPECT_EQ(inspect().m_results().size(), 2U);
    EXPECT_EQ(log.count(tune(100000)), 0U);
    held.unlock();
    EXPECT_TRUE(call.returns());
    EXPECT_THAT(samples(), ElementsAre(SDCResult{100000, -4500}));
}

TEST_F(SamplesGuard, isWaitedForByEachAppend)
{
    sleep.close();
    tests::BackgroundCall call([this] { inspect().runScan(); });
    const tests::AtScopeEnd open([this] { sleep.open(); });
    ASSERT_TRUE(sleep.waitForSleeper());
    std::unique_lock<std::mutex> held = hold();
    sleep.open();
    EXPECT_TRUE(waitFor("trace 7 Read RSSI -4500"));
    EXPECT_TRUE(call.isStuck());
    EXPECT_EQ(inspect().m_results().size(), 0U);
    EXPECT_EQ(log.count(restore), 0U);
    held.unlock();
    EXPECT_TRUE(call.returns());
    EXPECT_THAT(samples(), ElementsAre(SDCResult{100000, -4500}));
}

TEST_F(SamplesGuard, thatFailsReachesTheCallerOfTheCopyWithNothingWritten)
{
    makeCheckErrors(inspect().m_resultsGuard());
    const std::unique_lock<std::mutex> held = hold();
    SDCResult sample = untouched;
    std::int32_t count = 1;
    EXPECT_THROW(controller->getResult(&count, &sample), std::system_error);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(sample, untouched);
}

TEST_F(SamplesGuard, thatFailsEndsTheWorkerLikeAnyException)
{
    makeCheckErrors(inspect().m_resultsGuard());
    const std::unique_lock<std::mutex> held = hold();
    inspect().scanThread();
    EXPECT_EQ(log.callsStartingWith("trace 1 Exception timerThread SpectDiagCtrl7: ").size(), 1U);
    EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
    EXPECT_EQ(log.count(tune(100000)), 0U);
}

TEST_F(SamplesGuard, isFreeWheneverAPeerOrTheHostIsCalled)
{
    logQuestions();
    std::vector<bool> free;
    log.onAdd([&](const std::string&) { free.push_back(isFree(inspect().m_resultsGuard())); });
    inspect().runScan();
    std::int32_t count = 1;
    SDCResult sample{};
    EXPECT_EQ(controller->getResult(&count, &sample), 0);
    EXPECT_EQ(controller->getResult(nullptr, &sample), 32768);
    log.onAdd(nullptr);
    EXPECT_GT(free.size(), 30U);
    EXPECT_THAT(free, testing::Each(true));
}

} // namespace

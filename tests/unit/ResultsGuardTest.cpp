// The guard of the samples: what waits for it, and that nobody holds it while the host is called.

#include "tests/support/BackgroundCall.h"
#include "tests/support/SweepFixture.h"

#include <gmock/gmock.h>

#include <array>
#include <future>
#include <system_error>

namespace {

using support::AtScopeEnd;
using support::BackgroundCall;
using testing::ElementsAre;

class ResultsGuard : public support::SweepFixture {
protected:
    ResultsGuard() { prepare({100000, 100000, 50, 9}); }
    ~ResultsGuard() override { onHostEvent = nullptr; }

    std::unique_lock<std::mutex> hold() const { return std::unique_lock<std::mutex>(inspect().m_resultsGuard()); }

    /// Tries the guard from a thread of its own: the calling one may hold it.
    bool isGuardFree() const
    {
        const auto tryLock = [this] {
            return std::unique_lock<std::mutex>(inspect().m_resultsGuard(), std::try_to_lock).owns_lock();
        };
        return std::async(std::launch::async, tryLock).get();
    }
};

TEST_F(ResultsGuard, isWaitedForByTheCopy)
{
    inspect().m_results() = {{17000001, -101}, {17000002, -102}};
    std::array<SDCResult, 2> copy{};
    std::int32_t count = 5;
    std::unique_lock<std::mutex> held = hold();
    BackgroundCall call([&] { controller->getResult(&count, copy.data()); });
    EXPECT_TRUE(call.isStuck());
    inspect().m_results().pop_back();
    held.unlock();
    EXPECT_TRUE(call.returns());
    EXPECT_EQ(count, 1);
    EXPECT_THAT(copy, ElementsAre(SDCResult{17000001, -101}, SDCResult{0, 0}));
}

TEST_F(ResultsGuard, isWaitedForByTheClearOfASweep)
{
    inspect().m_results() = {{17000001, -101}, {17000002, -102}};
    std::unique_lock<std::mutex> held = hold();
    BackgroundCall call([this] { inspect().runScan(); });
    EXPECT_TRUE(call.isStuck());
    EXPECT_EQ(inspect().m_results().size(), 2U);
    EXPECT_EQ(log.count(tune(100000)), 0U);
    held.unlock();
    EXPECT_TRUE(call.returns());
    EXPECT_THAT(samples(), ElementsAre(SDCResult{100000, -4500}));
}

TEST_F(ResultsGuard, isWaitedForByEachAppend)
{
    sleep.close();
    BackgroundCall call([this] { inspect().runScan(); });
    const AtScopeEnd open([this] { sleep.open(); });
    ASSERT_TRUE(sleep.waitForSleeper());
    std::unique_lock<std::mutex> held = hold();
    sleep.open();
    EXPECT_TRUE(support::eventually([this] { return log.count("trace 7 Read RSSI -4500") == 1; }));
    EXPECT_TRUE(call.isStuck());
    EXPECT_EQ(inspect().m_results().size(), 0U);
    EXPECT_EQ(log.count(tune(configured_kHz)), 0U);
    held.unlock();
    EXPECT_TRUE(call.returns());
    EXPECT_THAT(samples(), ElementsAre(SDCResult{100000, -4500}));
}

TEST_F(ResultsGuard, thatFailsReachesTheCallerOfTheCopyWithNothingWritten)
{
    makeCheckErrors(inspect().m_resultsGuard());
    const std::unique_lock<std::mutex> held = hold();
    SDCResult sample{5, 6};
    std::int32_t count = 1;
    EXPECT_THROW(controller->getResult(&count, &sample), std::system_error);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(sample, (SDCResult{5, 6}));
}

TEST_F(ResultsGuard, thatFailsEndsTheWorkerLikeAnyException)
{
    makeCheckErrors(inspect().m_resultsGuard());
    const std::unique_lock<std::mutex> held = hold();
    inspect().scanThread();
    EXPECT_EQ(log.callsStartingWith("trace 1 Exception timerThread SpectDiagCtrl7: ").size(), 1U);
    EXPECT_EQ(inspect().getState(), SpectrumDiagnosticsController::STATE_SCAN);
    EXPECT_EQ(log.count(tune(100000)), 0U);
}

TEST_F(ResultsGuard, isFreeWhileTheCopyIsTraced)
{
    std::vector<std::pair<std::string, bool>> seen;
    onHostEvent = [&](const std::string& event) { seen.emplace_back(event, isGuardFree()); };
    std::int32_t count = 1;
    SDCResult sample{};
    EXPECT_EQ(controller->getResult(&count, &sample), 0);
    EXPECT_THAT(seen, ElementsAre(std::pair("trace.isEnabled 6", true)));
    seen.clear();
    EXPECT_EQ(controller->getResult(nullptr, &sample), 32768);
    EXPECT_THAT(seen, ElementsAre(std::pair("trace.isEnabled 6", true), std::pair("trace.isEnabled 1", true)));
}

} // namespace

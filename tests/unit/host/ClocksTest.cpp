#include "host/Clock.h"

#include "tests/support/BackgroundCall.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <future>
#include <limits>
#include <memory>
#include <stdexcept>

namespace {

using host::Clock;
using host::RealClock;
using host::SleepServiceInForce;
using host::VirtualClock;
using std::chrono::milliseconds;
using tests::BackgroundCall;
using tests::eventually;
using tests::hangLimit;

TEST(VirtualTime, movesByTheSleepsAndByNothingElse)
{
    VirtualClock clock;
    EXPECT_EQ(clock.now(), milliseconds(0));
    clock.sleepMs(300);
    EXPECT_EQ(clock.now(), milliseconds(300));
    clock.sleepMs(4294967295);
    EXPECT_EQ(clock.now(), milliseconds(4294967595));
    clock.sleepMs(0);
    EXPECT_EQ(clock.now(), milliseconds(4294967595));
}

TEST(VirtualTime, isATimelineOfItsOwnForEachThread)
{
    VirtualClock clock;
    clock.sleepMs(1000);
    Clock::Duration before{};
    Clock::Duration after{};
    std::thread([&] {
        before = clock.now();
        clock.sleepMs(20);
        after = clock.now();
    }).join();
    EXPECT_EQ(before, milliseconds(0));
    EXPECT_EQ(after, milliseconds(20));
    EXPECT_EQ(clock.now(), milliseconds(1000));
}

TEST(VirtualTime, isNotSharedByTwoClocks)
{
    VirtualClock one;
    VirtualClock other;
    one.sleepMs(1000);
    EXPECT_EQ(other.now(), milliseconds(0));
}

TEST(VirtualTime, passesForAllThreadsAtOnce)
{
    VirtualClock clock;
    clock.sleepMs(100);
    clock.pass(milliseconds(1000));
    EXPECT_EQ(clock.now(), milliseconds(1100));
    BackgroundCall other([&clock] {
        EXPECT_EQ(clock.now(), milliseconds(1000)) << "one that begins later";
        clock.sleepMs(1);
        EXPECT_EQ(clock.now(), milliseconds(1001));
    });
    EXPECT_TRUE(other.returns());
    clock.sleepMs(1);
    EXPECT_EQ(clock.now(), milliseconds(1101));
}

TEST(HeldClock, letsNoSleepEndUntilItIsReleased)
{
    VirtualClock clock;
    std::atomic<int> slept = 0;
    const auto sleep = [&] {
        clock.sleepMs(300);
        ++slept;
        return clock.now();
    };
    clock.hold();
    std::future<Clock::Duration> one = std::async(std::launch::async, sleep);
    std::future<Clock::Duration> other = std::async(std::launch::async, sleep);
    EXPECT_TRUE(eventually([&] { return clock.sleepers() == 2 || slept > 0; }));
    EXPECT_EQ(slept, 0);
    clock.release();
    for (std::future<Clock::Duration>* sleeper : {&one, &other}) {
        ASSERT_EQ(sleeper->wait_for(hangLimit), std::future_status::ready);
        EXPECT_EQ(sleeper->get(), milliseconds(300));
    }
}

TEST(HeldClock, isReleasedByAsManyReleasesAsHolds)
{
    VirtualClock clock;
    clock.hold();
    clock.hold();
    clock.release();
    const BackgroundCall sleeper([&] { clock.sleepMs(1); });
    EXPECT_TRUE(sleeper.isStuck());
    EXPECT_TRUE(eventually([&] { return clock.sleepers() == 1; }));
    clock.release();
    EXPECT_TRUE(sleeper.returns());
    EXPECT_EQ(clock.sleepers(), 0);
}

TEST(HeldClock, isNotUpsetByAReleaseWithoutAHold)
{
    VirtualClock clock;
    clock.release();
    clock.sleepMs(1);
    clock.hold();
    const BackgroundCall sleeper([&] { clock.sleepMs(1); });
    EXPECT_TRUE(sleeper.isStuck());
    clock.release();
    EXPECT_TRUE(sleeper.returns());
}

TEST(HeldClock, doesNotLetASleepEndThatBeganBefore)
{
    RealClock clock(1000.0);
    const BackgroundCall sleeper([&] { clock.sleepMs(4294967295); }); // 50 days in an hour and a bit
    EXPECT_TRUE(eventually([&] { return clock.sleepers() == 1; }));
    clock.hold();
    EXPECT_TRUE(sleeper.isStuck());
    clock.hurry();
    EXPECT_TRUE(sleeper.returns());
    clock.endHurry();
    clock.release();
}

TEST(HurriedClock, takesNoWallTimeAndHeedsNoHoldUntilTheHurryEnds)
{
    RealClock clock;
    clock.hold();
    clock.hurry();
    clock.sleepMs(4294967295);
    EXPECT_EQ(clock.now(), milliseconds(4294967295));
    clock.endHurry();
    const BackgroundCall sleeper([&] { clock.sleepMs(0); });
    EXPECT_TRUE(sleeper.isStuck());
    clock.release();
    EXPECT_TRUE(sleeper.returns());
}

TEST(RealTime, refusesAFactorThatIsNotAboveZeroAndFinite)
{
    constexpr double infinite = std::numeric_limits<double>::infinity();
    for (const double factor : {0.0, -0.0, -1.0, std::nan(""), infinite, -infinite}) {
        EXPECT_THROW(RealClock{factor}, std::invalid_argument) << factor;
    }
}

TEST(RealTime, movesEachThreadsTimelineByExactlyItsSleeps)
{
    RealClock clock(1e6);
    EXPECT_EQ(clock.now(), milliseconds(0));
    clock.sleepMs(300);
    clock.sleepMs(20);
    EXPECT_EQ(clock.now(), milliseconds(320));
    Clock::Duration seen{-1};
    std::thread([&] { seen = clock.now(); }).join();
    EXPECT_EQ(seen, milliseconds(0));
}

TEST(RealTime, takesWallTimeInTheMeasureOfItsFactor)
{
    EXPECT_EQ(RealClock().wallTime(milliseconds(300)), milliseconds(300));
    EXPECT_EQ(RealClock(1000.0).wallTime(milliseconds(3000)), milliseconds(3));
    EXPECT_EQ(RealClock(0.5).wallTime(milliseconds(300)), milliseconds(600));
    EXPECT_EQ(RealClock(1e-300).wallTime(milliseconds(1)), std::chrono::hours(100 * 365 * 24));
}

TEST(RealTime, ofAnExtremeFactorDoesNotOverflow)
{
    RealClock clock(1e300);
    clock.sleepMs(4294967295);
    EXPECT_EQ(clock.now(), milliseconds(4294967295));
}

TEST(Clocks, areMadeByTheirSpeed)
{
    EXPECT_NE(dynamic_cast<VirtualClock*>(host::makeClock(0.0).get()), nullptr);
    const std::unique_ptr<Clock> clock = host::makeClock(20.0);
    EXPECT_EQ(dynamic_cast<RealClock&>(*clock).wallTime(milliseconds(300)), milliseconds(15));
    EXPECT_THROW(host::makeClock(-1.0), std::invalid_argument);
    EXPECT_THROW(host::makeClock(std::nan("")), std::invalid_argument);
}

TEST(SleepService, isRealTimeUntilAnotherIsPutInForce)
{
    EXPECT_NE(dynamic_cast<RealClock*>(&Util::DefaultSleepApi::get()), nullptr);
    EXPECT_EQ(&Util::DefaultSleepApi::get(), &Util::DefaultSleepApi::get());
}

TEST(SleepService, isTheLastOnePutInForceThatStillLives)
{
    Util::SleepApi& before = Util::DefaultSleepApi::get();
    VirtualClock outer;
    VirtualClock inner;
    {
        const SleepServiceInForce outerInForce(outer);
        EXPECT_EQ(&Util::DefaultSleepApi::get(), &outer);
        {
            const SleepServiceInForce innerInForce(inner);
            EXPECT_EQ(&Util::DefaultSleepApi::get(), &inner);
        }
        EXPECT_EQ(&Util::DefaultSleepApi::get(), &outer);
    }
    EXPECT_EQ(&Util::DefaultSleepApi::get(), &before);
}

} // namespace

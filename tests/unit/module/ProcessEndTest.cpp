// What ends the whole process. Each statement runs in a process of its own.

#include "tests/support/ControllerFixture.h"

#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>
#include <thread>

#include <sys/time.h>

extern "C" [[gnu::weak]] void __sanitizer_print_stack_trace(); // null where no sanitizer is linked

namespace {

class InitialisationDeathTest : public tests::ControllerFixture {
protected:
    InitialisationDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(InitialisationDeathTest, secondOneWhileTheWorkerRunsEndsTheProcess)
{
    const auto initialiseTwice = [this] {
        startAndWait();
        controller->onModuleInit();
    };
    EXPECT_DEATH(initialiseTwice(), "terminate called without an active exception");
}

class DestructionDeathTest : public InitialisationDeathTest {};

TEST_F(DestructionDeathTest, lockThatFailsEndsTheProcess)
{
    const auto destroyIt = [this] {
        prepare();
        inspect().m_thread() = std::thread([] {});
        makeCheckErrors(inspect().m_mutex());
        inspect().m_mutex().lock();
        destroy();
    };
    EXPECT_DEATH(destroyIt(), "Resource deadlock avoided");
}

class TraceDeathTest : public InitialisationDeathTest {};

TEST_F(TraceDeathTest, exceptionInTheDestructorEndsTheProcess)
{
    const auto destroyIt = [this] {
        construct();
        at("enter 6 ~SpectrumDiagnosticsController", [] { throw std::runtime_error("disk is full"); });
        destroy();
    };
    EXPECT_DEATH(destroyIt(), "disk is full");
}

TEST_F(TraceDeathTest, exceptionInTheWorkersLastTextEndsTheProcess)
{
    const auto endTheWorker = [this] {
        startAndWait();
        at(exited + "scan-not-started", [] { throw std::runtime_error("disk is full"); });
        destroy();
    };
    EXPECT_DEATH(endTheWorker(), "disk is full");
}

// Elsewhere a division by zero has a result.
#if defined(__x86_64__) || defined(__i386__)

/// By the processor's signal; a sanitizer reports the division and ends the process in its own way.
bool isEndedByDivision(int status)
{
    return __sanitizer_print_stack_trace == nullptr ? testing::KilledBySignal(SIGFPE)(status)
                                                    : !testing::ExitedWithCode(0)(status);
}

class PlanningDeathTest : public tests::ControllerFixture {
protected:
    PlanningDeathTest()
    {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        prepare();
    }
};

TEST_F(PlanningDeathTest, subBandOnARasterOfZeroEndsTheProcess)
{
    inspect().m_frequencyStepSize_kHz() = 0;
    inspect().m_stepLimitHigh() = 0;
    EXPECT_EXIT(inspect().prepSubBandScanStd(), isEndedByDivision, "");
}

TEST_F(PlanningDeathTest, channelsOfNoWidthOutsideTheSubBandEndTheProcess)
{
    inspect().m_channelSpacing_kHz() = 0;
    inspect().m_minRxFrequency_kHz() = 18000001;
    inspect().m_currentRxFrequency_kHz() = 18000000;
    inspect().m_maxRxFrequency_kHz() = 17999999;
    EXPECT_EXIT(inspect().prepSubBandScan4743(), isEndedByDivision, "");
}

/// A plan without an end is ended after some of the processor's time, not by its own division.
TEST_F(PlanningDeathTest, channelsOfNoWidthInsideTheSubBandNeverEnd)
{
    const auto planWithin = [this](std::uint32_t min_kHz, std::uint32_t max_kHz) {
        inspect().m_channelSpacing_kHz() = 0;
        inspect().m_currentRxFrequency_kHz() = 18000000;
        inspect().m_minRxFrequency_kHz() = min_kHz;
        inspect().m_maxRxFrequency_kHz() = max_kHz;
        const itimerval limit{{0, 0}, {0, 50000}};
        setitimer(ITIMER_VIRTUAL, &limit, nullptr);
        inspect().prepSubBandScan4743();
    };
    EXPECT_EXIT(planWithin(18000000, 17999999), testing::KilledBySignal(SIGVTALRM), ""); // downwards
    EXPECT_EXIT(planWithin(18000001, 18000000), testing::KilledBySignal(SIGVTALRM), ""); // upwards
}

#endif

} // namespace

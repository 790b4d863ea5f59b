// No plan of the module ever fails, yet a start must be ready for one that does. This program defines a plan of its own,
// which takes the place of the library's: member functions are exported, and a program's definition goes before a library's.

#include "tests/support/WorkerlessFixture.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

std::int32_t planResult = 0;
int plansRun = 0;

} // namespace

std::int32_t SpectrumDiagnosticsController::prepSubBandScan4742()
{
    ++plansRun;
    return planResult;
}

namespace {

using testing::ContainerEq;
using testing::ElementsAre;

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();

class PlanFailure : public support::WorkerlessFixture {
protected:
    PlanFailure() { peers.radio.typeText = "4742"; }

    std::int32_t startWithPlanResult(std::int32_t result)
    {
        fillMembers();
        log.clear();
        trace.clear();
        planResult = result;
        plansRun = 0;
        return controller->setCommand(SDC_CMD_SUB_BAND_SCAN_START, 500);
    }
};

TEST_F(PlanFailure, failsTheStartAndLeavesTheControllerIdle)
{
    for (const std::int32_t result : {32768, 32769, 32770, 40000, highest}) {
        SCOPED_TRACE(result);
        EXPECT_EQ(startWithPlanResult(result), 32768);
        EXPECT_EQ(plansRun, 1);
        EXPECT_THAT(traceTexts(PLX_TRACE_LEVEL_ERROR), ElementsAre("Failed to prepare scan"));
        EXPECT_EQ(log.calls().back(), "trace 1 Failed to prepare scan");
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_SCAN_NOT_STARTED);
        EXPECT_EQ(inspect().m_progress(), 0);
        EXPECT_EQ(inspect().m_command(), SDC_CMD_SUB_BAND_SCAN_START);
        EXPECT_EQ(inspect().getState(), SpectrumDiagnosticsController::STATE_IDLE);
        EXPECT_EQ(inspect().m_currentRxFrequency_kHz(), 18000000U);
        EXPECT_THAT(samples(), ElementsAre(SDCResult{17000001, -101}, SDCResult{17000002, -102}));
    }
}

TEST_F(PlanFailure, needsAResultOf32768OrMoreComparedSigned)
{
    for (const std::int32_t result : {0, 1, 32767, -1, -32768, lowest}) {
        SCOPED_TRACE(result);
        EXPECT_EQ(startWithPlanResult(result), 0);
        EXPECT_EQ(plansRun, 1);
        EXPECT_THAT(traceTexts(PLX_TRACE_LEVEL_ERROR), testing::IsEmpty());
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_SUB_BAND_ONGOING);
        EXPECT_EQ(inspect().getState(), SpectrumDiagnosticsController::STATE_SCAN);
    }
}

TEST_F(PlanFailure, isTheSameWithoutATrace)
{
    setTraceLevel(PLX_TRACE_LEVEL_OFF);
    EXPECT_EQ(startWithPlanResult(32768), 32768);
    EXPECT_EQ(inspect().getState(), SpectrumDiagnosticsController::STATE_IDLE);
    EXPECT_TRUE(trace.records().empty());
}

class PlanFailureWithAWorker : public support::ControllerFixture {};

TEST_F(PlanFailureWithAWorker, keepsTheSamplesOfThePreviousSweepAndTheNextStartWorks)
{
    peers.radio.typeText = "4742";
    start();
    ASSERT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START));
    planResult = 32768;
    EXPECT_EQ(command(SDC_CMD_SUB_BAND_SCAN_START), 32768);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_THAT(samples(), ElementsAre(SDCResult{18000000, -4500}));
    peers.frequencyController.rxFrequency_kHz = 18028000;
    ASSERT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START));
    EXPECT_THAT(samples(), ElementsAre(SDCResult{18028000, -4500}));
}

} // namespace

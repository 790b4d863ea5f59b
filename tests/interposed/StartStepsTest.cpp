// Answers of a start's steps that the module itself never gives, and a moment between two of them. This program defines the
// steps below itself; they take the place of the library's: member functions are exported, and a program's definition goes
// before a library's.

#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

std::int32_t parametersResult = 0;
std::int32_t planResult = 0;
std::function<void(SpectrumDiagnosticsController::State)> onSetState;

} // namespace

std::int32_t SpectrumDiagnosticsController::setGeneralParams()
{
    return parametersResult;
}

std::int32_t SpectrumDiagnosticsController::prepSubBandScan4742()
{
    return planResult;
}

/// Defined here too: a compiler may bind the plans to the source that they stand in, and this choice stands there with them.
SpectrumDiagnosticsController::Plan SpectrumDiagnosticsController::planFor(OduType /*type*/, ESDCCommand /*command*/)
{
    return &SpectrumDiagnosticsController::prepSubBandScan4742;
}

void SpectrumDiagnosticsController::setState(State state)
{
    if (onSetState) {
        onSetState(state);
    }
    m_state = state;
    m_condition.notify_all();
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();

class StartSteps : public tests::ControllerFixture {
protected:
    StartSteps()
    {
        parametersResult = 0;
        planResult = 0;
        onSetState = nullptr;
        prepare();
    }

    std::int32_t freshStart()
    {
        fillMembers();
        return controller->setCommand(SDC_CMD_SUB_BAND_SCAN_START, 500);
    }
};

TEST_F(StartSteps, planThatFailsLeavesTheControllerIdleWithItsSamples)
{
    for (const std::int32_t result : {32768, 32769, 32770, 40000, highest}) {
        SCOPED_TRACE(result);
        planResult = result;
        EXPECT_EQ(freshStart(), 32768);
        EXPECT_EQ(log.calls().back(), "trace 1 Failed to prepare scan");
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_SCAN_NOT_STARTED);
        EXPECT_EQ(inspect().m_progress(), 0);
        EXPECT_EQ(inspect().m_command(), SDC_CMD_SUB_BAND_SCAN_START);
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
        EXPECT_EQ(inspect().m_currentRxFrequency_kHz(), 18000000U);
        EXPECT_THAT(samples(), ElementsAre(SDCResult{17000001, -101}, SDCResult{17000002, -102}));
    }
}

TEST_F(StartSteps, planThatFailsIsNotTracedWhereLevel1IsOff)
{
    setTraceLevel(PLX_TRACE_LEVEL_OFF);
    planResult = 32768;
    EXPECT_EQ(freshStart(), 32768);
    EXPECT_THAT(log.callsStartingWith("trace"), IsEmpty());
}

TEST_F(StartSteps, planFailsFrom32768UpwardsComparedSigned)
{
    for (const std::int32_t result : {0, 1, 32767, -1, -32768, lowest}) {
        SCOPED_TRACE(result);
        planResult = result;
        EXPECT_EQ(freshStart(), 0);
        EXPECT_THAT(log.callsStartingWith("trace 1"), IsEmpty());
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_SUB_BAND_ONGOING);
        EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
    }
}

TEST_F(StartSteps, resultOfReadingTheParametersIsIgnored)
{
    for (const std::int32_t result : {1, 32768, 32770, -1}) {
        SCOPED_TRACE(result);
        parametersResult = result;
        EXPECT_EQ(freshStart(), 0);
        EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
    }
}

TEST_F(StartSteps, stopBetweenStatusAndStateLeavesAScanThatSaysNothingOfItself)
{
    fillMembers();
    onSetState = [this](State state) {
        if (state == State::STATE_SCAN) {
            EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), 0);
        }
    };
    EXPECT_EQ(controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 0), 0);
    EXPECT_EQ(inspect().getState(), State::STATE_SCAN);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    inspect().runScan();
    EXPECT_EQ(samples().size(), 1U);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
}

} // namespace

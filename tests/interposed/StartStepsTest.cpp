// The order of a command's last writes, and answers of a start's steps that the module itself never gives. This program
// defines the steps below itself; they take the place of the library's: member functions are exported, and a program's
// definition goes before a library's.

#include "tests/support/WorkerlessFixture.h"

#include <gmock/gmock.h>

namespace {

std::int32_t parametersResult = 0;
OduType unitType = ODU_TYPE_4742;
std::function<void(SpectrumDiagnosticsController::State)> onSetState;

} // namespace

std::int32_t SpectrumDiagnosticsController::setGeneralParams()
{
    return parametersResult;
}

OduType SpectrumDiagnosticsController::getOduType() const
{
    return unitType;
}

void SpectrumDiagnosticsController::setState(State state)
{
    onSetState(state);
    m_state = state;
    m_condition.notify_all();
}

namespace {

using testing::ContainerEq;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr ESDCCommand starts[] = {SDC_CMD_CHANNEL_SCAN_START, SDC_CMD_SUB_BAND_SCAN_START};

class StartSteps : public support::WorkerlessFixture {
protected:
    StartSteps()
    {
        parametersResult = 0;
        unitType = ODU_TYPE_4742;
        onSetState = [this](SpectrumDiagnosticsController::State state) {
            changes.push_back(state);
            membersAtChange = members();
        };
    }

    /// Parameters with which every plan comes to an end.
    void fillPlannable()
    {
        fillMembers();
        inspect().m_minRxFrequency_kHz() = 17700000;
        inspect().m_maxRxFrequency_kHz() = 19700000;
        changes.clear();
        log.clear();
        trace.clear();
    }

    std::vector<SpectrumDiagnosticsController::State> changes;
    Members membersAtChange;
};

TEST_F(StartSteps, statusIsWrittenBeforeTheState)
{
    for (const ESDCCommand command : starts) {
        SCOPED_TRACE(command);
        fillPlannable();
        EXPECT_EQ(controller->setCommand(command, 0), 0);
        EXPECT_THAT(changes, ElementsAre(SpectrumDiagnosticsController::STATE_SCAN));
        EXPECT_EQ(membersAtChange["m_status"],
            command == SDC_CMD_CHANNEL_SCAN_START ? SDC_STATUS_CHANNEL_SCAN_ONGOING : SDC_STATUS_SUB_BAND_ONGOING);
        Members after = members();
        EXPECT_EQ(after["m_state"], SpectrumDiagnosticsController::STATE_SCAN);
        after["m_state"] = SpectrumDiagnosticsController::STATE_IDLE;
        EXPECT_THAT(membersAtChange, ContainerEq(after)) << "the worker must find everything in place";
    }
}

TEST_F(StartSteps, stopBetweenTheTwoLeavesAScanThatSaysNothingOfItself)
{
    for (const ESDCCommand command : starts) {
        SCOPED_TRACE(command);
        fillPlannable();
        onSetState = [this](SpectrumDiagnosticsController::State state) {
            if (state == SpectrumDiagnosticsController::STATE_SCAN) {
                EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), 0);
            }
        };
        EXPECT_EQ(controller->setCommand(command, 0), 0);
        EXPECT_EQ(inspect().getState(), SpectrumDiagnosticsController::STATE_SCAN);
        EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
        inspect().runScan();
        EXPECT_EQ(samples().size(), static_cast<std::size_t>(inspect().m_totalNrOfSamples()));
        EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    }
}

TEST_F(StartSteps, stopRecordsItsCommandThenTheStateThenProgressAndStatus)
{
    inspect().m_state() = SpectrumDiagnosticsController::STATE_SCAN;
    Members expected = members();
    expected["m_command"] = SDC_CMD_SCAN_STOP;
    EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), 0);
    EXPECT_THAT(changes, ElementsAre(SpectrumDiagnosticsController::STATE_STOP));
    EXPECT_THAT(membersAtChange, ContainerEq(expected));
}

TEST_F(StartSteps, harmlessAndFailedCommandsSetNoState)
{
    EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), 0);
    EXPECT_EQ(controller->setCommand(SDC_CMD_GET_STATUS, 0), 32770);
    unitType = ODU_TYPE_UNKNOWN;
    EXPECT_EQ(controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 0), 32768);
    inspect().m_state() = SpectrumDiagnosticsController::STATE_STOP;
    EXPECT_EQ(controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 0), 0);
    EXPECT_EQ(controller->setCommand(SDC_CMD_GET_RESULT, 0), 32770);
    EXPECT_THAT(changes, IsEmpty());
}

TEST_F(StartSteps, resultOfReadingTheParametersIsIgnored)
{
    for (const std::int32_t result : {1, 32768, 32770, -1}) {
        SCOPED_TRACE(result);
        fillPlannable();
        parametersResult = result;
        EXPECT_EQ(controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 0), 0);
        EXPECT_THAT(changes, ElementsAre(SpectrumDiagnosticsController::STATE_SCAN));
        EXPECT_THAT(traceTexts(PLX_TRACE_LEVEL_ERROR), IsEmpty());
    }
}

TEST_F(StartSteps, numberOfTheUnitTypeChoosesThePlan)
{
    const std::string standard[] = {"prepChannelScanStd", "prepSubBandScanStd"};
    const std::string neighbours[] = {"prepChannelScan4742_4743", "prepSubBandScan4742"};
    const std::string channels[] = {"prepChannelScan4742_4743", "prepSubBandScan4743"};
    const std::string* const plans[] = {
        standard, standard, neighbours, channels, standard, channels, standard, channels, standard};
    for (std::uint32_t type = 0; type < 9; ++type) {
        for (const ESDCCommand command : starts) {
            SCOPED_TRACE(testing::Message() << "type " << type << ", command " << command);
            fillPlannable();
            unitType = OduType{type};
            EXPECT_EQ(controller->setCommand(command, 0), 0);
            EXPECT_THAT(log.callsStartingWith("enter 6 prep"), ElementsAre("enter 6 " + plans[type][command]));
        }
    }
}

TEST_F(StartSteps, anyUnitTypeAboveEightIsUnsupported)
{
    for (const std::uint32_t type : {9U, 10U, 255U, 256U, 2147483648U, 4294967295U}) {
        for (const ESDCCommand command : starts) {
            SCOPED_TRACE(testing::Message() << "type " << type << ", command " << command);
            fillPlannable();
            unitType = OduType{type};
            EXPECT_EQ(controller->setCommand(command, 0), 32768);
            EXPECT_THAT(traceTexts(PLX_TRACE_LEVEL_ERROR), ElementsAre("Unsupported QRU"));
            EXPECT_THAT(log.callsStartingWith("enter 6 prep"), IsEmpty());
            EXPECT_EQ(inspect().m_status(), SDC_STATUS_SCAN_NOT_STARTED);
        }
    }
}

} // namespace

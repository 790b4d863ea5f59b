// What is read out of the controllers' trace, and that a trace which is not understood is an error of its own.

#include "host/HostObserver.h"
#include "simulator/Radios.h"
#include "terminal/Terminal.h"
#include "tests/support/PlannedScan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using terminal::ControllerTrace;
using terminal::Terminal;
using terminal::TraceNotUnderstood;

constexpr RadioChannel channel1{1};

/// The dump of a sweep of 13 samples.
const std::vector<std::string> dump = {"  m_radioChannelId = 1", "m_currentRxFrequency_kHz = 19177500",
    "m_channelSpacing_kHz = 27500", " m_scanLowestRxFrequency_kHz = 19164750", " m_scanHighestRxFrequency_kHz = 19188750",
    "  m_totalNrOfSamples = 13", "m_scanStep_kHz = 2000", "m_setRxWait_ms = 300", "m_firstSetRxWait_ms = 3000"};

void write(ControllerTrace& reader, const std::vector<std::string>& texts, const std::string& component = "ZRP.SDC")
{
    for (const std::string& text : texts) {
        reader.write({component, PLX_TRACE_LEVEL_INFO, nullptr, false, true, text});
    }
}

TEST(DumpOfASweep, isItsPlan)
{
    ControllerTrace reader;
    write(reader, dump);
    EXPECT_EQ(reader.planOf(channel1).value().samples, 13);
    EXPECT_EQ(reader.plansReadOf(channel1), 1U);
    EXPECT_TRUE(reader.isSweeping(channel1));
}

TEST(DumpOfASweep, isNoPlanWithoutOneOfItsLabels)
{
    for (std::size_t reworded = 0; reworded < dump.size(); ++reworded) {
        SCOPED_TRACE(dump[reworded]);
        ControllerTrace reader;
        std::vector<std::string> texts = dump;
        texts[reworded] = "m_reworded = 1";
        write(reader, dump);
        write(reader, texts);
        EXPECT_EQ(reader.plansReadOf(channel1), 1U);
    }
}

TEST(DumpOfASweep, isNotReadOutOfAnotherModulesTrace)
{
    ControllerTrace reader;
    write(reader, dump, "OTHER");
    EXPECT_FALSE(reader.planOf(channel1));
}

/// Makes a controller's trace tell no dump: from when its worker is named on.
class SilentDump : public testing::Test {
protected:
    SilentDump()
    {
        host::setHostObserver([](const std::string& event) {
            if (event == "thread.name SpectDiagCtrl1") {
                host::trace::setLevel(ControllerTrace::component, PLX_TRACE_LEVEL_ERROR);
            }
        });
    }
    ~SilentDump() override { host::setHostObserver({}); }

    const simulator::Scenario scenario = simulator::loadScenario("18-f595");
};

TEST_F(SilentDump, ofAStartThatIsTakenIsAnErrorOfItsOwn)
{
    host::VirtualClock clock;
    simulator::Radios radios(scenario, clock);
    Terminal terminal(radios.channels(), clock);
    EXPECT_THAT([&] { terminal.startScan(channel1, SDC_CMD_CHANNEL_SCAN_START); },
        testing::ThrowsMessage<TraceNotUnderstood>(
            "internal error: the controllers' trace could not be understood: it tells "
            "no plan of the sweep on channel 1"));
}

TEST_F(SilentDump, isNotTakenForAUnitThatIsNotSupported)
{
    EXPECT_THROW(tests::plannedScan(scenario.channels.front(), SDC_CMD_CHANNEL_SCAN_START), TraceNotUnderstood);
}

} // namespace

// The caller of docs/examples, run against a terminal.

#include "docs/examples/ScanCaller.h"
#include "simulator/Radios.h"
#include "terminal/Terminal.h"

#include <gtest/gtest.h>

namespace {

constexpr RadioChannel channel{1};

TEST(ScanCaller, runsOneScanAfterAnother)
{
    host::RealClock clock(200); // fast, but with a time in which the scan shows as ongoing
    const simulator::Radios radios(simulator::loadScenario("18-f595"), clock);
    const terminal::Terminal terminal(radios.channels(), clock);
    ISpectrumDiagnosticsController& controller = terminal.controller(channel);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(runScan(controller, SDC_CMD_CHANNEL_SCAN_START, std::chrono::minutes(1)).size(), 13U);
        EXPECT_EQ(terminal.rxFrequency_kHz(channel), 19177500U);
    }
}

TEST(ScanCaller, getsNothingFromAUnitThatIsNotSupported)
{
    host::VirtualClock clock;
    simulator::Link link = simulator::loadScenario("18-f595").channels.front().link;
    link.unitTypeText = "unheard of";
    const simulator::Radios radios({{channel, link}}, clock);
    const terminal::Terminal terminal(radios.channels(), clock);
    EXPECT_TRUE(runScan(terminal.controller(channel), SDC_CMD_CHANNEL_SCAN_START, std::chrono::minutes(1)).empty());
}

TEST(ScanCaller, givesUpOnAScanThatTakesLongerThanItsLimit)
{
    host::VirtualClock clock;
    const simulator::Radios radios(simulator::loadScenario("18-f595"), clock);
    const terminal::Terminal terminal(radios.channels(), clock);
    clock.hold(); // as if the worker had died in its sweep
    EXPECT_TRUE(runScan(terminal.controller(channel), SDC_CMD_CHANNEL_SCAN_START, std::chrono::milliseconds(0)).empty());
}

} // namespace

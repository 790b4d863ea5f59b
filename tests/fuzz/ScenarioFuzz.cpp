// Scenario files: a text is refused with a reason, or it is a scenario whose plans can be made.

#include "simulator/scenario/Scenario.h"
#include "tests/support/PlannedScan.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        const simulator::Scenario scenario =
            simulator::parseScenario({reinterpret_cast<const char*>(data), size}, "tests/fuzz/input.json");
        for (const simulator::TerminalChannel& channel : scenario.channels) {
            tests::plannedScan(channel, SDC_CMD_CHANNEL_SCAN_START);
            tests::plannedScan(channel, SDC_CMD_SUB_BAND_SCAN_START);
        }
    } catch (const simulator::ScenarioError& refused) {
        if (std::string_view(refused.what()).find("input.json") == std::string_view::npos) {
            std::fputs("refused without the file's name\n", stderr);
            std::abort();
        }
    }
    return 0;
}

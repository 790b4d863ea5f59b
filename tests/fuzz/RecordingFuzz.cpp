// Recorded sweeps: refused with file and line, or joined to bins of one step.

#include "simulator/radio/Emitters.h"
#include "simulator/scenario/RecordedSweep.h"
#include "simulator/scenario/Scenario.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    bool isWrong = false;
    try {
        const simulator::Recording recording =
            simulator::readRecordedSweep({reinterpret_cast<const char*>(data), size}, "input.csv");
        isWrong = recording.bins->count() == 0 || !(recording.bins->step_kHz() > 0.0);
    } catch (const simulator::ScenarioError& refused) {
        isWrong = std::string_view(refused.what()).find("input.csv") == std::string_view::npos;
    }
    if (isWrong) {
        std::fputs("neither a recording nor a reason with the file's name\n", stderr);
        std::abort();
    }
    return 0;
}

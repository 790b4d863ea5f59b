// The console in virtual time: every script runs to its end.
//
// Input: one byte that chooses a built-in scenario, then the script.

#include "apps/sdc/commands/Console.h"
#include "simulator/scenario/Scenario.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t mostCharacters = 600;
    if (size == 0) {
        return 0;
    }
    const auto scenarios = simulator::builtInScenarios();
    const sdc::Site site(std::string(scenarios[data[0] % scenarios.size()].name));
    host::VirtualClock clock;
    std::istringstream input(std::string(reinterpret_cast<const char*>(data) + 1, std::min(size - 1, mostCharacters)));
    std::ostringstream output;
    sdc::Console console(site, site.channels().front().number, 0, clock, output);
    console.obey(input, false);
    return 0;
}

// The console in virtual time: every script runs to its end.
//
// Input: one byte that chooses a built-in scenario, then the script.

#include "apps/sdc/console/Console.h"
#include "apps/sdc/console/LineSource.h"
#include "simulator/scenario/Scenario.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>
#include <sstream>
#include <string>

namespace {

class StreamLines : public sdc::LineSource {
public:
    explicit StreamLines(std::istream& stream)
        : m_stream(stream)
    {
    }

    std::optional<std::string> next() override
    {
        std::string line;
        while (std::getline(m_stream, line)) {
            if (line.find("save") == std::string::npos && line.find("plot") == std::string::npos) { // those write files
                return line;
            }
        }
        return std::nullopt;
    }

private:
    std::istream& m_stream;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t mostCharacters = 600;
    if (size == 0) {
        return 0;
    }
    const auto scenarios = simulator::builtInScenarios();
    const sdc::Site site(std::string(scenarios[data[0] % scenarios.size()].name));
    std::istringstream input(std::string(reinterpret_cast<const char*>(data) + 1, std::min(size - 1, mostCharacters)));
    StreamLines lines(input);
    std::ostringstream output;
    std::ostringstream errors;
    sdc::Console console(site, {.channel = site.channels().front().number, .traceLevel = 0}, output, errors);
    console.complete(input.str());
    console.obey(lines);
    return 0;
}

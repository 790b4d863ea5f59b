#include "apps/sdc/ConsoleCommand.h"

#include "apps/sdc/ChannelChoice.h"
#include "apps/sdc/Console.h"
#include "support/Text.h"

#include <memory>
#include <sstream>
#include <stdexcept>

namespace sdc {

namespace {

Console::Words split(const std::string& line)
{
    std::istringstream stream(line.substr(0, line.find('#')));
    Console::Words words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

/// What went wrong with a line; empty when nothing did.
std::string obey(Console& console, const Console::Words& words, bool& goesOn)
{
    try {
        goesOn = console.act(words);
        return {};
    } catch (const BadLine& bad) {
        return bad.what();
    } catch (const std::out_of_range& noChannel) {
        return noChannel.what();
    } catch (const std::runtime_error& thrown) { // by a peer, through the controller
        return std::string("the call ended with an exception: ") + thrown.what();
    }
}

} // namespace

ExitStatus console(const ConsoleOptions& options, std::istream& input, std::ostream& output)
{
    constexpr const char* prompt = "sdc> ";
    const simulator::Scenario scenario = simulator::loadScenario(options.scenario);
    const std::vector<std::uint32_t> wanted = options.channel ? std::vector{*options.channel} : std::vector<std::uint32_t>{};
    const RadioChannel channel = chooseChannels(scenario, wanted).front().number;
    const std::unique_ptr<host::Clock> clock = host::makeClock(options.speed);
    Console console(scenario, channel, options.traceLevel, *clock, output);
    bool goesOn = true;
    bool isUnderstood = true;
    std::string line;
    while (goesOn && output << (options.isInteractive ? prompt : "") << std::flush && std::getline(input, line)) {
        const Console::Words words = split(line);
        if (!options.isInteractive) {
            output << prompt << support::shown(line) << '\n';
        }
        const std::string complaint = words.empty() ? "" : obey(console, words, goesOn);
        if (!complaint.empty()) {
            output << "error: " << support::shown(complaint, 1000) << '\n';
            isUnderstood = false;
        }
    }
    return isUnderstood ? EXIT_COMPLETE : EXIT_USAGE;
}

} // namespace sdc

#include "apps/sdc/CommandLine.h"
#include "apps/sdc/TerminalDevice.h"
#include "apps/sdc/Texts.h"
#include "apps/sdc/results/ResultJson.h"
#include "simulator/scenario/Scenario.h"
#include "terminal/Terminal.h"

#include <csignal>
#include <exception>
#include <iostream>

namespace {

void complain(const std::exception& exception)
{
    std::cerr << sdc::message(exception.what()) << std::flush;
}

} // namespace

int main(int argc, char** argv)
{
    sdc::holdStandardDescriptors();
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN)); // who writes sees the failure, and goes on with the other outputs
    try {
        return sdc::readCommandLine(argc, argv)();
    } catch (const sdc::UsageError& error) {
        complain(error);
        return sdc::EXIT_USAGE;
    } catch (const simulator::ScenarioError& error) {
        complain(error);
        return sdc::EXIT_USAGE;
    } catch (const sdc::ResultError& error) {
        complain(error);
        return sdc::EXIT_USAGE;
    } catch (const terminal::NotUp& error) {
        std::cerr << sdc::message(std::string("the terminal did not come up: ") + error.what()) << std::flush;
        return sdc::EXIT_FAILED;
    } catch (const std::exception& exception) {
        complain(exception);
        return sdc::EXIT_INTERNAL;
    }
}

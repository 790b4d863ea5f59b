#include "apps/sdc/options/CommandLine.h"
#include "apps/sdc/result/ResultFile.h"
#include "apps/sdc/tty/Screen.h"
#include "simulator/scenario/Scenario.h"
#include "support/Text.h"
#include "terminal/Terminal.h"

#include <csignal>
#include <exception>
#include <iostream>
#include <string>

namespace {

void tell(const std::exception& exception)
{
    std::cerr << support::prefixed(exception.what(), "sdc: ") << std::flush;
}

} // namespace

int main(int argc, char** argv)
{
    sdc::holdStandardDescriptors();
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        static_cast<void>(std::signal(signal, SIG_IGN)); // who writes sees the failure, and goes on with the other outputs
    }
    try {
        return sdc::readCommandLine(argc, argv)();
    } catch (const sdc::UsageError& error) {
        tell(error);
        return sdc::EXIT_USAGE;
    } catch (const simulator::ScenarioError& error) {
        tell(error);
        return sdc::EXIT_USAGE;
    } catch (const sdc::ResultError& error) {
        tell(error);
        return sdc::EXIT_USAGE;
    } catch (const terminal::NotUp& error) {
        std::cerr << support::prefixed(std::string("the terminal did not come up: ") + error.what(), "sdc: ") << std::flush;
        return sdc::EXIT_FAILED;
    } catch (const std::exception& exception) {
        tell(exception);
        return sdc::EXIT_INTERNAL;
    }
}

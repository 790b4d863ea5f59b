// Whole runs of the program in virtual time, beside a program that loads the same libraries and does nothing.

#include "tests/support/PlannedScan.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

namespace {

/// Runs a program with its output thrown away. @return whether it ended with 0
bool run(std::vector<std::string> words)
{
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    int status = -1;
    if (posix_spawn(&process, arguments.front(), &actions, nullptr, arguments.data(), environ) == 0) {
        waitpid(process, &status, 0);
    }
    posix_spawn_file_actions_destroy(&actions);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

void runs(benchmark::State& state, const std::vector<std::string>& words)
{
    for ([[maybe_unused]] auto _ : state) {
        if (!run(words)) {
            state.SkipWithError("the program failed");
            return;
        }
    }
}

/// "samples_per_second": of the simulated radio, the start and the end of the process included.
void subBandScan(benchmark::State& state)
{
    runs(state, {SDC_PROGRAM, "scan", "sub-band", "--quiet"});
    const simulator::Scenario scenario = simulator::loadScenario(std::string(simulator::defaultScenario));
    const auto plan = tests::plannedScan(scenario.channels.front(), SDC_CMD_SUB_BAND_SCAN_START);
    state.counters["samples_per_second"] =
        benchmark::Counter(plan.value().samples, benchmark::Counter::kIsIterationInvariantRate);
}

void emptyProgram(benchmark::State& state)
{
    runs(state, {SDC_EMPTY_PROGRAM});
}

BENCHMARK(subBandScan)->Name("program/sub-band-scan")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(emptyProgram)->Name("program/empty")->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

// What a person waits for: whole runs of the program in virtual time, many channels at once, and how much longer a scan in
// real time takes than its settle delays.

#include "simulator/terminal/SimulatedTerminal.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <vector>

namespace {

using simulator::Scenario;
using simulator::SimulatedTerminal;

/// Runs the program with its output thrown away; returns its exit status.
int run(std::vector<std::string> arguments)
{
    std::vector<char*> words;
    arguments.insert(arguments.begin(), SDC_PROGRAM);
    for (std::string& argument : arguments) {
        words.push_back(argument.data());
    }
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    int status = -1;
    if (posix_spawn(&process, SDC_PROGRAM, &actions, nullptr, words.data(), environ) == 0) {
        waitpid(process, &status, 0);
    }
    posix_spawn_file_actions_destroy(&actions);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void wholeProcess(benchmark::State& state, const std::string& scenario)
{
    for ([[maybe_unused]] auto _ : state) {
        if (run({"scan", "sub-band", "--quiet", "--scenario", scenario}) != 0) {
            state.SkipWithError("the scan failed");
            return;
        }
    }
}

/// So many channels of the default scenario.
Scenario channels(std::uint32_t count)
{
    Scenario scenario = simulator::loadScenario(std::string(simulator::defaultScenario));
    const simulator::Link link = scenario.channels.front().link;
    scenario.channels.clear();
    for (std::uint32_t number = 1; number <= count; ++number) {
        scenario.channels.push_back({RadioChannel{number}, link});
    }
    return scenario;
}

/// A sub-band scan of every channel of a terminal, all at once.
void scanAll(SimulatedTerminal& terminal, const Scenario& scenario)
{
    for (const auto& channel : scenario.channels) {
        terminal.startScan(channel.number, SDC_CMD_SUB_BAND_SCAN_START);
    }
    for (const auto& channel : scenario.channels) {
        terminal.waitForEnd(channel.number);
    }
    for (const auto& channel : scenario.channels) {
        terminal.waitForIdle(channel.number);
    }
}

void atOnce(benchmark::State& state)
{
    const Scenario scenario = channels(static_cast<std::uint32_t>(state.range(0)));
    simulator::VirtualClock clock;
    SimulatedTerminal terminal(scenario, clock);
    for ([[maybe_unused]] auto _ : state) {
        scanAll(terminal, scenario);
    }
    state.counters["samples/s"] =
        benchmark::Counter(static_cast<double>(state.range(0)) * 500.0, benchmark::Counter::kIsIterationInvariantRate);
}

/// "excess": the wall time of a scan over the sum of its settle delays, in percent of that sum.
void realTime(benchmark::State& state)
{
    const Scenario scenario = channels(1);
    const RadioChannel channel = scenario.channels.front().number;
    simulator::RealClock clock;
    SimulatedTerminal terminal(scenario, clock);
    double delays_s = 0.0;
    double wall_s = 0.0;
    for ([[maybe_unused]] auto _ : state) {
        const auto before = std::chrono::steady_clock::now();
        terminal.startScan(channel, SDC_CMD_CHANNEL_SCAN_START);
        terminal.waitForEnd(channel);
        wall_s += std::chrono::duration<double>(std::chrono::steady_clock::now() - before).count();
        delays_s += std::chrono::duration<double>(terminal.plan(channel).value().settleTime()).count();
        terminal.waitForIdle(channel);
    }
    state.counters["excess_%"] = 100.0 * (wall_s / delays_s - 1.0);
}

BENCHMARK_CAPTURE(wholeProcess, thousandSamples, SDC_THOUSAND)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(wholeProcess, fiveHoursOfRadioTime, "38-long")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(atOnce)->Arg(1)->Arg(64)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(realTime)->Iterations(2)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

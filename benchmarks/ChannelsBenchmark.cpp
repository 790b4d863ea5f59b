// Many channels at once: what one sweep does in a second, all of them together must do as often as there are cores. What the
// machine itself gives to two threads is shown by bare loops.

#include "benchmarks/support/Scanner.h"

#include <benchmark/benchmark.h>

#include <deque>
#include <thread>
#include <vector>

namespace {

/// A sweep takes many times what the scheduler needs to find a core for its thread; those of many channels are shorter, so
/// that their samples have room in memory.
std::uint32_t samplesOfAChannel(const benchmark::State& state)
{
    return state.range(0) <= 8 ? 1000000 : 100000;
}

void countSamples(benchmark::State& state)
{
    const double samples = static_cast<double>(state.range(0)) * samplesOfAChannel(state);
    state.counters["samples_per_second"] = benchmark::Counter(samples, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["cores"] = std::thread::hardware_concurrency();
}

void atOnce(benchmark::State& state)
{
    std::deque<bench::Scanner> scanners;
    for (std::uint32_t channel = 1; channel <= state.range(0); ++channel) {
        scanners.emplace_back(channel, samplesOfAChannel(state));
    }
    for ([[maybe_unused]] auto _ : state) {
        for (bench::Scanner& scanner : scanners) {
            scanner.start();
        }
        for (bench::Scanner& scanner : scanners) {
            scanner.waitForEnd();
        }
    }
    countSamples(state);
}

void bareLoops(benchmark::State& state)
{
    std::deque<bench::BareLoop> loops;
    for (std::uint32_t channel = 1; channel <= state.range(0); ++channel) {
        loops.emplace_back(channel, samplesOfAChannel(state));
    }
    for ([[maybe_unused]] auto _ : state) {
        std::vector<std::jthread> threads;
        for (bench::BareLoop& loop : loops) {
            threads.emplace_back([&loop] { loop.run(); });
        }
    }
    countSamples(state);
}

BENCHMARK(atOnce)->Name("channels")->Arg(1)->Arg(2)->Arg(8)->Arg(64)->Arg(256)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(bareLoops)->Name("bare-loops")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

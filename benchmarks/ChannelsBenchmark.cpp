// Many channels at once: processor time of a sample, beside as many threads with the least code that does the job of a
// sweep, which share caches and cores in the same way.

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
    state.counters["samples"] = static_cast<double>(state.range(0)) * samplesOfAChannel(state);
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

void leastCodeAtOnce(benchmark::State& state)
{
    std::deque<bench::PlainSweep> sweeps;
    for (std::uint32_t channel = 1; channel <= state.range(0); ++channel) {
        sweeps.emplace_back(channel, samplesOfAChannel(state));
    }
    for ([[maybe_unused]] auto _ : state) {
        std::vector<std::jthread> threads;
        for (bench::PlainSweep& sweep : sweeps) {
            threads.emplace_back([&sweep] { sweep.run(); });
        }
    }
    countSamples(state);
}

void ofManyChannels(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(1)->Arg(2)->Arg(8)->Arg(64)->Arg(256)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
}

BENCHMARK(atOnce)->Name("channels/module")->Apply(ofManyChannels);
BENCHMARK(leastCodeAtOnce)->Name("channels/least-code")->Apply(ofManyChannels);

} // namespace

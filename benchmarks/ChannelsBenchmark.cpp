// Many channels at once: what one sweep does in a second, all of them together must do as often as there are cores.

#include "benchmarks/support/BareHost.h"
#include "benchmarks/support/Scanner.h"

#include <benchmark/benchmark.h>

#include <deque>
#include <thread>

namespace {

constexpr std::uint32_t samplesOfAChannel = 30000;

void atOnce(benchmark::State& state)
{
    const auto nrOfChannels = static_cast<std::uint32_t>(state.range(0));
    std::deque<bench::Scanner> scanners;
    for (std::uint32_t channel = 1; channel <= nrOfChannels; ++channel) {
        scanners.emplace_back(channel, samplesOfAChannel);
    }
    for ([[maybe_unused]] auto _ : state) {
        for (bench::Scanner& scanner : scanners) {
            scanner.start();
        }
        for (bench::Scanner& scanner : scanners) {
            scanner.waitForEnd();
        }
    }
    state.counters["samples_per_second"] = benchmark::Counter(
        static_cast<double>(nrOfChannels) * samplesOfAChannel, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["cores"] = std::thread::hardware_concurrency();
}

BENCHMARK(atOnce)->Name("channels")->Arg(1)->Arg(2)->Arg(8)->Arg(64)->Arg(256)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

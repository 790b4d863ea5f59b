// What a trace call costs while its level is off, beside one virtual call.

#include "benchmarks/support/Limits.h"

#include <benchmark/benchmark.h>

namespace {

constexpr std::uint32_t times = 1000;

void traceThatIsOff(benchmark::State& state)
{
    std::uint32_t evaluations = 0;
    while (state.KeepRunningBatch(times)) {
        evaluations += bench::traceTimes(times);
    }
    if (evaluations != 0) {
        state.SkipWithError("arguments were evaluated");
    }
}

void virtualCall(benchmark::State& state)
{
    Util::SleepApi& callee = Util::DefaultSleepApi::get();
    while (state.KeepRunningBatch(times)) {
        bench::callTimes(times, callee);
    }
}

BENCHMARK(traceThatIsOff)->Name("trace/off");
BENCHMARK(virtualCall)->Name("trace/virtual-call");

} // namespace

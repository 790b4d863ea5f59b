// What the software adds to each sample of a sweep: the module's own, beside the least code that does the same job, a loop
// of the same calls that shows nobody anything, and a sweep by hand on the hardware abstraction of software-defined radio,
// over its null device. Each of them has done one sweep before, so that there is room for the samples.

#include "benchmarks/support/Limits.h"
#include "benchmarks/support/Scanner.h"

#include <SoapySDR/Device.hpp>
#include <benchmark/benchmark.h>

#include <vector>

namespace {

constexpr std::uint32_t nrOfSamples = 1000000;
constexpr std::uint32_t channel = 1;

/// What one sample takes of the processor, in seconds; an iteration is a sweep.
void countSamples(benchmark::State& state)
{
    state.counters["per_sample"] =
        benchmark::Counter(nrOfSamples, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// From the command to the idle worker, on the worker's thread but for the command.
void sweepOfTheModule(benchmark::State& state)
{
    bench::Scanner scanner(channel, nrOfSamples);
    for ([[maybe_unused]] auto _ : state) {
        scanner.start();
        scanner.waitForEnd();
    }
    std::int32_t count = nrOfSamples + 1;
    std::vector<SDCResult> samples(nrOfSamples + 1);
    scanner.controller().getResult(&count, samples.data());
    if (count != static_cast<std::int32_t>(nrOfSamples)) {
        state.SkipWithError("the sweep is not complete");
    }
    countSamples(state);
}

void plainSweep(benchmark::State& state, void (bench::PlainSweep::*run)())
{
    bench::PlainSweep sweep(channel, nrOfSamples);
    for ([[maybe_unused]] auto _ : state) {
        (sweep.*run)();
        benchmark::ClobberMemory();
    }
    countSamples(state);
}

/// The null device has no sensor: what it says of one stands for a level.
void sweepOfSoapySdr(benchmark::State& state)
{
    SoapySDR::Device* const device = SoapySDR::Device::make("driver=null");
    std::vector<SDCResult> samples;
    bench::sweepOn(*device, nrOfSamples, samples);
    for ([[maybe_unused]] auto _ : state) {
        bench::sweepOn(*device, nrOfSamples, samples);
        benchmark::ClobberMemory();
    }
    SoapySDR::Device::unmake(device);
    countSamples(state);
}

BENCHMARK(sweepOfTheModule)->Name("sweep/module")->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(plainSweep, 0, &bench::PlainSweep::run)
    ->Name("sweep/least-code")
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(plainSweep, 1, &bench::PlainSweep::runBare)
    ->Name("sweep/bare-loop")
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();
BENCHMARK(sweepOfSoapySdr)->Name("sweep/soapysdr")->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

} // namespace

// What a plan costs against the steps of its range. Two plans count their steps in a loop; the others compute the number.

#include "benchmarks/support/Scanner.h"

#include <benchmark/benchmark.h>

namespace {

constexpr std::uint32_t step_kHz = 2000;
constexpr std::uint32_t middle_kHz = 2000000000;

/// A range of so many steps of 2000 kHz, the configured channel in its middle. One channel is as wide as a step, or as the
/// range where @p isOneChannel says so. @param samples  how many the plan must have for so many steps
template <typename Plan, typename Samples>
void plan(benchmark::State& state, bool isOneChannel, Plan prepare, Samples samples)
{
    const auto steps = static_cast<std::uint32_t>(state.range(0));
    static bench::Scanner& scanner = *new bench::Scanner(1000, 1); // one for all: where it lies counts; never destroyed
    const ControllerInspector controller(scanner.controller());
    controller.m_stepLimitHigh() = bench::subBandOf(steps).stepLimitHigh;
    controller.m_currentRxFrequency_kHz() = middle_kHz;
    controller.m_minRxFrequency_kHz() = middle_kHz - steps / 2 * step_kHz;
    controller.m_maxRxFrequency_kHz() = middle_kHz + steps / 2 * step_kHz;
    controller.m_channelSpacing_kHz() = isOneChannel ? steps * step_kHz : step_kHz;
    for ([[maybe_unused]] auto _ : state) {
        prepare(controller);
        benchmark::ClobberMemory();
    }
    if (controller.m_totalNrOfSamples() != static_cast<std::int32_t>(samples(steps))) {
        state.SkipWithError("the plan has another number of samples");
    }
}

void channelScanStd(benchmark::State& state)
{
    plan(
        state, true, [](const ControllerInspector& controller) { controller.prepChannelScanStd(); },
        [](std::uint32_t steps) { return steps; });
}

void subBandScan4743(benchmark::State& state)
{
    plan(
        state, false, [](const ControllerInspector& controller) { controller.prepSubBandScan4743(); },
        [](std::uint32_t steps) { return steps - 1; });
}

void subBandScanStd(benchmark::State& state)
{
    plan(
        state, false, [](const ControllerInspector& controller) { controller.prepSubBandScanStd(); },
        [](std::uint32_t steps) { return steps; });
}

void subBandScan4742(benchmark::State& state)
{
    plan(
        state, false, [](const ControllerInspector& controller) { controller.prepSubBandScan4742(); },
        [](std::uint32_t) { return 3U; });
}

void singleMeasurement(benchmark::State& state)
{
    plan(
        state, false, [](const ControllerInspector& controller) { controller.prepChannelScan4742_4743(); },
        [](std::uint32_t) { return 1U; });
}

void upToAHundredThousand(benchmark::internal::Benchmark* benchmark)
{
    benchmark->RangeMultiplier(10)->Range(10, 100000);
}

BENCHMARK(channelScanStd)->Name("plan/channel-scan-std")->Apply(upToAHundredThousand);
BENCHMARK(subBandScan4743)->Name("plan/sub-band-scan-4743")->Apply(upToAHundredThousand);
BENCHMARK(subBandScanStd)->Name("plan/sub-band-scan-std")->Apply(upToAHundredThousand);
BENCHMARK(subBandScan4742)->Name("plan/sub-band-scan-4742")->Apply(upToAHundredThousand);
BENCHMARK(singleMeasurement)->Name("plan/single-measurement")->Apply(upToAHundredThousand);

} // namespace

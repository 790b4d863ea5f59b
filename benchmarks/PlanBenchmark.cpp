// What a plan costs against the steps of its range. Two plans count their steps in a loop; the others compute the number.

#include "benchmarks/support/Scanner.h"

#include <benchmark/benchmark.h>

namespace {

constexpr std::uint32_t step_kHz = 2000;
constexpr std::uint32_t middle_kHz = 2000000000;

/// Of a range of so many steps of 2000 kHz, the configured channel in its middle. One channel is as wide as a step, or as
/// the range where @p isOneChannel says so.
/// @param samples  how many the plan must have for so many steps
void plan(benchmark::State& state, bool isOneChannel, std::int32_t (ControllerInspector::*prepare)() const,
    std::uint32_t (*samples)(std::uint32_t steps))
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
        (controller.*prepare)();
        benchmark::ClobberMemory();
    }
    if (controller.m_totalNrOfSamples() != static_cast<std::int32_t>(samples(steps))) {
        state.SkipWithError("the plan has another number of samples");
    }
}

void upToAHundredThousand(benchmark::internal::Benchmark* benchmark)
{
    benchmark->RangeMultiplier(10)->Range(10, 100000);
}

BENCHMARK_CAPTURE(plan, 0, true, &ControllerInspector::prepChannelScanStd, [](std::uint32_t steps) { return steps; })
    ->Name("plan/channel-scan-std")
    ->Apply(upToAHundredThousand);
BENCHMARK_CAPTURE(plan, 1, false, &ControllerInspector::prepSubBandScan4743, [](std::uint32_t steps) { return steps - 1; })
    ->Name("plan/sub-band-scan-4743")
    ->Apply(upToAHundredThousand);
BENCHMARK_CAPTURE(plan, 2, false, &ControllerInspector::prepSubBandScanStd, [](std::uint32_t steps) { return steps; })
    ->Name("plan/sub-band-scan-std")
    ->Apply(upToAHundredThousand);
BENCHMARK_CAPTURE(plan, 3, false, &ControllerInspector::prepSubBandScan4742, [](std::uint32_t) { return 3U; })
    ->Name("plan/sub-band-scan-4742")
    ->Apply(upToAHundredThousand);
BENCHMARK_CAPTURE(plan, 4, false, &ControllerInspector::prepChannelScan4742_4743, [](std::uint32_t) { return 1U; })
    ->Name("plan/single-measurement")
    ->Apply(upToAHundredThousand);

} // namespace

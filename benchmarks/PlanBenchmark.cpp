// What a plan costs against its number of steps. Two plans count their steps in a loop; the others know them.

#include "benchmarks/support/Scanner.h"

#include <benchmark/benchmark.h>

namespace {

constexpr std::uint32_t step_kHz = 2000;
constexpr std::uint32_t middle_kHz = 2000000000;

/// A range of so many steps of 2000 kHz, the configured channel in its middle. One channel is as wide as a step, or as the
/// range where @p isOneChannel says so.
template <typename Plan>
void plan(benchmark::State& state, bool isOneChannel, Plan prepare)
{
    const auto steps = static_cast<std::uint32_t>(state.range(0));
    bench::Scanner scanner(1, steps);
    const ControllerInspector controller(scanner.controller());
    controller.setGeneralParams();
    controller.m_currentRxFrequency_kHz() = middle_kHz;
    controller.m_minRxFrequency_kHz() = middle_kHz - steps / 2 * step_kHz;
    controller.m_maxRxFrequency_kHz() = middle_kHz + steps / 2 * step_kHz;
    controller.m_channelSpacing_kHz() = isOneChannel ? steps * step_kHz : step_kHz;
    for ([[maybe_unused]] auto _ : state) {
        prepare(controller);
        benchmark::ClobberMemory();
    }
    state.counters["samples"] = controller.m_totalNrOfSamples();
}

void channelScanStd(benchmark::State& state)
{
    plan(state, true, [](const ControllerInspector& controller) { controller.prepChannelScanStd(); });
}

void subBandScan4743(benchmark::State& state)
{
    plan(state, false, [](const ControllerInspector& controller) { controller.prepSubBandScan4743(); });
}

void subBandScanStd(benchmark::State& state)
{
    plan(state, false, [](const ControllerInspector& controller) { controller.prepSubBandScanStd(); });
}

void subBandScan4742(benchmark::State& state)
{
    plan(state, false, [](const ControllerInspector& controller) { controller.prepSubBandScan4742(); });
}

void singleMeasurement(benchmark::State& state)
{
    plan(state, false, [](const ControllerInspector& controller) { controller.prepChannelScan4742_4743(); });
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

// What one reading of the simulated receiver costs against the number of emitters on the air.

#include "simulator/radio/Emitters.h"
#include "simulator/radio/Receiver.h"
#include "simulator/scenario/Scenario.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

/// The default link with so many emitters, carriers and lines by turns, all of them within the receive filter.
simulator::Link linkWith(std::uint32_t nrOfEmitters)
{
    simulator::Link link = simulator::loadScenario(std::string(simulator::defaultScenario)).channels.front().link;
    const double lowest_kHz = link.rxFrequency_kHz - link.filterWidth_kHz / 2.0;
    link.emitters.clear();
    for (std::uint32_t number = 0; number < nrOfEmitters; ++number) {
        const double frequency_kHz = lowest_kHz + link.filterWidth_kHz * (number + 0.5) / nrOfEmitters;
        if (number % 2 == 0) {
            link.emitters.emplace_back(simulator::Carrier{
                .centre_kHz = frequency_kHz, .level_dBm = -50.0, .symbolRate_kBd = 22000.0, .rollOff = 0.25});
        } else {
            link.emitters.emplace_back(simulator::ContinuousWave{.frequency_kHz = frequency_kHz, .level_dBm = -70.0});
        }
    }
    return link;
}

void reading(benchmark::State& state)
{
    host::VirtualClock clock;
    simulator::Receiver receiver(linkWith(static_cast<std::uint32_t>(state.range(0))), clock);
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(receiver.reading());
    }
}

BENCHMARK(reading)->Name("air/reading")->Arg(1)->Arg(10)->Arg(100)->Arg(1000);

} // namespace

// What a query costs: status and progress, while the controller is idle and while it sweeps, and the samples.

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "Control/SpectrumDiagnosticsController/private/SpectrumDiagnosticsController.h"
#include "benchmarks/support/BareHost.h"
#include "benchmarks/support/Limits.h"
#include "benchmarks/support/Scanner.h"
#include "tests/support/ControllerInspector.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

namespace {

template <typename Load>
void loads(benchmark::State& state, Load load)
{
    const std::unique_ptr<bench::VirtualLoad> shown = std::make_unique<bench::VirtualLoad>();
    bench::VirtualLoad* unknown = shown.get();
    benchmark::DoNotOptimize(unknown);
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(load(*unknown));
    }
}

void virtualLoad(benchmark::State& state)
{
    loads(state, [](bench::VirtualLoad& shown) { return shown.load(); });
}

void tracedLoad(benchmark::State& state)
{
    loads(state, [](bench::VirtualLoad& shown) { return shown.tracedLoad(); });
}

/// A thousand samples a second: three hundred times what a radio gives, and the worker still sleeps most of the time.
class ShortSleep : public Util::SleepApi {
public:
    void sleepMs(std::uint32_t) override
    {
        m_hasBegun = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    void waitForBegin() const
    {
        while (!m_hasBegun) {
            std::this_thread::yield();
        }
    }

private:
    std::atomic<bool> m_hasBegun{false};
};

enum class Worker { idle, sweeping };

template <typename Query>
void ask(benchmark::State& state, Worker worker, Query query)
{
    constexpr std::uint32_t endless = 1000000;
    bench::Scanner scanner(1, endless);
    ShortSleep sleep;
    const bench::SleepInForce sleepInForce(sleep);
    if (worker == Worker::sweeping) {
        scanner.start();
        sleep.waitForBegin();
    }
    ISpectrumDiagnosticsController* controller = &scanner.controller();
    benchmark::DoNotOptimize(controller);
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(query(*controller));
    }
    const bool isSweeping = controller->getStatus() == SDC_STATUS_SUB_BAND_ONGOING;
    if (isSweeping != (worker == Worker::sweeping)) {
        state.SkipWithError("the worker is not what it should be");
    }
    controller->setCommand(SDC_CMD_SCAN_STOP, 0);
    scanner.waitForEnd();
}

void status(benchmark::State& state, Worker worker)
{
    ask(state, worker, [](ISpectrumDiagnosticsController& controller) { return controller.getStatus(); });
}

void progress(benchmark::State& state, Worker worker)
{
    ask(state, worker, [](ISpectrumDiagnosticsController& controller) { return controller.getProgress(); });
}

constexpr std::int32_t million = 1000000;

/// A sweep of a million samples and room for a copy: the same for all copies, because it matters where they lie.
struct Million {
    bench::Scanner scanner{1001, million};
    std::vector<SDCResult> copy = std::vector<SDCResult>(million);
};

void copyOut(benchmark::State& state, void (*copy)(SpectrumDiagnosticsController& controller, SDCResult* samples))
{
    static Million& source = *new Million; // never destroyed
    source.copy.back() = {};
    for ([[maybe_unused]] auto _ : state) {
        copy(source.scanner.controller(), source.copy.data());
        benchmark::ClobberMemory();
    }
    if (source.copy.back().frequency_kHz == 0) {
        state.SkipWithError("the last sample was not copied");
    }
}

void getResult(benchmark::State& state)
{
    copyOut(state, [](SpectrumDiagnosticsController& controller, SDCResult* samples) {
        std::int32_t count = million;
        controller.getResult(&count, samples);
    });
}

void copyOfAsManyBytes(benchmark::State& state)
{
    copyOut(state, [](SpectrumDiagnosticsController& controller, SDCResult* samples) {
        std::memcpy(samples, ControllerInspector(controller).m_results().data(), million * sizeof(SDCResult));
    });
}

BENCHMARK(virtualLoad)->Name("query/virtual-load");
BENCHMARK(tracedLoad)->Name("query/traced-load");
BENCHMARK_CAPTURE(status, idle, Worker::idle)->Name("query/status/idle");
BENCHMARK_CAPTURE(status, sweeping, Worker::sweeping)->Name("query/status/sweeping");
BENCHMARK_CAPTURE(progress, idle, Worker::idle)->Name("query/progress/idle");
BENCHMARK_CAPTURE(progress, sweeping, Worker::sweeping)->Name("query/progress/sweeping");
BENCHMARK(getResult)->Name("result/module")->Unit(benchmark::kMicrosecond);
BENCHMARK(copyOfAsManyBytes)->Name("result/memcpy")->Unit(benchmark::kMicrosecond);

} // namespace

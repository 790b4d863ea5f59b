// The simulated terminal with the module in it: how much longer a scan in real time takes than its settle delays, which no
// software can shorten, and the samples per second of many channels together in virtual time.

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "Platform/Host/RadioChannel.h"
#include "simulator/Radios.h"
#include "terminal/Terminal.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using simulator::TerminalChannel;
using terminal::Terminal;

/// So many channels of the default scenario.
std::vector<TerminalChannel> channels(std::uint32_t count)
{
    const auto scenario = simulator::loadScenario(std::string(simulator::defaultScenario));
    std::vector<TerminalChannel> all;
    for (std::uint32_t number = 1; number <= count; ++number) {
        all.push_back({RadioChannel{number}, scenario.channels.front().link});
    }
    return all;
}

/// Scans all channels at once; sleeps until each worker has left its sweep, without polling. @return the number of samples
std::int64_t scanAll(Terminal& terminal, const std::vector<TerminalChannel>& all, ESDCCommand start)
{
    std::int64_t samples = 0;
    for (const TerminalChannel& channel : all) {
        terminal.startScan(channel.number, start);
    }
    for (const TerminalChannel& channel : all) {
        terminal.waitForIdle(channel.number);
        samples += terminal.plan(channel.number).value().samples;
    }
    return samples;
}

/// "delays": the sum of the delays of a scan, in seconds.
void inRealTime(benchmark::State& state)
{
    const std::vector<TerminalChannel> all = channels(1);
    host::RealClock clock;
    const simulator::Radios radios(all, clock);
    Terminal terminal(radios.channels(), clock);
    for ([[maybe_unused]] auto _ : state) {
        scanAll(terminal, all, SDC_CMD_CHANNEL_SCAN_START);
    }
    const auto delays = terminal.plan(all.front().number).value().settleTime();
    state.counters["delays"] = std::chrono::duration<double>(delays).count();
}

void inVirtualTime(benchmark::State& state)
{
    const std::vector<TerminalChannel> all = channels(static_cast<std::uint32_t>(state.range(0)));
    host::VirtualClock clock;
    const simulator::Radios radios(all, clock);
    Terminal terminal(radios.channels(), clock);
    std::int64_t samples = 0;
    for ([[maybe_unused]] auto _ : state) {
        samples += scanAll(terminal, all, SDC_CMD_SUB_BAND_SCAN_START);
    }
    state.counters["samples_per_second"] = benchmark::Counter(static_cast<double>(samples), benchmark::Counter::kIsRate);
}

BENCHMARK(inRealTime)
    ->Name("terminal/real-time")
    ->Iterations(1)
    ->Repetitions(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(inVirtualTime)->Name("terminal/virtual-time")->Arg(1)->Arg(64)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

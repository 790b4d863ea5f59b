// What is said of scans of the same air, and of air in which something has changed. SDC_COMPARE_PAIRS tells of how many
// pairs of scans each statement is counted; with as many as the goals speak of, that takes minutes.

#include "apps/sdc/compare/Comparison.h"
#include "simulator/radio/Emitters.h"

#include "SimulatedScans.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <map>
#include <stdexcept>
#include <variant>

using testing_results::SimulatedScans;

namespace {

constexpr std::size_t usualPairs = 2;

std::size_t pairs()
{
    const char* const asked = std::getenv("SDC_COMPARE_PAIRS"); // NOLINT(concurrency-mt-unsafe): nobody changes it
    return asked == nullptr ? usualPairs : std::stoul(asked);
}

sdc::Comparison compared(const sdc::ScanResult& before, const sdc::ScanResult& after, sdc::TraceKind trace = sdc::usualTrace)
{
    return sdc::compare({"before.json", before}, {"after.json", after}, {trace, {}});
}

struct Air {
    std::string name;
    std::string scenario;
    sdc::ScanKind kind;
    bool isQuiet;         ///< nothing on the air
    double jitter_dB = 0; ///< otherwise the scenario's
};

SimulatedScans scansOf(const Air& air)
{
    SimulatedScans scans(air.scenario, air.kind);
    if (air.isQuiet) {
        scans.link.emitters.clear();
    }
    scans.link.jitter_dB = air.jitter_dB == 0.0 ? scans.link.jitter_dB : air.jitter_dB;
    return scans;
}

constexpr auto channel = sdc::ScanKind::channel;
constexpr auto subBand = sdc::ScanKind::subBand;

/// Nothing in them changes with the time.
const std::vector<Air> airs{{"quiet channel", "18-f595", channel, true}, {"quiet sub-band", "18-f595", subBand, true},
    {"quiet, 0.3 dB", "18-f595", subBand, true, 0.3}, {"quiet, 1 dB", "18-f595", subBand, true, 1.0},
    {"quiet channel, 1 dB", "18-f595", channel, true, 1.0}, {"quiet at the lowest reading", "7-other-raster", subBand, true},
    {"quiet at the lowest reading, 1 dB", "7-other-raster", channel, true, 1.0}, {"own channel", "18-f595", channel, false},
    {"few neighbours", "18-f595", subBand, false}, {"busy", "18-busy", subBand, false},
    {"busy, 1 dB", "18-busy", subBand, false, 1.0}, {"dense", "42-dense", subBand, false},
    {"narrow channels", "7-other-raster", subBand, false}, {"long", "38-long", subBand, false},
    {"wide", "80-wide", subBand, false}};

/// How many of so many pairs of scans are said to differ, by each trace.
std::map<sdc::TraceKind, std::size_t> different(
    const SimulatedScans& scans, std::size_t sweepsBefore, std::size_t sweepsAfter)
{
    std::map<sdc::TraceKind, std::size_t> counts;
    for (std::size_t pair = 0; pair < pairs(); ++pair) {
        const sdc::ScanResult before = scans.scan(2 * pair, sweepsBefore);
        const sdc::ScanResult after = scans.scan(2 * pair + 1, sweepsAfter);
        for (const sdc::TraceKind trace : {sdc::TraceKind::max, sdc::TraceKind::average, sdc::TraceKind::min}) {
            counts[trace] += compared(before, after, trace).isDifferent() ? 1U : 0U;
        }
    }
    return counts;
}

/// A line that lifts the reading at its frequency by so much.
simulator::Emitter lineAbove(
    double level_dBm, double rise_dB, std::uint32_t frequency_kHz, simulator::Schedule schedule = {})
{
    const double more_dB = 10.0 * std::log10(std::pow(10.0, rise_dB / 10.0) - 1.0);
    return {simulator::ContinuousWave{static_cast<double>(frequency_kHz), level_dBm + more_dB}, schedule};
}

/// What is read at a frequency, without jitter.
double levelAt(SimulatedScans scans, std::uint32_t frequency_kHz)
{
    scans.link.jitter_dB = 0.0;
    for (const sdc::Hold& hold : scans.scan(0, 1).channels[0].survey.holds()) {
        if (hold.frequency_kHz == frequency_kHz) {
            return hold.max / 100.0;
        }
    }
    throw std::out_of_range("no such frequency");
}

/// The lowest of what is read without jitter.
sdc::Hold lowestIn(SimulatedScans scans)
{
    scans.link.jitter_dB = 0.0;
    const std::vector<sdc::Hold> holds = scans.scan(0, 1).channels[0].survey.holds();
    return *std::ranges::min_element(holds, {}, &sdc::Hold::max);
}

bool isTold(const sdc::Comparison& comparison, std::uint32_t frequency_kHz)
{
    return std::ranges::any_of(comparison.channels.at(0).ranges, [&](const sdc::RangeChange& change) {
        return change.range.lowest_kHz <= frequency_kHz && frequency_kHz <= change.range.highest_kHz
            && change.difference() > 0;
    });
}

/// How many of so many pairs of scans tell of an emitter that is new in the second.
std::size_t told(
    const SimulatedScans& scans, std::size_t sweeps, const simulator::Emitter& emitter, std::uint32_t frequency_kHz)
{
    SimulatedScans after = scans;
    after.link.emitters.push_back(emitter);
    std::size_t count = 0;
    for (std::size_t pair = 0; pair < pairs(); ++pair) {
        count += isTold(compared(scans.scan(2 * pair, sweeps), after.scan(2 * pair + 1, sweeps)), frequency_kHz) ? 1U : 0U;
    }
    return count;
}

} // namespace

TEST(ComparedScans, sameAirIsTheSame)
{
    struct Sweeps {
        std::size_t before;
        std::size_t after;
    };
    for (const Air& air : airs) {
        const SimulatedScans scans = scansOf(air);
        for (const auto& [before, after] : {Sweeps{1, 1}, {2, 1}, {2, 2}, {5, 3}, {10, 1}, {1, 100}, {100, 100}}) {
            for (const auto& [trace, count] : different(scans, before, after)) {
                const std::string what = fmt::format("{}, {} and {} sweeps, {}", air.name, before, after, toText(trace));
                EXPECT_LE(count, pairs() / 100) << what;
                if (pairs() > usualPairs) {
                    std::cout << fmt::format("{}: {} of {} pairs differ\n", what, count, pairs()) << std::flush;
                }
            }
        }
    }
}

TEST(ComparedScans, burstOf14DbInOneOfAHundredSweepsIsFound)
{
    const SimulatedScans scans("18-f595", subBand);
    const std::uint32_t frequency_kHz = scans.plan.lowest_kHz + 70 * scans.plan.step_kHz;
    const double sweep_ms = static_cast<double>(scans.plan.settleTime().count());
    const simulator::Schedule once{.from_ms = 40.0 * sweep_ms, .duration_ms = sweep_ms};
    const simulator::Emitter burst = lineAbove(levelAt(scans, frequency_kHz), 14.0, frequency_kHz, once);
    EXPECT_EQ(told(scans, 100, burst, frequency_kHz), pairs());
}

/// Of single sweeps it need not where one reading alone may show it: beside a strong emitter, or with a narrow filter.
TEST(ComparedScans, newEmitter6DbOverTheFloorMakesThemDiffer)
{
    for (const Air& air : airs) {
        const SimulatedScans before = scansOf(air);
        SimulatedScans after = before;
        const sdc::Hold floor = lowestIn(before);
        after.link.emitters.push_back(
            {simulator::ContinuousWave{static_cast<double>(floor.frequency_kHz), floor.max / 100.0 + 6.0}, {}});
        for (const std::size_t sweeps : {1U, 10U}) {
            std::size_t count = 0;
            for (std::size_t pair = 0; pair < pairs(); ++pair) {
                count += compared(before.scan(2 * pair, sweeps), after.scan(2 * pair + 1, sweeps)).isDifferent() ? 1U : 0U;
            }
            const std::string what = fmt::format("{}, {} sweeps", air.name, sweeps);
            const bool isHard = sweeps == 1 && (!air.isQuiet || floor.max == sdc::lowestReading);
            EXPECT_TRUE(count >= pairs() - pairs() / 100 || isHard) << what << ": " << count;
            if (pairs() > usualPairs) {
                std::cout << fmt::format("{}: {} of {} pairs differ\n", what, count, pairs()) << std::flush;
            }
        }
    }
}

TEST(ComparedScans, newEmitter3DbAboveTheScatterIsFoundBesideAStrongOneToo)
{
    for (const std::size_t sweeps : {1U, 10U}) {
        const SimulatedScans scans("18-f595", subBand);
        const double tolerance_dB = compared(scans.scan(1, sweeps), scans.scan(2, sweeps)).channels[0].tolerance.highest_dB;
        for (const std::uint32_t step : {70U, 44U}) { // by itself; two channels above the strongest
            const std::uint32_t frequency_kHz = scans.plan.lowest_kHz + step * scans.plan.step_kHz;
            const auto emitter = lineAbove(levelAt(scans, frequency_kHz), tolerance_dB + 3.0, frequency_kHz);
            const std::size_t count = told(scans, sweeps, emitter, frequency_kHz);
            EXPECT_GE(count, pairs() - pairs() / 100) << sweeps << " sweeps, " << frequency_kHz << " kHz";
        }
    }
}

TEST(ComparedScans, riseOfANeighbourMakesNoPeakVanish)
{
    const SimulatedScans before("18-busy", subBand);
    SimulatedScans after = before;
    for (simulator::Emitter& emitter : after.link.emitters) {
        auto& carrier = std::get<simulator::Carrier>(emitter.signal);
        carrier.level_dBm += carrier.centre_kHz == 19122500.0 ? 15.0 : 0.0;
    }
    for (std::size_t pair = 0; pair < pairs(); ++pair) {
        const sdc::Comparison comparison = compared(before.scan(2 * pair, 10), after.scan(2 * pair + 1, 10));
        EXPECT_TRUE(comparison.isDifferent());
        EXPECT_TRUE(comparison.channels[0].vanishedPeaks.empty());
    }
}

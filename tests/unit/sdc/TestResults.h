#pragma once

#include "apps/sdc/result/ScanResult.h"

#include <chrono>
#include <cstdint>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace testing_results {

using namespace std::chrono_literals;

/// 2026-01-02T03:04:05.678Z
inline constexpr sdc::TimePoint aMoment{std::chrono::sys_days{std::chrono::year(2026) / 1 / 2} + 3h + 4min + 5s + 678ms};

/// Levels in hundredths of a dBm, at 100000 kHz and every 1000 kHz above.
inline std::vector<SDCResult> traceOf(
    const std::vector<std::int32_t>& levels, std::uint32_t lowest_kHz = 100000, std::uint32_t step_kHz = 1000)
{
    std::vector<SDCResult> trace;
    for (const std::int32_t level : levels) {
        trace.push_back({lowest_kHz, level});
        lowest_kHz += step_kHz;
    }
    return trace;
}

/// The same as readings of a sweep; the first takes 3 s, each other 300 ms.
inline std::vector<sdc::Sample> samplesOf(const std::vector<std::int32_t>& levels, std::uint32_t lowest_kHz = 100000,
    std::uint32_t step_kHz = 1000, sdc::TimePoint start = aMoment)
{
    std::vector<sdc::Sample> samples;
    sdc::TimePoint time = start + 3s;
    for (const auto& [frequency_kHz, level] : traceOf(levels, lowest_kHz, step_kHz)) {
        samples.push_back({frequency_kHz, level, std::exchange(time, time + 300ms)});
    }
    return samples;
}

/// The plan of so many samples as samplesOf makes them; the receiver belongs to 102000 kHz, channels are 2000 kHz apart.
inline sdc::ScanPlan planOf(std::int32_t samples)
{
    return {.rxFrequency_kHz = 102000,
        .channelSpacing_kHz = 2000,
        .lowest_kHz = 100000,
        .highest_kHz = 100000 + static_cast<std::uint32_t>(samples - 1) * 1000,
        .samples = samples,
        .step_kHz = 1000,
        .setRxWait_ms = 300,
        .firstSetRxWait_ms = 3000};
}

inline sdc::Sweep sweepOf(const std::vector<std::int32_t>& levels, sdc::TimePoint start = aMoment)
{
    return {.start = start,
        .end = start + 6600ms,
        .ending = sdc::Ending::complete,
        .reason = "",
        .statusText = "sub-band-scan-finished",
        .rxBefore_kHz = 102000,
        .rxAfter_kHz = 102000,
        .samples = samplesOf(levels, 100000, 1000, start)};
}

/// With a survey of the sweeps as they are now.
inline sdc::ChannelResult surveyed(sdc::ChannelResult channel)
{
    channel.survey = {};
    for (sdc::Sweep& sweep : std::exchange(channel.sweeps, {})) {
        channel.add(std::move(sweep));
    }
    return channel;
}

inline sdc::ScanResult surveyed(sdc::ScanResult result)
{
    for (sdc::ChannelResult& channel : result.channels) {
        channel = surveyed(std::move(channel));
    }
    return result;
}

inline sdc::ChannelResult channelOf(std::uint32_t number, std::vector<sdc::Sweep> sweeps)
{
    return surveyed({.channel = number,
        .unitTypeText = "KLM6 18G",
        .receiver = {27500.0, 5.0, 55.0, -20.0},
        .plan = planOf(static_cast<std::int32_t>(sweeps.front().samples.size())),
        .sweeps = std::move(sweeps),
        .survey = {}});
}

inline sdc::ScanResult resultOf(std::vector<sdc::ChannelResult> channels)
{
    return {.scenario = "test-link",
        .description = "a link",
        .kind = sdc::ScanKind::subBand,
        .farEnd = sdc::FarEnd::muted,
        .provenance = {"1.2.3", true, "1f", 42, 20.0, {"scan", "channel"}},
        .channels = std::move(channels)};
}

/// The same of receivers for which any reading is a level.
inline sdc::ScanResult neverSaturated(sdc::ScanResult result)
{
    for (sdc::ChannelResult& channel : result.channels) {
        channel.receiver.saturation_dBm = std::numeric_limits<std::int32_t>::max();
    }
    return surveyed(std::move(result));
}

/// The first samples of a sweep that was to take more.
inline sdc::Sweep cutShort(sdc::Sweep sweep, std::size_t taken, sdc::Ending ending, const std::string& reason = "")
{
    sweep.samples.resize(taken);
    sweep.ending = ending;
    sweep.reason = reason;
    sweep.statusText = "scan-not-started";
    return sweep;
}

/// What a writer writes.
template <typename Write>
std::string written(Write write)
{
    std::ostringstream stream;
    write(stream);
    return stream.str();
}

/// One channel, number 1, and one sweep.
inline sdc::ScanResult scanOf(const std::vector<std::int32_t>& levels)
{
    return resultOf(std::vector{channelOf(1, {sweepOf(levels)})});
}

} // namespace testing_results

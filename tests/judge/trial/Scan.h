#pragma once

#include "tests/judge/trial/Trial.h"

#include "simulator/radio/Link.h"
#include "terminal/ScanPlan.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace judge {

/// The controller stores nothing lower; hundredths of a dBm.
inline constexpr std::int32_t rssiFloor = -9970;

/// The samples that a controller takes of a link in several sweeps, counted from the first of the first sweep on.
struct Course {
    terminal::ScanPlan plan;
    std::uint32_t perSweep = 0; ///< samples
    std::uint32_t sweeps = 0;

    std::int64_t samples() const { return std::int64_t{perSweep} * sweeps; }
    std::uint32_t sweepOf(std::int64_t sample) const { return static_cast<std::uint32_t>(sample / perSweep); }
    std::uint32_t stepOf(std::int64_t sample) const { return static_cast<std::uint32_t>(sample % perSweep); }
    std::uint32_t tuningOfStep_kHz(std::uint32_t step) const { return plan.lowest_kHz + step * plan.step_kHz; }
    std::uint32_t tuning_kHz(std::int64_t sample) const { return tuningOfStep_kHz(stepOf(sample)); }

    /// Since the beginning of the first sweep; sweeps follow each other without a pause.
    std::chrono::milliseconds tuned(std::int64_t sample) const;
    std::chrono::milliseconds read(std::int64_t sample) const;
};

/// The controller's own plan. Not for several threads at once: it brings a terminal up.
/// @return nothing when the controller cannot plan
std::optional<Course> courseOf(const Trial& trial);

/// What the controller stores of the samples asked for, in hundredths of a dBm: the simulated radio's peers are called as a
/// worker calls them, at the same simulated times, without the worker. Ends and beginnings of sweeps need nothing more: the
/// receiver is put back and tuned again at one moment, which leaves no trace.
/// @param samples  ascending. Where not all are asked for, some before each are taken too, so that a slow receiver reads
///                 what it would have read; its jitter and its faults are then those of fewer calls.
std::vector<std::int32_t> readings(const simulator::Link& link, const Course& course, std::span<const std::int64_t> samples);

/// All samples of the course.
std::vector<std::int32_t> readings(const simulator::Link& link, const Course& course);

/// The same of a receiver without jitter, before which nothing goes wrong.
simulator::Link quiet(simulator::Link link);

} // namespace judge

#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/result/PowerMean.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "support/Time.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

namespace sdc {

namespace {

constexpr std::int64_t hertzPerKilohertz = 1000;

/// From one sample to the next; 0 when the sweep has no two places.
std::uint32_t stepOf(const Sweep& sweep, const ScanPlan& plan)
{
    const std::vector<Sample>& samples = sweep.samples;
    if (samples.size() > 1) {
        return samples[1].frequency_kHz - samples[0].frequency_kHz;
    }
    return plan.samples > 1 ? plan.step_kHz : 0;
}

/// How many levels a row has: those taken, and those that the plan has room for after them.
std::size_t levelCount(const Sweep& sweep, const ScanPlan& plan, std::uint32_t step_kHz)
{
    const std::int64_t range_kHz = std::int64_t{plan.highest_kHz} - sweep.samples.front().frequency_kHz;
    const std::int64_t room = range_kHz < 0 ? 0 : range_kHz / step_kHz + 1;
    const std::int64_t planned = std::min<std::int64_t>(room, plan.samples);
    return static_cast<std::size_t>(std::max<std::int64_t>(planned, std::ssize(sweep.samples)));
}

/// The levels of a row, each with what separates it from the one before.
std::string levels(const Sweep& sweep, std::size_t count)
{
    std::string text;
    for (std::size_t index = 0; index < count; ++index) {
        text += ", " + (index < sweep.samples.size() ? hundredths(sweep.samples[index].rssi) : std::string("nan"));
    }
    return text;
}

/// A receiver that stayed in one place has one level there.
std::string levelOfOnePlace(const Sweep& sweep)
{
    PowerMean mean;
    for (const Sample& sample : sweep.samples) {
        mean.add(sample.rssi);
    }
    return ", " + hundredths(mean.mean());
}

std::string rowOf(const Sweep& sweep, const ScanPlan& plan)
{
    const std::uint32_t step_kHz = stepOf(sweep, plan);
    const std::size_t count = step_kHz == 0 ? 1 : levelCount(sweep, plan, step_kHz);
    // What stays in one place has no step; the channel's width says best what the level is about.
    const std::uint32_t bin_kHz = step_kHz == 0 ? std::max(plan.channelSpacing_kHz, 1U) : step_kHz;
    const std::uint32_t lowest_kHz = sweep.samples.front().frequency_kHz;
    const std::int64_t low_Hz = hertzPerKilohertz * lowest_kHz;
    const std::int64_t step_Hz = hertzPerKilohertz * bin_kHz;
    const std::int64_t high_Hz = low_Hz + static_cast<std::int64_t>(count) * step_Hz;
    return fmt::format("{}, {}, {}, {}, {}, {}{}\n", support::dateText(sweep.start), support::clockText(sweep.start), low_Hz,
        high_Hz, step_Hz, sweep.samples.size(), step_kHz == 0 ? levelOfOnePlace(sweep) : levels(sweep, count));
}

} // namespace

void writeSweepRows(std::ostream& stream, const ScanResult& result, const WriteOptions&)
{
    // By what a row says of itself: its second, then its lowest frequency.
    std::multimap<std::tuple<std::chrono::sys_seconds, std::uint32_t>, std::string> rows;
    for (const ChannelResult& channel : result.channels) {
        for (const Sweep& sweep : channel.sweeps) {
            if (!sweep.samples.empty()) {
                rows.emplace(
                    std::tuple(std::chrono::floor<std::chrono::seconds>(sweep.start), sweep.samples.front().frequency_kHz),
                    rowOf(sweep, channel.plan));
            }
        }
    }
    for (const auto& [place, row] : rows) {
        stream << row;
    }
}

} // namespace sdc

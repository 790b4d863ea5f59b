#include "apps/sdc/result/Survey.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <numeric>

namespace sdc {

namespace {

/// So near to the lowest reading those below it may be missing; hundredths of a dB.
constexpr std::int32_t nearLowest = 300;

} // namespace

std::int32_t levelOf(const Hold& hold, TraceKind kind)
{
    switch (kind) {
    case TraceKind::max: return hold.max;
    case TraceKind::average: return hold.average;
    case TraceKind::min: return hold.min;
    }
    return hold.max;
}

void Survey::add(const Sweep& sweep, const terminal::ScanPlan& plan, const ReceiverData& receiver)
{
    m_start = m_sweeps == 0 ? sweep.start : m_start;
    ++m_sweeps;
    m_taken += sweep.samples.size();
    m_missing += static_cast<std::uint64_t>(std::max<std::int64_t>(plan.samples - std::ssize(sweep.samples), 0));
    ++m_endings.at(static_cast<std::size_t>(sweep.ending));
    m_occupancy.add(sweep, plan, receiver);
    m_check.add(sweep, receiver);
    for (const auto& [frequency_kHz, level] : levelsIn(sweep, receiver)) {
        const auto [found, isFirst] = m_readings.try_emplace(frequency_kHz, Readings{level, level, level, 0, {}});
        Readings& here = found->second;
        m_pairs += isFirst ? 0 : 1;
        if (!isFirst && std::min(here.last, level) > lowestReading + nearLowest) {
            const std::int64_t step = std::llabs(std::int64_t{level} - here.last);
            ++m_steps[static_cast<std::size_t>(std::min<std::int64_t>(step, mostStep))];
        }
        here.last = level;
        here.max = std::max(here.max, level);
        here.min = std::min(here.min, level);
        here.sum += level;
        here.mean.add(level);
    }
    keep(sweep.samples);
}

void Survey::keep(const std::vector<Sample>& samples)
{
    m_recent.push_back(samples);
    m_kept += samples.size();
    while (m_recent.size() > 1 && (m_recent.size() > mostRecent || m_kept > mostSamples)) {
        m_kept -= m_recent.front().size();
        m_recent.pop_front();
    }
}

std::vector<Spread> Survey::spreads() const
{
    std::vector<Spread> spreads;
    spreads.reserve(m_readings.size());
    for (const auto& [frequency_kHz, here] : m_readings) {
        const double mean = static_cast<double>(here.sum) / static_cast<double>(here.mean.count());
        spreads.push_back({frequency_kHz, mean, here.max, here.min, here.mean.count()});
    }
    return spreads;
}

std::vector<Hold> Survey::holds() const
{
    std::vector<Hold> holds;
    holds.reserve(m_readings.size());
    for (const auto& [frequency_kHz, here] : m_readings) {
        holds.push_back({frequency_kHz, here.max, here.min, here.mean.mean(), here.mean.count()});
    }
    return holds;
}

std::optional<double> Survey::medianStep() const
{
    const std::size_t count = std::accumulate(m_steps.begin(), m_steps.end(), std::size_t{0});
    if (10 * count < 9 * m_pairs) { // those that are left would scatter less than all
        return std::nullopt;
    }
    std::size_t below = 0;
    for (std::size_t step = 0; step < m_steps.size(); ++step) {
        below += m_steps[step];
        if (2 * below > count) {
            return static_cast<double>(step);
        }
    }
    return std::nullopt;
}

std::vector<SDCResult> Survey::trace(TraceKind kind) const
{
    std::vector<SDCResult> trace;
    trace.reserve(m_readings.size());
    for (const Hold& hold : holds()) {
        trace.push_back({hold.frequency_kHz, levelOf(hold, kind)});
    }
    return trace;
}

} // namespace sdc

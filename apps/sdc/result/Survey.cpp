#include "apps/sdc/result/Survey.h"

#include <algorithm>

namespace sdc {

namespace {

std::int32_t levelOf(const Hold& hold, TraceKind kind)
{
    switch (kind) {
    case TraceKind::max: return hold.max;
    case TraceKind::average: return hold.average;
    case TraceKind::min: return hold.min;
    }
    return hold.max;
}

} // namespace

void Survey::add(const Sweep& sweep)
{
    ++m_sweeps;
    for (const Sample& sample : sweep.samples) {
        Readings& here = m_readings.try_emplace(sample.frequency_kHz, Readings{sample.rssi, sample.rssi, {}}).first->second;
        here.max = std::max(here.max, sample.rssi);
        here.min = std::min(here.min, sample.rssi);
        here.mean.add(sample.rssi);
    }
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

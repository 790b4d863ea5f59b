#include "apps/sdc/result/Holds.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <algorithm>
#include <map>

namespace sdc {

namespace {

struct Readings {
    std::int32_t max;
    std::int32_t min;
    PowerMean mean;
};

} // namespace

std::vector<Hold> holds(const std::vector<Sweep>& sweeps)
{
    std::map<std::uint32_t, Readings> readings;
    for (const Sweep& sweep : sweeps) {
        for (const SDCResult& sample : sweep.samples) {
            Readings& here =
                readings.try_emplace(sample.frequency_kHz, Readings{sample.rssi, sample.rssi, {}}).first->second;
            here.max = std::max(here.max, sample.rssi);
            here.min = std::min(here.min, sample.rssi);
            here.mean.add(sample.rssi);
        }
    }
    std::vector<Hold> holds;
    holds.reserve(readings.size());
    for (const auto& [frequency_kHz, here] : readings) {
        holds.push_back({frequency_kHz, here.max, here.min, here.mean.mean(), here.mean.count()});
    }
    return holds;
}

std::vector<SDCResult> traceOf(const ChannelResult& channel)
{
    if (channel.sweeps.size() == 1) {
        return channel.sweeps.front().samples;
    }
    std::vector<SDCResult> trace;
    for (const Hold& hold : holds(channel.sweeps)) {
        trace.push_back({hold.frequency_kHz, hold.average});
    }
    return trace;
}

} // namespace sdc

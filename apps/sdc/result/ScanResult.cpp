#include "apps/sdc/result/ScanResult.h"

#include "apps/sdc/result/Sanity.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace sdc {

std::string hundredths(std::int64_t value)
{
    const std::int64_t magnitude = std::llabs(value);
    return fmt::format("{}{}.{:02}", value < 0 ? "-" : "", magnitude / 100, magnitude % 100);
}

std::string megahertz(std::uint32_t frequency_kHz)
{
    return fmt::format("{}.{:03}", frequency_kHz / 1000, frequency_kHz % 1000);
}

void ChannelResult::add(Sweep sweep, Keep keep)
{
    survey.add(sweep, plan, receiver);
    if (keep == Keep::history) {
        if (history.rows().empty()) { // all of them may have been kept so far
            std::ranges::for_each(sweeps, [this](const Sweep& before) { history.add(before, receiver); });
        }
        history.add(sweep, receiver);
    }
    if (keep != Keep::all) {
        sweeps.clear();
    }
    sweeps.push_back(std::move(sweep));
}

std::vector<SDCResult> traceOf(const ChannelResult& channel, TraceKind kind)
{
    if (channel.survey.sweeps() != 1) {
        return channel.survey.trace(kind);
    }
    return levelsIn(channel.sweeps.front(), channel.receiver);
}

double resolutionOf(const ChannelResult& channel)
{
    return std::max<double>(channel.plan.step_kHz, channel.receiver.filterWidth_kHz);
}

bool isPartial(const Sweep& sweep, const ScanPlan& plan)
{
    return std::ssize(sweep.samples) < plan.samples;
}

std::string stateOf(const Sweep& sweep, const ScanPlan& plan)
{
    if (sweep.ending == Ending::complete) {
        return "";
    }
    return fmt::format("{}{}/{}, {}{}", isPartial(sweep, plan) ? "PARTIAL " : "", sweep.samples.size(), plan.samples,
        toText(sweep.ending), sweep.reason.empty() ? "" : ": " + support::shown(sweep.reason));
}

} // namespace sdc

#include "apps/sdc/result/ScanResult.h"

#include "support/Text.h"

#include <fmt/format.h>

#include <cstdlib>
#include <iterator>

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

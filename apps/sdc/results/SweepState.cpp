#include "apps/sdc/results/SweepState.h"

#include "apps/sdc/results/ResultWords.h"
#include "support/Text.h"

#include <vector>

namespace sdc {

bool isPartial(const Sweep& sweep, const terminal::ScanPlan& plan)
{
    return std::ssize(sweep.samples) < plan.samples;
}

std::string countOf(const Sweep& sweep, const terminal::ScanPlan& plan)
{
    return std::to_string(sweep.samples.size()) + "/" + std::to_string(plan.samples);
}

std::string stateOf(const Sweep& sweep, const terminal::ScanPlan& plan)
{
    if (sweep.ending == Ending::complete) {
        return "";
    }
    return (isPartial(sweep, plan) ? "PARTIAL " : "") + countOf(sweep, plan) + ", " + std::string(toText(sweep.ending))
        + (sweep.reason.empty() ? "" : ": " + support::shown(sweep.reason));
}

} // namespace sdc

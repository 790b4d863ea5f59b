#include "apps/sdc/result/PlanForm.h"

#include "apps/sdc/result/ResultForm.h"
#include "terminal/Peers.h"

#include <limits>

namespace sdc {

namespace {

using support::optional;
using support::Record;

const auto word = support::integer(0, std::numeric_limits<std::uint32_t>::max());
const auto milliseconds = support::integer(0, std::numeric_limits<std::int64_t>::max());
const auto text = support::text();

/// Where the controller cannot plan, only the refusal is there.
const Record<PlannedScan>& plannedScanRecord()
{
    static const Record<PlannedScan> record = [] {
        std::vector<support::FieldOf<PlannedScan>> fields{
            {"refusal", &PlannedScan::refusal, text, "why the controller cannot plan it", optional}};
        for (support::Field step : stepsRecord().fields()) {
            step.presence = optional;
            step.open = [open = step.open](void* scan) {
                std::optional<ScanPlan>& plan = static_cast<PlannedScan*>(scan)->plan;
                return open(plan ? &*plan : &plan.emplace());
            };
            step.find = [find = step.find](const void* scan) {
                const std::optional<ScanPlan>& plan = static_cast<const PlannedScan*>(scan)->plan;
                return plan ? find(&*plan) : nullptr;
            };
            fields.emplace_back(step);
        }
        fields.push_back(
            {"radio_time_ms", &PlannedScan::radioTime_ms, milliseconds, "sum of the settle delays, ms", optional});
        fields.push_back({"wall_time_ms", &PlannedScan::wallTime_ms, milliseconds,
            "what they take at the speed asked for, ms", optional});
        return Record<PlannedScan>("planned_scan", "what a scan would do", fields);
    }();
    return record;
}

const Record<PlannedScans>& plansRecord()
{
    static const Record<PlannedScans> record{"plans", "of both scans",
        {
            {std::string(toText(ScanKind::channel)), &PlannedScans::channelScan, plannedScanRecord(),
                "across the configured channel"},
            {std::string(toText(ScanKind::subBand)), &PlannedScans::subBandScan, plannedScanRecord(),
                "all that the radio can receive"},
        }};
    return record;
}

const Record<ChannelPlans>& channelRecord()
{
    static const Record<ChannelPlans> record{"channel", "one radio channel",
        {
            {"channel", &ChannelPlans::channel, word, "number of the radio channel"},
            {"unit_type", &ChannelPlans::unitTypeText, text, "type text of the outdoor unit"},
            {"plans", &ChannelPlans::scans, plansRecord(), plansRecord().sentence()},
        }};
    return record;
}

} // namespace

const Record<PlanDocument>& planDocumentRecord()
{
    static const Record<PlanDocument> record{"plan", "what scans of a scenario would do",
        {
            {"schema_version", &PlanDocument::schemaVersion, support::integer(1, 1), "number of this form"},
            {"scenario", &PlanDocument::scenario, text, "name of the scenario"},
            {"description", &PlanDocument::description, text, "of the scenario, one line"},
            {"channels", &PlanDocument::channels, support::list(channelRecord(), 1, terminal::mostChannels),
                "one for each radio channel asked for"},
        }};
    return record;
}

} // namespace sdc

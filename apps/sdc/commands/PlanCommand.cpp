#include "apps/sdc/commands/Commands.h"
#include "apps/sdc/options/Options.h"
#include "apps/sdc/result/PlanForm.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/tty/Screen.h"
#include "support/Fields.h"
#include "support/FieldsJson.h"
#include "support/Table.h"
#include "support/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace sdc {

namespace {

using support::duration;

struct PlanOptions {
    std::string scenario;
    std::vector<std::uint32_t> channels; ///< none: all
    double speed = 0.0;
    bool isJson = false;
};

/// A channel and its scan of each kind.
struct Scans {
    PlannedChannel channelScan;
    PlannedChannel subBandScan;
};

std::string refusal(const ChannelInfo& channel)
{
    return "the controller does not support the unit type \"" + support::shown(channel.unitTypeText) + "\"";
}

std::string settling(const ScanPlan& plan)
{
    if (plan.samples == 1) {
        return duration(plan.settleTime());
    }
    return duration(std::chrono::milliseconds(plan.firstSetRxWait_ms)) + ", then "
        + duration(std::chrono::milliseconds(plan.setRxWait_ms));
}

/// On a radio, and at a speed of its own where there is one.
std::string timeText(const ScanPlan& plan, double speed)
{
    const std::string time = duration(plan.settleTime());
    return speed == 0.0 || speed == 1.0 ? time
                                        : time + " (" + duration(wallTime(plan.settleTime(), speed)) + " at this speed)";
}

support::Row rowOf(const PlannedChannel& planned, ScanKind kind, double speed)
{
    const std::string number = std::to_string(static_cast<std::uint32_t>(planned.channel.number));
    const std::string name(toText(kind));
    if (!planned.plan) {
        return {number, name, "none: " + refusal(planned.channel)};
    }
    const ScanPlan& plan = *planned.plan;
    return {number, name, megahertz(plan.lowest_kHz), megahertz(plan.highest_kHz),
        plan.samples == 1 ? "-" : megahertz(plan.step_kHz), std::to_string(plan.samples), settling(plan),
        timeText(plan, speed)};
}

PlannedScan documented(const PlannedChannel& planned, double speed)
{
    if (!planned.plan) {
        return {.refusal = refusal(planned.channel), .plan = {}, .radioTime_ms = {}, .wallTime_ms = {}};
    }
    const std::chrono::milliseconds radioTime = planned.plan->settleTime();
    return {.refusal = {},
        .plan = planned.plan,
        .radioTime_ms = radioTime.count(),
        .wallTime_ms = wallTime(radioTime, speed).count()};
}

void writeJson(std::ostream& output, const Site& site, const std::vector<Scans>& scans, double speed)
{
    PlanDocument document{.scenario = site.name(), .description = site.description(), .channels = {}};
    for (const auto& [channelScan, subBandScan] : scans) {
        document.channels.push_back({static_cast<std::uint32_t>(channelScan.channel.number),
            channelScan.channel.unitTypeText, {documented(channelScan, speed), documented(subBandScan, speed)}});
    }
    const support::Json json = support::jsonOf(planDocumentRecord(), &document);
    output << json.dump(2, ' ', false, support::Json::error_handler_t::replace) << '\n';
}

void writeTable(std::ostream& output, const Site& site, const std::vector<Scans>& scans, double speed)
{
    std::vector<support::Row> rows{{"channel", "scan", "from MHz", "to MHz", "step MHz", "samples", "settling", "time"}};
    for (const auto& [channelScan, subBandScan] : scans) {
        rows.push_back(rowOf(channelScan, ScanKind::channel, speed));
        rows.push_back(rowOf(subBandScan, ScanKind::subBand, speed));
    }
    output << site.name() << ": " << site.description() << "\n\n" << support::table(rows, "rlrrrrll");
}

/// Shows what both kinds of scan would do on each channel, and how long they take. Fails when nothing can be planned.
ExitStatus plan(const PlanOptions& options, std::ostream& output)
{
    const Site site(options.scenario);
    std::vector<Scans> scans;
    for (const ChannelInfo& channel : chooseChannels(site, options.channels)) {
        scans.push_back({site.planned(channel, ScanKind::channel), site.planned(channel, ScanKind::subBand)});
    }
    (options.isJson ? writeJson : writeTable)(output, site, scans, options.speed);
    const auto isPlanned = [](const Scans& scan) { return scan.channelScan.plan || scan.subBandScan.plan; };
    return std::ranges::any_of(scans, isPlanned) ? EXIT_COMPLETE : EXIT_FAILED;
}

} // namespace

void addPlan(CLI::App& app, Command& command)
{
    const auto options = std::make_shared<PlanOptions>();
    CLI::App& planning = *app.add_subcommand("plan", "Show what both scans would do, and for how long");
    addScenario(planning, options->scenario);
    addChannels(planning, options->channels);
    addSpeed(planning, options->speed);
    addFlag(planning, "--json", options->isJson, "JSON instead of a table");
    planning.footer("Examples:\n"
                    "  sdc plan\n"
                    "  sdc plan --scenario 38-long --speed 60\n");
    planning.callback([options, &command] {
        command = [options] { return toStandardOutput([&](std::ostream& output) { return plan(*options, output); }); };
    });
}

} // namespace sdc

#include "apps/sdc/PlanCommand.h"

#include "apps/sdc/ChannelChoice.h"
#include "apps/sdc/Texts.h"
#include "apps/sdc/results/Format.h"
#include "support/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace sdc {

namespace {

using terminal::ScanPlan;
using Json = nlohmann::ordered_json;

/// A channel and its scan of each kind.
struct PlannedScans {
    PlannedChannel channelScan;
    PlannedChannel subBandScan;
};

const char* nameOf(ScanKind kind)
{
    return kind == ScanKind::channel ? "channel" : "sub-band";
}

std::string refusal(const PlannedChannel& channel)
{
    return "the controller does not support the unit type \"" + support::shown(channel.channel.link.unitTypeText) + "\"";
}

std::string settling(const ScanPlan& plan)
{
    const auto seconds = [](std::uint32_t time_ms) { return durationText(std::chrono::milliseconds(time_ms)); };
    if (plan.samples == 1) {
        return durationText(plan.settleTime());
    }
    return seconds(plan.firstSetRxWait_ms) + ", then " + seconds(plan.setRxWait_ms);
}

/// On a radio, and at a speed of its own where there is one.
std::string timeText(const ScanPlan& plan, double speed)
{
    const std::string time = durationText(plan.settleTime());
    return speed == 0.0 || speed == 1.0 ? time
                                        : time + " (" + durationText(wallTime(plan.settleTime(), speed)) + " at this speed)";
}

using Row = std::array<std::string, 8>;

Row rowOf(const PlannedChannel& channel, ScanKind kind, double speed)
{
    const std::string number = std::to_string(static_cast<std::uint32_t>(channel.channel.number));
    if (!channel.plan) {
        return {number, nameOf(kind), "none: " + refusal(channel)};
    }
    const ScanPlan& plan = *channel.plan;
    return {number, nameOf(kind), megahertz(plan.lowest_kHz), megahertz(plan.highest_kHz),
        plan.samples == 1 ? "-" : megahertz(plan.step_kHz), std::to_string(plan.samples), settling(plan),
        timeText(plan, speed)};
}

/// Numbers stand right in their columns. A row that says why there is no plan does not widen them.
void writeRows(std::ostream& output, const std::vector<Row>& rows)
{
    const std::array<bool, 8> isNumber{true, false, true, true, true, true, false, false};
    std::array<std::size_t, 8> widths{};
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < row.size() && !row.back().empty(); ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    for (const Row& row : rows) {
        const std::size_t columns = row.back().empty() ? 3 : row.size();
        std::string line;
        for (std::size_t column = 0; column < columns; ++column) {
            const bool isLast = column + 1 == columns;
            line += column == 0 ? "" : "  ";
            line += isNumber[column] && !isLast ? right(row[column], widths[column])
                                                : left(row[column], isLast ? 0 : widths[column]);
        }
        output << line << '\n';
    }
}

Json jsonOf(const PlannedChannel& channel, double speed)
{
    if (!channel.plan) {
        return {{"refusal", refusal(channel)}};
    }
    const ScanPlan& plan = *channel.plan;
    return {{"lowest_kHz", plan.lowest_kHz}, {"highest_kHz", plan.highest_kHz}, {"step_kHz", plan.step_kHz},
        {"samples", plan.samples}, {"first_settle_ms", plan.firstSetRxWait_ms}, {"settle_ms", plan.setRxWait_ms},
        {"radio_time_ms", plan.settleTime().count()}, {"wall_time_ms", wallTime(plan.settleTime(), speed).count()}};
}

void writeJson(
    std::ostream& output, const simulator::Scenario& scenario, const std::vector<PlannedScans>& scans, double speed)
{
    Json channels = Json::array();
    for (const auto& [channelScan, subBandScan] : scans) {
        channels.push_back({{"channel", static_cast<std::uint32_t>(channelScan.channel.number)},
            {"unit_type", channelScan.channel.link.unitTypeText},
            {"plans", {{"channel", jsonOf(channelScan, speed)}, {"sub-band", jsonOf(subBandScan, speed)}}}});
    }
    const Json document{
        {"schema_version", 1}, {"scenario", scenario.name}, {"description", scenario.description}, {"channels", channels}};
    output << document.dump(2, ' ', true, Json::error_handler_t::replace) << '\n';
}

void writeTable(
    std::ostream& output, const simulator::Scenario& scenario, const std::vector<PlannedScans>& scans, double speed)
{
    output << support::shown(scenario.name) << ": " << support::shown(scenario.description) << "\n\n";
    std::vector<Row> rows{{"channel", "scan", "from MHz", "to MHz", "step MHz", "samples", "settling", "time"}};
    for (const auto& [channelScan, subBandScan] : scans) {
        rows.push_back(rowOf(channelScan, ScanKind::channel, speed));
        rows.push_back(rowOf(subBandScan, ScanKind::subBand, speed));
    }
    writeRows(output, rows);
}

} // namespace

ExitStatus plan(const PlanOptions& options, std::ostream& output)
{
    const simulator::Scenario scenario = simulator::loadScenario(options.scenario);
    std::vector<PlannedScans> scans;
    for (const simulator::TerminalChannel& channel : chooseChannels(scenario, options.channels)) {
        scans.push_back({planned(channel, ScanKind::channel), planned(channel, ScanKind::subBand)});
    }
    if (options.isJson) {
        writeJson(output, scenario, scans, options.speed);
    } else {
        writeTable(output, scenario, scans, options.speed);
    }
    const auto isPlanned = [](const PlannedScans& scan) { return scan.channelScan.plan || scan.subBandScan.plan; };
    return std::ranges::any_of(scans, isPlanned) ? EXIT_COMPLETE : EXIT_FAILED;
}

} // namespace sdc

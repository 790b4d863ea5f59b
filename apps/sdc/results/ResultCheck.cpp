#include "apps/sdc/results/ResultCheck.h"

#include "apps/sdc/results/TimeText.h"
#include "simulator/scenario/JsonText.h"

#include <cmath>
#include <set>

namespace sdc {

namespace {

using nlohmann::json;
using simulator::elementPath;
using simulator::memberPath;
using simulator::shown;

/// Gathers findings about one value.
class Complaints {
public:
    Complaints(std::vector<std::string>& findings, std::string path)
        : m_findings(findings)
        , m_path(std::move(path))
    {
    }

    Complaints at(const std::string& key) const { return {m_findings, memberPath(m_path, key)}; }
    Complaints at(std::size_t index) const { return {m_findings, elementPath(m_path, index)}; }

    void require(bool isRight, const json& value, const std::string& right) const
    {
        if (!isRight) {
            m_findings.push_back(m_path + ": is " + shown(value) + "; must be " + right);
        }
    }

private:
    std::vector<std::string>& m_findings;
    std::string m_path;
};

void checkTimes(const json& sweep, const Complaints& complaints)
{
    const std::optional<TimePoint> start = parseRfc3339(sweep["start"].get<std::string>());
    const std::optional<TimePoint> end = parseRfc3339(sweep["end"].get<std::string>());
    const std::string form = "a moment in UTC such as 2026-01-02T03:04:05.678Z";
    complaints.at("start").require(start.has_value(), sweep["start"], form);
    complaints.at("end").require(end.has_value(), sweep["end"], form);
    complaints.at("end").require(!start || !end || *end >= *start, sweep["end"], "not before the start");
}

void checkLevels(const json& samples, const Complaints& complaints)
{
    constexpr double tolerance = 1e-4; // more than a number of two decimals is off as a binary fraction
    for (std::size_t index = 0; index < samples.size(); ++index) {
        const json& level = samples[index]["level_dBm"];
        const double difference = level.get<double>() * 100.0 - hundredthsOf(level);
        complaints.at(index)
            .at("level_dBm")
            .require(std::abs(difference) < tolerance, level, "a level of at most two decimals");
    }
}

/// One step from each sample to the next; of the last sweep, whose plan is known, the samples stand where the plan says.
void checkFrequencies(const json& samples, const json& plan, bool isLast, const Complaints& complaints)
{
    const auto frequency = [&samples](std::size_t index) { return samples[index]["frequency_kHz"].get<std::int64_t>(); };
    if (samples.empty()) {
        return;
    }
    const std::int64_t lowest_kHz = isLast ? plan["lowest_kHz"].get<std::int64_t>() : frequency(0);
    const std::int64_t own_kHz = samples.size() > 1 ? frequency(1) - frequency(0) : 0;
    const std::int64_t step_kHz = isLast ? plan["step_kHz"].get<std::int64_t>() : own_kHz;
    for (std::size_t index = 0; index < samples.size(); ++index) {
        const std::int64_t right_kHz = lowest_kHz + static_cast<std::int64_t>(index) * step_kHz;
        complaints.at(index)
            .at("frequency_kHz")
            .require(step_kHz >= 0 && frequency(index) == right_kHz, samples[index]["frequency_kHz"],
                step_kHz < 0 ? "no lower than the one before"
                             : std::to_string(right_kHz) + " (steps of " + std::to_string(step_kHz) + " kHz)");
    }
}

void checkSweep(const json& sweep, const json& plan, bool isLast, const Complaints& complaints)
{
    const json& samples = sweep["samples"];
    const auto taken = std::int64_t{sweep["taken"].get<std::uint32_t>()};
    checkTimes(sweep, complaints);
    complaints.at("planned").require(
        sweep["planned"] == plan["samples"], sweep["planned"], shown(plan["samples"]) + ", as the plan says");
    complaints.at("taken").require(
        taken == std::ssize(samples), sweep["taken"], std::to_string(samples.size()) + ", the number of samples");
    complaints.at("ending").require(sweep["ending"] != "complete" || !isLast || taken == sweep["planned"], sweep["ending"],
        "stopped or failed, because " + std::to_string(taken) + " of " + shown(sweep["planned"]) + " samples were taken");
    complaints.at("ending").require(
        !sweep.contains("reason") || sweep["ending"] == "failed", sweep["ending"], "failed, because there is a reason");
    checkLevels(samples, complaints.at("samples"));
    checkFrequencies(samples, plan, isLast, complaints.at("samples"));
}

} // namespace

std::int32_t hundredthsOf(const json& level)
{
    return static_cast<std::int32_t>(std::llround(level.get<double>() * 100.0));
}

std::vector<std::string> resultFindings(const json& result)
{
    std::vector<std::string> findings;
    const Complaints channels = Complaints(findings, "$").at("channels");
    std::set<std::uint32_t> numbers;
    for (std::size_t index = 0; index < result["channels"].size(); ++index) {
        const json& channel = result["channels"][index];
        const bool isNew = numbers.insert(channel["channel"].get<std::uint32_t>()).second;
        channels.at(index).at("channel").require(isNew, channel["channel"], "a number that no other channel has");
        const json& sweeps = channel["sweeps"];
        for (std::size_t sweep = 0; sweep < sweeps.size(); ++sweep) {
            checkSweep(
                sweeps[sweep], channel["plan"], sweep + 1 == sweeps.size(), channels.at(index).at("sweeps").at(sweep));
        }
    }
    return findings;
}

} // namespace sdc

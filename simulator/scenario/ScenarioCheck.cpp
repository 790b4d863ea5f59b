#include "simulator/scenario/JsonText.h"
#include "simulator/scenario/ScenarioReader.h"
#include "support/Text.h"

#include <array>
#include <charconv>
#include <optional>
#include <set>
#include <utility>

namespace simulator {

namespace {

std::string knownActions(Operation operation)
{
    std::string known;
    for (const FaultAction action : {FaultAction::refuse, FaultAction::fail, FaultAction::answer, FaultAction::stick}) {
        if (knows(operation, action)) {
            known += (known.empty() ? "\"" : " or \"") + std::string(toString(action)) + '"';
        }
    }
    return known;
}

std::string number(double value)
{
    std::array<char, 400> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed).ptr};
}

void checkOrder(const std::string& lowestPath, double lowest, double highest, std::vector<std::string>& findings)
{
    if (lowest > highest) {
        findings.push_back(
            lowestPath + ": is " + number(lowest) + "; must not be above the highest, which is " + number(highest));
    }
}

void checkFaults(const ReadChannel& read, std::vector<std::string>& findings)
{
    const std::vector<Fault>& faults = read.channel.link.faults;
    for (std::size_t index = 0; index < faults.size(); ++index) {
        const auto& [operation, action] = std::pair(faults[index].operation, faults[index].action);
        if (!knows(operation, action)) {
            findings.push_back(elementPath(read.path + ".faults", index) + ".action: is \"" + std::string(toString(action))
                + "\"; must be " + knownActions(operation) + " where operation is \"" + std::string(toString(operation))
                + '"');
        }
    }
}

void checkOrders(const ReadChannel& read, std::vector<std::string>& findings)
{
    const Link& link = read.channel.link;
    const RadioFrequencyParameters& parameters = link.frequencyParameters;
    checkOrder(read.path + ".receive_kHz.lowest", parameters.minRxFrequency_kHz, parameters.maxRxFrequency_kHz, findings);
    checkOrder(read.path + ".raster.lowest_step", parameters.stepLimitLow, parameters.stepLimitHigh, findings);
    for (std::size_t index = 0; index < link.emitters.size(); ++index) {
        if (const auto* band = std::get_if<NoiseBand>(&link.emitters[index].signal)) {
            const std::string path = read.path + "." + read.emitterPaths[index] + ".lowest_kHz";
            checkOrder(path, band->lowest_kHz, band->highest_kHz, findings);
        }
    }
}

/// Such as an escape sequence, which would change the terminal of whoever reads the text.
void checkText(const std::string& path, const std::string& text, std::vector<std::string>& findings)
{
    if (support::shown(text, std::string::npos) != text) {
        findings.push_back(path + ": holds a control character, such as a line break; must be one line of plain text");
    }
}

void checkTexts(const ReadScenario& scenario, std::vector<std::string>& findings)
{
    checkText("$.name", scenario.name, findings);
    checkText("$.description", scenario.description, findings);
    for (std::size_t index = 0; index < scenario.sources.size(); ++index) {
        checkText(elementPath("$.sources", index), scenario.sources[index], findings);
    }
    for (const ReadChannel& read : scenario.channels) {
        checkText(read.path + ".unit_type", read.channel.link.unitTypeText, findings);
        const std::vector<Fault>& faults = read.channel.link.faults;
        for (std::size_t index = 0; index < faults.size(); ++index) {
            checkText(elementPath(read.path + ".faults", index) + ".text", faults[index].text, findings);
        }
    }
}

} // namespace

std::string pathInFile(const ReadChannel& channel, const std::string& path)
{
    constexpr std::string_view emitters = "emitters[";
    if (path.empty()) {
        return channel.path;
    }
    std::size_t index = 0;
    const char* const end = path.data() + path.size();
    const bool ofEmitter = path.compare(0, emitters.size(), emitters) == 0;
    const auto parsed = std::from_chars(path.data() + std::min(emitters.size(), path.size()), end, index);
    if (!ofEmitter || parsed.ec != std::errc{} || index >= channel.emitterPaths.size()) {
        return channel.path + "." + path;
    }
    return channel.path + "." + channel.emitterPaths[index] + path.substr(path.find(']') + 1);
}

std::vector<std::string> scenarioFindings(const ReadScenario& scenario)
{
    std::vector<std::string> findings;
    checkTexts(scenario, findings);
    std::set<RadioChannel> numbers;
    for (const ReadChannel& read : scenario.channels) {
        const auto number = static_cast<std::uint32_t>(read.channel.number);
        if (!numbers.insert(read.channel.number).second) {
            findings.push_back(read.path + ".number: is " + std::to_string(number) + "; must differ from other channels'");
        }
        const std::size_t before = findings.size();
        checkOrders(read, findings);
        checkFaults(read, findings);
        const std::optional<Complaint> refusal = whyImpossible(read.channel.link);
        if (refusal && findings.size() == before) {
            findings.push_back(pathInFile(read, refusal->path) + ": " + refusal->text);
        }
    }
    return findings;
}

} // namespace simulator

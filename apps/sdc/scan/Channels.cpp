#include "apps/sdc/scan/Channels.h"

#include "support/Text.h"
#include "terminal/PlanPreview.h"

#include <sha2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <stdexcept>

namespace sdc {

namespace {

std::string sha256(const std::string& text)
{
    std::array<char, SHA256_DIGEST_STRING_LENGTH> digest{};
    SHA256Data(reinterpret_cast<const std::uint8_t*>(text.data()), text.size(), digest.data());
    return digest.data();
}

} // namespace

ESDCCommand startCommand(ScanKind kind)
{
    return kind == ScanKind::channel ? SDC_CMD_CHANNEL_SCAN_START : SDC_CMD_SUB_BAND_SCAN_START;
}

std::chrono::milliseconds wallTime(std::chrono::milliseconds radioTime, double speed)
{
    constexpr double longest_ms = 1e15; // far beyond what anybody waits for
    const double wallTime_ms = speed > 0.0 ? static_cast<double>(radioTime.count()) / speed : 0.0;
    return std::chrono::milliseconds(std::llround(std::min(wallTime_ms, longest_ms)));
}

simulator::Scenario openScenario(const std::string& nameOrFile)
{
    if (nameOrFile != "-") {
        return simulator::loadScenario(nameOrFile);
    }
    const std::string name = "standard input";
    try {
        return simulator::parseScenario(support::readToEnd(std::cin, simulator::largestScenario_MiB), name);
    } catch (const simulator::ScenarioError&) {
        throw;
    } catch (const std::runtime_error& error) {
        throw simulator::ScenarioError(name + ": " + error.what());
    }
}

Site::Site(const std::string& scenario)
    : m_scenario(openScenario(scenario))
{
    for (const auto& [number, link] : m_scenario.channels) {
        m_channels.push_back({number, link.unitTypeText, link.rxFrequency_kHz,
            {link.filterWidth_kHz, link.noiseFigure_dB, link.ultimateRejection_dB, link.saturation_dBm}});
    }
}

Provenance Site::provenance(double speed) const
{
    return {.programVersion = SDC_VERSION,
        .isSimulated = true,
        .scenarioDigest = sha256(m_scenario.text),
        .seed = static_cast<std::uint32_t>(m_scenario.seed),
        .speed = speed,
        .arguments = {}};
}

PlannedChannel Site::planned(const ChannelInfo& channel, ScanKind kind) const
{
    const auto found = std::ranges::find(m_scenario.channels, channel.number, &simulator::TerminalChannel::number);
    host::VirtualClock clock;
    const simulator::Radios radios({simulator::withoutFaults(*found)}, clock);
    return {channel, terminal::previewPlan(radios.channels().front(), startCommand(kind))};
}

} // namespace sdc

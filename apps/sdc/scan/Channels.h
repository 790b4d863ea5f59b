#pragma once

#include "apps/sdc/result/ScanResult.h"
#include "host/Clock.h"
#include "simulator/Radios.h"
#include "simulator/scenario/Scenario.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "Platform/Host/RadioChannel.h"
#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/Sweep.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sdc {

/// A radio channel and what is known of its radio before anything is scanned.
struct ChannelInfo {
    RadioChannel number{};
    std::string unitTypeText;
    std::uint32_t rxFrequency_kHz = 0; ///< where the receiver belongs
    ReceiverData receiver;
};

/// A radio channel and the plan of its scan; no plan where the controller cannot make one.
struct PlannedChannel {
    ChannelInfo channel;
    std::optional<ScanPlan> plan;
};

/// What a session does.
struct SessionPlan {
    ScanKind kind{};
    double speed = 0.0;                                ///< 1 is real time, more is faster; 0: no wall time at all
    std::uint32_t sweeps = 1;                          ///< of each channel; 0: until stopped, or for as long as told
    std::optional<std::chrono::milliseconds> length;   ///< after so much of the radios' time no sweep begins
    std::optional<std::chrono::milliseconds> interval; ///< from the begin of a sweep to the next, where it takes no longer
    TimePoint start;                                   ///< the time of day at which simulated time begins
    std::vector<PlannedChannel> channels;
};

/// The command that starts a scan.
ESDCCommand startCommand(ScanKind kind);

/// What settle delays take at a speed: nothing at the highest, which is 0.
std::chrono::milliseconds wallTime(std::chrono::milliseconds radioTime, double speed);

/// @param nameOrFile  of a built-in scenario, or a file; "-": standard input
/// @throws simulator::ScenarioError
simulator::Scenario openScenario(const std::string& nameOrFile);

/// What is scanned: the radios of a terminal, out of a scenario. Of what kind they are is known here alone: all else works
/// with any radios.
class Site {
public:
    /// @param scenario  as openScenario takes it
    /// @throws simulator::ScenarioError
    explicit Site(const std::string& scenario);

    const std::string& name() const { return m_scenario.name; }
    const std::string& description() const { return m_scenario.description; }
    const std::vector<std::string>& sources() const { return m_scenario.sources; } ///< of the figures, each a sentence
    const std::vector<ChannelInfo>& channels() const { return m_channels; }

    /// Of what is scanned here, at a speed: all but the program's own part.
    Provenance provenance(double speed) const;

    /// The radios of all channels, for a terminal that has this clock.
    simulator::Radios radios(host::Clock& clock) const { return {m_scenario, clock}; }

    /// What the controller would do on a channel, were there no faults; no plan where it cannot make one. Call while there
    /// is no terminal.
    PlannedChannel planned(const ChannelInfo& channel, ScanKind kind) const;

private:
    simulator::Scenario m_scenario;
    std::vector<ChannelInfo> m_channels;
};

} // namespace sdc

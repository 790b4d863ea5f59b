#pragma once

#include "apps/sdc/Progress.h"
#include "apps/sdc/ScanLane.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace sdc {

/// What a session does.
struct SessionOptions {
    ScanKind kind{};
    double speed = 0.0;       ///< 0: no wall time at all
    std::uint32_t sweeps = 1; ///< of each channel; 0: until stopped
    TimePoint start;          ///< the time of day at which simulated time begins
};

/// Sweeps channels of a terminal, all at the same time, as often as asked for or until Ctrl-C.
class ScanSession {
public:
    /// @param messages  failures and stops are told there as they happen
    ScanSession(const std::vector<PlannedChannel>& channels, const SessionOptions& options, Progress& progress,
        std::ostream& messages);

    /// Brings a terminal up and sweeps. A terminal that does not come up is a failed sweep of each channel.
    /// @param allChannels  of the terminal, those of the session among them
    /// @param clock  the terminal's, at the speed of the options
    void run(const std::vector<terminal::Channel>& allChannels, host::Clock& clock);

    /// Whether Ctrl-C ended the session before all sweeps were begun.
    bool isCutShort() const { return m_isCutShort; }

    /// What has been measured, channel by channel. Call once.
    std::vector<ChannelResult> takeResults();

private:
    void sweepAll(terminal::Terminal& terminal, host::Clock& clock);
    void poll(terminal::Terminal& terminal, host::Clock& clock);
    void stopAll(terminal::Terminal& terminal, host::Clock& clock);
    void measureAll(terminal::Terminal& terminal);
    void finishAll();
    bool goesOn() const;
    void tell(const std::string& text);

    ProgressState progressState() const;
    std::optional<std::chrono::milliseconds> wallTimeLeft() const;

    SessionOptions m_options;
    Progress& m_progress;
    std::ostream& m_messages;
    std::vector<ScanLane> m_lanes;
    std::uint32_t m_sweep = 1; ///< the sweep in hand
    bool m_isStopping = false;
    bool m_isCutShort = false;

    // The sample taken last, of all channels.
    std::optional<SDCResult> m_last;
    std::uint32_t m_lastChannel = 0;
    std::chrono::steady_clock::time_point m_lastSeen;
};

} // namespace sdc

#pragma once

#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/Sanity.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/scan/Session.h"
#include "apps/sdc/tty/Progress.h"
#include "apps/sdc/tty/Screen.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sdc {

/// Tells people on standard error what a scan does: what is scanned, the plan, the progress, what goes wrong, and how it
/// ended. Each message is one text, written at once: the workers' trace goes to the same stream.
class Report : public Sink {
public:
    /// @param isQuiet        stops and failures alone
    /// @param hasProgress  otherwise no line that is written over
    Report(bool isQuiet, ColorMode color, bool hasProgress = true);

    /// What is scanned. It needs no terminal, so it can be told at once.
    void introduce(const Site& site, ScanKind kind) const;

    /// What cannot wait, and is told of a quiet scan, too.
    void tellAlways(const std::string& text);

    void onPlan(const SessionPlan& plan) override;
    void onSweepBegin(std::size_t channel, const ScanPlan& plan) override;
    void onSample(std::size_t channel, const Sample& sample) override;
    void onSweepEnd(std::size_t channel, const Sweep& sweep) override;
    void onPoll() override;
    void onStop(std::chrono::milliseconds stepTime) override;
    void onEnd(Ending ending) override;

private:
    /// A channel, as far as it has been swept.
    struct Lane {
        std::uint32_t number = 0;
        ScanPlan plan;          ///< of the sweep in hand or the last
        bool isSwept = false;   ///< at the moment
        std::int64_t taken = 0; ///< samples of the sweep in hand
        std::size_t sweeps = 0; ///< that have ended
        std::size_t complete = 0;
        Sweep last;
        ReceiverData receiver;
        ReceiverCheck check;
    };

    void tell(const std::string& text) const;
    ProgressState progressState() const;
    std::optional<std::chrono::milliseconds> wallTimeLeft() const;
    std::uint32_t sweepInHand() const;
    std::string endOf(const Lane& lane) const;
    void tellOddities(const Lane& lane);

    bool m_isQuiet;
    Progress m_progress;
    SessionPlan m_plan;
    std::vector<Lane> m_lanes;
    std::int64_t m_taken = 0; ///< samples, of all channels

    // The sample taken last, of all channels.
    std::optional<Sample> m_lastSample;
    std::uint32_t m_lastChannel = 0;
    std::chrono::steady_clock::time_point m_lastSeen;
};

} // namespace sdc

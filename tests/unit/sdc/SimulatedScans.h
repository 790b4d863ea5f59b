#pragma once

#include "apps/sdc/result/ScanResult.h"
#include "host/Clock.h"
#include "simulator/Radios.h"
#include "simulator/radio/Receiver.h"
#include "simulator/scenario/Scenario.h"
#include "terminal/PlanPreview.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace testing_results {

/// Scans the first radio of a scenario as its controller would, without the controller, so that thousands of scans take
/// seconds.
class SimulatedScans {
public:
    SimulatedScans(const std::string& scenario, sdc::ScanKind kind)
        : link(simulator::withoutFaults(simulator::loadScenario(scenario).channels.front()).link)
        , m_kind(kind)
    {
        host::VirtualClock clock;
        const simulator::Radios radios({{RadioChannel{1}, link}}, clock);
        const auto start = kind == sdc::ScanKind::channel ? SDC_CMD_CHANNEL_SCAN_START : SDC_CMD_SUB_BAND_SCAN_START;
        plan = terminal::previewPlan(radios.channels().front(), start).value();
    }

    /// @param seed  of the readings' jitter
    sdc::ScanResult scan(std::uint64_t seed, std::size_t sweeps) const
    {
        simulator::Link seeded = link;
        seeded.seed = seed;
        host::VirtualClock clock;
        simulator::Receiver receiver(seeded, clock);
        sdc::ChannelResult channel{.channel = 1,
            .unitTypeText = "",
            .receiver = {link.filterWidth_kHz, link.noiseFigure_dB, link.ultimateRejection_dB, link.saturation_dBm},
            .plan = plan,
            .sweeps = {},
            .survey = {}};
        for (std::size_t sweep = 0; sweep < sweeps; ++sweep) {
            channel.add(sweepOnce(receiver, clock));
        }
        sdc::ScanResult result;
        result.kind = m_kind;
        result.channels.push_back(std::move(channel));
        return result;
    }

    simulator::Link link;
    sdc::ScanPlan plan;

private:
    sdc::Sweep sweepOnce(simulator::Receiver& receiver, host::Clock& clock) const
    {
        sdc::Sweep sweep;
        for (std::int32_t sample = 0; sample < plan.samples; ++sample) {
            const std::uint32_t frequency_kHz = plan.lowest_kHz + static_cast<std::uint32_t>(sample) * plan.step_kHz;
            receiver.tune(frequency_kHz);
            clock.sleepMs(sample == 0 ? plan.firstSetRxWait_ms : plan.setRxWait_ms);
            sweep.samples.push_back({frequency_kHz, std::max(receiver.reading(), sdc::lowestReading), {}});
        }
        return sweep;
    }

    sdc::ScanKind m_kind;
};

} // namespace testing_results

#include "tests/judge/trial/Scan.h"

#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRssiHandler.h"
#include "apps/sdc/scan/Channels.h"
#include "host/Clock.h"
#include "simulator/Radios.h"
#include "simulator/radio/Link.h"
#include "simulator/radio/Radio.h"
#include "terminal/Peers.h"
#include "terminal/PlanPreview.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <numeric>

namespace judge {

namespace {

using std::chrono::milliseconds;

/// A receiver whose time constant is less than its settle delay has forgotten what lies so many samples back.
constexpr std::int64_t samplesRemembered = 8;

/// A radio and the clock it lives by.
class ScannedRadio {
public:
    explicit ScannedRadio(const simulator::Link& link)
        : m_radio(link, m_clock)
        , m_peers(m_radio.peers())
    {
    }

    std::int32_t take(const Course& course, std::int64_t sample)
    {
        sleepUntil(course.tuned(sample));
        m_peers.frequencyController.setRxFrequency(course.tuning_kHz(sample), true);
        sleepUntil(course.read(sample));
        std::int32_t reading = 0;
        m_peers.rssiHandler.readRssi(reading);
        return std::max(reading, rssiFloor);
    }

private:
    void sleepUntil(milliseconds time)
    {
        m_clock.sleepMs(static_cast<std::uint32_t>((time - m_now).count()));
        m_now = time;
    }

    host::VirtualClock m_clock;
    simulator::Radio m_radio;
    terminal::Peers m_peers;
    milliseconds m_now{};
};

} // namespace

milliseconds Course::tuned(std::int64_t sample) const
{
    return sweepOf(sample) * plan.settleTime(perSweep) + plan.settleTime(stepOf(sample));
}

milliseconds Course::read(std::int64_t sample) const
{
    return sweepOf(sample) * plan.settleTime(perSweep) + plan.settleTime(std::int64_t{stepOf(sample)} + 1);
}

std::optional<Course> courseOf(const Trial& trial)
{
    host::VirtualClock clock;
    const simulator::Radios radios({simulator::withoutFaults(trial.channel())}, clock);
    const auto plan = terminal::previewPlan(radios.channels().front(), sdc::startCommand(trial.kind));
    if (!plan || plan->samples < 1 || plan->highest_kHz < plan->lowest_kHz) {
        return std::nullopt;
    }
    const std::uint32_t inRange = plan->step_kHz == 0 ? 1 : (plan->highest_kHz - plan->lowest_kHz) / plan->step_kHz + 1;
    return Course{*plan, std::min(inRange, static_cast<std::uint32_t>(plan->samples)), trial.sweeps};
}

std::vector<std::int32_t> readings(const simulator::Link& link, const Course& course, std::span<const std::int64_t> samples)
{
    ScannedRadio radio(link);
    std::vector<std::int32_t> taken;
    taken.reserve(samples.size());
    std::int64_t next = 0;
    for (const std::int64_t wanted : samples) {
        std::int32_t reading = 0;
        for (next = std::max(next, wanted - samplesRemembered); next <= wanted; ++next) {
            reading = radio.take(course, next);
        }
        taken.push_back(reading);
    }
    return taken;
}

std::vector<std::int32_t> readings(const simulator::Link& link, const Course& course)
{
    std::vector<std::int64_t> all(static_cast<std::size_t>(course.samples()));
    std::iota(all.begin(), all.end(), 0);
    return readings(link, course, all);
}

simulator::Link quiet(simulator::Link link)
{
    link.jitter_dB = 0.0;
    link.faults.clear();
    return link;
}

} // namespace judge

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/formats/LiveFormat.h"
#include "apps/sdc/result/PowerMean.h"
#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/Sanity.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Channels.h"
#include "support/Time.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace sdc {

namespace {

constexpr std::int64_t hertzPerKilohertz = 1000;

/// From one sample to the next; 0 when the sweep has no two places.
std::uint32_t stepOf(const Sweep& sweep, const ScanPlan& plan)
{
    const std::vector<Sample>& samples = sweep.samples;
    if (samples.size() > 1) {
        return samples[1].frequency_kHz - samples[0].frequency_kHz;
    }
    return plan.samples > 1 ? plan.step_kHz : 0;
}

/// How many levels a row has: those taken, and those that the plan has room for after them.
std::size_t levelCount(const Sweep& sweep, const ScanPlan& plan, std::uint32_t step_kHz)
{
    const std::int64_t range_kHz = std::int64_t{plan.highest_kHz} - sweep.samples.front().frequency_kHz;
    const std::int64_t room = range_kHz < 0 ? 0 : range_kHz / step_kHz + 1;
    const std::int64_t planned = std::min<std::int64_t>(room, plan.samples);
    return static_cast<std::size_t>(std::max<std::int64_t>(planned, std::ssize(sweep.samples)));
}

constexpr const char* nothing = ", nan";

bool isRead(const Sample& sample, const ReceiverData& receiver)
{
    return !flagsOf(sample, nullptr, receiver).has(SampleFlag::refused);
}

/// The levels of a row, each with what separates it from the one before.
std::string levels(const Sweep& sweep, std::size_t count, const ReceiverData& receiver)
{
    std::string text;
    for (std::size_t index = 0; index < count; ++index) {
        const bool isThere = index < sweep.samples.size() && isRead(sweep.samples[index], receiver);
        text += isThere ? ", " + hundredths(sweep.samples[index].rssi) : nothing;
    }
    return text;
}

/// A receiver that stayed in one place has one level there.
std::string levelOfOnePlace(const Sweep& sweep, const ReceiverData& receiver)
{
    PowerMean mean;
    for (const SDCResult& level : levelsIn(sweep, receiver)) {
        mean.add(level.rssi);
    }
    return mean.count() == 0 ? nothing : ", " + hundredths(mean.mean());
}

class SweepRows : public LiveFormat {
public:
    using LiveFormat::LiveFormat;

    void onPlan(const SessionPlan& plan) override
    {
        for (const PlannedChannel& channel : plan.channels) {
            m_plans.push_back(channel.plan.value_or(ScanPlan{}));
            m_receivers.push_back(channel.channel.receiver);
        }
    }
    void onSweepBegin(std::size_t channel, const ScanPlan& plan) override { m_plans[channel] = plan; }
    void onSweepEnd(std::size_t channel, const Sweep& sweep) override
    {
        if (!sweep.samples.empty()) {
            file(channel).put(sweepRow(sweep, m_plans[channel], m_receivers[channel]));
        }
    }

private:
    std::vector<ScanPlan> m_plans;
    std::vector<ReceiverData> m_receivers;
};

} // namespace

std::string sweepRow(const Sweep& sweep, const ScanPlan& plan, const ReceiverData& receiver)
{
    const std::uint32_t step_kHz = stepOf(sweep, plan);
    const std::size_t count = step_kHz == 0 ? 1 : levelCount(sweep, plan, step_kHz);
    // What stays in one place has no step; the channel's width says best what the level is about.
    const std::uint32_t bin_kHz = step_kHz == 0 ? std::max(plan.channelSpacing_kHz, 1U) : step_kHz;
    const std::uint32_t lowest_kHz = sweep.samples.front().frequency_kHz;
    const std::int64_t low_Hz = hertzPerKilohertz * lowest_kHz;
    const std::int64_t step_Hz = hertzPerKilohertz * bin_kHz;
    const std::int64_t high_Hz = low_Hz + static_cast<std::int64_t>(count) * step_Hz;
    const auto taken =
        std::ranges::count_if(sweep.samples, [&receiver](const Sample& sample) { return isRead(sample, receiver); });
    return fmt::format("{}, {}, {}, {}, {}, {}{}\n", support::dateText(sweep.start), support::clockText(sweep.start), low_Hz,
        high_Hz, step_Hz, taken, step_kHz == 0 ? levelOfOnePlace(sweep, receiver) : levels(sweep, count, receiver));
}

std::unique_ptr<LiveFormat> makeSweepRows(const ScanResult&, std::vector<Lines*> files)
{
    return std::make_unique<SweepRows>(std::move(files));
}

} // namespace sdc

#include "apps/sdc/formats/LiveFormat.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Channels.h"
#include "support/Time.h"

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace sdc {

namespace {

class Csv : public LiveFormat {
public:
    using LiveFormat::LiveFormat;

    void onPlan(const SessionPlan& plan) override
    {
        for (const PlannedChannel& channel : plan.channels) {
            m_channels.push_back({static_cast<std::uint32_t>(channel.channel.number)});
        }
        file().head("channel,sweep,time,frequency_kHz,level_dBm\n");
    }

    void onSample(std::size_t channel, const Sample& sample) override
    {
        const auto& [number, sweep] = m_channels[channel];
        file().put(fmt::format("{},{},{},{},{}\n", number, sweep, support::rfc3339(sample.time), sample.frequency_kHz,
            hundredths(sample.rssi)));
    }

    void onSweepEnd(std::size_t channel, const Sweep&) override { ++m_channels[channel].sweep; }

private:
    struct Channel {
        std::uint32_t number;
        std::uint64_t sweep = 1; ///< in hand
    };
    std::vector<Channel> m_channels;
};

} // namespace

std::unique_ptr<LiveFormat> makeCsv(const ScanResult&, std::vector<Lines*> files)
{
    return std::make_unique<Csv>(std::move(files));
}

} // namespace sdc

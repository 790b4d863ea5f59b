#pragma once

#include "apps/sdc/formats/LiveFormat.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/scan/Session.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace testing_results {

/// Keeps lines.
class KeptLines : public sdc::Lines {
public:
    void head(std::string_view lines) override { before += lines; }
    void put(std::string_view lines) override { text += lines; }

    std::string before; ///< the head
    std::string text;
};

/// Tells a result as the session that made it did: sweep after sweep of all channels.
inline void replay(const sdc::ScanResult& result, sdc::Sink& sink)
{
    sdc::SessionPlan plan;
    std::size_t sweeps = 0;
    auto ending = sdc::Ending::complete;
    for (const sdc::ChannelResult& channel : result.channels) {
        plan.channels.push_back(
            {{RadioChannel{channel.channel}, channel.unitTypeText, channel.plan.rxFrequency_kHz, channel.receiver},
                channel.plan});
        sweeps = std::max(sweeps, channel.sweeps.size());
    }
    sink.onPlan(plan);
    for (std::size_t sweep = 0; sweep < sweeps; ++sweep) {
        for (std::size_t channel = 0; channel < result.channels.size(); ++channel) {
            if (sweep < result.channels[channel].sweeps.size()) {
                const sdc::Sweep& told = result.channels[channel].sweeps[sweep];
                sink.onSweepBegin(channel, result.channels[channel].plan);
                for (const sdc::Sample& sample : told.samples) {
                    sink.onSample(channel, sample);
                }
                sink.onSweepEnd(channel, told);
                ending = std::max(ending, told.ending);
            }
        }
    }
    sink.onEnd(ending);
}

using MakeLive = std::unique_ptr<sdc::LiveFormat> (*)(const sdc::ScanResult&, std::vector<sdc::Lines*>);

/// What a format makes of a result in so many files.
inline std::vector<KeptLines> linesOf(MakeLive make, const sdc::ScanResult& result, std::size_t files = 1)
{
    std::vector<KeptLines> kept(files);
    std::vector<sdc::Lines*> lines;
    for (KeptLines& file : kept) {
        lines.push_back(&file);
    }
    replay(result, *make(result, lines));
    return kept;
}

} // namespace testing_results

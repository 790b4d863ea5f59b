#include "apps/sdc/formats/LiveFormat.h"

#include "Platform/Host/RadioChannel.h"
#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/scan/Channels.h"

#include <algorithm>
#include <ostream>
#include <string>

namespace sdc {

namespace {

/// Keeps the heads of all files before all other lines.
class StreamLines : public Lines {
public:
    void head(std::string_view lines) override { m_head += lines; }
    void put(std::string_view lines) override { m_text += lines; }
    void writeTo(std::ostream& stream) const { stream << m_head << m_text; }

private:
    std::string m_head;
    std::string m_text;
};

SessionPlan planOf(const ScanResult& result)
{
    SessionPlan plan;
    plan.kind = result.kind;
    for (const ChannelResult& channel : result.channels) {
        plan.channels.push_back(
            {{RadioChannel{channel.channel}, channel.unitTypeText, channel.plan.rxFrequency_kHz, channel.receiver},
                channel.plan});
    }
    return plan;
}

void replay(std::size_t channel, const ScanPlan& plan, const Sweep& sweep, Sink& sink)
{
    sink.onSweepBegin(channel, plan);
    for (const Sample& sample : sweep.samples) {
        sink.onSample(channel, sample);
    }
    sink.onSweepEnd(channel, sweep);
}

} // namespace

void replay(const ScanResult& result, Sink& sink)
{
    sink.onPlan(planOf(result));
    std::size_t sweeps = 0;
    for (const ChannelResult& channel : result.channels) {
        sweeps = std::max(sweeps, channel.sweeps.size());
    }
    Ending ending = Ending::complete;
    for (std::size_t sweep = 0; sweep < sweeps; ++sweep) {
        for (std::size_t channel = 0; channel < result.channels.size(); ++channel) {
            const ChannelResult& swept = result.channels[channel];
            if (sweep < swept.sweeps.size()) {
                replay(channel, swept.plan, swept.sweeps[sweep], sink);
                ending = std::max(ending, swept.sweeps[sweep].ending);
            }
        }
    }
    sink.onEnd(ending);
}

void writeResult(std::ostream& stream, const Format& format, const ScanResult& result, const WriteOptions& options)
{
    if (format.makeLive == nullptr) {
        format.write(stream, result, options);
        return;
    }
    StreamLines lines;
    replay(result, *format.makeLive(result, std::vector<Lines*>(result.channels.size(), &lines)));
    lines.writeTo(stream);
}

} // namespace sdc

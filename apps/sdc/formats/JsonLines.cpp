#include "apps/sdc/formats/LiveFormat.h"
#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/ResultForm.h"
#include "apps/sdc/result/Sanity.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Channels.h"
#include "support/FieldsJson.h"
#include "support/Time.h"
#include "terminal/ScanPlan.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sdc {

namespace {

using Json = nlohmann::ordered_json;

/// Texts that are no UTF-8 are mended.
std::string lineOf(const Json& object)
{
    return object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

/// As in `,"flags":["repeated"]`; empty where there are none.
std::string memberOf(const SampleFlags& flags)
{
    std::string texts;
    for (const SampleFlag flag : flags.listed()) {
        texts += fmt::format(R"({}"{}")", texts.empty() ? "" : ",", toText(flag));
    }
    return texts.empty() ? "" : fmt::format(R"(,"flags":[{}])", texts);
}

class JsonLines : public LiveFormat {
public:
    JsonLines(const ScanResult& run, std::vector<Lines*> files)
        : LiveFormat(std::move(files))
        , m_run(headOf(run))
    {
    }

    void onPlan(const SessionPlan& plan) override
    {
        Json& channels = m_run["channels"] = Json::array();
        for (const auto& [channel, channelPlan] : plan.channels) {
            m_channels.push_back({.number = static_cast<std::uint32_t>(channel.number),
                .planned = channelPlan.value_or(ScanPlan{}).samples,
                .receiver = channel.receiver,
                .last = {}});
            channels.push_back({{"channel", m_channels.back().number}, {"unit_type", channel.unitTypeText},
                {"rx_frequency_kHz", channel.rxFrequency_kHz},
                {"receiver", support::jsonOf(receiverRecord(), &channel.receiver)}});
        }
        tell(m_run);
    }

    void onSweepBegin(std::size_t channel, const ScanPlan& plan) override
    {
        Json line = about("sweep", channel);
        line["plan"] = support::jsonOf(planRecord(), &plan);
        tell(line);
        m_channels[channel].planned = plan.samples;
    }

    /// Of fixed form: there may be millions of them.
    void onSample(std::size_t channel, const Sample& sample) override
    {
        m_hasSample = true;
        Channel& here = m_channels[channel];
        const SampleFlags flags = flagsOf(sample, here.last ? &*here.last : nullptr, here.receiver);
        here.last = sample;
        file().put(
            fmt::format(R"({{"type":"sample","channel":{},"sweep":{},"time":"{}","frequency_kHz":{},"level_dBm":{}{}}})"
                        "\n",
                here.number, here.sweep, support::rfc3339(sample.time), sample.frequency_kHz, hundredths(sample.rssi),
                memberOf(flags)));
    }

    void onSweepEnd(std::size_t channel, const Sweep& sweep) override
    {
        Json line = about("sweep_end", channel);
        line["start"] = support::rfc3339(sweep.start);
        line["end"] = support::rfc3339(sweep.end);
        line["ending"] = toText(sweep.ending);
        if (!sweep.reason.empty()) {
            line["reason"] = sweep.reason;
        }
        line["status"] = sweep.statusText;
        line["planned"] = m_channels[channel].planned;
        line["taken"] = sweep.samples.size();
        line["rx_before_kHz"] = sweep.rxBefore_kHz;
        line["rx_after_kHz"] = sweep.rxAfter_kHz;
        tell(line);
        ++m_channels[channel].sweep;
    }

    void onEnd(Ending ending) override { tell({{"type", "end"}, {"ending", toText(ending)}}); }

private:
    struct Channel {
        std::uint32_t number;
        std::int32_t planned; ///< samples of the sweep in hand
        ReceiverData receiver;
        std::optional<Sample> last; ///< of this sweep or the one before
        std::uint64_t sweep = 1;    ///< in hand
    };

    static Json headOf(const ScanResult& run)
    {
        return {{"type", "run"}, {"scenario", run.scenario}, {"description", run.description}, {"kind", toText(run.kind)},
            {"far_end", toText(run.farEnd)}, {"provenance", support::jsonOf(provenanceRecord(), &run.provenance)}};
    }

    Json about(const char* type, std::size_t channel) const
    {
        return {{"type", type}, {"channel", m_channels[channel].number}, {"sweep", m_channels[channel].sweep}};
    }

    void tell(const Json& line)
    {
        if (m_hasSample) {
            file().put(lineOf(line));
        } else {
            file().head(lineOf(line));
        }
    }

    Json m_run;
    std::vector<Channel> m_channels;
    bool m_hasSample = false;
};

} // namespace

std::unique_ptr<LiveFormat> makeJsonLines(const ScanResult& run, std::vector<Lines*> files)
{
    return std::make_unique<JsonLines>(run, std::move(files));
}

} // namespace sdc

#include "apps/sdc/results/Analysis.h"
#include "apps/sdc/results/Holds.h"
#include "apps/sdc/results/ReadableJson.h"
#include "apps/sdc/results/ResultJson.h"
#include "apps/sdc/results/ResultWords.h"
#include "apps/sdc/results/TimeText.h"

namespace sdc {

namespace {

using Json = nlohmann::ordered_json;

/// Hundredths as the number that they are: -4512 is -45.12.
double inUnits(std::int64_t hundredths)
{
    return static_cast<double>(hundredths) / 100.0;
}

Json planOf(const simulator::ScanPlan& plan)
{
    return {{"lowest_kHz", plan.lowest_kHz}, {"highest_kHz", plan.highest_kHz}, {"step_kHz", plan.step_kHz},
        {"samples", plan.samples}, {"first_settle_ms", plan.firstSetRxWait_ms}, {"settle_ms", plan.setRxWait_ms},
        {"channel_spacing_kHz", plan.channelSpacing_kHz}, {"rx_frequency_kHz", plan.rxFrequency_kHz}};
}

Json samplesOf(const Sweep& sweep)
{
    Json samples = Json::array();
    for (const SDCResult& sample : sweep.samples) {
        samples.push_back({{"frequency_kHz", sample.frequency_kHz}, {"level_dBm", inUnits(sample.rssi)}});
    }
    return samples;
}

Json sweepOf(const Sweep& sweep, const simulator::ScanPlan& plan)
{
    Json json{{"start", rfc3339(sweep.start)}, {"end", rfc3339(sweep.end)}, {"ending", toText(sweep.ending)}};
    if (!sweep.reason.empty()) {
        json["reason"] = sweep.reason;
    }
    json["status"] = sweep.statusText;
    json["planned"] = plan.samples;
    json["taken"] = sweep.samples.size();
    json["rx_before_kHz"] = sweep.rxBefore_kHz;
    json["rx_after_kHz"] = sweep.rxAfter_kHz;
    json["samples"] = samplesOf(sweep);
    return json;
}

Json holdsOf(const ChannelResult& channel)
{
    Json json{{"frequency_kHz", Json::array()}, {"max_dBm", Json::array()}, {"min_dBm", Json::array()},
        {"average_dBm", Json::array()}};
    for (const Hold& hold : holds(channel.sweeps)) {
        json["frequency_kHz"].push_back(hold.frequency_kHz);
        json["max_dBm"].push_back(inUnits(hold.max));
        json["min_dBm"].push_back(inUnits(hold.min));
        json["average_dBm"].push_back(inUnits(hold.average));
    }
    return json;
}

Json peakOf(const Peak& peak)
{
    return {{"frequency_kHz", peak.frequency_kHz}, {"level_dBm", inUnits(peak.level)},
        {"prominence_dB", inUnits(peak.prominence)}, {"width_kHz", peak.width_kHz}};
}

Json rasterChannelOf(const RasterChannel& channel)
{
    return {{"offset", channel.offset}, {"centre_kHz", channel.centre_kHz}, {"level_dBm", inUnits(channel.level)},
        {"strongest_dBm", inUnits(channel.strongest)}};
}

Json analysisOf(const ChannelResult& channel)
{
    const Analysis analysis = analyse(traceOf(channel), channel.plan);
    Json json = Json::object();
    if (analysis.floor) {
        json["floor_dBm"] = inUnits(*analysis.floor);
    }
    json["samples_left_out_at_each_end"] = edgeSamples;
    if (analysis.configured) {
        json["configured_channel"] = rasterChannelOf(*analysis.configured);
    }
    json["peaks"] = Json::array();
    for (const Peak& peak : analysis.peaks) {
        json["peaks"].push_back(peakOf(peak));
    }
    json["other_channels"] = Json::array();
    for (const RasterChannel& other : analysis.otherChannels) {
        json["other_channels"].push_back(rasterChannelOf(other));
    }
    return json;
}

Json channelOf(const ChannelResult& channel)
{
    Json json{{"channel", channel.channel}, {"unit_type", channel.unitTypeText}, {"filter_kHz", channel.filterWidth_kHz},
        {"plan", planOf(channel.plan)}, {"sweeps", Json::array()}};
    for (const Sweep& sweep : channel.sweeps) {
        json["sweeps"].push_back(sweepOf(sweep, channel.plan));
    }
    if (channel.sweeps.size() > 1) {
        json["holds"] = holdsOf(channel);
    }
    json["analysis"] = analysisOf(channel);
    return json;
}

} // namespace

void writeJson(std::ostream& stream, const ScanResult& result)
{
    Json json{{"schema_version", 1}, {"program_version", SDC_VERSION}, {"scenario", result.scenario},
        {"description", result.description}, {"kind", toText(result.kind)}, {"channels", Json::array()}};
    for (const ChannelResult& channel : result.channels) {
        json["channels"].push_back(channelOf(channel));
    }
    writeReadably(stream, json);
}

} // namespace sdc

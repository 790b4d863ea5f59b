#include "simulator/scenario/ScenarioReader.h"

#include "simulator/scenario/JsonText.h"

namespace simulator {

namespace {

using nlohmann::json;

double number(const json& object, const char* key)
{
    return object.at(key).get<double>();
}

std::uint32_t word(const json& object, const char* key)
{
    return object.at(key).get<std::uint32_t>();
}

SDCProperties readProperties(const json& channel)
{
    const json properties = channel.value("properties", json::object());
    const auto flag = [&properties](const char* key) -> std::uint8_t { return properties.value(key, false) ? 1 : 0; };
    return {flag("long_haul"), flag("extended_rx_wait"), flag("slow_rx_wait"), flag("spare_flag")};
}

RadioFrequencyParameters readFrequencyParameters(const json& channel)
{
    RadioFrequencyParameters parameters{};
    parameters.frequencyBand_GHz = word(channel, "band_GHz");
    parameters.minRxFrequency_kHz = word(channel.at("receive_kHz"), "lowest");
    parameters.maxRxFrequency_kHz = word(channel.at("receive_kHz"), "highest");
    parameters.frequencyStepSize_kHz = word(channel.at("raster"), "step_kHz");
    parameters.rxBaseFrequency_kHz = word(channel.at("raster"), "base_kHz");
    parameters.stepLimitLow = word(channel.at("raster"), "lowest_step");
    parameters.stepLimitHigh = word(channel.at("raster"), "highest_step");
    return parameters;
}

void readReceiver(const json& receiver, Link& link)
{
    link.filterWidth_kHz = number(receiver, "filter_kHz");
    link.noiseFigure_dB = number(receiver, "noise_figure_dB");
    link.settlingTime_ms = number(receiver, "settling_ms");
    link.jitter_dB = number(receiver, "jitter_dB");
    link.ultimateRejection_dB = number(receiver, "ultimate_rejection_dB");
    link.saturation_dBm = number(receiver, "saturation_dBm");
}

void readFading(const json& fading, Link& link)
{
    for (const json& rain : fading.value("rain", json::array())) {
        link.rain.push_back(
            {number(rain, "from_ms"), number(rain, "rate_dB_per_s"), number(rain, "depth_dB"), number(rain, "hold_ms")});
    }
    for (const json& notch : fading.value("notches", json::array())) {
        link.notches.push_back({number(notch, "begin_kHz"), number(notch, "end_kHz"), number(notch, "speed_kHz_per_s"),
            number(notch, "width_kHz"), number(notch, "depth_dB")});
    }
}

Fault readFault(const json& fault)
{
    Fault read;
    read.operation = operationFromString(fault.at("operation").get<std::string>()).value();
    read.action = faultActionFromString(fault.at("action").get<std::string>()).value();
    read.firstCall = fault.value("first_call", read.firstCall);
    if (fault.contains("calls")) {
        read.calls = fault["calls"].is_string() ? Fault::all : fault["calls"].get<std::uint64_t>();
    }
    read.value = fault.value("value", read.value);
    read.text = fault.value("text", read.text);
    return read;
}

/// Mixes the bits of two numbers, so that channels with neighbouring numbers have nothing in common.
std::uint64_t seedOfChannel(std::uint64_t seed, std::uint64_t channel)
{
    std::uint64_t mixed = (seed << 32U) ^ channel;
    for (const std::uint64_t factor : {0xBF58476D1CE4E5B9ULL, 0x94D049BB133111EBULL}) {
        mixed = (mixed ^ (mixed >> 30U)) * factor;
    }
    return mixed ^ (mixed >> 31U);
}

} // namespace

Link readLink(const json& channel)
{
    Link link;
    link.unitTypeText = channel.at("unit_type").get<std::string>();
    link.properties = readProperties(channel);
    link.frequencyParameters = readFrequencyParameters(channel);
    link.channelSpacing_kHz = word(channel, "channel_spacing_kHz");
    link.rxFrequency_kHz = word(channel.at("receive_kHz"), "configured");
    readReceiver(channel.at("receiver"), link);
    readFading(channel.value("fading", json::object()), link);
    for (const json& fault : channel.value("faults", json::array())) {
        link.faults.push_back(readFault(fault));
    }
    return link;
}

ReadScenario readScenario(const json& file, const RecordingReader& readRecording)
{
    ReadScenario scenario;
    scenario.name = file.at("name").get<std::string>();
    scenario.description = file.at("description").get<std::string>();
    scenario.sources = file.at("sources").get<std::vector<std::string>>();
    for (const json& channel : file.at("channels")) {
        ReadChannel read;
        read.path = elementPath("$.channels", scenario.channels.size());
        read.channel.number = RadioChannel{word(channel, "number")};
        Link& link = read.channel.link;
        link = readLink(channel);
        link.seed = seedOfChannel(file.at("seed").get<std::uint64_t>(), word(channel, "number"));
        for (ReadEmitter& one : readEmitters(channel.at("emitters"), readRecording, read.path)) {
            link.emitters.push_back(std::move(one.emitter));
            read.emitterPaths.push_back(std::move(one.path));
        }
        scenario.channels.push_back(std::move(read));
    }
    return scenario;
}

} // namespace simulator

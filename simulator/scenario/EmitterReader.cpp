#include "simulator/scenario/JsonText.h"
#include "simulator/scenario/ScenarioReader.h"

namespace simulator {

namespace {

using nlohmann::json;

double number(const json& object, const char* key)
{
    return object.at(key).get<double>();
}

Schedule readSchedule(const json& emitter)
{
    Schedule schedule;
    const json given = emitter.value("schedule", json::object());
    schedule.from_ms = given.value("from_ms", schedule.from_ms);
    schedule.duration_ms = given.value("duration_ms", schedule.duration_ms);
    schedule.every_ms = given.value("every_ms", schedule.every_ms);
    return schedule;
}

Carrier readCarrier(const json& carrier)
{
    Carrier read{number(carrier, "centre_kHz"), number(carrier, "level_dBm"), number(carrier, "symbol_rate_kBd"),
        number(carrier, "roll_off")};
    if (carrier.contains("shoulders")) {
        const json& shoulders = carrier["shoulders"];
        read.shoulders = Shoulders{
            number(shoulders, "channel_width_kHz"), number(shoulders, "adjacent_dB"), number(shoulders, "further_dB")};
    }
    return read;
}

/// One carrier, or a row of them.
std::vector<Signal> readCarriers(const json& carrier)
{
    const json row = carrier.value("row", json{{"count", 1}, {"spacing_kHz", 0}});
    std::vector<Signal> carriers;
    for (int index = 0; index < row["count"].get<int>(); ++index) {
        Carrier one = readCarrier(carrier);
        one.centre_kHz += index * number(row, "spacing_kHz");
        carriers.emplace_back(one);
    }
    return carriers;
}

std::vector<Signal> readWave(const json& wave)
{
    ContinuousWave read{number(wave, "frequency_kHz"), number(wave, "level_dBm")};
    if (wave.contains("drift")) {
        read.drift_kHz = number(wave["drift"], "reach_kHz");
        read.driftPeriod_ms = number(wave["drift"], "period_ms");
    }
    return {read};
}

std::vector<Signal> readNoiseBand(const json& band)
{
    return {NoiseBand{number(band, "lowest_kHz"), number(band, "highest_kHz"), number(band, "rise_dB")}};
}

std::vector<Signal> readEdge(const json& edge)
{
    return {EdgeLeakage{number(edge, "edge_kHz"), number(edge, "density_dBm_per_MHz"), number(edge, "slope_dB_per_MHz")}};
}

/// The recording shifted to where the scenario has it.
std::vector<Signal> shifted(const json& recording, const RecordingReader& readRecording, const std::string& path)
{
    try {
        Recording read = readRecording(recording.at("file").get<std::string>());
        read.lowest_kHz = number(recording, "lowest_kHz");
        return {std::move(read)};
    } catch (const ScenarioError& error) {
        throw ScenarioError(path + ".file: " + error.what());
    }
}

} // namespace

std::vector<ReadEmitter> readEmitters(const json& emitters, const RecordingReader& readRecording, const std::string& path)
{
    std::vector<ReadEmitter> read;
    const std::string below = path + ".";
    const auto readKind = [&](const std::string& kind, const auto& signalsOf) {
        const json list = emitters.value(kind, json::array());
        for (std::size_t index = 0; index < list.size(); ++index) {
            const std::string place = elementPath("emitters." + kind, index);
            for (const Signal& signal : signalsOf(list[index], below + place)) {
                read.push_back({{signal, readSchedule(list[index]), list[index].value("fades", false)}, place});
            }
        }
    };
    const auto plain = [](const auto& signalsOf) {
        return [signalsOf](const json& emitter, const std::string&) { return signalsOf(emitter); };
    };
    readKind("carriers", plain(readCarriers));
    readKind("continuous_waves", plain(readWave));
    readKind("noise_bands", plain(readNoiseBand));
    readKind("edges", plain(readEdge));
    readKind("recordings", [&readRecording](const json& recording, const std::string& place) {
        return shifted(recording, readRecording, place);
    });
    return read;
}

} // namespace simulator

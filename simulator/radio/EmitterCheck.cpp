#include "simulator/radio/LinkChecks.h"

#include "simulator/radio/Emitters.h"

#include <cstddef>
#include <variant>

namespace simulator {

namespace {

constexpr double lowest_dBm = -200;
constexpr double highest_dBm = 60;
constexpr double greatest_dB = 200;
constexpr double widest_kHz = 10000000;

std::string whyWrong(const Carrier& carrier)
{
    std::string why = firstOutOfRange({
        {"carrier's centre", carrier.centre_kHz, 0, largestWord, " kHz"},
        {"carrier's level", carrier.level_dBm, lowest_dBm, highest_dBm, " dBm"},
        {"carrier's symbol rate", carrier.symbolRate_kBd, 1, widest_kHz, " kBd"},
        {"carrier's roll-off", carrier.rollOff, 0, 1, ""},
    });
    if (!why.empty() || !carrier.shoulders) {
        return why;
    }
    return firstOutOfRange({
        {"channel width of the carrier's shoulders", carrier.shoulders->channelWidth_kHz, 1, widest_kHz, " kHz"},
        {"distance to the carrier's first shoulder", carrier.shoulders->adjacent_dB, 0.1, greatest_dB, " dB"},
        {"distance to the carrier's second shoulder", carrier.shoulders->further_dB, 0.1, greatest_dB, " dB"},
    });
}

std::string whyWrong(const ContinuousWave& wave)
{
    const double shortestPeriod_ms = wave.drift_kHz > 0.0 ? 0.01 : 0.0;
    return firstOutOfRange({
        {"continuous wave's frequency", wave.frequency_kHz, 0, largestWord, " kHz"},
        {"continuous wave's level", wave.level_dBm, lowest_dBm, highest_dBm, " dBm"},
        {"continuous wave's drift", wave.drift_kHz, 0, widest_kHz, " kHz"},
        {"continuous wave's drift period", wave.driftPeriod_ms, shortestPeriod_ms, longestTime_ms, " ms"},
    });
}

std::string whyWrong(const NoiseBand& band)
{
    if (band.lowest_kHz > band.highest_kHz) {
        return wrongWayRound("noise band's lowest frequency", band.lowest_kHz, "highest", band.highest_kHz, " kHz");
    }
    return firstOutOfRange({
        {"noise band's lowest frequency", band.lowest_kHz, 0, largestWord, " kHz"},
        {"noise band's highest frequency", band.highest_kHz, 0, largestWord, " kHz"},
        {"noise band's rise", band.rise_dB, 0, 100, " dB"},
    });
}

std::string whyWrong(const EdgeLeakage& leakage)
{
    return firstOutOfRange({
        {"leakage's edge", leakage.edge_kHz, 0, largestWord, " kHz"},
        {"leakage's density", leakage.density_dBmPerMHz, lowest_dBm, highest_dBm, " dBm/MHz"},
        {"leakage's slope", leakage.slope_dBPerMHz, 0.0001, 10000, " dB/MHz"},
    });
}

std::string whyWrong(const Recording& recording)
{
    if (recording.bins == nullptr) {
        return "the recording is empty; it must have at least one bin";
    }
    return firstOutOfRange({
        {"recording's lowest frequency", recording.lowest_kHz, 0, largestWord, " kHz"},
        {"recording's step", recording.bins->step_kHz(), 0.001, widest_kHz, " kHz"},
    });
}

std::string whyWrong(const Schedule& schedule)
{
    const double shortestEvery_ms = schedule.every_ms == 0.0 ? 0.0 : schedule.duration_ms;
    if (schedule.every_ms != 0.0 && schedule.duration_ms > longestTime_ms) {
        return "the schedule has turns without end; it must then be on once";
    }
    return firstOutOfRange({
        {"schedule's beginning", schedule.from_ms, 0, longestTime_ms, " ms"},
        {"schedule's duration", schedule.duration_ms, 0.001, std::numeric_limits<double>::infinity(), " ms"},
        {"time from turn to turn of the schedule", schedule.every_ms, shortestEvery_ms, longestTime_ms, " ms"},
    });
}

std::string whyWrong(const Rain& rain)
{
    return firstOutOfRange({
        {"rain's beginning", rain.from_ms, 0, longestTime_ms, " ms"},
        {"rain's rate", rain.rate_dBPerS, 0.0001, 1000, " dB/s"},
        {"rain's depth", rain.depth_dB, 0, greatest_dB, " dB"},
        {"time that the rain stays", rain.hold_ms, 0, longestTime_ms, " ms"},
    });
}

std::string whyWrong(const Notch& notch)
{
    return firstOutOfRange({
        {"notch's first centre", notch.begin_kHz, 0, largestWord, " kHz"},
        {"notch's last centre", notch.end_kHz, 0, largestWord, " kHz"},
        {"notch's speed", notch.speed_kHzPerS, 0, widest_kHz, " kHz/s"},
        {"notch's width", notch.width_kHz, 0.001, widest_kHz, " kHz"},
        {"notch's depth", notch.depth_dB, 0, greatest_dB, " dB"},
    });
}

std::string whyWrong(const Emitter& emitter)
{
    std::string why = std::visit([](const auto& signal) { return whyWrong(signal); }, emitter.signal);
    return why.empty() ? whyWrong(emitter.schedule) : why;
}

template <typename Records>
std::optional<Complaint> firstWrong(const char* list, const Records& records)
{
    for (std::size_t index = 0; index < records.size(); ++index) {
        if (auto why = complaint(element(list, index), whyWrong(records[index]))) {
            return why;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<Complaint> checkEmitters(const Link& link)
{
    return firstWrong("emitters", link.emitters);
}

std::optional<Complaint> checkFading(const Link& link)
{
    if (auto why = firstWrong("fading.rain", link.rain)) {
        return why;
    }
    const Quantity notches{"number of notches", static_cast<double>(link.notches.size()), 0, mostNotches, ""};
    if (auto why = complaint("fading.notches", outOfRange(notches))) {
        return why;
    }
    return firstWrong("fading.notches", link.notches);
}

} // namespace simulator

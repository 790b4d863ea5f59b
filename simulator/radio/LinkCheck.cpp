#include "simulator/radio/Link.h"

#include <charconv>
#include <limits>

namespace simulator {

namespace {

constexpr double largestWord = std::numeric_limits<std::uint32_t>::max();

/// A figure of a link and the range in which a terminal can work with it.
struct Quantity {
    const char* what;
    double value;
    double lowest;
    double highest;
    const char* unit;
};

/// Numbers in messages look alike whatever the global locale says.
std::string number(double value, const char* unit = "")
{
    char text[32];
    const auto result = std::to_chars(std::begin(text), std::end(text), value, std::chars_format::general, 12);
    return std::string(std::begin(text), result.ptr) + unit;
}

/// Empty when every figure is in its range. Not a number is in none.
std::string firstOutOfRange(std::initializer_list<Quantity> quantities)
{
    for (const auto& [what, value, lowest, highest, unit] : quantities) {
        if (!(lowest <= value && value <= highest)) {
            return std::string("the ") + what + " is " + number(value, unit) + "; it must be " + number(lowest) + " to "
                + number(highest, unit);
        }
    }
    return {};
}

std::string wrongWayRound(const char* lowest, double low, const char* highest, double high, const char* unit)
{
    return std::string("the ") + lowest + ", " + number(low, unit) + ", lies above the " + highest + ", "
        + number(high, unit) + "; it must not";
}

std::string checkChannel(const Link& link)
{
    const RadioFrequencyParameters& parameters = link.frequencyParameters;
    const double lowest_kHz = parameters.minRxFrequency_kHz;
    const double highest_kHz = parameters.maxRxFrequency_kHz;
    if (lowest_kHz > highest_kHz) {
        return wrongWayRound("lowest receive frequency", lowest_kHz, "highest", highest_kHz, " kHz");
    }
    return firstOutOfRange({
        {"channel spacing", static_cast<double>(link.channelSpacing_kHz), 1, largestWord, " kHz"},
        {"configured receive frequency", static_cast<double>(link.rxFrequency_kHz), lowest_kHz, highest_kHz, " kHz"},
    });
}

/// A sweep of the whole raster must find every step tunable.
std::string checkRaster(const Link& link)
{
    const RadioFrequencyParameters& parameters = link.frequencyParameters;
    const double step_kHz = parameters.frequencyStepSize_kHz;
    const double lowest_kHz = parameters.minRxFrequency_kHz;
    const double highest_kHz = parameters.maxRxFrequency_kHz;
    const auto frequencyOf = [&](double index) { return parameters.rxBaseFrequency_kHz + step_kHz * index; };
    if (parameters.stepLimitLow > parameters.stepLimitHigh) {
        return wrongWayRound("lowest raster step", parameters.stepLimitLow, "highest", parameters.stepLimitHigh, "");
    }
    return firstOutOfRange({
        {"raster step", step_kHz, 1, largestWord, " kHz"},
        {"frequency of the lowest raster step", frequencyOf(parameters.stepLimitLow), lowest_kHz, highest_kHz, " kHz"},
        {"frequency of the highest raster step", frequencyOf(parameters.stepLimitHigh), lowest_kHz, highest_kHz, " kHz"},
    });
}

std::string checkReceiver(const Link& link)
{
    return firstOutOfRange({
        {"receive filter's width", link.filterWidth_kHz, 1, 10000000, " kHz"},
        {"noise figure", link.noiseFigure_dB, 0, 50, " dB"},
        {"settling time", link.settlingTime_ms, 0.01, 60000, " ms"},
        {"jitter", link.jitter_dB, 0, 20, " dB"},
    });
}

std::string checkEmitter(const Carrier& carrier)
{
    return firstOutOfRange({
        {"carrier's centre", carrier.centre_kHz, 0, largestWord, " kHz"},
        {"carrier's level", carrier.level_dBm, -200, 60, " dBm"},
        {"carrier's symbol rate", carrier.symbolRate_kBd, 1, 10000000, " kBd"},
        {"carrier's roll-off", carrier.rollOff, 0, 1, ""},
    });
}

std::string checkEmitter(const ContinuousWave& wave)
{
    return firstOutOfRange({
        {"continuous wave's frequency", wave.frequency_kHz, 0, largestWord, " kHz"},
        {"continuous wave's level", wave.level_dBm, -200, 60, " dBm"},
    });
}

std::string checkEmitter(const NoiseBand& band)
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

std::string checkEmitter(const EdgeLeakage& leakage)
{
    return firstOutOfRange({
        {"leakage's edge", leakage.edge_kHz, 0, largestWord, " kHz"},
        {"leakage's density", leakage.density_dBmPerMHz, -200, 60, " dBm/MHz"},
        {"leakage's slope", leakage.slope_dBPerMHz, 0.0001, 10000, " dB/MHz"},
    });
}

std::string checkEmitter(const Recording& recording)
{
    return firstOutOfRange({
        {"recording's lowest frequency", recording.lowest_kHz, 0, largestWord, " kHz"},
        {"recording's step", recording.step_kHz, 0.001, 10000000, " kHz"},
    });
}

std::string checkEmitters(const Link& link)
{
    for (std::size_t index = 0; index < link.emitters.size(); ++index) {
        const std::string why =
            std::visit([](const auto& emitter) { return checkEmitter(emitter); }, link.emitters[index].signal);
        if (!why.empty()) {
            return "emitter " + std::to_string(index + 1) + ": " + why;
        }
    }
    return {};
}

} // namespace

std::string whyImpossible(const Link& link)
{
    for (const auto check : {checkChannel, checkRaster, checkReceiver, checkEmitters}) {
        const std::string why = check(link);
        if (!why.empty()) {
            return "link \"" + link.name + "\": " + why;
        }
    }
    return {};
}

} // namespace simulator

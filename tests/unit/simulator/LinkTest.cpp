#include "simulator/radio/Link.h"

#include "tests/support/Recordings.h"
#include "tests/unit/simulator/TestLink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <stdexcept>
#include <string>

// Links that a program has made are judged by the table that judges files; the limits of each field are held in the schema.

namespace {

using namespace simulator;
using tests::plainLink;
using Change = std::function<void(Link&)>;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// What is wrong with plainLink after a change; empty when nothing is.
std::string errorAfter(const Change& change)
{
    Link link = plainLink();
    change(link);
    try {
        requirePossible(link);
        return {};
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

Change withFaults(const std::vector<Fault>& faults)
{
    return [faults](Link& link) { link.faults = faults; };
}

Change withEmitter(const Emitter& emitter)
{
    return [emitter](Link& link) { link.emitters.push_back(emitter); };
}

struct Row {
    Change change;
    std::string error;
};

TEST(Links, thatAProgramHasMadeAreJudgedFieldByField)
{
    const Row rows[] = {
        {[](Link& link) { link.jitter_dB = notANumber; },
            "receiver.jitter_dB: is nan dB; must be a number from 0 to 20 dB (standard deviation of one reading)"},
        {[](Link& link) { link.channelSpacing_kHz = 0; },
            "channel_spacing_kHz: is 0; must be an integer from 1 to 1000000 kHz (from one channel to the next)"},
        {[](Link& link) { link.notches.resize(9); },
            "fading.notches: has 9 items; must be a list of at most 8 items (multipath notches)"},
        {[](Link& link) {
             link.rain = {{0.0, 1.0, 10.0, 1000.0}, {0.0, 1.0, 201.0, 0.0}};
         },
            "fading.rain[1].depth_dB: is 201 dB; must be a number from 0 to 200 dB (how far it falls)"},
        {[](Link& link) { link.unitTypeText = "two\nlines"; },
            "unit_type: is \"two\\x0Alines\"; must be a line of at most 100 characters (type text of the outdoor unit)"},
        {withEmitter(ContinuousWave{19e6, -60.0, Drift{1.0, 0.0}}),
            "emitters.continuous_waves[0].drift.period_ms: is 0 ms; must be a number from 0.01 to 100000000000 ms (of one "
            "swing there and back)"},
        {withEmitter(Carrier{19e6, 61.0, 20000.0, 0.25}),
            "emitters.carriers[1].level_dBm: is 61 dBm; must be a number from -200 to 60 dBm (power of the whole carrier)"},
        {withEmitter(Recording{19e6, nullptr}), "emitters.recordings[0]: is empty; must have a file or rows"},
        {withEmitter(Recording{19e6, nullptr, "sweep.csv"}), "emitters.recordings: the bins of a recording are not read"},
        {withFaults({{static_cast<Operation>(8), FaultAction::fail}}), "faults[0].operation: is unknown; must be \"setRx"},
        {withFaults({{Operation::readRssi, FaultAction::fail, 0}}), "faults[0].first_call: is 0; must be an integer from 1"},
    };
    for (const auto& [change, error] : rows) {
        EXPECT_THAT(errorAfter(change), testing::StartsWith(error));
    }
}

TEST(Links, obeyRulesAboutSeveralFields)
{
    const std::string range = "; must be from 18700000 to 19700000 kHz, the receive range";
    const std::string ofRange = "; must be one from 18700000 to 19700000 kHz, the receive range";
    const Row rows[] = {
        {[](Link& link) { link.frequencyParameters.minRxFrequency_kHz = 19700001; },
            "receive_kHz.lowest: is 19700001; must not be above the highest, which is 19700000"},
        {[](Link& link) { link.rxFrequency_kHz = 19700001; }, "receive_kHz.configured: is 19700001 kHz" + range},
        {[](Link& link) { link.frequencyParameters.stepLimitLow = 6801; },
            "raster.lowest_step: is 6801; must not be above the highest, which is 6800"},
        {[](Link& link) { link.frequencyParameters.stepLimitLow = 2799; },
            "raster.lowest_step: is 2799, a frequency of 18699750 kHz" + ofRange},
        {[](Link& link) { link.frequencyParameters.stepLimitHigh = 6801; },
            "raster.highest_step: is 6801, a frequency of 19700250 kHz" + ofRange},
        {[](Link& link) { link.frequencyParameters.stepLimitHigh = 2839; },
            "raster: spans 9750 kHz; must span at least 10000 kHz"},
        {[](Link& link) { link.channelSpacing_kHz = 1; },
            "channel_spacing_kHz: is 1 kHz; must be from 2 to 1000000 kHz: at most a million channels in the receive range"},
        {withEmitter(NoiseBand{19e6, 18e6, 3.0}),
            "emitters.noise_bands[0].lowest_kHz: is 19000000; must not be above the highest, which is 18000000"},
        {withEmitter(Emitter(ContinuousWave{19e6, -60.0}, {.duration_ms = 100.0, .every_ms = 99.0})),
            "emitters.continuous_waves[0].schedule.duration_ms: is 100; must not be above every_ms, which is 99"},
    };
    for (const auto& [change, error] : rows) {
        EXPECT_EQ(errorAfter(change), error);
    }
}

TEST(Links, areJudgedWithTheAnswersOfTheirFaults)
{
    using enum Operation;
    const auto answer = [](Operation operation, std::int64_t value) {
        return withFaults({{setRxFrequency, FaultAction::refuse}, {operation, FaultAction::answer, 1, 1, value}});
    };
    const Row rows[] = {
        {answer(getRxFrequency, 18700000), ""},
        {answer(getRxFrequency, 18699999),
            "faults[1].value: is 18699999 kHz; must be from 18700000 to 19700000 kHz, the receive range"},
        {answer(getChannelSpacing, 1000000), ""},
        {answer(getChannelSpacing, 1),
            "faults[1].value: is 1 kHz; must be from 2 to 1000000 kHz: at most a million channels in the receive range"},
        {answer(getChannelSpacing, -1),
            "faults[1].value: is -1; must be from 0 to 4294967295 where operation is \"getChannelSpacing\""},
        {answer(readRssi, -2147483648), ""},
        {answer(readRssi, 2147483648),
            "faults[1].value: is 2147483648; must be from -2147483648 to 2147483647 where operation is \"readRssi\""},
        {withFaults({{getChannelSpacing, FaultAction::fail}}), ""}, // its value is not used
        {withFaults({{getChannelSpacing, FaultAction::stick}}),
            "faults[0].action: is \"stick\"; must be \"throw\" or \"answer\" where operation is \"getChannelSpacing\""},
    };
    for (const auto& [change, error] : rows) {
        EXPECT_EQ(errorAfter(change), error);
    }
}

TEST(Links, mayStandAtTheVeryEdges)
{
    const Change rows[] = {
        [](Link&) {},
        [](Link& link) { link.rxFrequency_kHz = 18700000; },
        [](Link& link) { link.frequencyParameters.stepLimitHigh = 2840; },
        [](Link& link) { link.channelSpacing_kHz = 2; },
        [](Link& link) { link.unitTypeText = "none that is known"; },
        [](Link& link) { link.emitters.clear(); },
        withFaults({{Operation::readRssi, FaultAction::fail, 1000000000, Fault::all}}),
        withEmitter(tests::recordingOf(4294967295.0, 1.0, {notANumber})),
        withEmitter(Emitter(ContinuousWave{19e6, -60.0}, {.duration_ms = 1e11, .every_ms = 1e11})),
    };
    for (const Change& change : rows) {
        EXPECT_EQ(errorAfter(change), "");
    }
}

} // namespace

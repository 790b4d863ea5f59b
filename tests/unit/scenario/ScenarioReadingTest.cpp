#include "tests/unit/scenario/TestScenario.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <set>

namespace {

using nlohmann::json;
using simulator::Scenario;
using tests::fullScenario;
using tests::parse;

/// The scenario with every key, read once.
class ScenarioReading : public testing::Test {
protected:
    const Scenario scenario = parse(fullScenario());
    const simulator::Link& link = scenario.channels.at(0).link;

    template <typename Kind>
    const Kind& signal(std::size_t index) const
    {
        return std::get<Kind>(link.emitters.at(index).signal);
    }
};

TEST_F(ScenarioReading, takesNameDescriptionAndSources)
{
    EXPECT_EQ(scenario.name, "full");
    EXPECT_EQ(scenario.description, "all there is");
    EXPECT_THAT(scenario.sources, testing::ElementsAre("Channel plan: mine.", "typical: the rest."));
}

TEST_F(ScenarioReading, takesTheUnit)
{
    ASSERT_EQ(scenario.channels.size(), 1U);
    EXPECT_EQ(scenario.channels[0].number, RadioChannel{3});
    EXPECT_EQ(link.unitTypeText, "KLM6 18G");
    EXPECT_EQ(link.properties.longHaul, 0);
    EXPECT_EQ(link.properties.extendedRxWait, 1);
    EXPECT_EQ(link.properties.slowRxWait, 0);
    EXPECT_EQ(link.properties.spareFlag, 1);
}

TEST_F(ScenarioReading, takesEachPropertyFromItsOwnKey)
{
    const char* const keys[] = {"long_haul", "extended_rx_wait", "slow_rx_wait", "spare_flag"};
    for (int only = 0; only < 4; ++only) {
        json file = fullScenario();
        file["channels"][0]["properties"] = {{keys[only], true}};
        const SDCProperties read = parse(file).channels[0].link.properties;
        EXPECT_EQ(read.longHaul, only == 0 ? 1 : 0) << keys[only];
        EXPECT_EQ(read.extendedRxWait, only == 1 ? 1 : 0) << keys[only];
        EXPECT_EQ(read.slowRxWait, only == 2 ? 1 : 0) << keys[only];
        EXPECT_EQ(read.spareFlag, only == 3 ? 1 : 0) << keys[only];
    }
}

TEST_F(ScenarioReading, takesFrequenciesAndRaster)
{
    const RadioFrequencyParameters& parameters = link.frequencyParameters;
    EXPECT_EQ(parameters.frequencyBand_GHz, 18U);
    EXPECT_EQ(parameters.minRxFrequency_kHz, 18700000U);
    EXPECT_EQ(parameters.maxRxFrequency_kHz, 19700000U);
    EXPECT_EQ(parameters.rxBaseFrequency_kHz, 18000000U);
    EXPECT_EQ(parameters.frequencyStepSize_kHz, 250U);
    EXPECT_EQ(parameters.stepLimitLow, 2801U);
    EXPECT_EQ(parameters.stepLimitHigh, 6799U);
    EXPECT_EQ(link.rxFrequency_kHz, 19177500U);
    EXPECT_EQ(link.channelSpacing_kHz, 27500U);
}

TEST_F(ScenarioReading, takesTheReceiver)
{
    EXPECT_EQ(link.filterWidth_kHz, 27000.0);
    EXPECT_EQ(link.noiseFigure_dB, 5.5);
    EXPECT_EQ(link.settlingTime_ms, 30.5);
    EXPECT_EQ(link.jitter_dB, 0.25);
    EXPECT_EQ(link.ultimateRejection_dB, 61.0);
    EXPECT_EQ(link.saturation_dBm, -21.0);
}

TEST_F(ScenarioReading, takesEachKindOfEmitters)
{
    ASSERT_EQ(link.emitters.size(), 6U);
    const auto& carrier = signal<simulator::Carrier>(0);
    EXPECT_EQ(carrier.centre_kHz, 19177500.5);
    EXPECT_EQ(carrier.level_dBm, -35.0);
    EXPECT_EQ(carrier.symbolRate_kBd, 21560.0);
    EXPECT_EQ(carrier.rollOff, 0.25);
    EXPECT_EQ(carrier.shoulders.value().channelWidth_kHz, 27400.0);
    EXPECT_EQ(carrier.shoulders.value().adjacent_dB, 31.0);
    EXPECT_EQ(carrier.shoulders.value().further_dB, 51.0);
    EXPECT_EQ(carrier.row.value().count, 3U);
    EXPECT_EQ(carrier.row.value().spacing_kHz, 55000.0);
    const auto& wave = signal<simulator::ContinuousWave>(1);
    EXPECT_EQ(wave.frequency_kHz, 19441000.0);
    EXPECT_EQ(wave.level_dBm, -84.0);
    EXPECT_EQ(wave.drift.value().reach_kHz, 14.0);
    EXPECT_EQ(wave.drift.value().period_ms, 15.0);
    const auto& edge = signal<simulator::EdgeLeakage>(2);
    EXPECT_EQ(edge.edge_kHz, 18700003.0);
    EXPECT_EQ(edge.density_dBmPerMHz, -71.0);
    EXPECT_EQ(edge.slope_dBPerMHz, 1.5);
    const auto& band = signal<simulator::NoiseBand>(3);
    EXPECT_EQ(band.lowest_kHz, 18700001.0);
    EXPECT_EQ(band.highest_kHz, 18700002.0);
    EXPECT_EQ(band.rise_dB, 17.0);
    const auto& recording = signal<simulator::Recording>(4);
    EXPECT_EQ(recording.lowest_kHz, 19000000.0); // shifted: it was recorded at 2.4 GHz
    EXPECT_EQ(recording.bins->step_kHz(), 1000.0);
    EXPECT_EQ(recording.bins->count(), 100U);
    EXPECT_EQ(recording.bandwidth_kHz, 3500.0);
    const auto& rows = signal<simulator::Recording>(5);
    EXPECT_EQ(rows.lowest_kHz, 19100000.0) << "where it was recorded";
    EXPECT_EQ(rows.bins->count(), 2U);
    EXPECT_FALSE(rows.bandwidth_kHz);
}

TEST_F(ScenarioReading, takesScheduleAndFadingOfEachKind)
{
    const double from_ms[] = {11, 16, 19, 0, 20};
    const bool fades[] = {true, true, false, false, true};
    for (std::size_t index = 0; index < 5; ++index) {
        EXPECT_EQ(link.emitters[index].schedule.from_ms, from_ms[index]) << index;
        EXPECT_EQ(link.emitters[index].fades, fades[index]) << index;
    }
    EXPECT_EQ(link.emitters[0].schedule.duration_ms, 12.0);
    EXPECT_EQ(link.emitters[0].schedule.every_ms, 13.0);
    EXPECT_EQ(link.emitters[3].schedule.duration_ms, 18.0);
    EXPECT_EQ(link.emitters[1].schedule.duration_ms, std::nullopt);
    EXPECT_EQ(link.emitters[1].schedule.every_ms, std::nullopt);
}

TEST_F(ScenarioReading, takesFadingAndFaults)
{
    ASSERT_EQ(link.rain.size(), 1U);
    EXPECT_EQ(link.rain[0].from_ms, 21.0);
    EXPECT_EQ(link.rain[0].rate_dBPerS, 0.5);
    EXPECT_EQ(link.rain[0].depth_dB, 22.0);
    EXPECT_EQ(link.rain[0].hold_ms, 23.0);
    ASSERT_EQ(link.notches.size(), 1U);
    EXPECT_EQ(link.notches[0].begin_kHz, 19100000.0);
    EXPECT_EQ(link.notches[0].end_kHz, 19200000.0);
    EXPECT_EQ(link.notches[0].speed_kHzPerS, 24.0);
    EXPECT_EQ(link.notches[0].width_kHz, 25.0);
    EXPECT_EQ(link.notches[0].depth_dB, 26.0);
    ASSERT_EQ(link.faults.size(), 1U);
    EXPECT_EQ(link.faults[0].operation, simulator::Operation::readRssi);
    EXPECT_EQ(link.faults[0].action, simulator::FaultAction::answer);
    EXPECT_EQ(link.faults[0].firstCall, 27U);
    EXPECT_EQ(link.faults[0].calls, 28U);
    EXPECT_EQ(link.faults[0].value, -29);
    EXPECT_EQ(link.faults[0].text, "thirty");
}

/// All that may be left out.
json barestScenario()
{
    json file = fullScenario();
    file.erase("$schema");
    json& channel = file["channels"][0];
    for (const char* const key : {"properties", "fading", "faults"}) {
        channel.erase(key);
    }
    channel["emitters"] = {
        {"carriers", {{{"centre_kHz", 19e6}, {"level_dBm", -40}, {"symbol_rate_kBd", 20000}, {"roll_off", 0}}}},
        {"continuous_waves", {{{"frequency_kHz", 19e6}, {"level_dBm", -40}}}}};
    return file;
}

TEST(BareScenario, hasNothingThatIsNotGiven)
{
    const Scenario scenario = parse(barestScenario());
    const simulator::Link& link = scenario.channels.at(0).link;
    const SDCProperties& properties = link.properties;
    EXPECT_EQ(properties.longHaul + properties.extendedRxWait + properties.slowRxWait + properties.spareFlag, 0);
    ASSERT_EQ(link.emitters.size(), 2U);
    EXPECT_FALSE(std::get<simulator::Carrier>(link.emitters[0].signal).shoulders);
    EXPECT_FALSE(std::get<simulator::Carrier>(link.emitters[0].signal).row);
    EXPECT_FALSE(std::get<simulator::ContinuousWave>(link.emitters[1].signal).drift);
    for (const simulator::Emitter& emitter : link.emitters) {
        EXPECT_EQ(emitter.schedule.from_ms, 0.0);
        EXPECT_EQ(emitter.schedule.duration_ms, std::nullopt);
        EXPECT_EQ(emitter.schedule.every_ms, std::nullopt);
        EXPECT_FALSE(emitter.fades);
    }
    EXPECT_TRUE(link.rain.empty() && link.notches.empty() && link.faults.empty());
}

TEST(Faults, areReadForEveryOperationAndAction)
{
    using simulator::FaultAction;
    using simulator::Operation;
    const std::pair<const char*, Operation> operations[] = {{"setRxFrequency", Operation::setRxFrequency},
        {"readRssi", Operation::readRssi}, {"getRxFrequency", Operation::getRxFrequency},
        {"getChannelSpacing", Operation::getChannelSpacing}, {"getFrequencyParameters", Operation::getFrequencyParameters},
        {"createPropertiesProvider", Operation::createPropertiesProvider}, {"getProperties", Operation::getProperties},
        {"getUnitInfo", Operation::getUnitInfo}};
    for (const auto& [name, operation] : operations) {
        json file = fullScenario();
        file["channels"][0]["faults"] = {{{"operation", name}, {"action", "throw"}}};
        const simulator::Fault fault = parse(file).channels[0].link.faults.at(0);
        EXPECT_EQ(fault.operation, operation) << name;
        EXPECT_EQ(fault.action, FaultAction::fail) << name;
        EXPECT_EQ(fault.firstCall, 1U);
        EXPECT_EQ(fault.calls, 1U);
        EXPECT_EQ(fault.value, 0);
        EXPECT_EQ(fault.text, "");
    }
    const std::pair<const char*, FaultAction> actions[] = {
        {"refuse", FaultAction::refuse}, {"answer", FaultAction::answer}, {"stick", FaultAction::stick}};
    for (const auto& [name, action] : actions) {
        json file = fullScenario();
        file["channels"][0]["faults"] = {{{"operation", "setRxFrequency"}, {"action", name}, {"calls", "all"}}};
        const simulator::Fault fault = parse(file).channels[0].link.faults.at(0);
        EXPECT_EQ(fault.action, action) << name;
        EXPECT_EQ(fault.calls, simulator::Fault::all);
    }
}

json withChannels(std::initializer_list<std::uint32_t> numbers, int seed)
{
    json file = barestScenario();
    file["seed"] = seed;
    const json channel = file["channels"][0];
    file["channels"] = json::array();
    for (const std::uint32_t number : numbers) {
        file["channels"].push_back(channel);
        file["channels"].back()["number"] = number;
    }
    return file;
}

TEST(Seeds, differFromChannelToChannelAndFromScenarioToScenario)
{
    std::set<std::uint64_t> seeds;
    std::size_t channels = 0;
    for (const int seed : {0, 1, 2, 77}) {
        for (const auto& channel : parse(withChannels({0, 1, 2, 3, 77, 4294967295}, seed)).channels) {
            seeds.insert(channel.link.seed);
            ++channels;
        }
    }
    EXPECT_EQ(seeds.size(), channels);
}

TEST(Seeds, dependOnTheNumberOfTheChannelAndNotOnItsNeighbours)
{
    const auto both = parse(withChannels({4, 9}, 5)).channels;
    EXPECT_EQ(both[1].link.seed, parse(withChannels({9}, 5)).channels[0].link.seed);
    EXPECT_EQ(both[0].number, RadioChannel{4});
    EXPECT_EQ(both[1].number, RadioChannel{9});
}

TEST(Comments, mayStandAnywhere)
{
    const std::string text = fullScenario().dump(2);
    std::string commented = "// first line\n";
    for (const char one : text) {
        commented += one;
        commented += one == '\n' ? "/* here */ // and here\n" : "";
    }
    EXPECT_EQ(tests::errorsOfText(commented), "");
    EXPECT_EQ(tests::errorsOfText("\xEF\xBB\xBF" + text), "") << "a byte order mark";
}

} // namespace

#include "simulator/radio/Air.h"
#include "simulator/scenario/Scenario.h"
#include "tests/support/Recordings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <string_view>

namespace {

using simulator::Carrier;
using simulator::Link;
using simulator::Scenario;
using testing::HasSubstr;

std::vector<Scenario> allScenarios()
{
    std::vector<Scenario> all;
    for (const embedded::Text& one : simulator::builtInScenarios()) {
        all.push_back(simulator::loadScenario(std::string(one.name)));
    }
    return all;
}

std::vector<Link> allLinks()
{
    std::vector<Link> all;
    for (const Scenario& scenario : allScenarios()) {
        for (const auto& channel : scenario.channels) {
            all.push_back(channel.link);
        }
    }
    return all;
}

Link linkOf(const char* name)
{
    return simulator::loadScenario(name).channels.at(0).link;
}

/// All carriers, those of a row one by one.
std::vector<Carrier> carriersOf(const Link& link)
{
    std::vector<Carrier> all;
    for (const simulator::Emitter& emitter : link.emitters) {
        if (const auto* const carrier = std::get_if<Carrier>(&emitter.signal)) {
            const simulator::Row row = carrier->row.value_or(simulator::Row{1, 0.0});
            for (std::uint32_t index = 0; index < row.count; ++index) {
                all.push_back(*carrier);
                all.back().centre_kHz += index * row.spacing_kHz;
            }
        }
    }
    return all;
}

TEST(BuiltInScenarios, areAllThereInTheOrderOfTheirNames)
{
    std::vector<std::string> names;
    for (const embedded::Text& one : simulator::builtInScenarios()) {
        names.emplace_back(one.name);
    }
    EXPECT_THAT(names,
        testing::ElementsAre("11-satellite", "13-fade", "15-edge", "18-busy", "18-f595", "23-cochannel", "23-hunt",
            "26-spur", "28-replay", "32-radar", "38-long", "42-dense", "6l-clean", "6u-longhaul", "7-other-raster", "8-quad",
            "80-wide", "dead-receiver", "flaky", "storm"));
    EXPECT_THAT(names, testing::Contains(simulator::defaultScenario));
}

TEST(BuiltInScenarios, areTheFilesOfTheTree)
{
    for (const embedded::Text& one : simulator::builtInScenarios()) {
        const auto file = std::filesystem::path(SDC_SCENARIOS) / (std::string(one.name) + ".json");
        EXPECT_EQ(simulator::loadScenario(file.string()).name, one.name);
        EXPECT_EQ(one.text.size(), std::filesystem::file_size(file));
    }
}

TEST(BuiltInScenarios, haveNamesDescriptionsAndSources)
{
    for (const Scenario& scenario : allScenarios()) {
        SCOPED_TRACE(scenario.name);
        EXPECT_LT(scenario.description.size(), 100U);
        EXPECT_EQ(scenario.description.find('\n'), std::string::npos);
        EXPECT_THAT(scenario.sources.front(), testing::ContainsRegex("^Channel plan: (ITU-R F|ECC/REC)"));
        EXPECT_THAT(scenario.sources.back(), testing::StartsWith("typical: "));
    }
}

/// The row of the radio type table that comes first in a text.
std::string unitTypeOf(const std::string& text)
{
    for (const char* const type : {"QRU7 K", "4741", "4742", "4743", "KLM5", "KLM6 P", "KLM6", "KLM", "SDC"}) {
        if (text.find(type) != std::string::npos) {
            return type;
        }
    }
    return "unknown";
}

TEST(BuiltInScenarios, coverUnitTypesBandsSpacingsAndDelays)
{
    std::map<std::string, int> types;
    std::set<std::uint32_t> bands;
    std::set<std::uint32_t> spacings_kHz;
    int longHaul = 0;
    int slow = 0;
    int extended = 0;
    for (const Link& link : allLinks()) {
        ++types[unitTypeOf(link.unitTypeText)];
        bands.insert(link.frequencyParameters.frequencyBand_GHz);
        spacings_kHz.insert(link.channelSpacing_kHz);
        longHaul += link.properties.longHaul;
        slow += link.properties.slowRxWait;
        extended += link.properties.extendedRxWait;
    }
    EXPECT_EQ(types.size(), 9U);
    EXPECT_EQ(types.count("unknown"), 0U);
    EXPECT_LT(*bands.begin(), 10U);
    EXPECT_EQ(bands.count(42), 1U); // the last one with the finer steps
    EXPECT_EQ(*bands.rbegin(), 80U);
    EXPECT_EQ(spacings_kHz.count(7000), 1U);
    EXPECT_GE(spacings_kHz.size(), 6U);
    EXPECT_GE(longHaul, 1);
    EXPECT_GE(slow, 1);
    EXPECT_GE(extended, 1);
}

TEST(BuiltInScenarios, coverAllThatCanBeOnTheAirAndGoWrong)
{
    std::set<std::size_t> kinds;
    std::size_t mostChannels = 0;
    std::size_t rain = 0;
    std::size_t notches = 0;
    std::size_t faults = 0;
    for (const Scenario& scenario : allScenarios()) {
        mostChannels = std::max(mostChannels, scenario.channels.size());
    }
    for (const Link& link : allLinks()) {
        rain += link.rain.size();
        notches += link.notches.size();
        faults += link.faults.size();
        for (const simulator::Emitter& emitter : link.emitters) {
            kinds.insert(emitter.signal.index());
        }
    }
    EXPECT_EQ(kinds.size(), std::variant_size_v<simulator::Signal>);
    EXPECT_EQ(mostChannels, 4U);
    EXPECT_GE(rain, 1U);
    EXPECT_GE(notches, 1U);
    EXPECT_GE(faults, 1U);
}

/// Centres of the upper half of a channel plan, in kHz: first + spacing * n for n = 1, 2, ...
struct ChannelPlan {
    const char* scenario;
    double zeroth_MHz;
    double spacing_MHz;
    int channels;
    int configured;
};

/// Band centre f0 and offset as the recommendations have them.
const ChannelPlan plans[] = {
    {"6l-clean", 6175 - 7.41, 29.65, 8, 5},
    {"6u-longhaul", 6770 - 10, 40, 8, 4},
    {"7-other-raster", 7575 + 7, 7, 20, 10},
    {"8-quad", 8000 + 2.5, 28, 9, 2},
    {"11-satellite", 11200 - 15, 40, 12, 6},
    {"13-fade", 12996 + 7, 28, 8, 4},
    {"15-edge", 11701 + 2740.5, 7, 8, 8},
    {"18-f595", 18700 + 10, 27.5, 35, 17},
    {"18-busy", 18700 + 10, 27.5, 35, 18},
    {"dead-receiver", 18700 + 10, 27.5, 35, 17},
    {"23-cochannel", 22400 + 42, 28, 40, 20},
    {"23-hunt", 22400 + 42, 28, 40, 20},
    {"flaky", 22400 + 42, 28, 40, 10},
    {"26-spur", 25501 + 42, 28, 32, 16},
    {"28-replay", 28500.5 + 42, 28, 32, 12},
    {"32-radar", 32599 + 14, 28, 27, 14},
    {"storm", 38248 + 14, 28, 43, 20},
    {"38-long", 38277.75 - 3.5, 3.5, 344, 172},
    {"42-dense", 42000 + 36, 28, 48, 24},
    {"80-wide", 81000, 250, 19, 10},
};

double centre_kHz(const ChannelPlan& plan, int channel)
{
    return std::round((plan.zeroth_MHz + plan.spacing_MHz * channel) * 1000.0);
}

TEST(BuiltInScenarios, standOnTheChannelsOfTheirPlans)
{
    EXPECT_EQ(std::size(plans), simulator::builtInScenarios().size());
    for (const ChannelPlan& plan : plans) {
        const Link link = linkOf(plan.scenario);
        EXPECT_EQ(link.channelSpacing_kHz, plan.spacing_MHz * 1000.0) << plan.scenario;
        EXPECT_EQ(link.rxFrequency_kHz, centre_kHz(plan, plan.configured)) << plan.scenario;
    }
}

/// The carriers that fill a channel are those of the plan; others say so by their symbol rate or their place.
TEST(BuiltInScenarios, haveTheirCarriersOnTheChannelsOfTheirPlans)
{
    const std::map<std::string, int> offRaster{{"7-other-raster", 2}};
    for (const ChannelPlan& plan : plans) {
        int others = 0;
        for (const Carrier& carrier : carriersOf(linkOf(plan.scenario))) {
            const double occupied_kHz = carrier.symbolRate_kBd * (1.0 + carrier.rollOff);
            if (std::abs(occupied_kHz - 0.98 * plan.spacing_MHz * 1000.0) > 0.01) {
                continue;
            }
            int matching = 0;
            for (int channel = 1; channel <= plan.channels; ++channel) {
                matching += carrier.centre_kHz == centre_kHz(plan, channel) ? 1 : 0;
            }
            others += matching == 1 ? 0 : 1;
        }
        EXPECT_EQ(others, offRaster.count(plan.scenario) == 0 ? 0 : offRaster.at(plan.scenario)) << plan.scenario;
    }
}

TEST(BuiltInScenarios, receiveTheirChannelsOnARasterThatReachesTheEnds)
{
    for (const ChannelPlan& plan : plans) {
        SCOPED_TRACE(plan.scenario);
        const Link link = linkOf(plan.scenario);
        const RadioFrequencyParameters& parameters = link.frequencyParameters;
        const auto frequencyOf = [&](std::uint32_t step) {
            return parameters.rxBaseFrequency_kHz + step * parameters.frequencyStepSize_kHz;
        };
        EXPECT_EQ(frequencyOf(parameters.stepLimitLow), parameters.minRxFrequency_kHz);
        EXPECT_EQ(frequencyOf(parameters.stepLimitHigh), parameters.maxRxFrequency_kHz);
        EXPECT_EQ((link.rxFrequency_kHz - parameters.rxBaseFrequency_kHz) % parameters.frequencyStepSize_kHz, 0U);
        const std::uint32_t half_kHz = link.channelSpacing_kHz / 2;
        EXPECT_GE(link.rxFrequency_kHz, parameters.minRxFrequency_kHz + half_kHz);
        EXPECT_EQ(link.rxFrequency_kHz + half_kHz > parameters.maxRxFrequency_kHz, std::string(plan.scenario) == "15-edge");
        EXPECT_GE(300.0, 5.0 * link.settlingTime_ms); // a reading is settled after the shortest settle delay
    }
}

TEST(Scenario18F595, standsOnChannel17)
{
    const Link link = linkOf("18-f595");
    EXPECT_EQ(link.unitTypeText, "KLM6 18G");
    EXPECT_EQ(link.rxFrequency_kHz, 19177500U);
    EXPECT_EQ(link.channelSpacing_kHz, 27500U);
    const RadioFrequencyParameters& parameters = link.frequencyParameters;
    EXPECT_EQ(parameters.frequencyBand_GHz, 18U);
    EXPECT_EQ(parameters.minRxFrequency_kHz, 18700000U);
    EXPECT_EQ(parameters.maxRxFrequency_kHz, 19700000U);
    EXPECT_EQ(parameters.frequencyStepSize_kHz, 250U);
    EXPECT_EQ(parameters.rxBaseFrequency_kHz, 18000000U);
    EXPECT_EQ(parameters.stepLimitLow, 2800U);
    EXPECT_EQ(parameters.stepLimitHigh, 6800U);
    const SDCProperties& properties = link.properties;
    EXPECT_EQ(properties.longHaul + properties.extendedRxWait + properties.slowRxWait + properties.spareFlag, 0);
}

TEST(Scenario18F595, hasTheReceiverOfATypicalRadio)
{
    const Link link = linkOf("18-f595");
    EXPECT_EQ(link.filterWidth_kHz, 27500.0);
    EXPECT_EQ(link.noiseFigure_dB, 5.0);
    EXPECT_EQ(link.settlingTime_ms, 30.0);
    EXPECT_EQ(link.jitter_dB, 0.5);
    EXPECT_EQ(link.ultimateRejection_dB, 60.0);
    EXPECT_EQ(link.saturation_dBm, -20.0);
}

TEST(Scenario18F595, hasTheWantedCarrierTwoNeighboursAndAWeakSpur)
{
    const Link link = linkOf("18-f595");
    ASSERT_EQ(link.emitters.size(), 4U);
    const std::pair<double, double> carriers[] = {{19177500, -35}, {19122500, -41}, {19260000, -45}}; // 17, 15 and 20
    for (std::size_t index = 0; index < 3; ++index) {
        const auto& carrier = std::get<Carrier>(link.emitters[index].signal);
        EXPECT_EQ(carrier.centre_kHz, carriers[index].first);
        EXPECT_EQ(carrier.level_dBm, carriers[index].second);
        EXPECT_NEAR(carrier.symbolRate_kBd * (1.0 + carrier.rollOff), 0.98 * 27500.0, 1e-6);
        EXPECT_EQ(carrier.rollOff, 0.25);
    }
    const auto& spur = std::get<simulator::ContinuousWave>(link.emitters[3].signal);
    EXPECT_EQ(spur.frequency_kHz, 19441000.0);
    EXPECT_EQ(spur.level_dBm, -84.0);
}

TEST(Scenario18Busy, leavesTwoChannelsClear)
{
    const Link link = linkOf("18-busy");
    std::set<double> taken;
    for (const simulator::Emitter& emitter : link.emitters) {
        taken.insert(std::get<Carrier>(emitter.signal).centre_kHz);
    }
    EXPECT_EQ(taken.size(), 13U); // the wanted one and twelve neighbours
    std::vector<int> clear;
    for (int channel = 11; channel <= 25; ++channel) {
        if (taken.count(18710000.0 + 27500.0 * channel) == 0) {
            clear.push_back(channel);
        }
    }
    EXPECT_THAT(clear, testing::ElementsAre(14, 22));
}

TEST(Scenario15Edge, leavesTheBandByOneMHz)
{
    const Link link = linkOf("15-edge");
    EXPECT_EQ(link.rxFrequency_kHz + link.channelSpacing_kHz / 2, link.frequencyParameters.maxRxFrequency_kHz + 1000);
}

TEST(Scenario23Cochannel, hasNoCarrierButTheInterferersOnItsChannel)
{
    const Link link = linkOf("23-cochannel");
    for (const simulator::Emitter& emitter : link.emitters) {
        const auto& carrier = std::get<Carrier>(emitter.signal);
        EXPECT_EQ(carrier.centre_kHz == link.rxFrequency_kHz, carrier.level_dBm == -78.0);
        EXPECT_LE(carrier.level_dBm, -60.0);
    }
}

TEST(Scenario23Hunt, hasAnIntruderThatTheFarEndCovers)
{
    const Link link = linkOf("23-hunt");
    const Carrier farEnd = std::get<Carrier>(link.emitters.at(0).signal);
    const Carrier intruder = std::get<Carrier>(link.emitters.at(1).signal);
    EXPECT_EQ(farEnd.centre_kHz, link.rxFrequency_kHz);
    EXPECT_GE(farEnd.level_dBm - intruder.level_dBm, 25.0) << "far less than readings scatter by";
    const double reach_kHz = intruder.symbolRate_kBd * (1.0 + intruder.rollOff) / 2.0;
    EXPECT_LE(std::abs(intruder.centre_kHz - link.rxFrequency_kHz) + reach_kHz, link.channelSpacing_kHz / 2.0);
}

std::string textOf(const char* name)
{
    const auto all = simulator::builtInScenarios();
    return std::string(std::ranges::find(all, std::string_view(name), &embedded::Text::name)->text);
}

/// What a line of the file is about stands behind it, for whoever takes an emitter off the air.
TEST(Scenario23Hunt, staysAScenarioWithoutTheLinesOfFarEndAndIntruder)
{
    const auto without = [](const std::string& remark, const std::string& text) {
        return std::regex_replace(text, std::regex("\n[^\n]*// " + remark + "(?=\n)"), "");
    };
    const std::string muted = without("the far end", textOf("23-hunt"));
    EXPECT_EQ(simulator::parseScenario(muted, "muted").channels.at(0).link.emitters.size(), 3U);
    const std::string quiet = without("the intruder", muted);
    EXPECT_EQ(simulator::parseScenario(quiet, "quiet").channels.at(0).link.emitters.size(), 2U);
}

/// Steps of a sub-band scan that see a line, out of the scan's lowest frequency and step.
int stepsThatSee(double line_kHz, const Link& link)
{
    int seen = 0;
    for (double step_kHz = 25558000.0; step_kHz <= 26452000.0; step_kHz += 2000.0) {
        seen += std::abs(line_kHz - step_kHz) <= link.filterWidth_kHz / 2.0 ? 1 : 0;
    }
    return seen;
}

TEST(Scenario26Spur, hasSpursOnBetweenAndAcrossTheSteps)
{
    const Link link = linkOf("26-spur");
    const auto wave = [&link](
                          std::size_t index) { return std::get<simulator::ContinuousWave>(link.emitters[index].signal); };
    EXPECT_EQ(stepsThatSee(wave(1).frequency_kHz, link), 0);
    EXPECT_EQ(stepsThatSee(wave(2).frequency_kHz, link), 1);
    std::set<int> drifting;
    for (int degree = 0; degree < 360; ++degree) {
        const double drift_kHz = wave(3).drift.value().reach_kHz * std::sin(degree / 57.295779513);
        drifting.insert(stepsThatSee(wave(3).frequency_kHz + drift_kHz, link));
    }
    EXPECT_THAT(drifting, testing::ElementsAre(0, 1));
}

TEST(Scenario32Radar, liesOverTheChannelAndIsHeardByThreeReadingsOfTenScansAndByNoneOfTheFirst)
{
    const Link link = linkOf("32-radar");
    const auto& radar = std::get<Carrier>(link.emitters.back().signal);
    const double half_kHz = radar.symbolRate_kBd * (1.0 - radar.rollOff) / 2.0;
    EXPECT_LT(std::abs(radar.centre_kHz - link.rxFrequency_kHz) + link.channelSpacing_kHz, half_kHz);
    constexpr int samples = 14; // of the channel: the first after 3 s, all others 300 ms after the one before
    std::vector<int> heard;
    std::set<int> where;
    for (int reading = 0; reading < 10 * samples; ++reading) {
        const double time_ms = 2700.0 * (reading / samples + 1) + 300.0 * (reading + 1);
        if (simulator::isOn(link.emitters.back().schedule, time_ms)) {
            heard.push_back(reading);
            where.insert(reading % samples);
        }
    }
    ASSERT_EQ(heard.size(), 3U);
    EXPECT_GE(heard.front(), samples);
    EXPECT_EQ(where.size(), 3U) << "at different frequencies";
}

TEST(Scenario38Long, hasAMinuteForEachOf344Channels)
{
    const Link link = linkOf("38-long");
    EXPECT_EQ(unitTypeOf(link.unitTypeText), "KLM6 P"); // one sample for each channel that fits
    EXPECT_EQ(link.properties.extendedRxWait, 1);       // a minute for each
    const RadioFrequencyParameters& parameters = link.frequencyParameters;
    EXPECT_EQ(parameters.minRxFrequency_kHz + 1750, 38277750U); // the first channel's centre
    EXPECT_EQ(parameters.maxRxFrequency_kHz - 1750, 39478250U); // the last one's
    EXPECT_EQ((39478250U - 38277750U) / link.channelSpacing_kHz + 1, 344U);
}

TEST(Scenario80Wide, hasItsNoiseFloorNearMinus82dBm)
{
    const Link link = linkOf("80-wide");
    const double noise_dBm = -174.0 + 10.0 * std::log10(link.filterWidth_kHz * 1000.0) + link.noiseFigure_dB;
    EXPECT_NEAR(noise_dBm, -82.0, 0.1);
}

TEST(ScenarioDeadReceiver, readsTheLowestReadingFromTheFirstCallOn)
{
    const Link link = linkOf("dead-receiver");
    ASSERT_EQ(link.faults.size(), 1U);
    EXPECT_EQ(link.faults[0].operation, simulator::Operation::readRssi);
    EXPECT_EQ(link.faults[0].action, simulator::FaultAction::answer);
    EXPECT_EQ(link.faults[0].value, -9970);
    EXPECT_EQ(link.faults[0].firstCall, 1U);
    EXPECT_EQ(link.faults[0].calls, simulator::Fault::all);
}

/// Whether the radio refuses a call of setRxFrequency.
bool refused(const Link& link, std::uint64_t call)
{
    return std::any_of(link.faults.begin(), link.faults.end(),
        [call](const simulator::Fault& fault) { return fault.firstCall <= call && call - fault.firstCall < fault.calls; });
}

TEST(ScenarioFlaky, failsThreeScansOfTheChannelAndRefusesOneRestore)
{
    const Link link = linkOf("flaky");
    EXPECT_EQ(link.channelSpacing_kHz, 28000U); // makes 14 samples
    constexpr int samples = 14;
    std::uint64_t call = 0;
    std::vector<std::pair<int, bool>> scans; // samples taken, receiver restored
    for (int scan = 0; scan < 6; ++scan) {
        int taken = 0;
        while (taken < samples && !refused(link, ++call)) {
            ++taken;
        }
        scans.emplace_back(taken, !refused(link, ++call));
    }
    EXPECT_THAT(scans,
        testing::ElementsAre(testing::Pair(4, true), testing::Pair(5, true), testing::Pair(13, true),
            testing::Pair(14, false), testing::Pair(14, true), testing::Pair(14, true)));
}

TEST(Scenario8Quad, hasChannelsOfItsOwn)
{
    const Scenario scenario = simulator::loadScenario("8-quad");
    ASSERT_EQ(scenario.channels.size(), 4U);
    std::set<std::uint64_t> seeds;
    for (std::uint32_t index = 0; index < 4; ++index) {
        const auto& channel = scenario.channels[index];
        EXPECT_EQ(channel.number, RadioChannel{index + 1});
        EXPECT_EQ(channel.link.rxFrequency_kHz, 8058500U + 56000U * index); // channels 2, 4, 6 and 8
        EXPECT_EQ(carriersOf(channel.link).size(), 4U);                     // each hears all of them
        seeds.insert(channel.link.seed);
    }
    EXPECT_EQ(seeds.size(), 4U);
}

TEST(Scenario28Replay, liesOverItsBand)
{
    const Link link = linkOf("28-replay");
    const auto& recording = std::get<simulator::Recording>(link.emitters.back().signal);
    EXPECT_EQ(recording.bins->count(), 100U);
    EXPECT_EQ(recording.bins->step_kHz(), 1000.0);
    EXPECT_GE(recording.lowest_kHz.value(), link.frequencyParameters.minRxFrequency_kHz);
    EXPECT_LE(recording.lowest_kHz.value() + recording.bins->width_kHz(), link.frequencyParameters.maxRxFrequency_kHz);
    const std::vector<double> levels_dBm = tests::levelsOf(recording);
    EXPECT_GT(*std::max_element(levels_dBm.begin(), levels_dBm.end()), -65.0);
}

} // namespace

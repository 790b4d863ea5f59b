// Every built-in scenario, scanned both ways with the real controller, and many channels at once.

#include "simulator/Radios.h"
#include "terminal/Terminal.h"
#include "tests/support/PlannedScan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>

namespace {

using simulator::Scenario;
using simulator::TerminalChannel;
using terminal::ScanPlan;
using terminal::ScanStart;
using terminal::Terminal;
using testing::Each;
using testing::Field;
using testing::Ge;

constexpr std::int32_t floor_cdBm = -9970;

bool isSame(const SDCResult& left, const SDCResult& right)
{
    return left.frequency_kHz == right.frequency_kHz && left.rssi == right.rssi;
}

/// A scan of each channel of a terminal, all at once. Each controller knows its radio's properties.
void scanAll(Terminal& terminal, const Scenario& scenario, ESDCCommand start)
{
    for (const TerminalChannel& channel : scenario.channels) {
        terminal.controller(channel.number).getSpectrumDiagnosticsProperties();
        ASSERT_EQ(terminal.startScan(channel.number, start), ScanStart::underWay);
    }
    for (const TerminalChannel& channel : scenario.channels) {
        terminal.waitForEnd(channel.number);
        if (!terminal.workerFailure(channel.number)) {
            terminal.waitForIdle(channel.number);
        }
    }
}

std::vector<std::string> builtInNames()
{
    std::vector<std::string> names;
    for (const embedded::Text& scenario : simulator::builtInScenarios()) {
        names.emplace_back(scenario.name);
    }
    return names;
}

class EveryScenario : public testing::TestWithParam<std::string> {
protected:
    const Scenario scenario = simulator::loadScenario(GetParam());
    const bool isFlawless =
        std::ranges::all_of(scenario.channels, [](const TerminalChannel& channel) { return channel.link.faults.empty(); });
};

void expectWholeScan(const Terminal& terminal, const TerminalChannel& channel, ESDCStatus finished)
{
    const ScanPlan plan = terminal.plan(channel.number).value();
    const std::vector<SDCResult> samples = terminal.samples(channel.number);
    EXPECT_EQ(terminal.controller(channel.number).getStatus(), finished);
    EXPECT_EQ(samples.size(), static_cast<std::size_t>(plan.samples));
    ASSERT_FALSE(samples.empty());
    EXPECT_EQ(samples.front().frequency_kHz, plan.lowest_kHz);
    EXPECT_EQ(samples.back().frequency_kHz, plan.highest_kHz);
    EXPECT_THAT(samples, Each(Field(&SDCResult::rssi, Ge(floor_cdBm))));
    EXPECT_EQ(terminal.rxFrequency_kHz(channel.number), channel.link.rxFrequency_kHz);
}

TEST_P(EveryScenario, withoutFaultsIsScannedWholeBothWaysAndPutsTheReceiverBack)
{
    Scenario flawless = scenario;
    for (TerminalChannel& channel : flawless.channels) {
        channel.link.faults.clear();
    }
    host::VirtualClock clock;
    simulator::Radios radios(flawless, clock);
    Terminal terminal(radios.channels(), clock);
    scanAll(terminal, flawless, SDC_CMD_CHANNEL_SCAN_START);
    for (const TerminalChannel& channel : flawless.channels) {
        expectWholeScan(terminal, channel, SDC_STATUS_CHANNEL_SCAN_FINISHED);
    }
    scanAll(terminal, flawless, SDC_CMD_SUB_BAND_SCAN_START);
    for (const TerminalChannel& channel : flawless.channels) {
        expectWholeScan(terminal, channel, SDC_STATUS_SUB_BAND_SCAN_FINISHED);
    }
}

TEST_P(EveryScenario, isScannedAsPreviewed)
{
    for (const ESDCCommand start : {SDC_CMD_CHANNEL_SCAN_START, SDC_CMD_SUB_BAND_SCAN_START}) {
        const ScanPlan preview = tests::plannedScan(scenario.channels.front(), start).value();
        host::VirtualClock clock;
        simulator::Radios radios(scenario, clock);
        Terminal terminal(radios.channels(), clock);
        scanAll(terminal, scenario, start);
        const ScanPlan plan = terminal.plan(scenario.channels.front().number).value();
        EXPECT_EQ(plan.lowest_kHz, preview.lowest_kHz);
        EXPECT_EQ(plan.highest_kHz, preview.highest_kHz);
        EXPECT_EQ(plan.samples, preview.samples);
        EXPECT_EQ(plan.settleTime(), preview.settleTime());
    }
}

TEST_P(EveryScenario, givesTheSameSamplesAgain)
{
    std::vector<std::vector<SDCResult>> runs;
    for (const double factor : {0.0, 1e9}) {
        const std::unique_ptr<host::Clock> clock = host::makeClock(factor);
        simulator::Radios radios(scenario, *clock);
        Terminal terminal(radios.channels(), *clock);
        scanAll(terminal, scenario, SDC_CMD_SUB_BAND_SCAN_START);
        runs.push_back(terminal.samples(scenario.channels.front().number));
    }
    EXPECT_TRUE(std::ranges::equal(runs[0], runs[1], isSame));
}

INSTANTIATE_TEST_SUITE_P(BuiltIn, EveryScenario, testing::ValuesIn(builtInNames()), [](const auto& name) {
    std::string identifier = name.param;
    std::ranges::replace(identifier, '-', '_');
    return identifier;
});

TEST(ManyChannels, sixtyFourScanAtOnceEachWithTheSamplesItHasAlone)
{
    const simulator::Link link = simulator::loadScenario("18-busy").channels.front().link;
    Scenario scenario;
    for (std::uint32_t number = 1; number <= 64; ++number) {
        scenario.channels.push_back({RadioChannel{number}, link});
        scenario.channels.back().link.seed = number;
    }
    host::VirtualClock clock;
    std::vector<std::vector<SDCResult>> together;
    {
        simulator::Radios radios(scenario, clock);
        Terminal terminal(radios.channels(), clock);
        scanAll(terminal, scenario, SDC_CMD_SUB_BAND_SCAN_START);
        for (const TerminalChannel& channel : scenario.channels) {
            together.push_back(terminal.samples(channel.number));
        }
    }
    for (std::size_t i = 0; i < scenario.channels.size(); ++i) {
        SCOPED_TRACE(i);
        const Scenario alone{
            .name = "", .description = "", .sources = {}, .channels = {scenario.channels[i]}, .seed = 0, .text = ""};
        simulator::Radios radios(alone, clock);
        Terminal terminal(radios.channels(), clock);
        scanAll(terminal, alone, SDC_CMD_SUB_BAND_SCAN_START);
        EXPECT_TRUE(std::ranges::equal(terminal.samples(scenario.channels[i].number), together[i], isSame));
        EXPECT_FALSE(i > 0 && std::ranges::equal(together[i], together[0], isSame)); // a seed of its own
    }
}

TEST(LongScenario, is344SamplesInFiveHours44MinutesOfRadioTime)
{
    const Scenario scenario = simulator::loadScenario("38-long");
    const ScanPlan plan = tests::plannedScan(scenario.channels.front(), SDC_CMD_SUB_BAND_SCAN_START).value();
    EXPECT_EQ(plan.samples, 344);
    EXPECT_EQ(plan.settleTime(), std::chrono::hours(5) + std::chrono::minutes(44));
}

} // namespace

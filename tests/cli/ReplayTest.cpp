// Results that are scanned again.

#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <ranges>
#include <utility>

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr double mostOff_dB = 0.1;

/// By radio channel and frequency: the mean power of the samples, in dBm.
std::map<std::pair<int, int>, double> levelsIn(const json& result)
{
    std::map<std::pair<int, int>, std::vector<double>> all;
    for (const json& channel : result.at("channels")) {
        for (const json& sweep : channel.at("sweeps")) {
            for (const json& sample : sweep.at("samples")) {
                all[{channel.at("channel"), sample.at("frequency_kHz")}].push_back(sample.at("level_dBm"));
            }
        }
    }
    std::map<std::pair<int, int>, double> means;
    for (const auto& [place, levels_dBm] : all) {
        double sum_mW = 0.0;
        for (const double level_dBm : levels_dBm) {
            sum_mW += std::pow(10.0, level_dBm / 10.0);
        }
        means[place] = 10.0 * std::log10(sum_mW / static_cast<double>(levels_dBm.size()));
    }
    return means;
}

class Replay : public Sdc {
protected:
    /// Every level of a result is in the other one; that one has more where samples are missing here.
    void expectTheSameLevels(const std::string& recorded, const std::string& replayed) const
    {
        const auto before = levelsIn(json::parse(read(recorded)));
        const auto after = levelsIn(json::parse(read(replayed)));
        EXPECT_THAT(before, testing::Not(IsEmpty()));
        for (const auto& [place, level_dBm] : before) {
            const auto again = after.find(place);
            ASSERT_NE(again, after.end()) << place.second;
            EXPECT_NEAR(again->second, level_dBm, mostOff_dB) << "channel " << place.first << ", " << place.second << " kHz";
        }
    }

    std::vector<std::string> scans() const
    {
        std::vector<std::string> all;
        for (const std::string& name : lines(run("scenarios list --names").out)) {
            all.push_back("channel --scenario " + name);
            all.push_back("sub-band --scenario " + name);
        }
        return all;
    }

    std::string kindOf(const std::string& scan) const { return scan.substr(0, scan.find(' ')); }
};

TEST_F(Replay, readsEveryBuiltInScenarioAgain)
{
    for (const std::string& scan : scans()) {
        SCOPED_TRACE(scan);
        run("scan " + scan + " --quiet --json result.json");
        const Outcome replay = run("scenarios replay result.json", "", ">again.json");
        ASSERT_EQ(replay.status, 0) << replay.err;
        EXPECT_EQ(run("scan " + kindOf(scan) + " --scenario again.json --quiet --json again-result.json").status, 0);
        expectTheSameLevels("result.json", "again-result.json");
    }
}

TEST_F(Replay, readsSweepRowsAgainThatSayTheirBandwidth)
{
    for (const std::string& scan : scans()) {
        SCOPED_TRACE(scan);
        run("scan " + scan + " --channel 1 --quiet --json result.json --sweep rows.csv");
        run("scenarios replay result.json", "", ">again.json");
        json scenario = json::parse(read("again.json"));
        json& recording = scenario.at("channels").at(0).at("emitters").at("recordings").at(0);
        recording = {{"file", "rows.csv"}, {"bandwidth_kHz", recording.at("bandwidth_kHz")}};
        write("rows.json", scenario.dump());
        EXPECT_EQ(run("scan " + kindOf(scan) + " --scenario rows.json --quiet --json again-result.json").status, 0);
        expectTheSameLevels("result.json", "again-result.json");
    }
}

TEST_F(Replay, isScannedWithoutAFileInBetween)
{
    run("scan channel --quiet --json result.json");
    ASSERT_EQ(run("scenarios replay - | '" SDC_PROGRAM "' scan channel --scenario - --quiet --json again-result.json",
                  "cat result.json |")
                  .status,
        0);
    expectTheSameLevels("result.json", "again-result.json");
    EXPECT_EQ(run("scenarios replay - --scenario -").err,
        "sdc: RESULT and --scenario: both are standard input; expected a file for one of them\n");
}

TEST_F(Replay, writesLongTracesInRowsThatCanBeRead)
{
    ASSERT_NO_FATAL_FAILURE(writeScenario("long.json", "38-long",
        {{"\"channel_spacing_kHz\": 3500", "\"channel_spacing_kHz\": 250"}, {"\"38-long\"", "\"long\""}}));
    run("scan sub-band --scenario long.json --quiet --json result.json");
    ASSERT_EQ(run("scenarios replay result.json --scenario long.json", "", ">again.json").status, 0);
    EXPECT_EQ(json::parse(read("again.json"))["channels"][0]["emitters"]["recordings"][0]["rows"].size(), 5U);
    run("scan sub-band --scenario again.json --quiet --json again-result.json");
    expectTheSameLevels("result.json", "again-result.json");
}

TEST_F(Replay, ofSeveralSweepsHasTheirAveragePower)
{
    run("scan channel --scenario 13-fade --repeat 5 --quiet --json result.json");
    ASSERT_EQ(run("scenarios replay result.json", "", ">again.json").status, 0);
    run("scan channel --scenario again.json --quiet --json again-result.json");
    expectTheSameLevels("result.json", "again-result.json");
    EXPECT_THAT(read("again.json"), HasSubstr("5 sweeps, average."));
}

TEST_F(Replay, ofSeveralSweepsHasTheTraceAskedFor)
{
    run("scan sub-band --scenario 32-radar --repeat 5 --quiet --json result.json");
    const json holds = json::parse(read("result.json"))["channels"][0]["holds"];
    for (const std::string trace : {"max", "min"}) {
        ASSERT_EQ(run("scenarios replay result.json --trace " + trace, "", ">again.json").status, 0);
        run("scan sub-band --scenario again.json --quiet --json again-result.json");
        const json samples = json::parse(read("again-result.json"))["channels"][0]["sweeps"][0]["samples"];
        ASSERT_EQ(samples.size(), holds["frequency_kHz"].size());
        for (std::size_t index = 0; index < samples.size(); ++index) {
            EXPECT_EQ(samples[index]["frequency_kHz"], holds["frequency_kHz"][index]);
            EXPECT_NEAR(samples[index]["level_dBm"], holds[trace + "_dBm"][index], mostOff_dB) << trace << ' ' << index;
        }
        EXPECT_THAT(read("again.json"), HasSubstr("5 sweeps, " + trace + "."));
    }
}

TEST_F(Replay, needsTheScenarioThatWasScanned)
{
    ASSERT_NO_FATAL_FAILURE(writeScenario("mine.json", "18-f595", {{"\"18-f595\"", "\"mine\""}}));
    ASSERT_NO_FATAL_FAILURE(
        writeScenario("other.json", "18-f595", {{"\"configured\": 19177500", "\"configured\": 19205000"}}));
    run("scan channel --scenario mine.json --quiet --json mine-result.json");
    run("scan channel --scenario other.json --quiet --json other-result.json");
    const Outcome mine = run("scenarios replay mine-result.json");
    EXPECT_EQ(mine.status, 2);
    EXPECT_EQ(mine.err,
        "sdc: the result is of scenario 'mine', which is not built in; write --scenario and the file of the scenario\n");
    EXPECT_EQ(run("scenarios replay mine-result.json --scenario mine.json").status, 0);
    const Outcome other = run("scenarios replay other-result.json");
    EXPECT_EQ(other.status, 2);
    EXPECT_EQ(other.err,
        "sdc: channel 1 of the result is not that of the built-in scenario '18-f595'; write --scenario and the file of the "
        "scenario\n");
    EXPECT_EQ(run("scenarios replay other-result.json --scenario other.json").status, 0);
}

TEST_F(Replay, leavesOutWhatTheRadioRefused)
{
    writeFaultyScenario("refusing.json", R"({"operation": "readRssi", "action": "refuse", "first_call": 3, "calls": 2})");
    run("scan channel --scenario refusing.json --quiet --json result.json");
    const Outcome replay = run("scenarios replay result.json --scenario refusing.json", "", ">again.json");
    EXPECT_EQ(replay.status, 0) << replay.err;
    EXPECT_EQ(run("scan channel --scenario again.json --quiet --json again-result.json").status, 0);
    auto before = levelsIn(json::parse(read("result.json")));
    const auto after = levelsIn(json::parse(read("again-result.json")));
    EXPECT_EQ(std::erase_if(before, [](const auto& reading) { return reading.second == 0.0; }), 2U);
    for (const auto& [place, level_dBm] : before) {
        EXPECT_NEAR(after.at(place), level_dBm, mostOff_dB) << place.second;
    }
    EXPECT_LT(std::ranges::max(std::views::values(after)), -30.0) << "nothing is read as 0 dBm";
}

TEST_F(Replay, refusesWhatCannotBeReadAgain)
{
    run("scan channel --quiet --json result.json");
    const json good = json::parse(read("result.json"));
    const auto errorAfter = [&](const auto& change) {
        json changed = good;
        change(changed);
        write("bad.json", changed.dump());
        const Outcome outcome = run("scenarios replay bad.json");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.out, IsEmpty());
        return outcome.err;
    };
    EXPECT_THAT(errorAfter([](json& result) { result["channels"][0]["receiver"]["filter_kHz"] = 0; }),
        HasSubstr("emitters.recordings[0].bandwidth_kHz: is 0.0; must be a number from 1 to "));
    EXPECT_THAT(errorAfter([](json& result) { result["channels"][0]["sweeps"][0]["samples"][1]["level_dBm"] = -2000; }),
        HasSubstr("level 2 is \"-2000.00\"; must be a number from -400 to 200"));
    EXPECT_EQ(errorAfter([](json& result) {
        json& sweep = result["channels"][0]["sweeps"][0];
        sweep["samples"] = json::array();
        sweep["taken"] = 0;
        sweep["ending"] = "stopped";
    }),
        "sdc: bad.json: channel 1 has no samples that are levels; must have one or more\n");
    EXPECT_THAT(run("scenarios replay result.json --scenario 8-quad").err, IsEmpty());
    run("scan channel --scenario 8-quad --channel 4 --quiet --json four.json");
    EXPECT_EQ(run("scenarios replay four.json --scenario 18-f595").err,
        "sdc: four.json: is of channel 4, which scenario '18-f595' has not\n");
    EXPECT_THAT(run("scenarios replay /dev/null").err, StartsWith("sdc: /dev/null: "));
}

} // namespace

// sdc scan: what it scans, and what it tells of it.

#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <map>

namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using Json = nlohmann::json;
using Scan = Sdc;

TEST_F(Scan, ofTheSubBandHas500SamplesOfWhichTheTableMayShowTheStrongest)
{
    const Outcome all = run("scan sub-band --csv samples.csv --table all.txt --rows 0");
    EXPECT_EQ(all.status, 0);
    EXPECT_THAT(all.err,
        AllOf(HasSubstr("\ncommand    sub-band-scan-start\n"),
            HasSubstr("\nstatus     sub-band-scan-finished, 500 of 500 samples\n")));
    EXPECT_EQ(lines(read("samples.csv")).size(), 501U);
    const auto rows = [](const std::string& table) { return std::ranges::count(table, '|'); };
    EXPECT_EQ(rows(read("all.txt")), 500);
    EXPECT_EQ(rows(run("scan sub-band --rows 50").out), 50);
}

TEST_F(Scan, takesTheWallTimeThatItsSpeedSays)
{
    EXPECT_THAT(run("scan channel --speed 1000").err, HasSubstr("\ntime       6.6 s of radio time, 0.0 s at this speed\n"));
    EXPECT_THAT(run("scan channel --speed 100 --repeat 3").err,
        HasSubstr("\ntime       6.6 s of radio time a sweep, 19.8 s for 3 sweeps, 0.1 s at this speed\n"));
}

/// What the documents promise of the radar: it shows in the maximum of ten sweeps, and hardly in the average.
TEST_F(Scan, tenTimesRepeatedShowsTheRadarInTheMaximum)
{
    const Outcome outcome = run("scan channel --scenario 32-radar --repeat 10 --quiet --json -");
    std::map<int, std::vector<double>> levels;
    const Json result = Json::parse(outcome.out);
    for (const Json& sweep : result["channels"][0]["sweeps"]) {
        for (const Json& sample : sweep["samples"]) {
            levels[sample["frequency_kHz"]].push_back(sample["level_dBm"]);
        }
    }
    int hit = 0;
    for (auto& [frequency_kHz, of] : levels) {
        std::ranges::sort(of);
        const double usual_dBm = of[of.size() / 2];
        double sum = 0.0;
        for (const double level_dBm : of) {
            sum += std::pow(10.0, (level_dBm - usual_dBm) / 10.0);
        }
        EXPECT_LT(10.0 * std::log10(sum / static_cast<double>(of.size())), 2.0) << frequency_kHz;
        EXPECT_LT(of[of.size() - 2] - usual_dBm, 2.0) << "one reading at most, " << frequency_kHz;
        hit += of.back() - usual_dBm > 4.0 ? 1 : 0;
    }
    EXPECT_EQ(hit, 3);
}

TEST_F(Scan, isToTheByteTheSameFromAStartTimeOn)
{
    const std::string arguments = "scan channel --start-time 2026-01-02T03:04:05Z --json - --quiet";
    const std::string once = run(arguments).out;
    EXPECT_EQ(run(arguments).out, once);
    EXPECT_EQ(Json::parse(run(arguments + " --speed 1000").out)["channels"], Json::parse(once)["channels"]);
    const Json sweep = Json::parse(once)["channels"][0]["sweeps"][0];
    EXPECT_EQ(sweep["samples"][0]["time"], "2026-01-02T03:04:08.000Z");
    EXPECT_EQ(sweep["samples"][12]["time"], sweep["end"]);
    EXPECT_EQ(sweep["start"], "2026-01-02T03:04:05.000Z");
    EXPECT_EQ(sweep["end"], "2026-01-02T03:04:11.600Z");
    EXPECT_EQ(sweep["rx_before_kHz"], 19177500);
    EXPECT_EQ(sweep["rx_after_kHz"], 19177500);
    EXPECT_EQ(sweep["ending"], "complete");
    EXPECT_EQ(sweep["status"], "channel-scan-finished");
}

TEST_F(Scan, keepsHowItWasMade)
{
    const Json provenance = Json::parse(run("scan channel --speed 1000 --json - --quiet").out)["provenance"];
    write("scenario.json", run("scenarios show 18-f595").out);
    const std::string command = "cd '" + folder.string() + "' && sha256sum <scenario.json | cut -d' ' -f1 >digest.txt";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(provenance["scenario_sha256"].get<std::string>() + "\n", read("digest.txt"));
    EXPECT_EQ(provenance["program_version"], SDC_VERSION);
    EXPECT_EQ(provenance["simulated"], true);
    EXPECT_EQ(provenance["seed"], Json::parse(read("scenario.json"), nullptr, true, true)["seed"]);
    EXPECT_EQ(provenance["speed"], 1000.0);
    EXPECT_EQ(provenance["arguments"], Json({"scan", "channel", "--speed", "1000", "--json", "-", "--quiet"}));
}

TEST_F(Scan, sweepsForSoLongAndSoOften)
{
    const Outcome outcome =
        run("scan channel --for 1h --every 10min --start-time 2026-01-02T03:04:05Z --json - --holds holds.csv");
    EXPECT_EQ(outcome.status, 0);
    const Json sweeps = Json::parse(outcome.out)["channels"][0]["sweeps"];
    ASSERT_EQ(sweeps.size(), 6U);
    EXPECT_EQ(sweeps[5]["start"], "2026-01-02T03:54:05.000Z");
    EXPECT_THAT(lines(read("holds.csv"))[1], testing::EndsWith(",6"));
    EXPECT_EQ(Json::parse(run("scan channel --for 7s --json -").out)["channels"][0]["sweeps"].size(), 2U);
    EXPECT_EQ(Json::parse(run("scan channel --for 1h --repeat 3 --json -").out)["channels"][0]["sweeps"].size(), 3U);
}

TEST_F(Scan, saysBeforeItThatItsResultWillBeFull)
{
    const std::string said = "'sdc plot' and 'sdc compare' read no results above 64 MiB, so --json ends";
    RunningSdc sdc(folder, {"scan", "sub-band", "--repeat", "2000", "--json", "a.json", "--speed", "1"});
    EXPECT_TRUE(tests::eventually(
        [&] { return read("err.txt").find("sdc: a scan of many samples: " + said) != std::string::npos; }));
    EXPECT_THAT(run("scan channel --repeat 2 --json a.json").err, Not(HasSubstr(said)));
}

TEST_F(Scan, beginsNowUnlessTold)
{
    const auto before = std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    const std::string start = Json::parse(run("scan channel --json - --quiet").out)["channels"][0]["sweeps"][0]["start"];
    EXPECT_THAT(start, ContainsRegex("^20[0-9]{2}-[01][0-9]-[0-3][0-9]T[0-2][0-9]:[0-5][0-9]:[0-5][0-9]\\.[0-9]{3}Z$"));
    const std::time_t seconds = std::chrono::system_clock::to_time_t(before);
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[sizeof "2026-01-02T03:04:05"];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
    EXPECT_GE(start, text);
}

TEST_F(Scan, sweepsAgainAndMovesTheTimeOn)
{
    const Outcome outcome = run("scan channel --repeat 3 --start-time 2026-01-02T03:04:05Z --json -");
    EXPECT_EQ(outcome.status, 0);
    const Json sweeps = Json::parse(outcome.out)["channels"][0]["sweeps"];
    ASSERT_EQ(sweeps.size(), 3U);
    EXPECT_EQ(sweeps[1]["start"], "2026-01-02T03:04:11.600Z");
    EXPECT_EQ(sweeps[2]["end"], "2026-01-02T03:04:24.800Z");
    EXPECT_NE(sweeps[0]["samples"], sweeps[1]["samples"]); // each reading has a jitter of its own
    EXPECT_THAT(
        outcome.err, HasSubstr("\nstatus     3 sweeps, 3 complete; the last: channel-scan-finished, 13 of 13 samples\n"));
    EXPECT_THAT(outcome.err, ContainsRegex("\nprogress   100 %  39/39 samples .* sweep 3/3\n"));
}

TEST_F(Scan, sweepsAllChannelsOfAScenarioAtOnce)
{
    const Outcome outcome = run("scan channel --scenario 8-quad --start-time 2026-01-02T03:04:05Z --json -");
    EXPECT_EQ(outcome.status, 0);
    const Json channels = Json::parse(outcome.out)["channels"];
    ASSERT_EQ(channels.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) {
        const std::string name = "channel " + std::to_string(i + 1) + ": ";
        EXPECT_EQ(channels[i]["channel"], i + 1);
        EXPECT_EQ(channels[i]["sweeps"][0]["start"], "2026-01-02T03:04:05.000Z");
        EXPECT_EQ(channels[i]["sweeps"][0]["taken"], 14);
        EXPECT_THAT(
            outcome.err, HasSubstr("\nstatus     " + name + "channel-scan-finished, 14 of 14 samples\nreceiver   " + name));
        EXPECT_THAT(outcome.err, HasSubstr("\nchannel    " + std::to_string(i + 1) + ": unit 4741 8G, receiver at "));
    }
    EXPECT_THAT(outcome.err, ContainsRegex("\nprogress   100 %  56/56 samples  channel [1-4] at 8"));
    EXPECT_THAT(outcome.err, HasSubstr("\ntime       6.9 s of radio time, ")); // not four times that
}

TEST_F(Scan, sweepsTheChannelsAskedForInTheirOrder)
{
    const Json channels = Json::parse(run("scan channel --scenario 8-quad --channel 3,1 --json - --quiet").out)["channels"];
    ASSERT_EQ(channels.size(), 2U);
    EXPECT_EQ(channels[0]["channel"], 3);
    EXPECT_EQ(channels[1]["channel"], 1);
    EXPECT_EQ(Json::parse(run("scan channel --scenario 8-quad --channel all --json -").out)["channels"].size(), 4U);
}

TEST_F(Scan, knowsTheRadiosPropertiesBeforeItStarts)
{
    const Outcome outcome = run("scan channel --scenario 38-long --start-time 2026-01-02T03:04:05Z --json -");
    EXPECT_EQ(outcome.status, 0);
    const Json plan = Json::parse(outcome.out)["channels"][0]["plan"];
    EXPECT_EQ(plan["settle_ms"], 60000);                           // extended: without the question 300
    EXPECT_THAT(outcome.err, HasSubstr("\nsettling   5000 ms\n")); // of a single sample
}

TEST_F(Scan, takesAScenarioFileOfTheUsersOwn)
{
    ASSERT_NO_FATAL_FAILURE(writeScenario("mine.json", "18-f595", {{"\"number\": 1", "\"number\": 0"}}));
    const Outcome outcome = run("scan channel --scenario mine.json");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.err, HasSubstr("\nchannel    0: unit KLM6 18G"));
}

TEST_F(Scan, isQuietOnRequestButForFailures)
{
    const Outcome quiet = run("scan channel --quiet");
    EXPECT_THAT(quiet.err, IsEmpty());
    EXPECT_THAT(quiet.out, HasSubstr("19188.750"));
    const Outcome failed = run("scan channel --scenario flaky --quiet --trace-level 0");
    EXPECT_EQ(failed.status, 3);
    EXPECT_THAT(failed.err, StartsWith("sdc: channel 1: tuning to "));
    EXPECT_EQ(lines(failed.err).size(), 1U);
}

TEST_F(Scan, tracesErrorsByDefaultAndStepsOnRequest)
{
    EXPECT_THAT(run("scan channel").err, Not(HasSubstr("ZRP.SDC")));
    EXPECT_THAT(run("scan channel --scenario flaky").err, HasSubstr("ZRP.SDC 1   sweep: Failed to set RX frequency "));
    EXPECT_THAT(run("scan channel --scenario flaky --trace-level 0").err, Not(HasSubstr("ZRP.SDC")));
    const std::string steps = run("scan channel --trace-level 7").err;
    EXPECT_THAT(
        steps, HasSubstr("ZRP.SDC 6 > setCommand: m_radioChannelId=1, SDCStatus::toString(m_status)=scan-not-started"));
    EXPECT_THAT(steps, HasSubstr("ZRP.SDC 7   sweep: Set RX frequency kHz 19164750\n"));
    EXPECT_EQ(steps.find("Set RX frequency kHz 19164750"), steps.rfind("Set RX frequency kHz 19164750")); // once
    EXPECT_THAT(run("scan channel --trace 6").err, Not(HasSubstr("ZRP.SDC 7")));
}

/// At this speed the program looks at the scan a dozen times.
TEST_F(Scan, tracesWhatTheControllerDoesAndNotThatTheProgramWaitsForIt)
{
    std::map<std::string, int> entries;
    for (const std::string& line : lines(run("scan channel --trace 7 --speed 100").err)) {
        const std::size_t name = line.find(" > ");
        if (line.starts_with("ZRP.SDC 6") && name != std::string::npos) {
            ++entries[line.substr(name + 3, line.find(':') - name - 3)];
        }
    }
    EXPECT_LE(entries["getStatus"], 1);
    EXPECT_LE(entries["getResult"], 1);
    EXPECT_EQ(entries["setCommand"], 1);
    EXPECT_EQ(entries["runScan"], 1);
}

} // namespace

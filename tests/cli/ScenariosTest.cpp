// sdc scenarios.

#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

using Scenarios = Sdc;

TEST_F(Scenarios, areListedByNameAlone)
{
    const std::vector<std::string> names = lines(run("scenarios list --names").out);
    EXPECT_EQ(names.size() + 1, lines(run("scenarios list").out).size());
    EXPECT_THAT(names, Contains("18-f595"));
}

TEST_F(Scenarios, areListedAsJson)
{
    const json listed = json::parse(run("scenarios list --json").out);
    EXPECT_EQ(listed["schema_version"], 1);
    std::string names;
    for (const json& scenario : listed["scenarios"]) {
        names += scenario["name"].get<std::string>() + "\n";
        if (scenario["name"] == "8-quad") {
            EXPECT_EQ(scenario["channels"].size(), 4U);
            EXPECT_EQ(scenario["channels"][1],
                json({{"channel", 2}, {"unit_type", "4741 8G"}, {"band_GHz", 8}, {"rx_frequency_kHz", 8114500},
                    {"channel_spacing_kHz", 28000}}));
        }
    }
    EXPECT_EQ(names, run("scenarios list --names").out);
}

/// Somebody who changes one begins with what is shown.
TEST_F(Scenarios, thatAreShownWorkAsFiles)
{
    for (const std::string& name : lines(run("scenarios list --names").out)) {
        ASSERT_EQ(run("scenarios show " + name, "", ">mine.json").status, 0);
        EXPECT_EQ(run("scenarios check mine.json").out, "mine.json: ok\n") << name;
    }
    EXPECT_EQ(run("scenarios check -", "'" SDC_PROGRAM "' scenarios show 28-replay |").out, "-: ok\n");
    EXPECT_EQ(
        run("plan --scenario -", "'" SDC_PROGRAM "' scenarios show 28-replay |").out, run("plan --scenario 28-replay").out);
}

TEST_F(Scenarios, thatAreBuiltInAllPassTheirCheckAndHaveAPlan)
{
    std::string all;
    for (const std::string& name : lines(run("scenarios list --names").out)) {
        all += " " + name;
        EXPECT_EQ(run("plan --scenario " + name).status, 0) << name;
    }
    const Outcome outcome = run("scenarios check" + all);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(lines(outcome.out), testing::Each(testing::EndsWith(": ok")));
}

TEST_F(Scenarios, areShownAsTheirFileStands)
{
    std::ifstream file(SDC_SCENARIOS "/18-f595.json", std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(run("scenarios show 18-f595").out, text);
    write("mine.json", "not even JSON");
    const Outcome mine = run("scenarios show mine.json");
    EXPECT_EQ(mine.status, 0);
    EXPECT_EQ(mine.out, "not even JSON");
}

TEST_F(Scenarios, thatThereAreNotCannotBeShown)
{
    const Outcome near = run("scenarios show strom");
    EXPECT_EQ(near.status, 2);
    EXPECT_THAT(near.err, testing::AllOf(StartsWith("sdc: strom: "), HasSubstr("did you mean 'storm'?")));
    EXPECT_THAT(near.out, IsEmpty());
    std::filesystem::create_directory(folder / "some");
    write("empty.json", "");
    for (const char* const bad : {"some", "empty.json"}) {
        const Outcome outcome = run(std::string("scenarios show ") + bad);
        EXPECT_EQ(outcome.status, 2) << bad;
        EXPECT_THAT(outcome.err, StartsWith(std::string("sdc: ") + bad + ": "));
    }
}

TEST_F(Scenarios, areCheckedEachWithAllFindings)
{
    ASSERT_NO_FATAL_FAILURE(writeScenario("good.json", "storm", {}));
    ASSERT_NO_FATAL_FAILURE(writeScenario("bad.json", "18-f595",
        {{"\"jitter_dB\": 0.5", "\"jitter_dB\": \"much\""}, {"\"noise_figure_dB\"", "\"noise_figur_dB\""}}));
    const Outcome outcome = run("scenarios check good.json bad.json missing.json 18-f595");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.err, IsEmpty());
    const std::vector<std::string> said = lines(outcome.out);
    EXPECT_EQ(said.front(), "good.json: ok");
    EXPECT_EQ(said.back(), "18-f595: ok");
    EXPECT_THAT(said, Contains(StartsWith("bad.json: $.channels[0].receiver.jitter_dB: ")));
    EXPECT_THAT(said, Contains(testing::AllOf(StartsWith("bad.json: $.channels[0].receiver"), HasSubstr("noise_figur_dB"))));
    EXPECT_THAT(said, Contains(StartsWith("missing.json: ")));
}

TEST_F(Scenarios, thatAreBadEndAScanWithStatus2AndTheirFindings)
{
    ASSERT_NO_FATAL_FAILURE(writeScenario("bad.json", "18-f595", {{"\"jitter_dB\": 0.5", "\"jitter_dB\": \"much\""}}));
    for (const char* const command : {"scan channel", "plan"}) {
        const Outcome outcome = run(std::string(command) + " --scenario bad.json");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.err, StartsWith("sdc: bad.json: $.channels[0].receiver.jitter_dB: "));
        EXPECT_THAT(outcome.out, IsEmpty());
    }
}

} // namespace

#include "simulator/scenario/RecordedSweep.h"
#include "tests/support/Recordings.h"
#include "tests/unit/scenario/TestScenario.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

using simulator::loadScenario;
using simulator::ScenarioError;
using testing::StartsWith;

/// A folder of its own, gone with the test.
class LoadScenario : public testing::Test {
protected:
    LoadScenario()
    {
        std::string name = testing::TempDir() + "scenario-XXXXXX";
        folder = mkdtemp(name.data());
    }
    ~LoadScenario() override { std::filesystem::remove_all(folder); }

    std::string write(const std::string& name, const std::string& text) const
    {
        std::filesystem::create_directories((folder / name).parent_path());
        std::ofstream(folder / name, std::ios::binary) << text;
        return (folder / name).string();
    }

    static std::string error(const std::string& nameOrFile)
    {
        try {
            loadScenario(nameOrFile);
            return {};
        } catch (const ScenarioError& error) {
            return error.what();
        }
    }

    std::filesystem::path folder;
};

TEST_F(LoadScenario, takesABuiltInNameOrAFile)
{
    EXPECT_EQ(loadScenario("18-busy").name, "18-busy");
    auto file = tests::fullScenario();
    file["channels"][0]["emitters"].erase("recordings");
    EXPECT_EQ(loadScenario(write("mine.json", file.dump())).name, "full");
}

TEST_F(LoadScenario, findsRecordingsBesideTheFile)
{
    const std::string file = write("mine.json", tests::fullScenario().dump());
    EXPECT_EQ(error(file),
        file + ": $.channels[0].emitters.recordings[0].file: " + (folder / "recordings/hops.csv").string()
            + ": cannot be read: No such file or directory");
    write("recordings/hops.csv", "2024-05-14, 09:30:00, 1000, 3000, 1000, 1, -50, -60\n");
    const auto link = loadScenario(file).channels[0].link;
    EXPECT_THAT(tests::levelsOf(std::get<simulator::Recording>(link.emitters[4].signal)),
        testing::ElementsAre(testing::DoubleNear(-50.0, 1e-9), testing::DoubleNear(-60.0, 1e-9)));
    write("recordings/hops.csv", "2024-05-14, 09:30:00, 1000, 3000, 1000, 1, -50\n");
    EXPECT_THAT(error(file), testing::HasSubstr("recordings[0].file: recordings/hops.csv: line 1: has 1 levels"));
}

TEST_F(LoadScenario, readsEachRecordingOnce)
{
    write("sweep.csv", "2024-05-14, 09:30:00, 1000, 3000, 1000, 1, -50, -60\n");
    auto file = tests::fullScenario();
    file["channels"][0]["emitters"]["recordings"] = {
        {{"file", "sweep.csv"}, {"lowest_kHz", 19000000}}, {{"file", "./sweep.csv"}, {"lowest_kHz", 19500000}}};
    const auto emitters = loadScenario(write("mine.json", file.dump())).channels[0].link.emitters;
    const auto& last = std::get<simulator::Recording>(emitters.back().signal);
    const auto& first = std::get<simulator::Recording>(emitters[emitters.size() - 2].signal);
    EXPECT_EQ(first.bins, last.bins);
    EXPECT_EQ(first.lowest_kHz, 19000000.0);
    EXPECT_EQ(last.lowest_kHz, 19500000.0);
}

TEST_F(LoadScenario, findsBuiltInRecordingsFromAnywhere)
{
    const auto shown = std::ranges::find(simulator::builtInScenarios(), "28-replay", &embedded::Text::name);
    const auto link = loadScenario(write("mine.json", std::string(shown->text))).channels[0].link;
    EXPECT_EQ(std::get<simulator::Recording>(link.emitters.back().signal).bins->count(), 100U);
    auto file = tests::fullScenario();
    file["channels"][0]["emitters"]["recordings"] = {{{"file", "built-in:hop.csv"}}};
    const std::string mine = write("mine.json", file.dump());
    EXPECT_EQ(error(mine),
        mine
            + ": $.channels[0].emitters.recordings[0].file: built-in:hop.csv: no such built-in recording; must be "
              "built-in:hops.csv");
}

TEST_F(LoadScenario, tellsOfAResultThatIsNoRecording)
{
    auto file = tests::fullScenario();
    file["channels"][0]["emitters"]["recordings"] = {{{"file", "result.json"}}};
    write("result.json", "{\n");
    EXPECT_THAT(error(write("mine.json", file.dump())),
        testing::HasSubstr(
            "result.json: line 1: begins with \"{\"; must be a row of a sweep; 'sdc scenarios replay' makes"));
}

TEST_F(LoadScenario, boundsRecordingsTogether)
{
    auto file = tests::fullScenario();
    file["channels"][0]["emitters"]["recordings"] = {
        {{"file", "a.csv"}, {"lowest_kHz", 19000000}}, {{"file", "b.csv"}, {"lowest_kHz", 19500000}}};
    const std::string mine = write("mine.json", file.dump());
    const auto row = [](std::size_t bins) {
        std::string text = "1, , 1000, " + std::to_string(1000 + bins) + ", 1, 1";
        for (std::size_t index = 0; index < bins; ++index) {
            text += ",1";
        }
        return text + "\n";
    };
    write("a.csv", row(1));
    write("b.csv", row(simulator::mostRecordedBins));
    EXPECT_THAT(error(mine), testing::HasSubstr("recordings[1].file: b.csv: line 1: makes more bins than the 4000000"));
    const std::string blanks(17U << 20U, '\n');
    write("a.csv", row(1) + blanks);
    write("b.csv", row(1) + blanks);
    EXPECT_EQ(error(mine),
        mine
            + ": $.channels[0].emitters.recordings[1].file: b.csv: the recordings of the scenario are larger than 32 MiB "
              "together; must be smaller");
}

TEST_F(LoadScenario, suggestsBuiltInNames)
{
    const std::string lists = "'sdc scenarios list' lists the built-in ones";
    EXPECT_EQ(error("18-f59"), "18-f59: is neither a built-in scenario nor a file; did you mean '18-f595'? " + lists);
    EXPECT_EQ(error("Storm"), "Storm: is neither a built-in scenario nor a file; did you mean 'storm'? " + lists);
    EXPECT_EQ(error("no such thing"), "no such thing: is neither a built-in scenario nor a file; " + lists);
    EXPECT_THAT(error(""), testing::HasSubstr(lists));
    EXPECT_THAT(error((folder / "none.json").string()), testing::HasSubstr("is neither a built-in scenario nor a file"));
}

TEST_F(LoadScenario, saysWhyAFileCannotBeRead)
{
    EXPECT_EQ(error(folder.string()), folder.string() + ": is a folder; must be a file");
    const std::string empty = write("empty.json", "");
    EXPECT_EQ(error(empty), empty + ": is empty; must be a JSON object");
    const std::string large = write("large.json", std::string((1U << 20U) + 1, ' '));
    EXPECT_EQ(error(large), large + ": is larger than 1 MiB; must be smaller");
    const std::string largest = write("largest.json", std::string(1U << 20U, ' '));
    EXPECT_THAT(error(largest), StartsWith(largest + ": is empty"));
    EXPECT_EQ(error("/dev/zero"), "/dev/zero: is larger than 1 MiB; must be smaller");
    const std::string secret = write("secret.json", "{}");
    std::filesystem::permissions(secret, std::filesystem::perms::none);
    if (geteuid() != 0) { // the superuser reads everything
        EXPECT_EQ(error(secret), secret + ": cannot be read: Permission denied");
    }
}

} // namespace

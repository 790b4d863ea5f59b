#include "tests/unit/scenario/TestScenario.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

    static std::string why(const std::string& nameOrFile)
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
    EXPECT_EQ(why(file),
        file + ": $.channels[0].emitters.recordings[0].file: " + (folder / "recordings/hops.csv").string()
            + ": cannot be read: No such file or directory");
    write("recordings/hops.csv", "2024-05-14, 09:30:00, 1000, 3000, 1000, 1, -50, -60\n");
    const auto link = loadScenario(file).channels[0].link;
    EXPECT_THAT(std::get<simulator::Recording>(link.emitters.back().signal).levels_dBm,
        testing::ElementsAre(testing::DoubleNear(-50.0, 1e-9), testing::DoubleNear(-60.0, 1e-9)));
    write("recordings/hops.csv", "2024-05-14, 09:30:00, 1000, 3000, 1000, 1, -50\n");
    EXPECT_THAT(why(file), testing::HasSubstr("recordings[0].file: recordings/hops.csv: line 1: has 1 levels"));
}

TEST_F(LoadScenario, suggestsBuiltInNames)
{
    const std::string lists = "'sdc scenarios list' lists the built-in ones";
    EXPECT_EQ(why("18-f59"), "18-f59: is neither a built-in scenario nor a file; did you mean '18-f595'? " + lists);
    EXPECT_EQ(why("Storm"), "Storm: is neither a built-in scenario nor a file; did you mean 'storm'? " + lists);
    EXPECT_EQ(why("no such thing"), "no such thing: is neither a built-in scenario nor a file; " + lists);
    EXPECT_THAT(why(""), testing::HasSubstr(lists));
    EXPECT_THAT(why((folder / "none.json").string()), testing::HasSubstr("is neither a built-in scenario nor a file"));
}

TEST_F(LoadScenario, saysWhyAFileCannotBeRead)
{
    EXPECT_EQ(why(folder.string()), folder.string() + ": is a folder; must be a file");
    const std::string empty = write("empty.json", "");
    EXPECT_EQ(why(empty), empty + ": line 1, column 1: there is nothing; must be a JSON object");
    const std::string large = write("large.json", std::string((1U << 20U) + 1, ' '));
    EXPECT_EQ(why(large), large + ": is larger than 1 MiB; must be smaller");
    const std::string largest = write("largest.json", std::string(1U << 20U, ' '));
    EXPECT_THAT(why(largest), StartsWith(largest + ": line 1, column 1: there is nothing"));
    EXPECT_EQ(why("/dev/zero"), "/dev/zero: is larger than 1 MiB; must be smaller");
    const std::string secret = write("secret.json", "{}");
    std::filesystem::permissions(secret, std::filesystem::perms::none);
    if (geteuid() != 0) { // the superuser reads everything
        EXPECT_EQ(why(secret), secret + ": cannot be read: Permission denied");
    }
}

} // namespace

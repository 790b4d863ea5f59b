// The lines that a console remembers.

#include "apps/sdc/console/LineHistory.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

namespace fs = std::filesystem;
using sdc::LineHistory;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;

class History : public testing::Test {
protected:
    History()
    {
        std::string pattern = (fs::temp_directory_path() / "sdc-history-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        file = folder / "state" / "sdc" / "history";
    }
    ~History() override { fs::remove_all(folder); }

    std::string read() const
    {
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    void write(const std::string& text) const
    {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << text;
    }

    fs::path folder;
    fs::path file;
};

TEST_F(History, isWrittenLineByLineForItsOwnerAlone)
{
    LineHistory history(file);
    EXPECT_FALSE(fs::exists(file));
    EXPECT_TRUE(history.add("wait"));
    EXPECT_EQ(read(), "wait\n");
    EXPECT_TRUE(history.add("hold"));
    EXPECT_EQ(read(), "wait\nhold\n");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(folder / "state").permissions(), fs::perms::owner_all);
    EXPECT_THAT(LineHistory(file).lines(), ElementsAre("wait", "hold"));
    EXPECT_EQ(history.failure(), "");
}

TEST_F(History, takesAwayTheRightsOfOthersToAFileThatIsThere)
{
    write("wait\n");
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
    LineHistory(file).add("hold");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(History, keepsNeitherBlankNorRepeatedNorLongLines)
{
    LineHistory history(file);
    EXPECT_FALSE(history.add(""));
    EXPECT_FALSE(history.add(" \t"));
    EXPECT_TRUE(history.add(std::string(LineHistory::longestLine, 'x')));
    EXPECT_FALSE(history.add(std::string(LineHistory::longestLine + 1, 'x')));
    EXPECT_FALSE(history.add("a\nb"));
    EXPECT_FALSE(history.add(std::string("a\0b", 3)));
    EXPECT_TRUE(history.add("wait"));
    EXPECT_FALSE(history.add("wait"));
    EXPECT_TRUE(history.add("hold"));
    EXPECT_TRUE(history.add("wait"));
    EXPECT_THAT(history.lines(), SizeIs(4));
}

TEST_F(History, isSharedByConsoles)
{
    LineHistory first(file);
    LineHistory second(file);
    first.add("wait");
    second.add("hold");
    first.add("release");
    EXPECT_EQ(read(), "wait\nhold\nrelease\n");
}

TEST_F(History, hasAThousandLinesAtMostAndItsFileNotManyMore)
{
    LineHistory history(file);
    for (int line = 0; line < 2100; ++line) {
        history.add("get-result " + std::to_string(line));
    }
    EXPECT_THAT(history.lines(), SizeIs(LineHistory::mostLines));
    EXPECT_EQ(history.lines().front(), "get-result 1100");
    EXPECT_THAT(LineHistory(file).lines(), SizeIs(LineHistory::mostLines));
    EXPECT_THAT(read(), testing::StartsWith("get-result 1100\n"));
    EXPECT_THAT(read(), EndsWith("get-result 2099\n"));
}

TEST_F(History, ofAFileThatIsFarTooLargeIsItsEnd)
{
    write(std::string(3'000'000, 'x') + "\nwait\n");
    EXPECT_THAT(LineHistory(file).lines(), ElementsAre("wait"));
    EXPECT_EQ(read(), "wait\n");
}

TEST_F(History, livesWithoutAFile)
{
    LineHistory history(std::nullopt);
    EXPECT_TRUE(history.add("wait"));
    EXPECT_THAT(history.lines(), ElementsAre("wait"));
    EXPECT_EQ(history.failure(), "");
}

TEST_F(History, tellsWhyItIsNotKeptAndGoesOn)
{
    fs::create_directories(file.parent_path());
    mkfifo(file.c_str(), 0600); // whose opener would wait
    LineHistory pipe(file);
    EXPECT_THAT(pipe.lines(), IsEmpty());
    EXPECT_TRUE(pipe.add("wait"));
    EXPECT_EQ(pipe.failure().find("the history is not kept: cannot write to " + file.string() + ": "), 0U);
    EXPECT_TRUE(pipe.add("hold"));
    EXPECT_THAT(pipe.lines(), ElementsAre("wait", "hold"));

    fs::remove(file);
    fs::create_directory(file);
    LineHistory directory(file);
    directory.add("wait");
    EXPECT_THAT(directory.failure(), EndsWith(": Is a directory"));

    LineHistory nowhere("/dev/null/sdc/history");
    nowhere.add("wait");
    EXPECT_THAT(nowhere.failure(), EndsWith(": Not a directory"));
}

TEST_F(History, belongsIntoTheFolderForState)
{
    const auto with = [](const char* state, const char* home) {
        setenv("XDG_STATE_HOME", state, 1);
        setenv("HOME", home, 1);
        return sdc::historyFile();
    };
    const std::string home = std::getenv("HOME") == nullptr ? "" : std::getenv("HOME");
    EXPECT_EQ(with("/state", "/home/me"), fs::path("/state/sdc/history"));
    EXPECT_EQ(with("", "/home/me"), fs::path("/home/me/.local/state/sdc/history"));
    EXPECT_EQ(with("relative", "/home/me"), fs::path("/home/me/.local/state/sdc/history"));
    EXPECT_EQ(with("", ""), std::nullopt);
    unsetenv("XDG_STATE_HOME");
    setenv("HOME", home.c_str(), 1);
}

} // namespace

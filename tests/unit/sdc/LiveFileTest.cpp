// Outputs that are written while a scan runs.

#include "apps/sdc/formats/LiveFile.h"

#include "FolderFixture.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

namespace fs = std::filesystem;

namespace {

class LiveFile : public FolderFixture {
protected:
    static void pass(sdc::LiveFile& file, const std::string& lines)
    {
        file.put(lines);
        file.pass();
    }

    /// Reads what is in a pipe.
    static std::string received(int end)
    {
        std::array<char, 65536> bytes{};
        const ssize_t count = read(end, bytes.data(), bytes.size());
        return {bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
    }
};

TEST_F(LiveFile, hasEachLineAsSoonAsItIsPassed)
{
    sdc::LiveFile file(in("file"));
    file.head("head\n");
    pass(file, "one\n");
    EXPECT_EQ(contentsOf(in("file")), "head\none\n");
    pass(file, "two\n");
    EXPECT_EQ(contentsOf(in("file")), "head\none\ntwo\n");
    EXPECT_TRUE(file.finish());
    EXPECT_EQ(contentsOf(in("file")), "head\none\ntwo\n");
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(LiveFile, keepsWhatItHadUntilTheFirstLine)
{
    make("file", "a long text of yesterday\n");
    const ino_t before = [&] {
        struct stat status {};
        stat(in("file").c_str(), &status);
        return status.st_ino;
    }();
    {
        sdc::LiveFile file(in("file"));
        file.head("head\n");
        file.pass();
        EXPECT_EQ(contentsOf(in("file")), "a long text of yesterday\n");
        EXPECT_FALSE(file.finish());
    }
    EXPECT_EQ(contentsOf(in("file")), "a long text of yesterday\n");
    sdc::LiveFile file(in("file"));
    file.head("head\n");
    pass(file, "one\n");
    EXPECT_EQ(contentsOf(in("file")), "head\none\n");
    struct stat status {};
    stat(in("file").c_str(), &status);
    EXPECT_EQ(status.st_ino, before) << "written in place";
}

TEST_F(LiveFile, withoutALineHasItsHead)
{
    sdc::LiveFile file(in("file"));
    file.head("head\n");
    EXPECT_TRUE(file.finish());
    EXPECT_EQ(contentsOf(in("file")), "head\n");
}

TEST_F(LiveFile, thatIsMadeForNothingGoes)
{
    std::optional<sdc::LiveFile> file(std::in_place, in("file"));
    EXPECT_TRUE(fs::exists(in("file")));
    file.reset();
    EXPECT_FALSE(fs::exists(in("file")));
    make("old", "");
    file.emplace(in("old"));
    file.reset();
    EXPECT_TRUE(fs::exists(in("old")));
}

TEST_F(LiveFile, endsWithAWholeLineWhereTheDiskIsFull)
{
    const pid_t program = fork();
    if (program == 0) {
        const rlimit limit{20, RLIM_INFINITY};
        std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &limit);
        int failures = 0;
        sdc::LiveFile file(in("file"));
        for (int line = 0; line < 4; ++line) {
            try {
                pass(file, "1234567\n");
            } catch (const std::runtime_error& error) {
                failures += std::string(error.what()) == "cannot write to " + in("file") + ": File too large" ? 1 : 100;
            }
        }
        _exit(failures == 1 && file.finish() ? 0 : 1); // said once
    }
    int status = -1;
    ASSERT_EQ(waitpid(program, &status, 0), program);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(contentsOf(in("file")), "1234567\n1234567\n");
}

/// As with a row that is longer than what the disk has left.
TEST_F(LiveFile, thatHasNoRoomForAWholeLineGoesAgain)
{
    make("old", "before\n");
    const pid_t program = fork();
    if (program == 0) {
        const rlimit limit{4, RLIM_INFINITY};
        std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &limit);
        int failures = 0;
        for (const char* const name : {"new", "old"}) {
            sdc::LiveFile file(in(name));
            file.put("1234567\n");
            try {
                file.pass();
            } catch (const std::runtime_error&) {
                ++failures;
            }
        }
        _exit(failures == 2 ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(program, &status, 0), program);
    EXPECT_EQ(status, 0);
    EXPECT_FALSE(std::filesystem::exists(in("new")));
    EXPECT_EQ(contentsOf(in("old")), "") << "it was there before";
}

TEST_F(LiveFile, thatIsFullFromTheBeginningIsAFailure)
{
    sdc::LiveFile file("/dev/full");
    file.put("one\n");
    EXPECT_THROW(file.pass(), std::runtime_error);
    EXPECT_NO_THROW(pass(file, "two\n"));
    EXPECT_TRUE(file.finish());
}

TEST_F(LiveFile, readerThatGoesEndsItWithoutAnError)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    std::signal(SIGPIPE, SIG_IGN);
    sdc::LiveFile file("/dev/fd/" + std::to_string(ends[1]));
    pass(file, "one\n");
    EXPECT_EQ(received(ends[0]), "one\n");
    EXPECT_TRUE(file.isOpen());
    close(ends[0]);
    EXPECT_NO_THROW(pass(file, "two\n"));
    EXPECT_FALSE(file.isOpen());
    EXPECT_NO_THROW(pass(file, "three\n"));
    EXPECT_TRUE(file.finish());
    close(ends[1]);
    std::signal(SIGPIPE, SIG_DFL);
}

TEST_F(LiveFile, slowReaderIsNotWaitedFor)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    sdc::LiveFile file("/dev/fd/" + std::to_string(ends[1]));
    const std::string lines = std::string(65535, 'x') + "\n"; // a pipe is full with as much
    pass(file, lines);
    pass(file, "more\n");
    EXPECT_EQ(received(ends[0]), lines);
    file.pass();
    EXPECT_EQ(received(ends[0]), "more\n");
    EXPECT_TRUE(file.finish());
    close(ends[0]);
    close(ends[1]);
}

TEST_F(LiveFile, standsBehindWhatTheShellHasWritten)
{
    make("file", "before\n");
    const int log = open(in("file").c_str(), O_WRONLY | O_APPEND);
    sdc::LiveFile file("/dev/fd/" + std::to_string(log));
    pass(file, "one\n");
    EXPECT_EQ(contentsOf(in("file")), "before\none\n");
    close(log);
}

} // namespace

#include "apps/sdc/formats/OutputFile.h"

#include "FolderFixture.h"
#include "apps/sdc/formats/Target.h"

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
#include <future>
#include <iostream>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

class OutputFile : public FolderFixture {
protected:
    static void write(const std::string& file, const std::string& text)
    {
        sdc::writeFile(file, [&](std::ostream& stream) { stream << text; });
    }

    /// What is said when a file cannot be written; empty when it can.
    static std::string failureOf(const std::string& file, const std::string& text = "text")
    {
        try {
            write(file, text);
            return "";
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }

    /// A descriptor, and the name by which a shell passes it.
    struct Opened {
        int number;
        std::string name;
    };
    static std::optional<sdc::FileIdentity> identityOf(const std::string& name) { return sdc::Target(name).identity(); }
    static Opened openedOf(int number) { return {number, "/dev/fd/" + std::to_string(number)}; }
};

} // namespace

TEST_F(OutputFile, fileAppearsWithEveryByte)
{
    const std::string bytes("\r\n\0\xFF\x1A\n", 6);
    write(in("new"), bytes);
    EXPECT_EQ(contentsOf(in("new")), bytes);
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(OutputFile, fileIsReplacedAsAWhole)
{
    write(in("file"), "a long text");
    sdc::writeFile(in("file"), [&](std::ostream& stream) {
        stream << "short" << std::flush;
        EXPECT_EQ(contentsOf(in("file")), "a long text") << "the old one stands until the new one is whole";
        EXPECT_EQ(filesInFolder(), 1U) << "no second one that a signal could leave";
    });
    EXPECT_EQ(contentsOf(in("file")), "short");
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(OutputFile, nothingChangesWhenTheWriterFails)
{
    write(in("file"), "old");
    const auto fails = [](std::ostream& stream) {
        stream << "half";
        throw std::logic_error("no more");
    };
    EXPECT_THROW(sdc::writeFile(in("file"), fails), std::logic_error);
    EXPECT_THROW(sdc::writeFile(in("new"), fails), std::logic_error);
    EXPECT_EQ(contentsOf(in("file")), "old");
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(OutputFile, streamThatFailsLeavesTheOldFile)
{
    write(in("file"), "old");
    EXPECT_THROW(
        sdc::writeFile(in("file"), [](std::ostream& stream) { stream.setstate(std::ios::badbit); }), std::runtime_error);
    EXPECT_EQ(contentsOf(in("file")), "old");
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(OutputFile, newFilesHaveTheUsualModeAndOldOnesKeepTheirs)
{
    const mode_t mask = umask(027);
    write(in("new"), "text");
    umask(mask);
    EXPECT_EQ(fs::status(in("new")).permissions(), fs::perms(0640));
    fs::permissions(in("new"), fs::perms(0604));
    write(in("new"), "other");
    EXPECT_EQ(fs::status(in("new")).permissions(), fs::perms(0604));
}

TEST_F(OutputFile, linksLeadToTheFileThatIsWritten)
{
    fs::create_directory(in("folder"));
    write(in("folder/file"), "old");
    fs::create_symlink("folder/file", in("link"));
    fs::create_symlink(in("link"), in("folder/absolute"));
    write(in("folder/absolute"), "new");
    EXPECT_TRUE(fs::is_symlink(in("link")));
    EXPECT_TRUE(fs::is_symlink(in("folder/absolute")));
    EXPECT_FALSE(fs::is_symlink(in("folder/file")));
    EXPECT_EQ(contentsOf(in("folder/file")), "new");
}

TEST_F(OutputFile, linkToNothingMakesTheFile)
{
    fs::create_symlink("target", in("link"));
    write(in("link"), "text");
    EXPECT_TRUE(fs::is_symlink(in("link")));
    EXPECT_EQ(contentsOf(in("target")), "text");
}

TEST_F(OutputFile, devicesAreWrittenTo)
{
    write("/dev/null", "text");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_EQ(failureOf("/dev/full"), "cannot write to /dev/full: No space left on device");
}

TEST_F(OutputFile, noRightsOfTheOwnerAreHandedOn)
{
    write(in("file"), "old");
    fs::permissions(in("file"), fs::perms(07755));
    write(in("file"), "new");
    EXPECT_EQ(fs::status(in("file")).permissions(), fs::perms(0755));
}

TEST_F(OutputFile, ownDescriptorsAreWrittenToWhereTheyStand)
{
    const Opened file = openedOf(open(in("file").c_str(), O_RDWR | O_CREAT, 0600));
    ASSERT_EQ(::write(file.number, "before ", 7), 7);
    write(file.name, "text");
    ASSERT_EQ(::write(file.number, " after", 6), 6);
    EXPECT_EQ(contentsOf(in("file")), "before text after");
    EXPECT_EQ(identityOf(file.name), identityOf(in("file")));
    close(file.number);
}

TEST_F(OutputFile, pipesAreWrittenToByTheNameOfTheirDescriptor)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const Opened file = openedOf(ends[1]);
    EXPECT_NO_THROW(sdc::Target(file.name).check());
    EXPECT_FALSE(sdc::Target(file.name).isFile());
    write(file.name, "text");
    std::array<char, 8> bytes{};
    EXPECT_EQ(read(ends[0], bytes.data(), bytes.size()), 4);
    EXPECT_STREQ(bytes.data(), "text");
    close(ends[0]);
    close(ends[1]);
}

TEST_F(OutputFile, whatAnotherProgramHasOpenedGrows)
{
    const Opened file = openedOf(open(in("file").c_str(), O_RDWR | O_CREAT, 0600));
    ASSERT_EQ(::write(file.number, "before ", 7), 7);
    const pid_t other = fork();
    if (other == 0) {
        pause();
        _exit(0);
    }
    write("/proc/" + std::to_string(other) + "/fd/" + std::to_string(file.number), "text");
    EXPECT_EQ(contentsOf(in("file")), "before text");
    kill(other, SIGKILL);
    waitpid(other, nullptr, 0);
    close(file.number);
}

TEST_F(OutputFile, failuresNameTheFileAndTheReason)
{
    fs::create_symlink("loop", in("loop"));
    write(in("file"), "text");
    EXPECT_EQ(failureOf(m_folder.string()), "cannot write to " + m_folder.string() + ": it is a folder");
    EXPECT_EQ(failureOf(in("no/file")), "cannot write to " + in("no/file") + ": No such file or directory");
    EXPECT_EQ(failureOf(in("file/file")), "cannot write to " + in("file/file") + ": Not a directory");
    EXPECT_EQ(failureOf(in("loop")), "cannot write to " + in("loop") + ": Too many levels of symbolic links");
    EXPECT_EQ(failureOf("/no/\033[2J"), "cannot write to /no/\\x1B[2J: No such file or directory");
    const Opened input = openedOf(open(in("file").c_str(), O_RDONLY));
    EXPECT_EQ(failureOf(input.name), "cannot write to " + input.name + ": Bad file descriptor");
    close(input.number);
    EXPECT_EQ(failureOf(""), "cannot write to : No such file or directory");
}

TEST_F(OutputFile, readOnlyFilesAreNotReplaced)
{
    write(in("file"), "old");
    fs::permissions(in("file"), fs::perms(0444));
    fs::permissions(m_folder, fs::perms(0777));
    const pid_t somebody = fork();
    if (somebody == 0) {
        const bool isOrdinary = geteuid() != 0 || setuid(65534) == 0; // root may write to every file
        const bool isRefused = failureOf(in("file")) == "cannot write to " + in("file") + ": Permission denied";
        _exit(isOrdinary && isRefused ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(somebody, &status, 0), somebody);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(contentsOf(in("file")), "old");
}

TEST_F(OutputFile, aMinusIsStandardOutput)
{
    testing::internal::CaptureStdout();
    write("-", "text");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "text");
    EXPECT_FALSE(fs::exists("-"));
}

TEST_F(OutputFile, standardOutputThatIsFullIsAFailure)
{
    std::cout.flush();
    const int saved = dup(STDOUT_FILENO);
    std::FILE* const full = std::fopen("/dev/full", "w");
    ASSERT_NE(full, nullptr);
    dup2(fileno(full), STDOUT_FILENO);
    const std::string failure = failureOf("-");
    std::cout.clear();
    dup2(saved, STDOUT_FILENO);
    close(saved);
    std::fclose(full);
    EXPECT_EQ(failure, "cannot write to standard output: No space left on device");
}

TEST_F(OutputFile, signalThatEndsTheProgramLeavesNoHalfFileAndNoSecondOne)
{
    write(in("file"), "old");
    const pid_t program = fork();
    if (program == 0) {
        const rlimit limit{10, RLIM_INFINITY};
        std::signal(SIGXFSZ, SIG_DFL);
        setrlimit(RLIMIT_FSIZE, &limit);
        failureOf(in("file"), std::string(100, 'x'));
        _exit(0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(program, &status, 0), program);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ);
    EXPECT_EQ(contentsOf(in("file")), "old");
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(OutputFile, allNamesOfOneFileHaveOneIdentity)
{
    write(in("file"), "text");
    fs::create_symlink("file", in("link"));
    fs::create_hard_link(in("file"), in("other"));
    fs::create_symlink("new", in("to-new"));
    fs::create_directory_symlink(m_folder, in("folder"));
    for (const char* const name : {"link", "other", "./file", "folder/link"}) {
        EXPECT_EQ(identityOf(in(name)), identityOf(in("file"))) << name;
    }
    EXPECT_EQ(identityOf(in("to-new")), identityOf(in("folder/new")));
    EXPECT_NE(identityOf(in("to-new")), identityOf(in("new2")));
    EXPECT_NE(identityOf(in("new")), identityOf(in("file")));
    EXPECT_EQ(identityOf("/dev/null"), std::nullopt);
}

TEST_F(OutputFile, pipesAndSlowReadersGetAll)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const std::string text(1000000, 'x'); // more than a pipe holds
    auto reading = std::async(std::launch::async, [&] {
        std::size_t count = 0;
        std::array<char, 1000> bytes{};
        while (const ssize_t some = read(ends[0], bytes.data(), bytes.size())) {
            count += static_cast<std::size_t>(some);
        }
        return count;
    });
    write("/dev/fd/" + std::to_string(ends[1]), text);
    close(ends[1]);
    EXPECT_EQ(reading.get(), text.size());
    close(ends[0]);
}

// The program as a person or a script runs it: what it prints where, and its exit status.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/Waiting.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
};

class Sdc : public testing::Test {
protected:
    Sdc()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "sdc-test-XXXXXX").string();
        folder = mkdtemp(pattern.data());
    }
    ~Sdc() override { std::filesystem::remove_all(folder); }

    std::string read(const std::string& name) const
    {
        std::ifstream file(folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// Runs the program through the shell; paths among the arguments are relative to the test's own folder.
    Outcome run(
        const std::string& arguments, const std::string& environment = "", const std::string& output = "out.txt") const
    {
        const std::string command = "cd '" + folder.string() + "' && " + environment + " '" SDC_PROGRAM "' " + arguments
            + " >" + output + " 2>err.txt </dev/null";
        const int result = std::system(command.c_str());
        return {WIFEXITED(result) ? WEXITSTATUS(result) : -1, read("out.txt"), read("err.txt")};
    }

    std::filesystem::path folder;
};

std::vector<std::string> lines(const std::string& text)
{
    std::vector<std::string> all;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        all.push_back(line);
    }
    return all;
}

TEST_F(Sdc, channelScanShowsPlanSamplesStatusAndTheReceiverBeforeAndAfter)
{
    const Outcome outcome = run("scan channel");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.err, HasSubstr("link       18-f595: 18 GHz, "));
    EXPECT_THAT(outcome.err, HasSubstr("figures    channel plan ITU-R F.595"));
    EXPECT_THAT(outcome.err, HasSubstr("unit       KLM6 18G\n"));
    EXPECT_THAT(outcome.err, HasSubstr("command    channel-scan-start\n"));
    EXPECT_THAT(outcome.err, HasSubstr("receiver   19177.500 MHz before\n"));
    EXPECT_THAT(outcome.err,
        HasSubstr("plan       19164.750 to 19188.750 MHz, step 2.000 MHz, 13 samples, settling 3000 ms, then 300 ms: 6.6 s "
                  "of radio time\n"));
    EXPECT_THAT(outcome.err, ContainsRegex("progress +92 %  13/13 samples  19188\\.750 MHz"));
    EXPECT_THAT(outcome.err, HasSubstr("status     channel-scan-finished, 13 of 13 samples\n"));
    EXPECT_THAT(outcome.err, HasSubstr("receiver   19177.500 MHz after\n"));
    const std::vector<std::string> table = lines(outcome.out);
    ASSERT_EQ(table.size(), 1U + 13U);
    EXPECT_THAT(table[1], ContainsRegex("^19164\\.750 +-[0-9]+\\.[0-9][0-9]  [|]#*$"));
    EXPECT_THAT(table[7], ContainsRegex("^19176\\.750 +-3[0-9]\\.[0-9][0-9]  [|]#{30,}$"));
}

TEST_F(Sdc, subBandScanHas500SamplesOfWhichTheTableMayShowTheStrongest)
{
    const Outcome outcome = run("scan sub-band --rows 50");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.err, HasSubstr("status     sub-band-scan-finished, 500 of 500 samples\n"));
    const std::vector<std::string> table = lines(outcome.out);
    ASSERT_EQ(table.size(), 2U + 50U);
    EXPECT_EQ(table[0], "each row: the strongest of 10 samples");
    EXPECT_EQ(lines(run("scan sub-band").out).size(), 1U + 500U);
}

TEST_F(Sdc, csvGoesToAFileBesideTheTable)
{
    const Outcome outcome = run("scan channel --csv samples.csv");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(lines(outcome.out).size(), 14U);
    const std::vector<std::string> csv = lines(read("samples.csv"));
    ASSERT_EQ(csv.size(), 14U);
    EXPECT_EQ(csv[0], "frequency_kHz,level_dBm\r");
    EXPECT_THAT(csv[1], ContainsRegex("^19164750,-[0-9]+\\.[0-9][0-9]\r$"));
}

TEST_F(Sdc, csvOnStandardOutputTakesTheTablesPlace)
{
    const Outcome outcome = run("scan channel --csv -");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, StartsWith("frequency_kHz,level_dBm\r\n19164750,"));
    EXPECT_EQ(lines(outcome.out).size(), 14U);
}

TEST_F(Sdc, sameLinkGivesTheSameSamplesAtAnySpeed)
{
    const Outcome first = run("scan channel --csv -");
    EXPECT_EQ(first.status, 0);
    EXPECT_EQ(lines(first.out).size(), 14U);
    EXPECT_EQ(run("scan channel --csv -").out, first.out);
    EXPECT_EQ(run("scan channel --csv - --speed 1000 --channel 0").out, first.out);
}

TEST_F(Sdc, traceLevelsShowErrorsByDefaultAndStepsOnRequest)
{
    EXPECT_THAT(run("scan channel").err, Not(HasSubstr("ZRP.SDC")));
    const std::string steps = run("scan channel --trace 7").err;
    EXPECT_THAT(
        steps, HasSubstr("ZRP.SDC 6 > setCommand: m_radioChannelId=1, SDCStatus::toString(m_status)=scan-not-started"));
    EXPECT_THAT(steps, HasSubstr("ZRP.SDC 7   sweep: Set RX frequency kHz 19164750\n"));
    EXPECT_THAT(run("scan channel --trace 6").err, Not(HasSubstr("ZRP.SDC 7")));
}

TEST_F(Sdc, wrongOptionsEndWithStatus2AndSayWhatWouldBeRight)
{
    struct Row {
        const char* arguments;
        const char* said;
    };
    for (const Row& row : {Row{"", "a command is needed: scan"}, {"scna", "scna"}, {"scan", "kind is required"},
             {"scan sideways", "sideways not in {channel,sub-band}"}, {"scan channel --link nowhere", "18-f595"},
             {"scan channel --speed 0", "factor above 0"}, {"scan channel --speed -3", "factor above 0"},
             {"scan channel --speed nan", "factor above 0"}, {"scan channel --speed fast", "write real, max, or a factor"},
             {"scan channel --trace 8", "not in range 0 to 7"}, {"scan channel --channel -1", "--channel"},
             {"scan channel --rows -1", "--rows"}, {"scan channel --csv", "--csv"}, {"scan channel --bogus", "--bogus"},
             {"scan channel twice", "twice"}}) {
        SCOPED_TRACE(row.arguments);
        const Outcome outcome = run(row.arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.err, HasSubstr(row.said));
        EXPECT_THAT(outcome.out, IsEmpty());
    }
}

TEST_F(Sdc, helpAndVersionEndWithStatus0OnStandardOutput)
{
    EXPECT_EQ(run("--version").out, "sdc " SDC_VERSION "\n");
    for (const char* const arguments : {"--help", "scan --help", "scan channel --help"}) {
        SCOPED_TRACE(arguments);
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.out, HasSubstr("Usage: sdc"));
        EXPECT_THAT(outcome.err, IsEmpty());
    }
}

TEST_F(Sdc, outputThatCannotBeWrittenEndsWithStatus1AndNamesTheFile)
{
    const Outcome noFolder = run("scan channel --csv missing/samples.csv");
    EXPECT_EQ(noFolder.status, 1);
    EXPECT_THAT(noFolder.err, HasSubstr("receiver   19177.500 MHz after\n")); // told all the same
    EXPECT_THAT(noFolder.err, HasSubstr("sdc: cannot write the samples to missing/samples.csv: No such file or directory"));

    std::filesystem::create_directory(folder / "taken");
    const Outcome folderInTheWay = run("scan channel --csv taken");
    EXPECT_EQ(folderInTheWay.status, 1);
    EXPECT_THAT(folderInTheWay.err, HasSubstr("sdc: cannot write the samples to taken: it is a folder"));

    const Outcome full = run("scan channel --csv -", "", "/dev/full");
    EXPECT_EQ(full.status, 1);
    EXPECT_THAT(full.err, HasSubstr("sdc: cannot write the samples to standard output"));
}

TEST_F(Sdc, helpThatCannotBeWrittenEndsWithStatus1)
{
    EXPECT_EQ(run("--help", "", "/dev/full").status, 1);
    EXPECT_EQ(run("scan --help", "", "/dev/full").status, 1);
}

TEST_F(Sdc, csvFileKeepsItsModeAndItsLinksAndNothingElseIsTouched)
{
    namespace fs = std::filesystem;
    std::ofstream(folder / "old.csv") << "old";
    fs::permissions(folder / "old.csv", fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("old.csv", folder / "link.csv");
    EXPECT_EQ(run("scan channel --csv link.csv").status, 0);
    EXPECT_TRUE(fs::is_symlink(folder / "link.csv"));
    EXPECT_EQ(fs::status(folder / "old.csv").permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(lines(read("old.csv")).size(), 14U);

    EXPECT_EQ(run("scan channel --csv new.csv", "umask 027;").status, 0);
    EXPECT_EQ(fs::status(folder / "new.csv").permissions(), fs::perms{0640});
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 5); // and out.txt, err.txt
}

TEST_F(Sdc, csvGoesIntoADeviceRatherThanInItsPlace)
{
    EXPECT_EQ(run("scan channel --csv /dev/null").status, 0);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    EXPECT_EQ(run("scan channel --csv /dev/full").status, 1);
}

/// The program in a process of its own, which a test can signal.
class RunningSdc {
public:
    RunningSdc(const std::filesystem::path& folder, std::vector<std::string> arguments)
    {
        std::fflush(nullptr);
        m_pid = fork();
        if (m_pid == 0) {
            std::vector<char*> words;
            arguments.insert(arguments.begin(), "sdc");
            for (std::string& argument : arguments) {
                words.push_back(argument.data());
            }
            words.push_back(nullptr);
            std::filesystem::current_path(folder);
            static_cast<void>(std::signal(SIGINT, SIG_DFL)); // a shell may have let the tests ignore it
            if (std::freopen("out.txt", "w", stdout) != nullptr && std::freopen("err.txt", "w", stderr) != nullptr) {
                execv(SDC_PROGRAM, words.data());
            }
            _exit(126);
        }
    }

    ~RunningSdc()
    {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitForExitStatus();
        }
    }

    RunningSdc(const RunningSdc&) = delete;
    RunningSdc& operator=(const RunningSdc&) = delete;

    void interrupt() const { kill(m_pid, SIGINT); }

    /// Bounded: a program that does not end is killed.
    int waitForExitStatus()
    {
        int status = 0;
        if (!support::eventually([&] { return waitpid(m_pid, &status, WNOHANG) == m_pid; })) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, &status, 0);
        }
        m_pid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status); // as a shell reports it
    }

private:
    pid_t m_pid = -1;
};

TEST_F(Sdc, interruptStopsTheScanPutsTheReceiverBackAndEndsWithStatus4)
{
    RunningSdc sdc(folder, {"scan", "sub-band", "--speed", "3"}); // 51 s in all, the first settle delay 1 s
    ASSERT_TRUE(support::eventually([&] { return read("err.txt").find("plan ") != std::string::npos; }));
    sdc.interrupt();
    EXPECT_EQ(sdc.waitForExitStatus(), 4);
    EXPECT_THAT(read("err.txt"), HasSubstr("sdc: stopping after the step in hand; Ctrl-C again leaves at once\n"));
    EXPECT_THAT(read("err.txt"), HasSubstr("receiver   19177.500 MHz after\n"));
    const std::string taken = std::to_string(lines(read("out.txt")).size() - 1); // what was taken is written
    EXPECT_THAT(read("err.txt"), HasSubstr("status     scan-not-started, " + taken + " of 500 samples, stopped\n"));
}

TEST_F(Sdc, secondInterruptLeavesAtOnceWithStatus130)
{
    RunningSdc sdc(folder, {"scan", "channel", "--speed", "0.0001"}); // the first settle delay alone is 8 hours
    ASSERT_TRUE(support::eventually([&] { return read("err.txt").find("plan ") != std::string::npos; }));
    sdc.interrupt();
    ASSERT_TRUE(support::eventually([&] { return read("err.txt").find("stopping") != std::string::npos; }));
    sdc.interrupt();
    EXPECT_EQ(sdc.waitForExitStatus(), 130);
}

} // namespace

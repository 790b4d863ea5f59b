// sdc scan: outputs that are written as it happens.

#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

namespace {

using nlohmann::json;
using testing::Each;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

class Live : public Sdc {
protected:
    bool isSaid(const std::string& text) const { return has("err.txt", text); }
    bool has(const std::string& file, const std::string& text) const
    {
        return tests::eventually([&] { return read(file).find(text) != std::string::npos; });
    }
    bool hasLines(const std::string& file, std::size_t count) const
    {
        return tests::eventually([&] { return lines(read(file)).size() >= count; });
    }

    /// Resident memory at its most, in KiB.
    long memoryOf(const std::string& sweeps) const
    {
        const pid_t program = fork();
        if (program == 0) {
            fs::current_path(folder);
            // What a sanitizer keeps of memory that was freed does not count.
            setenv("ASAN_OPTIONS", "quarantine_size_mb=0:thread_local_quarantine_size_kb=0", 1);
            execl(SDC_PROGRAM, "sdc", "scan", "sub-band", "--repeat", sweeps.c_str(), "--csv", "/dev/null", "--table",
                "/dev/null", "--quiet", nullptr);
            _exit(126);
        }
        int status = -1;
        rusage usage{};
        EXPECT_EQ(wait4(program, &status, 0, &usage), program);
        EXPECT_EQ(status, 0);
        return usage.ru_maxrss;
    }
};

const std::vector<std::string> slowScan{"scan", "sub-band", "--speed", "3"}; // 51 s in all, 0.1 s a sample

std::vector<std::string> slowScanWith(const std::vector<std::string>& more)
{
    std::vector<std::string> arguments = slowScan;
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

TEST_F(Live, outputsHaveEachSampleWhateverEndsTheProgram)
{
    RunningSdc sdc(folder, slowScanWith({"--csv", "a.csv", "--jsonl", "a.jsonl"}));
    ASSERT_TRUE(hasLines("a.csv", 3) && hasLines("a.jsonl", 4));
    sdc.send(SIGKILL);
    EXPECT_EQ(sdc.waitForExitStatus(), 128 + SIGKILL);
    EXPECT_THAT(read("a.csv"), StartsWith("channel,sweep,time,frequency_kHz,level_dBm\n1,1,20"));
    EXPECT_THAT(read("a.csv"), EndsWith("\n"));
    const auto objects = lines(read("a.jsonl"));
    EXPECT_EQ(objects.size(), lines(read("a.csv")).size() + 1);
    EXPECT_EQ(json::parse(objects.front())["type"], "run");
    EXPECT_EQ(json::parse(objects.back())["type"], "sample");
}

TEST_F(Live, outputsSayHowAStoppedScanEnded)
{
    RunningSdc sdc(folder, slowScanWith({"--jsonl", "a.jsonl", "--sweep", "a.txt"}));
    ASSERT_TRUE(has("a.jsonl", R"({"type":"sample")"));
    sdc.send(SIGTERM);
    EXPECT_EQ(sdc.waitForExitStatus(), 4);
    const auto objects = lines(read("a.jsonl"));
    EXPECT_EQ(json::parse(objects[objects.size() - 2])["ending"], "stopped");
    EXPECT_EQ(json::parse(objects.back()), json::parse(R"({"type": "end", "ending": "stopped"})"));
    EXPECT_THAT(read("a.txt"), EndsWith(", nan\n"));
}

TEST_F(Live, outputsReachTheReaderOfAPipeAtOnceAndEndWithIt)
{
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    RunningSdc sdc(folder, slowScanWith({"--jsonl", "pipe"}));
    {
        std::ifstream reader(folder / "pipe");
        std::string line;
        while (line.find(R"({"type":"sample")") == std::string::npos) {
            ASSERT_TRUE(std::getline(reader, line));
        }
    }
    EXPECT_EQ(sdc.waitForExitStatus(), 0) << "nobody wants the rest";
    EXPECT_THAT(read("err.txt"), Not(HasSubstr("sdc: ")));
}

TEST_F(Live, outputsThatWaitForAReaderAreLeftByTheFirstInterrupt)
{
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    RunningSdc sdc(folder, slowScanWith({"--csv", "pipe"}));
    ASSERT_TRUE(isSaid("\ncommand "));
    sdc.interrupt();
    EXPECT_NE(sdc.waitForExitStatus(), 128 + SIGKILL);
    EXPECT_THAT(read("err.txt"), HasSubstr("sdc: cannot write to pipe: nobody reads it\n"));
}

TEST_F(Live, outputThatReadsNoFurtherKeepsNobodyFromAStop)
{
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    const int reader = open((folder / "pipe").c_str(), O_RDONLY | O_NONBLOCK);
    RunningSdc sdc(folder, {"scan", "sub-band", "--repeat", "forever", "--csv", "pipe", "--jsonl", "a.jsonl"});
    ASSERT_TRUE(hasLines("a.jsonl", 5000)); // far more than a pipe takes
    sdc.interrupt();
    ASSERT_TRUE(has("a.jsonl", R"({"type":"end")"));
    sdc.interrupt();
    EXPECT_EQ(sdc.waitForExitStatus(), 130);
    EXPECT_THAT(read("err.txt"), HasSubstr("sdc: cannot write to pipe: nobody reads it\n"));
    EXPECT_EQ(json::parse(lines(read("a.jsonl")).back())["type"], "end");
    close(reader);
}

TEST_F(Live, outputOntoAFullDiskSaysSoAtOnceAndTheOthersGoOn)
{
    RunningSdc sdc(folder, slowScanWith({"--csv", "/dev/full", "--jsonl", "a.jsonl", "--json", "a.json"}));
    ASSERT_TRUE(isSaid("sdc: cannot write to /dev/full: No space left on device\n"));
    const std::size_t before = lines(read("a.jsonl")).size();
    ASSERT_TRUE(hasLines("a.jsonl", before + 2));
    sdc.interrupt();
    EXPECT_EQ(sdc.waitForExitStatus(), 1);
    EXPECT_EQ(json::parse(lines(read("a.jsonl")).back())["ending"], "stopped");
    EXPECT_EQ(json::parse(read("a.json"))["channels"][0]["sweeps"][0]["ending"], "stopped");
}

TEST_F(Live, outputsWithoutAnyPlaceLeftEndTheScan)
{
    const Outcome outcome = run("scan channel --repeat forever --csv /dev/full");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("sdc: cannot write to /dev/full: No space left on device\n"));
}

TEST_F(Live, outputsKeepWhatAFileHadUntilTheFirstSample)
{
    write("a.csv", "of yesterday\n");
    write("a.jsonl", "of yesterday\n");
    {
        // The first settle delay is 8 hours.
        RunningSdc sdc(folder, {"scan", "channel", "--speed", "0.0001", "--csv", "a.csv", "--jsonl", "a.jsonl"});
        ASSERT_TRUE(isSaid("\ntime "));
        sdc.send(SIGKILL);
        sdc.waitForExitStatus();
    }
    EXPECT_EQ(read("a.csv") + read("a.jsonl"), "of yesterday\nof yesterday\n");
    writeFaultyScenario("faulty.json", R"({"operation": "getUnitInfo", "action": "answer", "text": "?", "calls": "all"})");
    const Outcome outcome = run("scan channel --scenario faulty.json --csv a.csv --jsonl a.jsonl --csv new.csv");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(read("a.csv") + read("a.jsonl"), "of yesterday\nof yesterday\n");
    EXPECT_THAT(outcome.err, HasSubstr("sdc: a.csv keeps what it had: nothing was measured\n"));
    EXPECT_EQ(read("new.csv"), "channel,sweep,time,frequency_kHz,level_dBm\n");
    EXPECT_EQ(run("scan channel --csv a.csv").status, 0);
    EXPECT_EQ(lines(read("a.csv")).size(), 14U);
}

TEST_F(Live, rowsOfSeveralChannelsHaveAFileEach)
{
    fs::create_directory(folder / "out");
    EXPECT_EQ(run("scan channel --scenario 8-quad --channel 1,3 --repeat 2 --sweep out/rows.csv").status, 0);
    EXPECT_THAT(lines(read("out/rows-1.csv")), testing::SizeIs(2));
    EXPECT_THAT(lines(read("out/rows-1.csv")), Each(HasSubstr(", 8045500000, ")));
    EXPECT_THAT(lines(read("out/rows-3.csv")), Each(HasSubstr(", 8157500000, ")));
    EXPECT_FALSE(fs::exists(folder / "out/rows.csv"));
    EXPECT_EQ(run("scan channel --scenario 8-quad --channel 3 --sweep rows.csv").status, 0);
    EXPECT_THAT(lines(read("rows.csv")), testing::SizeIs(1));
}

TEST_F(Live, rowsOfSeveralChannelsAreRefusedWhereNothingKeepsThemApart)
{
    for (const char* const file : {"-", "/dev/stdout"}) {
        const Outcome outcome = run(std::string("scan channel --scenario 8-quad --sweep ") + file, "", "| cat >out.txt");
        EXPECT_THAT(outcome.err, HasSubstr("sdc: --sweep: the rows of several channels need a file each; "));
        EXPECT_THAT(outcome.out, IsEmpty());
    }
    write("rows-3.csv", "");
    EXPECT_THAT(run("scan channel --scenario 8-quad --sweep rows.csv --csv rows-3.csv").err,
        HasSubstr(" both write to rows-3.csv; "));
    EXPECT_EQ(run("scan channel --scenario 8-quad --sweep /dev/null").status, 0);
}

TEST_F(Live, scanForAResultAloneEndsWhenThatIsFull)
{
    const Outcome outcome = run("scan sub-band --repeat forever --json a.json --quiet");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        outcome.err, HasSubstr("sdc: a scan without end: 'sdc plot' and 'sdc compare' read no results above 64 MiB"));
    EXPECT_THAT(outcome.err,
        EndsWith("sdc: a.json ends with sweep 991: it is as large as a result may be; --jsonl and --csv "
                 "have no limit\n"));
    EXPECT_LT(fs::file_size(folder / "a.json"), 64U << 20U);
}

TEST_F(Live, memoryStaysTheSameHoweverManySweepsThereAre)
{
    const long few = memoryOf("10");
    constexpr long most_KiB = 2000; // the samples of these sweeps would take four times as much
    EXPECT_LT(memoryOf("1000") - few, most_KiB);
}

} // namespace

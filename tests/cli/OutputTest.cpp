// sdc scan: where the samples go.

#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

using Output = Sdc;

#define START " --start-time 2026-01-02T03:04:05Z"

TEST_F(Output, goesToAnyNumberOfFilesBesideTheTable)
{
    const Outcome outcome = run("scan channel --csv a.csv --csv b.csv --json a.json --sweep a.txt --table table.txt "
                                "--jsonl a.jsonl --holds holds.csv --plot a.svg --plot a.png --plot plot.txt --table -");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, HasSubstr("19188.750"));
    EXPECT_EQ(lines(read("holds.csv")).size(), 14U);
    EXPECT_EQ(nlohmann::json::parse(lines(read("a.jsonl")).back())["ending"], "complete");
    EXPECT_THAT(read("table.txt"), HasSubstr("19188.750"));
    EXPECT_THAT(read("a.csv"), StartsWith("channel,sweep,time,frequency_kHz,level_dBm\n1,1,20"));
    EXPECT_EQ(lines(read("a.csv")).size(), 14U);
    EXPECT_EQ(read("a.csv"), read("b.csv"));
    EXPECT_EQ(nlohmann::json::parse(read("a.json"))["scenario"], "18-f595");
    EXPECT_THAT(read("a.txt"), ContainsRegex("^[-0-9]+, [0-9:]+, 19164750000, 19190750000, 2000000, "));
    EXPECT_THAT(read("a.svg"), HasSubstr("<svg"));
    EXPECT_THAT(read("a.png"), StartsWith("\x89PNG"));
    EXPECT_THAT(read("plot.txt"), Not(IsEmpty()));
}

TEST_F(Output, takesTheTablesPlace)
{
    EXPECT_THAT(run("scan channel --csv a.csv").out, IsEmpty());
    EXPECT_THAT(run("scan channel --csv -").out, StartsWith("channel,sweep,time,frequency_kHz,level_dBm\n1,1,20"));
    EXPECT_EQ(lines(run("scan channel --csv - --table table.txt").out).size(), 14U);
    EXPECT_EQ(nlohmann::json::parse(run("scan channel --json -").out)["scenario"], "18-f595");
    EXPECT_THAT(run("scan channel --sweep -").out, HasSubstr(", 19164750"));
    EXPECT_EQ(run("scan channel --table -").out, run("scan channel").out);
    EXPECT_THAT(run("scan channel --plot -").out, Not(IsEmpty()));
}

TEST_F(Output, isPlainUnlessColourIsAskedFor)
{
    EXPECT_THAT(run("scan channel").out, Not(HasSubstr("\033[")));
    EXPECT_THAT(run("scan channel --color never").out, Not(HasSubstr("\033[")));
    EXPECT_THAT(run("scan channel --color always").out, HasSubstr("\033["));
    EXPECT_THAT(run("scan channel --color always", "NO_COLOR=1").out, HasSubstr("\033["));
    EXPECT_THAT(run("scan channel --color always --csv -").out, Not(HasSubstr("\033[")));
    run("scan channel --color always --table table.txt");
    EXPECT_THAT(read("table.txt"), Not(HasSubstr("\033[")));
}

TEST_F(Output, thatCannotBeWrittenIsKnownBeforeTheScan)
{
    fs::create_directory(folder / "taken");
    struct Row {
        const char* arguments;
        const char* said;
    };
    for (const Row& row : {Row{"--csv missing/a.csv", "sdc: cannot write to missing/a.csv: No such file or directory\n"},
             {"--json taken", "sdc: cannot write to taken: it is a folder\n"},
             {"--csv good.csv --sweep good.csv/a.txt", "sdc: cannot write to good.csv/a.txt: "}}) {
        SCOPED_TRACE(row.arguments);
        const Outcome outcome = run(std::string("scan channel ") + row.arguments);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_THAT(outcome.err, HasSubstr(row.said));
        EXPECT_THAT(outcome.err, Not(HasSubstr("status ")));
        EXPECT_THAT(outcome.out, IsEmpty());
        EXPECT_FALSE(fs::exists(folder / "good.csv"));
    }
}

TEST_F(Output, asAPictureWithoutGnuplotIsRefusedBeforeTheScan)
{
    const Outcome outcome = run("scan channel --plot a.svg --csv a.csv", "PATH=/nonexistent");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("sdc: --plot: a picture needs gnuplot, which is not there: install gnuplot-nox"))
        << "and not what would have been scanned";
    EXPECT_THAT(outcome.err, Not(HasSubstr("status ")));
    EXPECT_FALSE(fs::exists(folder / "a.csv"));
}

TEST_F(Output, intoAFileThatAnotherWritesIsRefused)
{
    const Outcome outcome = run("scan channel --csv a --json ./a");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "sdc: --csv and --json both write to ./a; give each a file of its own\n");
    EXPECT_FALSE(std::filesystem::exists(folder / "a"));
    EXPECT_EQ(run("scan channel --csv /dev/null --json /dev/null").status, 0);
}

TEST_F(Output, intoAFileThatAnotherWritesUnderAnotherNameIsRefused)
{
    write("file", "old");
    fs::create_hard_link(folder / "file", folder / "hard");
    fs::create_symlink("file", folder / "soft");
    for (const char* const name : {"hard", "soft", "./file"}) {
        const Outcome outcome = run(std::string("scan channel --csv file --json ") + name);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.err, HasSubstr(std::string("sdc: --csv and --json both write to ") + name + "; "));
        EXPECT_EQ(read("file"), "old");
    }
}

TEST_F(Output, intoTheFileThatTheShellHasOpenedAsStandardOutputIsRefused)
{
    for (const char* const name : {"log", "soft", "$PWD/log"}) {
        fs::remove(folder / "soft");
        fs::create_symlink("log", folder / "soft");
        write("log", "a line\n");
        const Outcome outcome = run(std::string("scan channel --csv ") + name, "", ">>log");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.err, HasSubstr("sdc: --csv and standard output both write to "));
        EXPECT_EQ(read("log"), "a line\n");
    }
    EXPECT_EQ(run("scan channel --table - --csv log", "", ">>log").status, 2);
}

TEST_F(Output, thatFailsAfterTheScanKeepsNoOtherFromBeingWritten)
{
    const Outcome full = run("scan channel --csv /dev/full --json result.json --sweep -");
    EXPECT_EQ(full.status, 1);
    EXPECT_THAT(full.err, HasSubstr("receiver   19177.500 MHz after\n"));
    EXPECT_THAT(full.err, ContainsRegex("\nsdc: [^\n]*/dev/full[^\n]*\n"));
    EXPECT_THAT(read("result.json"), HasSubstr("19164750"));
    EXPECT_THAT(full.out, HasSubstr("19164750"));
}

TEST_F(Output, toAFullOrClosedStandardOutputEndsWithStatus1AfterTheFilesAreWritten)
{
    for (const char* const output : {">/dev/full", ">&-"}) {
        for (const char* const arguments : {"--csv a.csv --table -", "--csv a.csv --json -", "--json a.json --csv -"}) {
            SCOPED_TRACE(std::string(arguments) + output);
            const Outcome outcome = run(std::string("scan channel ") + arguments, "", output);
            EXPECT_EQ(outcome.status, 1);
            EXPECT_THAT(outcome.err, ContainsRegex("\nsdc: [^\n]*standard output[^\n]*\n"));
            EXPECT_EQ(fs::exists(folder / "a.csv") ? lines(read("a.csv")).size() : 14U, 14U);
            EXPECT_TRUE(fs::remove(folder / "a.csv") || fs::remove(folder / "a.json"));
        }
    }
}

TEST_F(Output, toAReaderThatHasHadEnoughEndsQuietlyAfterTheFilesAreWritten)
{
    // The reader is gone before the scan begins: `true` reads nothing, and the scan waits for its end.
    const std::string command = "cd '" + folder.string()
        + "' && { { while [ ! -e gone ]; do :; done; '" SDC_PROGRAM
          "' scan channel --csv - --json a.json 2>err.txt; echo $? >status; } | { exec <&-; : >gone; }; }";
    EXPECT_EQ(std::system(command.c_str()), 0);
    ASSERT_TRUE(tests::eventually([&] { return !read("status").empty(); }));
    EXPECT_EQ(read("status"), "0\n");
    EXPECT_THAT(read("err.txt"), Not(HasSubstr("sdc: ")));
    EXPECT_THAT(read("a.json"), HasSubstr("19164750"));

    const std::string head =
        "cd '" + folder.string() + "' && '" SDC_PROGRAM "' scan sub-band --csv - 2>err.txt | head -1 >out.txt";
    EXPECT_EQ(std::system(head.c_str()), 0);
    EXPECT_EQ(read("out.txt"), "channel,sweep,time,frequency_kHz,level_dBm\n");
    EXPECT_THAT(read("err.txt"), Not(HasSubstr("sdc: ")));
}

TEST_F(Output, goesToWhatTheShellHasOpened)
{
    run("scan channel --csv plain.csv --quiet" START);
    write("log", "a line\n");
    EXPECT_EQ(run("scan channel --csv /dev/stdout --quiet" START, "", ">>log").status, 0);
    EXPECT_THAT(read("log"), StartsWith("a line\n" + read("plain.csv")));
    EXPECT_EQ(run("scan channel --csv /dev/fd/7 --quiet" START, "", "7>&1 | cat >piped.csv").status, 0);
    EXPECT_THAT(read("piped.csv"), StartsWith(read("plain.csv")));
}

} // namespace

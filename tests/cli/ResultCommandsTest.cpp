// sdc plot and sdc compare: what has been scanned before.

#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class ResultCommands : public Sdc {
protected:
    void SetUp() override
    {
        ASSERT_EQ(run("scan channel --quiet --json a.json --start-time 2026-01-02T03:04:05Z").status, 0);
    }
};

TEST_F(ResultCommands, plotsByTheNamesEnding)
{
    for (const auto& [file, beginning] : {std::pair{"a.svg", "<?xml"}, {"a.png", "\x89PNG"}}) {
        const Outcome outcome = run(std::string("plot a.json --output ") + file);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_THAT(outcome.out, IsEmpty());
        EXPECT_THAT(read(file), StartsWith(beginning));
    }
    EXPECT_EQ(run("plot a.json --output a.txt").status, 0);
    EXPECT_THAT(read("a.txt"), AllOf(HasSubstr("18-f595"), Not(HasSubstr("<svg"))));
}

TEST_F(ResultCommands, plotsTextOnStandardOutputUnlessToldOtherwise)
{
    const Outcome text = run("plot a.json");
    EXPECT_EQ(text.status, 0);
    EXPECT_THAT(text.out, AllOf(HasSubstr("18-f595"), Not(HasSubstr("\033["))));
    EXPECT_THAT(run("plot a.json --format svg").out, StartsWith("<?xml"));
    EXPECT_THAT(run("plot a.json --format png --output odd.name").err, IsEmpty());
    EXPECT_THAT(read("odd.name"), StartsWith("\x89PNG"));
    EXPECT_EQ(run("plot - <a.json", "cat a.json |").out, text.out);
}

TEST_F(ResultCommands, plotsInTheSizeAskedFor)
{
    const std::vector<std::string> rows = lines(run("plot a.json --width 60 --height 20").out);
    EXPECT_LE(rows.size(), 22U);
    for (const std::string& row : rows) {
        EXPECT_LE(row.size(), 60U + 40U); // bytes: a mark may be of several
    }
    EXPECT_THAT(run("plot a.json --format svg --width 1600 --height 600").out, HasSubstr("width=\"1600\" height=\"600\""));
}

TEST_F(ResultCommands, comparesWhatHasNotChanged)
{
    const Outcome same = run("compare a.json a.json");
    EXPECT_EQ(same.status, 0);
    EXPECT_THAT(same.err, IsEmpty());
    EXPECT_THAT(same.out, StartsWith("same\n"));
}

TEST_F(ResultCommands, comparesWhatHasChangedFromAThresholdOn)
{
    ASSERT_NO_FATAL_FAILURE(writeScenario("mine.json", "18-f595", {{"\"level_dBm\": -35", "\"level_dBm\": -45"}}));
    ASSERT_EQ(run("scan channel --scenario mine.json --quiet --json b.json").status, 0);
    const Outcome changed = run("compare a.json b.json");
    EXPECT_EQ(changed.status, 1) << "as diff has it";
    EXPECT_THAT(
        changed.out, AllOf(StartsWith("different\n"), HasSubstr("\nchannel 1: different, 13 frequencies compared\n")));
    const Outcome same = run("compare a.json b.json --threshold 20");
    EXPECT_EQ(same.status, 0);
    EXPECT_THAT(same.out, StartsWith("same\n"));
}

TEST_F(ResultCommands, comparisonAsJsonHasTheStatusOfTheText)
{
    const Outcome same = run("compare a.json a.json --json --trace average");
    EXPECT_EQ(same.status, 0);
    EXPECT_THAT(
        same.out, AllOf(StartsWith("{\n"), HasSubstr("\"is_different\": false"), HasSubstr("\"trace\": \"average\"")));
    ASSERT_NO_FATAL_FAILURE(writeScenario("mine.json", "18-f595", {{"\"level_dBm\": -35", "\"level_dBm\": -45"}}));
    ASSERT_EQ(run("scan channel --scenario mine.json --quiet --json b.json").status, 0);
    const Outcome changed = run("compare - b.json --json <a.json");
    EXPECT_EQ(changed.status, 1);
    EXPECT_THAT(changed.out, AllOf(HasSubstr("\"is_different\": true"), HasSubstr("\"file\": \"standard input\"")));
}

TEST_F(ResultCommands, refuseWhatIsNoResult)
{
    write("broken.json", "{ \"schema_version\": 1");
    write("other.json", "{ \"schema_version\": 1 }");
    std::filesystem::create_directory(folder / "some");
    for (const char* const file : {"broken.json", "other.json", "missing.json", "some"}) {
        for (const std::string& arguments : {std::string("plot ") + file, std::string("compare a.json ") + file,
                 std::string("compare ") + file + " a.json"}) {
            SCOPED_TRACE(arguments);
            const Outcome outcome = run(arguments);
            EXPECT_EQ(outcome.status, 2);
            EXPECT_THAT(outcome.err, StartsWith(std::string("sdc: ") + file + ": "));
            EXPECT_THAT(outcome.out, IsEmpty());
        }
    }
}

TEST_F(ResultCommands, readStandardInputOnce)
{
    const Outcome outcome = run("compare - -");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.err, StartsWith("sdc: BEFORE and AFTER: both are standard input; expected a file for one of them"));
}

TEST_F(ResultCommands, showNoNameThatATerminalObeys)
{
    EXPECT_THAT(run("plot " + std::string(300, 'b')).err, EndsWith("...: cannot be read: File name too long\n"));
    EXPECT_EQ(run("plot 'no\033[2J'").err, "sdc: no\\x1B[2J: cannot be read: No such file or directory\n");
    EXPECT_THAT(run("plot a.json --output 'no\033[2J'").err, StartsWith("sdc: --output: 'no\\x1B[2J' tells no kind of"));
}

TEST_F(ResultCommands, failWhereTheirOutputCannotBeWritten)
{
    for (const auto& [arguments, status] : {std::pair{"plot a.json", 1}, {"compare a.json a.json", 2}}) {
        const Outcome full = run(arguments, "", ">/dev/full");
        EXPECT_EQ(full.status, status) << "of a comparison, 1 says that something has changed";
        EXPECT_THAT(full.err, HasSubstr("standard output"));
    }
    EXPECT_EQ(run("plot a.json --output missing/a.svg").status, 1);
}

} // namespace

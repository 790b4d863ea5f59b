// The program on a terminal: the line that is written over, colours, Ctrl-C.

#include "tests/cli/PseudoTerminal.h"
#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>

namespace {

using testing::HasSubstr;
using testing::Not;

class OnATerminal : public Sdc {
protected:
    static std::string withoutColors(std::string text)
    {
        for (std::size_t begin = text.find("\033["); begin != std::string::npos; begin = text.find("\033[", begin)) {
            text.erase(begin, text.find('m', begin) + 1 - begin);
        }
        return text;
    }

    /// The lines that were written over each other, without their colours.
    static std::vector<std::string> progressLines(const std::string& shown)
    {
        const std::string beginning = "\r\033[K";
        std::vector<std::string> all;
        for (std::size_t at = shown.find(beginning); at != std::string::npos; at = shown.find(beginning, at)) {
            at += beginning.size();
            all.push_back(withoutColors(shown.substr(at, shown.find_first_of("\r\n", at) - at)));
        }
        return all;
    }

    std::string scan(unsigned short columns, const OnPseudoTerminal::Environment& environment = {},
        const std::vector<std::string>& more = {})
    {
        std::vector<std::string> command{SDC_PROGRAM, "scan", "sub-band", "--speed", "1000", "--rows", "5"};
        command.insert(command.end(), more.begin(), more.end());
        OnPseudoTerminal terminal(folder, command, columns, environment);
        EXPECT_EQ(terminal.finish(), 0);
        return terminal.shown();
    }
};

TEST_F(OnATerminal, progressIsOneLineNarrowerThanTheTerminal)
{
    for (const auto columns : std::vector<unsigned short>{40, 80, 160}) {
        SCOPED_TRACE(columns);
        const std::vector<std::string> all = progressLines(scan(columns));
        ASSERT_GE(all.size(), 1U);
        EXPECT_THAT(all.back(), HasSubstr("500/500 samples"));
        for (const std::string& line : all) {
            EXPECT_LT(line.size(), columns) << line;
        }
    }
    const std::string wide = progressLines(scan(160)).back();
    EXPECT_THAT(wide, HasSubstr("100 %  " + std::string(60, '#') + "  500/500 samples  19699.000 MHz  -"));
    const std::string narrow = progressLines(scan(80)).back();
    EXPECT_EQ(narrow.size(), 79U);
    EXPECT_THAT(narrow, HasSubstr(" dBm  0 s left"));
}

TEST_F(OnATerminal, tableHasAsManyRowsAsFitAndSaysHowToSeeAll)
{
    OnPseudoTerminal terminal(folder, {SDC_PROGRAM, "scan", "sub-band", "--quiet"}, 80); // it has 40 lines
    EXPECT_EQ(terminal.finish(), 0);
    EXPECT_LT(std::ranges::count(terminal.shown(), '\n'), 40) << "a line is the prompt's";
    EXPECT_GE(std::ranges::count(terminal.shown(), '|'), 15);
    EXPECT_THAT(terminal.shown(), HasSubstr("; --rows 0 shows all\r\n"));
}

TEST_F(OnATerminal, picturesFillItWithWhatIsSaidBelowThem)
{
    run("scan sub-band --repeat 30 --quiet --json a.json");
    const auto linesOf = [this](std::vector<std::string> arguments, unsigned short rows) {
        arguments.insert(arguments.begin(), SDC_PROGRAM);
        OnPseudoTerminal terminal(folder, arguments, 80, {}, rows);
        EXPECT_EQ(terminal.finish(), 0);
        return std::ranges::count(terminal.shown(), '\n');
    };
    for (const auto rows : std::vector<unsigned short>{16, 24, 50}) {
        SCOPED_TRACE(rows);
        EXPECT_EQ(linesOf({"plot", "a.json"}, rows), rows - 1) << "a line is the prompt's";
        EXPECT_LT(linesOf({"plot", "a.json", "--waterfall"}, rows), rows);
        EXPECT_EQ(linesOf({"scan", "channel", "--quiet", "--rows", "3", "--plot", "-"}, rows), rows - 1);
        EXPECT_EQ(linesOf({"plot", "a.json", "--height", "20"}, rows), 20) << "as asked for";
    }
    EXPECT_GE(linesOf({"plot", "a.json", "--waterfall"}, 50), 30 + 6) << "a row for each sweep, and what is around them";
    EXPECT_EQ(linesOf({"plot", "a.json", "--mark", "19177", "--mark", "19200"}, 50), 49);
    EXPECT_EQ(lines(run("plot a.json").out).size(), 24U);
}

TEST_F(OnATerminal, linesThatAreWrittenLiveAreNotMixedWithProgress)
{
    OnPseudoTerminal terminal(folder, {SDC_PROGRAM, "scan", "sub-band", "--csv", "-"}, 80);
    EXPECT_EQ(terminal.finish(), 0);
    EXPECT_THAT(progressLines(terminal.shown()), testing::IsEmpty());
    EXPECT_THAT(terminal.shown(), HasSubstr("\r\n1,1,20"));
}

TEST_F(OnATerminal, progressIsColouredUnlessToldOtherwise)
{
    const std::string bar = "\033[36m#";
    EXPECT_THAT(scan(80), HasSubstr(bar));
    EXPECT_THAT(scan(80, {{"NO_COLOR", ""}}), HasSubstr(bar));
    EXPECT_THAT(scan(80, {{"NO_COLOR", "1"}}), Not(HasSubstr("\033[3")));
    EXPECT_THAT(scan(80, {{"NO_COLOR", "1"}}, {"--color", "always"}), HasSubstr(bar));
    EXPECT_THAT(scan(80, {}, {"--color", "never"}), Not(HasSubstr("\033[3")));
    EXPECT_THAT(scan(160, {{"NO_COLOR", "1"}}), Not(HasSubstr("\033[3")));
}

TEST_F(OnATerminal, thatCannotMoveItsCursorProgressIsPlainLines)
{
    const std::string shown = scan(80, {{"TERM", "dumb"}});
    EXPECT_THAT(shown, HasSubstr("\nprogress   100 %  500/500 samples"));
    EXPECT_THAT(shown, Not(HasSubstr("\033")));
}

TEST_F(OnATerminal, thatDoesNotTellItsWidthTheEnvironmentDoes)
{
    EXPECT_EQ(progressLines(scan(0, {{"COLUMNS", "100"}})).back().size(), 99U);
    EXPECT_EQ(progressLines(scan(0, {{"COLUMNS", "wide"}})).back().size(), 79U);
}

TEST_F(OnATerminal, tableIsAsWideAsTheTerminal)
{
    const auto longest = [this](unsigned short columns) {
        std::size_t most = 0;
        for (const std::string& line : lines(scan(columns, {}, {"--quiet", "--color", "never"}))) {
            most = std::max(most, line.size() - 1); // without the carriage return
        }
        return most;
    };
    const std::size_t narrow = longest(80);
    EXPECT_LE(narrow, 80U);
    EXPECT_GT(longest(160), narrow + 40);
}

TEST_F(OnATerminal, quietShowsNoProgress)
{
    const std::string shown = scan(80, {}, {"--quiet"});
    EXPECT_THAT(progressLines(shown), testing::IsEmpty());
    EXPECT_THAT(shown, Not(HasSubstr("scenario ")));
}

TEST_F(OnATerminal, traceStandsOnLinesOfItsOwn)
{
    OnPseudoTerminal terminal(
        folder, {SDC_PROGRAM, "scan", "channel", "--scenario", "flaky", "--speed", "100", "--rows", "5"}, 80);
    EXPECT_EQ(terminal.finish(), 3);
    EXPECT_THAT(terminal.shown(), HasSubstr("\r\033[KZRP.SDC 1   sweep: Failed to set RX frequency "));
    EXPECT_THAT(terminal.shown(), HasSubstr("\r\033[Ksdc: channel 1: tuning to "));
}

TEST_F(OnATerminal, ctrlCStops)
{
    OnPseudoTerminal terminal(folder, {SDC_PROGRAM, "scan", "sub-band", "--speed", "3", "--csv", "a.csv"}, 80);
    ASSERT_TRUE(terminal.shows("/500 samples"));
    terminal.type("\x03");
    EXPECT_EQ(terminal.finish(), 4);
    EXPECT_THAT(terminal.shown(), HasSubstr("sdc: stopping after the step in hand, up to "));
    EXPECT_THAT(terminal.shown(), HasSubstr("receiver   19177.500 MHz after\r\n"));
    EXPECT_THAT(read("a.csv"), HasSubstr(",18701000,-"));
}

} // namespace

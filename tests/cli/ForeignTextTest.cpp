// Texts of unknown origin (arguments, scenarios, radios, scripts): nothing in them is obeyed by the terminal that shows
// them.

#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>

namespace {

using testing::HasSubstr;
using testing::Not;

/// "clear the screen" in both its forms, text from right to left, and a byte that is no UTF-8.
constexpr const char* hostile = "a\x1B[2J\xC2\x9B"
                                "2J\xE2\x80\xAE\xFFz";
constexpr const char* visible = "a\\x1B[2J\\u009B2J\\u202E\\xFFz";

class ForeignText : public Sdc {
protected:
    /// Whether what a run has shown is plain, and tells the text all the same.
    static void expectPlain(const Outcome& outcome)
    {
        for (const std::string& text : {outcome.out, outcome.err}) {
            EXPECT_THAT(text, Not(HasSubstr("\x1B")));
            EXPECT_THAT(text, Not(HasSubstr("\xC2\x9B")));
            EXPECT_THAT(text, Not(HasSubstr("\xE2\x80\xAE")));
            EXPECT_THAT(text, Not(HasSubstr("\xFF")));
        }
        EXPECT_THAT(outcome.out + outcome.err, HasSubstr("2J\\u202"));
    }
};

TEST_F(ForeignText, inArgumentsIsShownAsEscapes)
{
    const std::string word = std::string("'") + hostile + "'";
    for (const std::string& arguments : {word, "--" + word, "scan " + word, "scan channel " + word,
             "scan channel --speed " + word, "scan channel --csv -" + word, "scan channel --csv missing/" + word,
             "scan channel --scenario " + word, "scan channel --plot " + word, "plan --channel " + word,
             "plan --scenario " + word, "scenarios " + word, "scenarios show " + word, "scenarios check " + word,
             "console --channel " + word, "plot " + word, "plot a.json --format " + word}) {
        SCOPED_TRACE(arguments);
        const Outcome outcome = run(arguments);
        EXPECT_NE(outcome.status, 0);
        expectPlain(outcome);
    }
    std::filesystem::copy(SDC_SCENARIOS "/storm.json", folder / hostile);
    const Outcome good = run("scenarios check " + word);
    EXPECT_EQ(good.out, std::string(visible) + ": ok\n");
}

TEST_F(ForeignText, onTheConsoleAndInTheTraceIsShownAsEscapes)
{
    const std::string text = hostile;
    for (const std::string& line : {text, "get-result " + text, "fault " + text + " throw",
             "fault getUnitInfo answer 1 " + text + "\nchannel-scan-start"}) {
        SCOPED_TRACE(line);
        write("script.txt", line + "\n");
        expectPlain(run("console <script.txt"));
    }
}

TEST_F(ForeignText, thatIsLongIsShortened)
{
    const std::string word(100000, 'x');
    EXPECT_LT(run("scan channel --speed " + word).err.size(), 1000U);
    write("script.txt", word + "\n");
    EXPECT_LT(run("console <script.txt").out.size(), 1000U);
}

} // namespace

// From a seed to an outcome, and from outcomes to figures.

#include "tests/judge/Outcome.h"
#include "tests/judge/Document.h"
#include "tests/judge/Tables.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using judge::Case;
using judge::Outcome;

const std::vector<Outcome>& some()
{
    static const std::vector<Outcome> outcomes = judge::tryAll(1, 400, judge::plainThreshold, 2);
    return outcomes;
}

std::string figuresOf(const std::vector<Outcome>& outcomes)
{
    std::ostringstream text;
    judge::writeGoals(text, outcomes);
    judge::writeTables(text, outcomes);
    return text.str();
}

TEST(Outcomes, figuresDoNotDependOnTheThreads)
{
    EXPECT_EQ(figuresOf(judge::tryAll(1, 400, judge::plainThreshold, 1)), figuresOf(some()));
    EXPECT_EQ(figuresOf(judge::tryAll(1, 400, judge::plainThreshold, 5)), figuresOf(some()));
}

TEST(Outcomes, areInTheOrderOfTheirSeeds)
{
    ASSERT_EQ(some().size(), 400U);
    for (std::size_t index = 0; index < some().size(); ++index) {
        EXPECT_EQ(some()[index].seed, index + 1);
    }
}

TEST(Outcomes, areOfEveryCase)
{
    std::map<Case, int> counts;
    for (const Outcome& outcome : some()) {
        ++counts[outcome.which];
    }
    for (const Case which : {Case::dead, Case::clean, Case::nextCase, Case::raised, Case::disturbed}) {
        EXPECT_GT(counts[which], 4) << static_cast<int>(which);
    }
}

TEST(Outcomes, plainDetectorFindsWhatIsStrongWithTheFarEndMuted)
{
    for (const Outcome& outcome : some()) {
        const bool isHeardInTheMiddle = outcome.truth.channel.tunings == 1 && outcome.truth.channel.over >= 1500;
        if (outcome.told == sdc::FarEnd::muted && outcome.which == Case::disturbed && isHeardInTheMiddle
            && outcome.kind == sdc::ScanKind::channel) {
            EXPECT_TRUE(isAlarm(outcome)) << "seed " << outcome.seed;
        }
    }
}

TEST(Outcomes, whatADetectorThrowsComesOut)
{
    const auto fail = [](const sdc::ChannelResult&, sdc::FarEnd) -> judge::Answer { throw std::runtime_error("no answer"); };

    EXPECT_THROW(judge::tryAll(1, 5, fail, 2), std::runtime_error);
}

class JudgeDocument : public testing::Test {
protected:
    std::string rewritten(const std::string& before, const std::string& text)
    {
        const std::string file = testing::TempDir() + "judge-document.md";
        std::ofstream(file) << before;
        judge::updateDocument(file, text);
        std::ifstream after(file);
        return {std::istreambuf_iterator<char>(after), {}};
    }
};

TEST_F(JudgeDocument, getsTheFiguresBetweenItsMarks)
{
    EXPECT_EQ(rewritten("a\n<!-- judge -->\nold\n<!-- end of judge -->\nb\n", "new\n"),
        "a\n<!-- judge -->\nnew\n<!-- end of judge -->\nb\n");
}

TEST_F(JudgeDocument, withoutMarksIsAnError)
{
    EXPECT_THROW(rewritten("a\n", "new\n"), std::runtime_error);
    EXPECT_THROW(rewritten("<!-- end of judge -->\n<!-- judge -->\n", "new\n"), std::runtime_error);
}

TEST(JudgePicture, tellsTheFalseAlarmsBesideTheCurves)
{
    const std::string picture = judge::picture(some(), some());

    EXPECT_EQ(picture.rfind("<?xml", 0), 0U);
    EXPECT_NE(picture.find("far end muted, plain threshold; false alarms"), std::string::npos);
}

} // namespace

// Times and columns as people read them.

#include "apps/sdc/Texts.h"

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;

TEST(Texts, durationsAreCutOffAfterTheirLastFigure)
{
    EXPECT_EQ(sdc::durationText(0ms), "0.0 s");
    EXPECT_EQ(sdc::durationText(6699ms), "6.6 s");
    EXPECT_EQ(sdc::durationText(59999ms), "59.9 s");
    EXPECT_EQ(sdc::durationText(60000ms), "1 min 0 s");
    EXPECT_EQ(sdc::durationText(152700ms), "2 min 32 s");
    EXPECT_EQ(sdc::durationText(3599999ms), "59 min 59 s");
    EXPECT_EQ(sdc::durationText(3600000ms), "1 h 0 min 0 s");
    EXPECT_EQ(sdc::durationText(20645000ms), "5 h 44 min 5 s");
}

TEST(Texts, wallTimeIsRadioTimeDividedByTheSpeed)
{
    EXPECT_EQ(sdc::wallTime(6600ms, 1.0), 6600ms);
    EXPECT_EQ(sdc::wallTime(6600ms, 3.0), 2200ms);
    EXPECT_EQ(sdc::wallTime(6600ms, 0.5), 13200ms);
    EXPECT_EQ(sdc::wallTime(6600ms, 0.0), 0ms);
    EXPECT_EQ(sdc::wallTime(6600ms, 1e-300), std::chrono::milliseconds(1000000000000000));
}

TEST(Texts, columnsAreFilledAndNeverCut)
{
    EXPECT_EQ(sdc::left("ab", 4), "ab  ");
    EXPECT_EQ(sdc::left("abcde", 4), "abcde");
}

TEST(Texts, countsHaveTheirPlural)
{
    EXPECT_EQ(sdc::counted(1, "sample"), "1 sample");
    EXPECT_EQ(sdc::counted(0, "sample"), "0 samples");
    EXPECT_EQ(sdc::counted(13, "sample"), "13 samples");
}

TEST(Texts, messagesNameTheProgramInEveryLine)
{
    EXPECT_EQ(sdc::message("it failed"), "sdc: it failed\n");
    EXPECT_EQ(sdc::message("one\n\ntwo\n"), "sdc: one\nsdc: two\n");
    EXPECT_EQ(sdc::message(""), "");
}

} // namespace

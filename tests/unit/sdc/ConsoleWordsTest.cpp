// Lines of a console taken apart.

#include "apps/sdc/console/Words.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ConsoleWords, arePartedByBlanks)
{
    EXPECT_THAT(sdc::wordsOf("  fault\treadRssi  stick\r"), ElementsAre("fault", "readRssi", "stick"));
    EXPECT_THAT(sdc::wordsOf(" \t "), IsEmpty());
    EXPECT_THAT(sdc::wordsOf(""), IsEmpty());
}

TEST(ConsoleWords, endWhereARemarkBegins)
{
    EXPECT_THAT(sdc::wordsOf("wait # for it"), ElementsAre("wait"));
    EXPECT_THAT(sdc::wordsOf("#wait"), IsEmpty());
    EXPECT_THAT(sdc::wordsOf("save a#b '#' \\#"), ElementsAre("save", "a#b", "#", "#"));
}

TEST(ConsoleWords, haveBlanksBetweenQuotesAndBehindBackslashes)
{
    EXPECT_THAT(sdc::wordsOf(R"(save 'a b' "c 'd" e\ f g" h"'i')"), ElementsAre("save", "a b", "c 'd", "e f", "g hi"));
    EXPECT_THAT(sdc::wordsOf(R"('a\b' "a\"b" \\ '')"), ElementsAre("a\\b", "a\"b", "\\", ""));
    EXPECT_THAT(sdc::wordsOf("a\\"), ElementsAre("a\\"));
}

TEST(ConsoleWords, withoutTheirSecondQuotesAreInvalid)
{
    for (const char* const line : {"'", "save 'a b", "save \"a", "save 'a\"", R"(save "a\")"}) {
        EXPECT_THROW(sdc::wordsOf(line), sdc::InvalidLine) << line;
    }
}

TEST(ConsoleWords, tellWhereTheLastBegins)
{
    const sdc::SplitLine split = sdc::splitLine("save 'a b");
    EXPECT_EQ(split.lastBegins, 5U);
    EXPECT_TRUE(split.endsInWord);
    EXPECT_TRUE(split.endsInQuotes);
    EXPECT_FALSE(sdc::splitLine("save ").endsInWord);
    EXPECT_TRUE(sdc::splitLine("save #").hasRemark);
}

TEST(ConsoleWords, areReadAsTheyWereWritten)
{
    for (const char* const word : {"a", "a b", "'", "\"", "\\", "#a", "a#", "\t", "\xC3\xA4 \xFF", " a ", "a\\ b"}) {
        EXPECT_THAT(sdc::wordsOf("save " + sdc::asWord(word) + " c"), ElementsAre("save", word, "c"));
    }
}

} // namespace

#include "support/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

namespace {

using namespace std::chrono_literals;

using support::shown;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(ShownText, leavesWhatCanBeRead)
{
    for (const char* const plain : {"", "a b~", "C:\\x\"'", "M\u00FCnchen", "\u00A0", "18\u2009GHz", "\u2027\u202F",
             "\u65E5\u672C", "\U0001F4E1", "\U0010FFFF"}) {
        EXPECT_EQ(shown(plain), plain);
    }
}

TEST(ShownText, escapesWhatATerminalWouldObey)
{
    const std::pair<std::string, const char*> rows[] = {
        {std::string(1, '\0'), "\\x00"},
        {"two\nlines", "two\\x0Alines"},
        {"\033[31m", "\\x1B[31m"},
        {"\x7F", "\\x7F"},
        {"\u0080", "\\u0080"},
        {"\u009B31m", "\\u009B31m"},
        {"\u061C", "\\u061C"},
        {"\u200E\u200F", "\\u200E\\u200F"},
        {"\u2028\u2029", "\\u2028\\u2029"},
        {"gpj.\u202Eexe", "gpj.\\u202Eexe"},
        {"\u202A\u202D", "\\u202A\\u202D"},
        {"\u2066\u2069", "\\u2066\\u2069"},
        {"\uFEFF", "\\uFEFF"},
        {"a\u00ADb\u200Bc\u2060", "a\\u00ADb\\u200Bc\\u2060"},
        {"\U000E0041", "\\U000E0041"},
    };
    for (const auto& [foreign, text] : rows) {
        EXPECT_EQ(shown(foreign), text);
    }
}

TEST(ShownText, escapesBytesThatAreNoUtf8)
{
    const std::pair<const char*, const char*> rows[] = {
        {"\x9B", "\\x9B"},                            // a control character of an older encoding
        {"a\xFF", "a\\xFF"},                          // begins nothing
        {"\xC3", "\\xC3"},                            // ends too early
        {"\xE2\x80z", "\\xE2\\x80z"},                 // goes on with something else
        {"\xC1\x9B", "\\xC1\\x9B"},                   // longer than it need be
        {"\xE0\x82\x9B", "\\xE0\\x82\\x9B"},          // likewise
        {"\xF0\x80\x82\x9B", "\\xF0\\x80\\x82\\x9B"}, // likewise
        {"\xED\xA0\x80", "\\xED\\xA0\\x80"},          // half of a pair
        {"\xF4\x90\x80\x80", "\\xF4\\x90\\x80\\x80"}, // above the last character
    };
    for (const auto& [foreign, text] : rows) {
        EXPECT_EQ(shown(foreign), text);
    }
}

TEST(ShownText, isShortenedBetweenCharacters)
{
    EXPECT_EQ(shown("1234567890", 10), "1234567890");
    EXPECT_EQ(shown("12345678901", 10), "1234567...");
    EXPECT_EQ(shown("\u00FC\u00FC\u00FC\u00FC\u00FC", 4), "\u00FC...");
    EXPECT_EQ(shown("\u00FC\u00FC\u00FC\u00FC", 4), "\u00FC\u00FC\u00FC\u00FC");
    EXPECT_EQ(shown("abc\033\033", 10), "abc\\x1B...");
    EXPECT_EQ(shown("abc\033\033", 9), "abc...");
    EXPECT_EQ(shown("abc\033", 7), "abc\\x1B");
    EXPECT_EQ(shown("\033\033", 3), "...");
    EXPECT_EQ(shown(std::string(1000000, 'a')).size(), 200U);
}

TEST(Input, isReadToItsEndButNotBeyondItsLimit)
{
    std::istringstream small("a\nb\n");
    EXPECT_EQ(support::readToEnd(small, 1), "a\nb\n");
    std::istringstream full(std::string(1 << 20, 'x'));
    EXPECT_EQ(support::readToEnd(full, 1).size(), 1U << 20U);
    std::istringstream large(std::string((1 << 20) + 1, 'x'));
    EXPECT_THAT([&] { support::readToEnd(large, 1); },
        testing::ThrowsMessage<std::runtime_error>("is larger than 1 MiB; must be smaller"));
}

TEST(Duration, isCutOffAfterItsLastFigure)
{
    for (const auto& [time, text] :
        {std::pair{0ms, "0.0 s"}, {6699ms, "6.6 s"}, {59999ms, "59.9 s"}, {60000ms, "1 min 0 s"}, {152700ms, "2 min 32 s"},
            {3599999ms, "59 min 59 s"}, {3600000ms, "1 h 0 min 0 s"}, {20645000ms, "5 h 44 min 5 s"}}) {
        EXPECT_EQ(support::duration(time), text);
    }
}

TEST(Counted, hasItsPlural)
{
    EXPECT_EQ(support::counted(1, "sample"), "1 sample");
    EXPECT_EQ(support::counted(0, "sample"), "0 samples");
    EXPECT_EQ(support::counted(13, "sample"), "13 samples");
}

TEST(Prefixed, isEveryLineButTheEmpty)
{
    EXPECT_EQ(support::prefixed("it failed", "sdc: "), "sdc: it failed\n");
    EXPECT_EQ(support::prefixed("one\n\ntwo\x1B\n", "sdc: "), "sdc: one\nsdc: two\\x1B\n");
    EXPECT_EQ(support::prefixed("", "sdc: "), "");
}

TEST(LongTexts, areWrappedBetweenWords)
{
    EXPECT_THAT(support::wrapped({"one two six ten", "four"}, 13), ElementsAre("one two", "  six ten", "four"));
    EXPECT_THAT(support::wrapped({"one two six four ten"}, 8), ElementsAre("one two", "  six", "  four", "  ten"));
    EXPECT_THAT(support::wrapped({"one two"}, 7), ElementsAre("one two"));
    EXPECT_THAT(support::wrapped({"longerthanaline x"}, 5), ElementsAre("longerthanaline", "  x"));
    EXPECT_THAT(support::wrapped({"a sentence of several words that is too long for it"}, 49),
        ElementsAre("a sentence of several words", "  that is too long for it"))
        << "and not with a word alone at its end";
    EXPECT_THAT(support::wrapped({"a sentence of several words that is longer than it"}, 35),
        ElementsAre("a sentence of several words that is", "  longer than it"));
}

} // namespace

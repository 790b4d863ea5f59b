#include "support/Suggestion.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using support::nearest;

constexpr std::string_view known[] = {"channel", "sub-band", "jitter_dB", "18-f595", "18-busy", "cat"};

std::string suggested(const std::string& typed)
{
    return std::string(nearest(typed, known).value_or("nothing"));
}

TEST(Suggestions, knowTheUsualSlips)
{
    EXPECT_EQ(suggested("chanel"), "channel");      // one left out
    EXPECT_EQ(suggested("channnel"), "channel");    // one too many
    EXPECT_EQ(suggested("chammel"), "channel");     // two replaced
    EXPECT_EQ(suggested("hcannel"), "channel");     // neighbours swapped: one edit
    EXPECT_EQ(suggested("JITTER_DB"), "jitter_dB"); // upper and lower case are the same
    EXPECT_EQ(suggested("18-f59"), "18-f595");
    EXPECT_EQ(suggested("subband"), "sub-band");
    EXPECT_EQ(suggested("channel"), "channel");
}

TEST(Suggestions, allowMoreEditsInLongerNames)
{
    EXPECT_EQ(suggested("cut"), "cat");       // three characters: one edit
    EXPECT_EQ(suggested("cuu"), "nothing");   // two
    EXPECT_EQ(suggested("tac"), "nothing");   // swapped, but not neighbours: two
    EXPECT_EQ(suggested("act"), "cat");       // neighbours swapped
    EXPECT_EQ(suggested("chxx"), "nothing");  // four characters, three edits
    EXPECT_EQ(suggested("chane"), "channel"); // five characters, two edits
    EXPECT_EQ(suggested("ch"), "nothing");
    EXPECT_EQ(suggested("xhxxnel"), "channel"); // seven characters, three edits
    EXPECT_EQ(suggested("xhxxnex"), "nothing"); // four
}

TEST(Suggestions, areTheNearestAndTheFirstOfEquals)
{
    EXPECT_EQ(suggested("18-bus"), "18-busy");
    constexpr std::string_view equals[] = {"6l-clean", "7l-clean", "8l-clean"};
    EXPECT_EQ(nearest("9l-clean", equals), "6l-clean");
    EXPECT_EQ(nearest("8l-clea", equals), "8l-clean");
    EXPECT_EQ(nearest("7l-clean", equals), "7l-clean");
}

TEST(Suggestions, areNotMadeOutOfNothing)
{
    EXPECT_EQ(suggested(""), "nothing");
    EXPECT_EQ(nearest("name", {}), std::nullopt);
    EXPECT_EQ(suggested(std::string(1000000, 'c')), "nothing");
    const std::string_view odd[] = {""};
    EXPECT_EQ(nearest("abc", odd), std::nullopt);
}

} // namespace

#include "apps/sdc/results/PlotText.h"

#include <gtest/gtest.h>

using sdc::FrequencyAxis;
using sdc::plottable;
using sdc::quoted;

TEST(PlotTexts, plainTextStaysAsItIs)
{
    EXPECT_EQ(plottable("KLM6 18G ~!{}^_@&", 99), "KLM6 18G ~!{}^_@&");
    EXPECT_EQ(plottable("\xC3\xBC \xE2\x82\xAC \xF0\x9F\x93\xA1 \xF4\x8F\xBF\xBF \xED\x9F\xBF \xEE\x80\x80", 99),
        "\xC3\xBC \xE2\x82\xAC \xF0\x9F\x93\xA1 \xF4\x8F\xBF\xBF \xED\x9F\xBF \xEE\x80\x80");
}

TEST(PlotTexts, controlCharactersBecomeQuestionMarks)
{
    EXPECT_EQ(plottable("a\nb\tc\033[1m\x7F\x1F ", 99), "a?b?c?[1m?? ");
    EXPECT_EQ(plottable(std::string_view("\0", 1), 99), "?");
    EXPECT_EQ(plottable("\xC2\x80\xC2\x9F", 99), "??");
    EXPECT_EQ(plottable("\xC2\xA0", 99), "\xC2\xA0");
}

TEST(PlotTexts, whatIsNoUtf8BecomesQuestionMarks)
{
    const struct {
        const char* text;
        const char* shown;
    } rows[]{{"\xFFx", "?x"}, {"\x80x", "?x"}, {"\xC1\xBFx", "??x"}, {"\xC3", "?"}, {"\xC3x", "?x"}, {"\xE2\x82", "??"},
        {"\xE2\x82x", "??x"}, {"\xE0\x9F\xBF", "???"}, {"\xED\xA0\x80", "???"}, {"\xF0\x8F\xBF\xBF", "????"},
        {"\xF4\x90\x80\x80", "????"}, {"\xF5\x80\x80\x80", "????"}, {"\xF0\x9F\x93", "???"}};
    for (const auto& row : rows) {
        EXPECT_EQ(plottable(row.text, 99), row.shown);
    }
}

TEST(PlotTexts, longTextsAreCutBetweenCharacters)
{
    EXPECT_EQ(plottable("\xC3\xBC\xC3\xBC\xC3\xBC", 2), "\xC3\xBC\xC3\xBC...");
    EXPECT_EQ(plottable("abc", 3), "abc");
    EXPECT_EQ(plottable("", 0), "");
}

TEST(PlotTexts, whatCouldEndAStringOrBeACommandIsANumber)
{
    EXPECT_EQ(quoted("it's `a` \"b\" \\n @c $d; {e} %f"), R"("it\047s \140a\140 \042b\042 \134n \100c $d; {e} %f")");
    EXPECT_EQ(quoted(""), R"("")");
}

TEST(FrequencyAxes, frequenciesAreInMegahertzBelow10Gigahertz)
{
    EXPECT_STREQ(FrequencyAxis(9'999'999).unit(), "MHz");
    EXPECT_EQ(FrequencyAxis(9'999'999).text(7'428'005), "7428.005");
    EXPECT_STREQ(FrequencyAxis(10'000'000).unit(), "GHz");
    EXPECT_EQ(FrequencyAxis(10'000'000).text(19'177'500), "19.177500");
    EXPECT_EQ(FrequencyAxis(10'000'000).text(-1), "-0.000001");
}

TEST(FrequencyAxes, decimalsAreThoseThatTellAFrequencyExactly)
{
    const FrequencyAxis low(7'000'000);
    const FrequencyAxis high(19'000'000);
    const struct {
        std::int64_t frequency_kHz;
        int lowDecimals;
        int highDecimals;
    } rows[]{{1, 3, 6}, {10, 2, 5}, {1'000, 0, 3}, {27'500, 1, 4}, {1'000'000, 0, 0}, {19'177'500, 1, 4}};
    for (const auto& row : rows) {
        EXPECT_EQ(low.decimalsFor(row.frequency_kHz), row.lowDecimals) << row.frequency_kHz;
        EXPECT_EQ(high.decimalsFor(row.frequency_kHz), row.highDecimals) << row.frequency_kHz;
    }
    EXPECT_EQ(high.text(19'177'500, 4), "19.1775");
    EXPECT_EQ(high.text(19'000'000, 0), "19");
    EXPECT_EQ(low.text(7'428'000, 1), "7428.0");
}

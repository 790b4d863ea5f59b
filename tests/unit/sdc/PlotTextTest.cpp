#include "apps/sdc/plot/PlotFrame.h"

#include <gtest/gtest.h>

using sdc::FrequencyAxis;
using sdc::inQuotes;

TEST(PlotTexts, whatCouldEndAStringOrBeACommandIsANumber)
{
    EXPECT_EQ(inQuotes("it's `a` \"b\" \\n @c $d; {e} %f"), R"("it\047s \140a\140 \042b\042 \134n \100c $d; {e} %f")");
    EXPECT_EQ(inQuotes(""), R"("")");
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

#include "apps/sdc/plot/Axes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using sdc::FrequencyAxis;
using sdc::niceStep;
using sdc::Room;
using sdc::roundedUp;
using sdc::Tick;
using testing::ElementsAre;

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

TEST(Steps, areOneTwoOrFiveTimesAPowerOfTen)
{
    for (const auto& [least, step] : {std::pair{0.1, 1}, {1.0, 1}, {1.1, 2}, {2.0, 2}, {2.1, 5}, {5.1, 10}, {201.0, 500}}) {
        EXPECT_EQ(niceStep(least), step) << least;
    }
}

TEST(Steps, multiplesAreRoundedUpOnBothSidesOfZero)
{
    for (const auto& [value, multiple] : {std::pair{0, 0}, {1, 10}, {10, 10}, {11, 20}, {-1, 0}, {-10, -10}, {-11, -10}}) {
        EXPECT_EQ(roundedUp(value, 10), multiple) << value;
    }
}

TEST(Ticks, ofFrequenciesHaveRoomForTheirLabels)
{
    const Room wide{.width = 100.0, .height = 20.0, .characterWidth = 1.0, .lineHeight = 1.0};
    const Room narrow{.width = 30.0, .height = 20.0, .characterWidth = 1.0, .lineHeight = 1.0};
    const FrequencyAxis axis(7'000'000);
    EXPECT_THAT(sdc::frequencyTicks({6'999'000, 7'011'000}, 500, axis, narrow),
        ElementsAre(Tick{7'000'000, "7000.0"}, Tick{7'005'000, "7005.0"}, Tick{7'010'000, "7010.0"}));
    EXPECT_EQ(sdc::frequencyTicks({6'999'000, 7'011'000}, 500, axis, wide).size(), 6U);
}

TEST(Ticks, ofChannelsAreLabelledWhereThereIsRoom)
{
    const Room room{.width = 60.0, .height = 20.0, .characterWidth = 1.0, .lineHeight = 1.0};
    EXPECT_THAT(sdc::channelTicks({94'000, 106'000}, 100'000, 3'000, room),
        ElementsAre(Tick{94'000, "-2"}, Tick{97'000, "-1"}, Tick{100'000, "0"}, Tick{103'000, "+1"}, Tick{106'000, "+2"}));
    EXPECT_THAT(sdc::channelTicks({97'500, 102'500}, 100'000, 2'400,
                    {.width = 10.0, .height = 1.0, .characterWidth = 1.0, .lineHeight = 1.0}),
        ElementsAre(Tick{97'600, ""}, Tick{100'000, "0"}, Tick{102'400, ""}));
    EXPECT_TRUE(sdc::channelTicks({94'000, 106'000}, 100'000, 0, room).empty());
    EXPECT_TRUE(sdc::channelTicks({0, 1'001'000}, 0, 1'000, room).empty());
}

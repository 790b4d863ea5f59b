#include "apps/sdc/plot/Axes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

using sdc::niceStep;
using sdc::Room;
using sdc::roundedUp;
using sdc::Tick;
using testing::ElementsAre;

TEST(FrequencyAxes, areInMegahertz)
{
    EXPECT_EQ(sdc::inMegahertz(7'428'005), "7428.005");
    EXPECT_EQ(sdc::inMegahertz(19'177'500), "19177.500");
    EXPECT_EQ(sdc::inMegahertz(-1), "-0.001");
    EXPECT_EQ(sdc::inMegahertz(19'177'500, 1), "19177.5");
    EXPECT_EQ(sdc::inMegahertz(19'000'000, 0), "19000");
    EXPECT_EQ(sdc::inMegahertz(7'428'000, 1), "7428.0");
}

TEST(FrequencyAxes, decimalsAreThoseThatTellAFrequencyExactly)
{
    for (const auto& [frequency_kHz, decimals] : {std::pair{1, 3}, {10, 2}, {1'000, 0}, {27'500, 1}, {19'000'000, 0}}) {
        EXPECT_EQ(sdc::decimalsFor(frequency_kHz), decimals) << frequency_kHz;
    }
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
    EXPECT_THAT(sdc::frequencyTicks({6'999'000, 7'011'000}, narrow),
        ElementsAre(Tick{7'000'000, "7000"}, Tick{7'005'000, "7005"}, Tick{7'010'000, "7010"}));
    EXPECT_EQ(sdc::frequencyTicks({6'999'000, 7'011'000}, wide).size(), 6U);
}

TEST(Ticks, ofFrequenciesHaveTheDigitsThatTellThemApart)
{
    const Room room{.width = 30.0, .height = 20.0, .characterWidth = 1.0, .lineHeight = 1.0};
    EXPECT_THAT(sdc::frequencyTicks({19'177'400, 19'178'300}, room),
        ElementsAre(Tick{19'177'500, "19177.5"}, Tick{19'178'000, "19178.0"}));
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

TEST(Ticks, ofChannelsDoNotRunIntoEachOther)
{
    const Room room{.width = 60.0, .height = 20.0, .characterWidth = 1.0, .lineHeight = 1.0};
    const auto ticks = [&](std::int64_t highest_kHz) { return sdc::channelTicks({0, highest_kHz}, 0, 1'000, room); };
    EXPECT_EQ(ticks(120'000).size(), 121U) << "half a character each";
    EXPECT_THAT(ticks(121'000), testing::Each(testing::Field(&Tick::label, testing::Not(testing::IsEmpty()))));
}

#include "tests/unit/simulator/Complaints.h"

#include <gtest/gtest.h>

namespace {

using simulator::Link;
using tests::complaintOf;
using tests::linkOf;

TEST(SweepOfARaster, needsRoomBetweenItsMargins)
{
    const struct {
        std::uint32_t band_GHz, raster_kHz, span_kHz;
        std::uint8_t longHaul;
        std::string required_kHz; ///< empty: nothing to complain of
    } rows[] = {
        {18, 1, 2000, 0, ""},
        {18, 1, 1999, 0, "2000"},
        {42, 1, 2000, 0, ""},
        {43, 1, 10000, 0, ""},
        {43, 1, 9999, 0, "10000"},
        {18, 1, 9999, 1, "10000"}, // a long-haul radio
        {18, 1, 10000, 1, ""},
        {18, 300, 2100, 0, ""}, // margins of 900 and 1000 kHz
        {18, 300, 1800, 0, "1900"},
        {18, 1500, 1500, 0, ""}, // below the raster step the lower margin is none
        {18, 1500, 0, 0, "1000"},
        {80, 3000, 9000, 0, ""},
        {80, 3000, 6000, 0, "8000"},
    };
    for (const auto& [band_GHz, raster_kHz, span_kHz, longHaul, required_kHz] : rows) {
        Link link = linkOf(band_GHz, 18000000, 18050000, raster_kHz);
        link.frequencyParameters.stepLimitHigh = span_kHz / raster_kHz;
        link.properties.longHaul = longHaul;
        const std::string why = "raster.highest_step: the raster spans " + std::to_string(span_kHz)
            + " kHz; it must span at least " + required_kHz + " kHz, the margins that a sweep keeps to its ends";
        EXPECT_EQ(complaintOf(link), required_kHz.empty() ? "" : why);
    }
}

TEST(SweepOfARaster, takesAMillionSamplesAtMost)
{
    Link link = linkOf(18, 500000000, 2500002000); // 2000000000 kHz from margin to margin
    EXPECT_EQ(complaintOf(link),
        "raster.highest_step: a sweep of the raster would take 1000001 samples; it must take at most 1000000");
    link.frequencyParameters.stepLimitHigh -= 1;
    EXPECT_EQ(complaintOf(link), "");
}

TEST(SweepFromChannelToChannel, takesAMillionSamplesAtMost)
{
    Link link = linkOf(18, 18000000, 19000000);
    link.channelSpacing_kHz = 1;
    EXPECT_EQ(complaintOf(link),
        "channel_spacing_kHz: a sweep from channel to channel would take 1000001 samples; it must take at most 1000000");
    link.frequencyParameters.maxRxFrequency_kHz -= 1;
    link.frequencyParameters.stepLimitHigh -= 1;
    EXPECT_EQ(complaintOf(link), "");
    link = linkOf(18, 18000000, 20000000);
    link.channelSpacing_kHz = 2;
    EXPECT_EQ(complaintOf(link), "") << "999999 channels: those at the ends leave the range";
}

TEST(SweepAcrossAChannel, mustNotEndAboveTheRange)
{
    const struct {
        std::uint32_t band_GHz, spacing_kHz, belowTop_kHz;
        std::uint8_t longHaul;
        std::uint32_t endsAboveTop_kHz; ///< 0: it does not
    } rows[] = {
        {18, 2000, 0, 0, 0},
        {18, 1998, 0, 0, 1},
        {18, 1998, 1, 0, 0},
        {18, 7000, 0, 0, 0},
        {80, 10000, 0, 0, 0},
        {80, 9998, 0, 0, 1},
        {80, 9998, 0, 1, 1}, // before its first look at the properties
        {80, 7000, 11500, 0, 0},
        {80, 7000, 11499, 0, 1},
        {42, 7000, 0, 1, 0},
    };
    for (const auto& [band_GHz, spacing_kHz, belowTop_kHz, longHaul, endsAboveTop_kHz] : rows) {
        Link link = linkOf(band_GHz, 18000000, 18500000);
        link.rxFrequency_kHz = 18500000 - belowTop_kHz;
        link.channelSpacing_kHz = spacing_kHz;
        link.properties.longHaul = longHaul;
        const std::string why = "channel_spacing_kHz: a sweep across the configured channel would end at "
            + std::to_string(18500000 + endsAboveTop_kHz)
            + " kHz; it must not end above 18500000 kHz, the highest receive frequency";
        EXPECT_EQ(complaintOf(link), endsAboveTop_kHz == 0 ? "" : why) << band_GHz << ' ' << spacing_kHz;
    }
}

/// Coarsely it has no room below and begins 5 MHz above the bottom; finely it begins 1 MHz above the channel.
TEST(SweepAcrossAChannel, ofALongHaulRadioMustEndInTheRangeFinelyToo)
{
    Link link = linkOf(80, 18000000, 18005998, 5998);
    link.rxFrequency_kHz = 18004999;
    link.channelSpacing_kHz = 1;
    EXPECT_EQ(complaintOf(link), "");
    link.properties.longHaul = 1;
    EXPECT_EQ(complaintOf(link),
        "channel_spacing_kHz: a sweep across the configured channel would end at 18005999 kHz; it must not end above "
        "18005998 "
        "kHz, the highest receive frequency");
    link.rxFrequency_kHz -= 1;
    EXPECT_EQ(complaintOf(link), "");
}

/// In the upper bands a channel of 7 MHz at the bottom of the range begins half a margin, 2.5 MHz, above it; what comes
/// after is a step of 10 MHz, unless the channel lies less than that above the beginning.
TEST(SweepAcrossAChannel, atTheBottomOfANarrowRangeMustNotEndAboveItEither)
{
    const auto complaintWith = [](std::uint32_t span_kHz, std::uint32_t aboveBottom_kHz) {
        Link link = linkOf(80, 18000000, 18000000 + span_kHz);
        link.rxFrequency_kHz = 18000000 + aboveBottom_kHz;
        link.channelSpacing_kHz = 7000;
        return complaintOf(link);
    };
    EXPECT_EQ(complaintWith(12500, 0), "");
    EXPECT_EQ(complaintWith(12500, 2499), "");
    EXPECT_EQ(complaintWith(12499, 2499),
        "channel_spacing_kHz: a sweep across the configured channel would end at 18012500 kHz; it must not end above "
        "18012499 "
        "kHz, the highest receive frequency");
    EXPECT_EQ(complaintWith(12499, 2500), "");
    EXPECT_EQ(complaintWith(12499, 8499), "");
    EXPECT_NE(complaintWith(19999, 8500), "") << "room below: from 10 MHz above the bottom on, and a step more";
    EXPECT_EQ(complaintWith(20000, 8500), "");
}

TEST(PossibleLinks, haveATopChannelThatMayLeaveTheBand)
{
    Link link = linkOf(15, 14440000, 14500000, 250);
    link.channelSpacing_kHz = 7000;
    for (const std::uint32_t configured_kHz : {14497500U, 14500000U, 14440000U, 14442500U}) {
        link.rxFrequency_kHz = configured_kHz;
        EXPECT_EQ(complaintOf(link), "");
    }
}

} // namespace

// What is written behind options.

#include "apps/sdc/options/Options.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;

using Numbers = std::vector<std::uint32_t>;

TEST(OptionValues, speedIsRealMaxOrAFactorAbove0)
{
    EXPECT_EQ(sdc::parseSpeed("real"), 1.0);
    EXPECT_EQ(sdc::parseSpeed("max"), 0.0);
    EXPECT_EQ(sdc::parseSpeed("20"), 20.0);
    EXPECT_EQ(sdc::parseSpeed("0.5"), 0.5);
    EXPECT_EQ(sdc::parseSpeed("1e3"), 1000.0);
    for (const char* const none : {"", "0", "-3", "nan", "inf", "fast", "20x", " 20", "1,5", "Real", "1e999"}) {
        EXPECT_EQ(sdc::parseSpeed(none), std::nullopt) << none;
    }
}

TEST(OptionValues, countIsAPlainDecimalOf32Bits)
{
    EXPECT_EQ(sdc::parseCount("0"), 0U);
    EXPECT_EQ(sdc::parseCount("10"), 10U);
    EXPECT_EQ(sdc::parseCount("4294967295"), 4294967295U);
    for (const char* const none : {"", "010", "00", "-1", "+1", "1.0", "0x10", "4294967296", "1 ", "one"}) {
        EXPECT_EQ(sdc::parseCount(none), std::nullopt) << none;
    }
}

TEST(OptionValues, levelIs0To1000Decibels)
{
    EXPECT_EQ(sdc::parseLevel("0"), 0.0);
    EXPECT_EQ(sdc::parseLevel("2.5"), 2.5);
    EXPECT_EQ(sdc::parseLevel("1000"), 1000.0);
    for (const char* const none : {"", "-1", "nan", "inf", "3dB", "1000.1", "1e17"}) {
        EXPECT_EQ(sdc::parseLevel(none), std::nullopt) << none;
    }
}

TEST(OptionValues, channelsAreAllOrNumbersEachOnce)
{
    EXPECT_EQ(sdc::parseChannels("all"), Numbers{});
    EXPECT_EQ(sdc::parseChannels("0"), Numbers{0});
    EXPECT_EQ(sdc::parseChannels("4,1,2"), (Numbers{4, 1, 2}));
    EXPECT_EQ(sdc::parseChannels("1-3"), (Numbers{1, 2, 3}));
    EXPECT_EQ(sdc::parseChannels("7,4294967294-4294967295,2-2"), (Numbers{7, 4294967294, 4294967295, 2}));
    EXPECT_EQ(sdc::parseChannels("1-256").value_or(Numbers{}).size(), 256U);
    for (const char* const none : {"", ",", "1,", ",1", "1,,2", "1,1", "1;2", "all,1", "-1", "01", "1-", "-", "2-1", "1-2-3",
             "1-3,2", "1-03", "1-4294967296", "0-4294967295", "1-257", "1-256,257", "1--2", "a-b"}) {
        EXPECT_EQ(sdc::parseChannels(none), std::nullopt) << none;
    }
}

TEST(OptionValues, repeatIsANumberOfSweepsOrForever)
{
    EXPECT_EQ(sdc::parseRepeat("1"), 1U);
    EXPECT_EQ(sdc::parseRepeat("100"), 100U);
    EXPECT_EQ(sdc::parseRepeat("forever"), 0U);
    for (const char* const none : {"0", "-1", "", "ever"}) {
        EXPECT_EQ(sdc::parseRepeat(none), std::nullopt) << none;
    }
}

TEST(OptionValues, durationIsNumbersWithUnitsTheLongestFirst)
{
    EXPECT_EQ(sdc::parseDuration("90s"), 90s);
    EXPECT_EQ(sdc::parseDuration("30min"), 30min);
    EXPECT_EQ(sdc::parseDuration("1h30min"), 90min);
    EXPECT_EQ(sdc::parseDuration("2d1h1min1s1ms"), 49h + 1min + 1s + 1ms);
    EXPECT_EQ(sdc::parseDuration("500ms"), 500ms);
    EXPECT_EQ(sdc::parseDuration("3650d"), 3650 * 24h);
    for (const char* const none : {"", "0s", "90", "s", "-1s", "+1s", "1.5h", "1 h", "30m", "1s1h", "1h1h", "1h30", "3651d",
             "4294967296s", "4294967295d", "01s"}) {
        EXPECT_EQ(sdc::parseDuration(none), std::nullopt) << none;
    }
}

TEST(OptionValues, traceLevelIs0To7)
{
    EXPECT_EQ(sdc::parseTraceLevel("0"), 0U);
    EXPECT_EQ(sdc::parseTraceLevel("7"), 7U);
    EXPECT_EQ(sdc::parseTraceLevel("8"), std::nullopt);
    EXPECT_EQ(sdc::parseTraceLevel("high"), std::nullopt);
}

TEST(OptionValues, timeIsUtcWithUpToThreeDecimals)
{
    using namespace std::chrono;
    const sdc::TimePoint second = sys_days(2026y / January / 2) + 3h + 4min + 5s;
    EXPECT_EQ(sdc::parseTime("2026-01-02T03:04:05Z"), second);
    EXPECT_EQ(sdc::parseTime("2026-01-02T03:04:05.6Z"), second + 600ms);
    EXPECT_EQ(sdc::parseTime("2026-01-02T03:04:05.67Z"), second + 670ms);
    EXPECT_EQ(sdc::parseTime("2026-01-02T03:04:05.078Z"), second + 78ms);
    EXPECT_EQ(sdc::parseTime("1970-01-01T00:00:00Z"), sdc::TimePoint());
    EXPECT_EQ(sdc::parseTime("2024-02-29T23:59:59Z"), sys_days(2024y / February / 29) + 23h + 59min + 59s);
    EXPECT_EQ(sdc::parseTime("8999-12-31T00:00:00Z"), sys_days(8999y / December / 31));
    EXPECT_FALSE(sdc::parseTime("9000-01-01T00:00:00Z"));
}

TEST(OptionValues, whatIsNoTimeIsInvalid)
{
    for (const char* const none : {"", "now", "2026-01-02", "2026-01-02T03:04:05", "2026-01-02 03:04:05Z",
             "2026-13-02T03:04:05Z", "2026-02-29T03:04:05Z", "2026-01-02T24:04:05Z", "2026-01-02T03:60:05Z",
             "2026-01-02T03:04:60Z", "2026-01-02T03:04:05.Z", "2026-01-02T03:04:05.1234Z", "2026-01-02T03:04:05,1Z",
             "2026-01-02T03:04:05+01:00", "1969-12-31T23:59:59Z", "2026/01/02T03:04:05Z", "2026-01/02T03:04:05Z",
             "2026-01-02T03.04:05Z", "2026-01-02T03:04.05Z", "+026-01-02T03:04:05Z", "2026-01-02T03:04:05.-1Z",
             "2026-01-02T03:04Z", "2026-00-02T03:04:05Z", "2026-01-00T03:04:05Z", "20260-1-02T03:04:05Z"}) {
        EXPECT_EQ(sdc::parseTime(none), std::nullopt) << none;
    }
}

TEST(Channels, wallTimeIsRadioTimeDividedByTheSpeed)
{
    EXPECT_EQ(sdc::wallTime(6600ms, 1.0), 6600ms);
    EXPECT_EQ(sdc::wallTime(6600ms, 3.0), 2200ms);
    EXPECT_EQ(sdc::wallTime(6600ms, 0.5), 13200ms);
    EXPECT_EQ(sdc::wallTime(6600ms, 0.0), 0ms);
    EXPECT_EQ(sdc::wallTime(6600ms, 1e-300), std::chrono::milliseconds(1000000000000000));
}

} // namespace

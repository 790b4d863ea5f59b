#include "support/Time.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

constexpr support::TimePoint aMoment{std::chrono::sys_days{std::chrono::year(2026) / 1 / 2} + 3h + 4min + 5s + 678ms};

} // namespace

TEST(TimeTexts, dateClockAndBothAreInUtcWithAllTheirDigits)
{
    EXPECT_EQ(support::dateText(aMoment), "2026-01-02");
    EXPECT_EQ(support::clockText(aMoment), "03:04:05");
    EXPECT_EQ(support::rfc3339(aMoment), "2026-01-02T03:04:05.678Z");
    EXPECT_EQ(support::rfc3339(aMoment - 678ms), "2026-01-02T03:04:05.000Z");
}

TEST(TimeTexts, momentsBeforeTheEpochHaveTheirOwnSecond)
{
    EXPECT_EQ(support::rfc3339(support::TimePoint(-1ms)), "1969-12-31T23:59:59.999Z");
    EXPECT_EQ(support::clockText(support::TimePoint(-1ms)), "23:59:59");
}

TEST(TimeTexts, whatIsWrittenIsReadAgain)
{
    for (const char* const text : {"2026-01-02T03:04:05.678Z", "2024-02-29T23:59:59.999Z", "0000-01-01T00:00:00.000Z",
             "9999-12-31T23:59:59.001Z", "1969-12-31T23:59:59.999Z"}) {
        SCOPED_TRACE(text);
        const auto moment = support::parseRfc3339(text);
        ASSERT_TRUE(moment.has_value());
        EXPECT_EQ(support::rfc3339(*moment), text);
    }
}

TEST(TimeTexts, whatIsNoMomentIsNotRead)
{
    for (const char* const text : {"", "2026-01-02", "2026-01-02T03:04:05Z", "2026-01-02T03:04:05.678",
             "2026-01-02 03:04:05.678Z", "2026-01-02T03:04:05.678+00:00", "2026-01-02T03:04:05.678Zx",
             "x026-01-02T03:04:05.678Z", "2026-13-02T03:04:05.678Z", "2026-00-02T03:04:05.678Z", "2026-01-32T03:04:05.678Z",
             "2025-02-29T03:04:05.678Z", "2026-01-02T24:04:05.678Z", "2026-01-02T03:60:05.678Z", "2026-01-02T03:04:60.678Z",
             "2026-01-02T03:04:0/.678Z", "2026-01-02T03:04:0:.678Z"}) {
        EXPECT_FALSE(support::parseRfc3339(text).has_value()) << text;
    }
}

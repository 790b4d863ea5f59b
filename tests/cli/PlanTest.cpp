// sdc plan.

#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

namespace {

using testing::HasSubstr;

using Json = nlohmann::json;
using Plan = Sdc;

TEST_F(Plan, showsTheTimeAtASpeedBesideThatOnTheRadio)
{
    EXPECT_THAT(run("plan --speed 2").out, HasSubstr("  2 min 32 s (1 min 16 s at this speed)\n"));
    EXPECT_EQ(run("plan --speed real").out, run("plan").out);
    EXPECT_EQ(run("plan --speed max").out, run("plan").out);
}

TEST_F(Plan, showsTheChannelsAskedFor)
{
    EXPECT_EQ(lines(run("plan --scenario 8-quad").out).size(), 3U + 8U);
    const std::vector<std::string> rows = lines(run("plan --scenario 8-quad --channel 4,2").out);
    ASSERT_EQ(rows.size(), 3U + 4U);
    EXPECT_THAT(rows[3], testing::StartsWith("      4  channel "));
    EXPECT_THAT(rows[6], testing::StartsWith("      2  sub-band "));
}

TEST_F(Plan, isJsonOnRequest)
{
    const Json plans = Json::parse(run("plan --json --speed 2").out);
    EXPECT_EQ(plans["schema_version"], 1);
    EXPECT_EQ(plans["scenario"], "18-f595");
    const Json channel = plans["channels"][0];
    EXPECT_EQ(channel["channel"], 1);
    EXPECT_EQ(channel["unit_type"], "KLM6 18G");
    EXPECT_EQ(channel["plans"]["channel"], Json::parse(R"({ "lowest_kHz": 19164750, "highest_kHz": 19188750,
        "step_kHz": 2000, "samples": 13, "first_settle_ms": 3000, "settle_ms": 300, "radio_time_ms": 6600,
        "wall_time_ms": 3300 })"));
    EXPECT_EQ(channel["plans"]["sub-band"]["samples"], 500);
}

TEST_F(Plan, saysWhyThereIsNone)
{
    ASSERT_NO_FATAL_FAILURE(writeScenario("mine.json", "18-f595", {{"\"KLM6 18G\"", "\"XYZ 18G\""}}));
    const Outcome none = run("plan --scenario mine.json");
    EXPECT_EQ(none.status, 3);
    EXPECT_EQ(lines(none.out)[3], "      1  channel  none: the controller does not support the unit type \"XYZ 18G\"");
    const Outcome json = run("plan --scenario mine.json --json");
    EXPECT_EQ(json.status, 3);
    EXPECT_EQ(Json::parse(json.out)["channels"][0]["plans"]["sub-band"]["refusal"],
        "the controller does not support the unit type \"XYZ 18G\"");

    ASSERT_NO_FATAL_FAILURE(writeScenario("some.json", "8-quad", {{"\"4741 8G\"", "\"XYZ 8G\""}}));
    EXPECT_EQ(run("plan --scenario some.json").status, 0);
    EXPECT_THAT(run("scan channel --scenario some.json").err, HasSubstr("plan       none: the controller does not support"));
}

} // namespace

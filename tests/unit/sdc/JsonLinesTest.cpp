#include "apps/sdc/formats/LiveFormat.h"

#include "TestLines.h"
#include "TestResults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

using namespace testing_results;
using nlohmann::json;
using sdc::Ending;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

std::vector<json> objectsIn(const std::string& text)
{
    std::vector<json> objects;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        objects.push_back(json::parse(line));
    }
    return objects;
}

std::vector<std::string> typesIn(const std::vector<json>& objects)
{
    std::vector<std::string> types;
    for (const json& object : objects) {
        types.push_back(object.at("type"));
    }
    return types;
}

std::vector<json> objectsOf(const sdc::ScanResult& result)
{
    const KeptLines lines = linesOf(sdc::makeJsonLines, result).front();
    return objectsIn(lines.before + lines.text);
}

} // namespace

TEST(JsonLines, tellTheRunItsSweepsTheirSamplesAndTheirEnds)
{
    const auto objects = objectsOf(resultOf({channelOf(7, {sweepOf({-9970, -4505}), sweepOf({5, 0}, aMoment + 1h)})}));
    EXPECT_THAT(typesIn(objects),
        ElementsAre("run", "sweep", "sample", "sample", "sweep_end", "sweep", "sample", "sample", "sweep_end", "end"));
    EXPECT_EQ(objects[3], json::parse(R"({"type": "sample", "channel": 7, "sweep": 1, "time": "2026-01-02T03:04:08.978Z",
        "frequency_kHz": 101000, "level_dBm": -45.05})"));
    EXPECT_EQ(objects[6]["sweep"], 2);
    EXPECT_EQ(objects[6]["level_dBm"], 0.05);
    EXPECT_EQ(objects[1]["plan"]["samples"], 2);
    EXPECT_EQ(objects[8], json::parse(R"({"type": "sweep_end", "channel": 7, "sweep": 2, "start": "2026-01-02T04:04:05.678Z",
            "end": "2026-01-02T04:04:12.278Z", "ending": "complete", "status": "sub-band-scan-finished", "planned": 2,
            "taken": 2, "rx_before_kHz": 102000, "rx_after_kHz": 102000})"));
    EXPECT_EQ(objects.back(), json::parse(R"({"type": "end", "ending": "complete"})"));
}

TEST(JsonLines, tellWhatIsOddAboutASample)
{
    const auto objects = objectsOf(
        resultOf({channelOf(7, {sweepOf({-9970, -4505, -1500, 0})}), channelOf(8, {sweepOf({-4500, -4505, -4505})})}));
    std::vector<json> flags;
    for (const json& object : objects) {
        if (object["type"] == "sample") {
            flags.push_back(object.value("flags", json::array()));
        }
    }
    const json none = json::array();
    EXPECT_THAT(
        flags, ElementsAre(json{"at_floor"}, none, json{"above_saturation"}, json{"refused"}, none, none, json{"repeated"}));
}

TEST(JsonLines, compareTheFirstSampleOfASweepWithTheLastOfTheOneBefore)
{
    const auto objects = objectsOf(resultOf({channelOf(7, {sweepOf({-4500, -1500}), sweepOf({-1500, -4500})})}));
    EXPECT_EQ(objects[6]["level_dBm"], -15.0);
    EXPECT_EQ(objects[6]["flags"], (json{"above_saturation", "repeated"}));
    EXPECT_FALSE(objects[7].contains("flags"));
}

TEST(JsonLines, tellWhatIsScannedAndByWhat)
{
    auto result = resultOf({channelOf(7, {sweepOf({-9970})}), channelOf(2, {sweepOf({-9970})})});
    result.provenance = {"1.2.3", true, "abc", 42, 20.0, {"scan", "\xFF"}};
    const json run = objectsOf(result).front();
    EXPECT_EQ(run["scenario"], "test-link");
    EXPECT_EQ(run["kind"], "sub-band");
    EXPECT_EQ(run["far_end"], "muted");
    EXPECT_EQ(run["provenance"], json::parse(R"({"program_version": "1.2.3", "simulated": true, "scenario_sha256": "abc",
        "seed": 42, "speed": 20.0, "arguments": ["scan", "\uFFFD"]})"));
    EXPECT_EQ(run["channels"][1]["channel"], 2);
    EXPECT_EQ(run["channels"][0]["unit_type"], "KLM6 18G");
    EXPECT_EQ(run["channels"][0]["rx_frequency_kHz"], 102000);
    EXPECT_EQ(run["channels"][0]["receiver"]["filter_kHz"], 27500);
}

TEST(JsonLines, tellHowAPartialRunEnded)
{
    const auto objects =
        objectsOf(resultOf({channelOf(1, {sweepOf({0, 0}), cutShort(sweepOf({0, 0}), 1, Ending::failed, "\"no more\"")})}));
    const json& sweep = objects[objects.size() - 2];
    EXPECT_EQ(sweep["ending"], "failed");
    EXPECT_EQ(sweep["reason"], "\"no more\"");
    EXPECT_EQ(sweep["planned"], 2);
    EXPECT_EQ(sweep["taken"], 1);
    EXPECT_EQ(objects.back()["ending"], "failed");
}

TEST(JsonLines, beforeTheFirstSampleReplaceNothing)
{
    const KeptLines none = linesOf(sdc::makeJsonLines, scanOf({})).front();
    EXPECT_THAT(typesIn(objectsIn(none.before)), ElementsAre("run", "sweep", "sweep_end", "end"));
    EXPECT_THAT(none.text, IsEmpty());
    const KeptLines some = linesOf(sdc::makeJsonLines, scanOf({0})).front();
    EXPECT_THAT(typesIn(objectsIn(some.before)), ElementsAre("run", "sweep"));
    EXPECT_THAT(typesIn(objectsIn(some.text)), ElementsAre("sample", "sweep_end", "end"));
}

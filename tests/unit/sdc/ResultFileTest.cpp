#include "apps/sdc/result/ResultFile.h"
#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/result/ResultForm.h"
#include "support/FieldsJson.h"
#include "tests/support/SchemaValidator.h"

#include "TestResults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <set>

using namespace testing_results;
using nlohmann::json;
using sdc::Ending;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string jsonOf(const sdc::ScanResult& result)
{
    return written([&](std::ostream& stream) { sdc::writeJson(stream, result); });
}

/// Two channels: one with a complete and a failed sweep, one of another plan with a stopped sweep.
sdc::ScanResult variedResult()
{
    const auto whole = sweepOf({-9970, -9900, -3000, -9900, -9800, -9700, -9600, -9500});
    auto other = channelOf(4'294'967'295, {cutShort(sweepOf({-4512, -4400}), 1, Ending::stopped)});
    other.plan = planOf(2);
    other.receiver.filterWidth_kHz = 6500.25;
    other.unitTypeText = "KLM6 7G";
    return resultOf({channelOf(1,
                         {whole,
                             cutShort(sweepOf({-9970, -9900, -2000, -9900, -9800, -9700, -9600, -9500}, aMoment + 1h), 3,
                                 Ending::failed, "tuning failed")}),
        other});
}

/// What is said of a text that is no result; empty of one that is.
std::string errorsOf(const std::string& text)
{
    try {
        static_cast<void>(sdc::parseResult(text, "scan.json"));
        return "";
    } catch (const sdc::ResultError& error) {
        return error.what();
    }
}

/// Of a good result after a change.
std::string errorsAfter(const std::function<void(json& result)>& change)
{
    json result = json::parse(jsonOf(variedResult()));
    change(result);
    return errorsOf(result.dump());
}

} // namespace

TEST(ResultFiles, resultIsOneReadableObject)
{
    auto result = scanOf({-9970, -4512, -3000, -9900, -9900, -9900});
    result.kind = sdc::ScanKind::channel;
    result.channels[0].sweeps[0].rxAfter_kHz = 104000;
    EXPECT_EQ(jsonOf(result), R"({
  "schema_version": 2,
  "scenario": "test-link",
  "description": "a link",
  "kind": "channel",
  "far_end": "muted",
  "provenance": {
    "program_version": "1.2.3",
    "simulated": true,
    "scenario_sha256": "1f",
    "seed": 42,
    "speed": 20.0,
    "arguments": ["scan", "channel"]
  },
  "channels": [
    {
      "channel": 1,
      "unit_type": "KLM6 18G",
      "receiver": {
        "filter_kHz": 27500.0,
        "noise_figure_dB": 5.0,
        "ultimate_rejection_dB": 55.0,
        "saturation_dBm": -20.0
      },
      "plan": {
        "lowest_kHz": 100000,
        "highest_kHz": 105000,
        "step_kHz": 1000,
        "samples": 6,
        "first_settle_ms": 3000,
        "settle_ms": 300,
        "channel_spacing_kHz": 2000,
        "rx_frequency_kHz": 102000
      },
      "sweeps": [
        {
          "start": "2026-01-02T03:04:05.678Z",
          "end": "2026-01-02T03:04:12.278Z",
          "ending": "complete",
          "status": "sub-band-scan-finished",
          "planned": 6,
          "taken": 6,
          "rx_before_kHz": 102000,
          "rx_after_kHz": 104000,
          "samples": [
            {"time": "2026-01-02T03:04:08.678Z", "frequency_kHz": 100000, "level_dBm": -99.7, "flags": ["at_floor"]},
            {"time": "2026-01-02T03:04:08.978Z", "frequency_kHz": 101000, "level_dBm": -45.12},
            {"time": "2026-01-02T03:04:09.278Z", "frequency_kHz": 102000, "level_dBm": -30.0},
            {"time": "2026-01-02T03:04:09.578Z", "frequency_kHz": 103000, "level_dBm": -99.0},
            {"time": "2026-01-02T03:04:09.878Z", "frequency_kHz": 104000, "level_dBm": -99.0, "flags": ["repeated"]},
            {"time": "2026-01-02T03:04:10.178Z", "frequency_kHz": 105000, "level_dBm": -99.0, "flags": ["repeated"]}
          ]
        }
      ],
      "sanity": [],
      "analysis": {
        "trace": "max",
        "samples_left_out_at_each_end": 2,
        "peaks": [
          {"frequency_kHz": 102000, "level_dBm": -30.0, "prominence_dB": 69.0, "width_below_kHz": 27500}
        ],
        "raster": [
          {
            "offset": -1,
            "centre_kHz": 100000,
            "state": "unknown",
            "max_dBm": -99.7,
            "average_dBm": -99.7,
            "threshold_dBm": -88.61,
            "sweeps": 1,
            "occupancy_percent": 0.0,
            "sweeps_needed": 29
          },
          {
            "offset": 0,
            "centre_kHz": 102000,
            "state": "own",
            "max_dBm": -30.0,
            "average_dBm": -30.0,
            "threshold_dBm": -88.61,
            "sweeps": 1,
            "occupancy_percent": 100.0,
            "sweeps_needed": 29
          },
          {
            "offset": 1,
            "centre_kHz": 104000,
            "state": "free",
            "max_dBm": -99.0,
            "average_dBm": -99.0,
            "threshold_dBm": -88.61,
            "sweeps": 1,
            "occupancy_percent": 0.0,
            "sweeps_needed": 29
          },
          {
            "offset": 2,
            "centre_kHz": 106000,
            "state": "free",
            "max_dBm": -99.0,
            "average_dBm": -99.0,
            "threshold_dBm": -88.61,
            "sweeps": 1,
            "occupancy_percent": 0.0,
            "sweeps_needed": 29
          }
        ],
        "occupancy": {
          "threshold": "dynamic",
          "margin_dB": 6.0,
          "confidence_percent": 95.0,
          "accuracy_percent": 10.0,
          "band_occupancy_percent": 33.33
        }
      },
      "verdict": {
        "judgement": "disturbed",
        "place": "co-channel",
        "over_floor_dB": 64.61,
        "rule": "readings are above the noise and all that can leak into the filter of what the scan shows elsewhere",
        "would_help": []
      }
    }
  ]
}
)");
}

TEST(ResultFiles, holdsOfSeveralSweepsStandBesideTheirFrequencies)
{
    const json channel = json::parse(jsonOf(variedResult()))["channels"][0];
    EXPECT_EQ(channel["holds"]["frequency_kHz"].size(), 8U);
    EXPECT_EQ(channel["holds"]["frequency_kHz"][2], 102000);
    EXPECT_EQ(channel["holds"]["max_dBm"][2], -20.0);
    EXPECT_EQ(channel["holds"]["min_dBm"][2], -30.0);
    EXPECT_EQ(channel["holds"]["average_dBm"][2], -22.6);
    EXPECT_EQ(channel["analysis"]["floor_dBm"], -99.0);
    EXPECT_EQ(channel["sweeps"][1]["reason"], "tuning failed");
    EXPECT_EQ(channel["sweeps"][1]["ending"], "failed");
    EXPECT_FALSE(json::parse(jsonOf(variedResult()))["channels"][1].contains("holds"));
}

TEST(ResultFiles, samplesAreFlaggedWhereTheyAreOdd)
{
    const auto result = resultOf({channelOf(1, {sweepOf({-9970, -1500, 0, -4500}), sweepOf({}), sweepOf({-4500, -4501})}),
        channelOf(2, {sweepOf({-4501})})});
    std::vector<json> flags;
    const json object = json::parse(jsonOf(result));
    for (const auto& [channel, sweep] : {std::pair{0U, 0U}, {0U, 2U}, {1U, 0U}}) {
        for (const json& sample : object["channels"][channel]["sweeps"][sweep]["samples"]) {
            flags.push_back(sample.value("flags", json()));
        }
    }
    EXPECT_THAT(flags,
        ElementsAre(json{"at_floor"}, json{"above_saturation"}, json{"refused"}, json(), json{"repeated"}, json(), json()));
}

TEST(ResultFiles, analysisIsOfTheTraceChosen)
{
    const auto peakBy = [](const sdc::WriteOptions& options) {
        const json analysis = json::parse(written(
            [&](std::ostream& stream) { sdc::writeJson(stream, variedResult(), options); }))["channels"][0]["analysis"];
        return std::pair(analysis["trace"].get<std::string>(), analysis["peaks"][0]["level_dBm"].get<double>());
    };
    EXPECT_EQ(peakBy({}), std::pair(std::string("max"), -20.0)) << "what comes and goes shows in the maximum alone";
    EXPECT_EQ(peakBy({.trace = sdc::TraceKind::max}), std::pair(std::string("max"), -20.0));
    EXPECT_EQ(peakBy({.trace = sdc::TraceKind::average}), std::pair(std::string("average"), -22.6));
    EXPECT_EQ(peakBy({.trace = sdc::TraceKind::min}), std::pair(std::string("min"), -30.0));
}

TEST(ResultFiles, longListsFillLines)
{
    const std::vector<std::int32_t> levels(40, -9970);
    const std::string text = jsonOf(resultOf({channelOf(1, {sweepOf(levels), sweepOf(levels)})}));
    std::istringstream lines(text);
    std::size_t longest = 0;
    for (std::string line; std::getline(lines, line);) {
        longest = std::max(longest, line.size());
    }
    EXPECT_LE(longest, 120U);
    EXPECT_GT(longest, 110U);
    EXPECT_EQ(json::parse(text)["channels"][0]["holds"]["max_dBm"].size(), 40U);
}

TEST(ResultFiles, whatIsWrittenIsReadAgain)
{
    for (const sdc::ScanResult& result : {variedResult(), scanOf({-9970, -4512}), scanOf({}),
             resultOf({channelOf(1, {sweepOf({})}), channelOf(2, {sweepOf({-2147483600, 2147483600, -1, 99})})})}) {
        const std::string text = jsonOf(result);
        EXPECT_EQ(errorsOf(text), "");
        EXPECT_EQ(jsonOf(sdc::parseResult(text, "scan.json")), text);
    }
}

TEST(ResultFiles, sweepMayTakeNoTime)
{
    auto result = scanOf({-9970});
    result.channels[0].sweeps[0].end = result.channels[0].sweeps[0].start;
    EXPECT_EQ(errorsOf(jsonOf(result)), "");
}

TEST(ResultFiles, everyReadingThatAControllerCanTellIsReadAgain)
{
    const auto result = scanOf({2147483647, -2147483647 - 1, -9000, 2147483647, -9000, 2147483646});
    EXPECT_EQ(errorsOf(jsonOf(result)), "");
    EXPECT_EQ(sdc::parseResult(jsonOf(result), "scan.json").channels[0].sweeps[0].samples[0].rssi, 2147483647);
    EXPECT_EQ(sdc::parseResult(jsonOf(result), "scan.json").channels[0].sweeps[0].samples[1].rssi, -2147483647 - 1);
}

/// SDC_UPDATE_GOLDEN=1 writes the file anew.
TEST(ResultFiles, schemaInTheTreeIsThatOfTheForm)
{
    const std::string schema = support::schemaText(sdc::resultRecord());
    if (std::getenv("SDC_UPDATE_GOLDEN") != nullptr) {
        std::ofstream(SDC_RESULT_SCHEMA) << schema;
    }
    std::ifstream file(SDC_RESULT_SCHEMA);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), schema);
}

TEST(ResultFiles, whatIsWrittenIsOfTheSchema)
{
    const tests::SchemaValidator validator(json::parse(support::schemaText(sdc::resultRecord())));
    for (const sdc::ScanResult& result : {variedResult(), scanOf({})}) {
        EXPECT_TRUE(validator.accepts(json::parse(jsonOf(result))));
    }
}

TEST(ResultFiles, flagsAreCheckedAndFoundAnew)
{
    EXPECT_THAT(errorsAfter([](json& result) { result["channels"][0]["sweeps"][0]["samples"][1]["flags"] = {"odd"}; }),
        HasSubstr("channels[0].sweeps[0].samples[1].flags[0]: is \"odd\"; must be \"at_floor\", "));
    json result = json::parse(jsonOf(scanOf({-4500, -4501})));
    result["channels"][0]["sweeps"][0]["samples"][1]["flags"] = {"repeated"};
    EXPECT_EQ(jsonOf(sdc::parseResult(result.dump(), "scan.json")), jsonOf(scanOf({-4500, -4501})));
}

TEST(ResultFiles, oddTextsAreWrittenAsTextsAndMended)
{
    auto result = scanOf({-9970});
    result.scenario = "\"quotes\", a \\ and a\nline";
    result.description = "no UTF-8: \xFF";
    const auto read = sdc::parseResult(jsonOf(result), "scan.json");
    EXPECT_EQ(read.scenario, result.scenario);
    EXPECT_EQ(read.description, "no UTF-8: \xEF\xBF\xBD");
}

TEST(ResultFileErrors, textsThatAreNoResult)
{
    const struct {
        const char* text;
        const char* error;
    } rows[]{
        {"", "scan.json: is empty; must be a JSON object"},
        {"{\n  nonsense", "scan.json: line 2, column "},
        {"null", "scan.json: $: is null; must be an object"},
        {"[]", "scan.json: $: is a list; must be an object"},
        {"{}", "scan.json: $: lacks \"channels\""},
        {"{\"schema_version\": 1, nonsense", "scan.json: $.schema_version: is 1; must be 2 ("},
        {"{\"kind\": {\"kind\": [{}]}, \"kind\": 1}", "scan.json: $.kind: stands twice; keep one"},
    };
    for (const auto& row : rows) {
        EXPECT_THAT(errorsOf(row.text), HasSubstr(row.error)) << row.text;
    }
    EXPECT_THAT(errorsOf(std::string(10'000, '[')),
        HasSubstr("$: is a list; must be an object (what sweeps of a receiver found, and how they went)\nscan.json: line 1, "
                  "column"));
}

TEST(ResultFileErrors, wrongValuesAreNamedWithTheirPlace)
{
    const struct {
        const char* pointer;
        json value;
        const char* error;
    } rows[]{
        {"/schema_version", 1, "scan.json: $.schema_version: is 1; must be 2"},
        {"/scenario", 1, "$.scenario: is 1; must be a text"},
        {"/kind", "sideways", "$.kind: is \"sideways\"; must be \"channel\" or \"sub-band\""},
        {"/channels", json::array(), "$.channels: has 0 items; must be a list of 1 to 256 items"},
        {"/colour", "red", "$.colour: unknown key"},
        {"/channels/0/channel", -1, "$.channels[0].channel: is -1; must be an integer from 0 to 4294967295"},
        {"/channels/0/receiver/filter_kHz", "wide", "$.channels[0].receiver.filter_kHz: is \"wide\"; must be a number"},
        {"/channels/0/plan/samples", 2147483648, "$.channels[0].plan.samples: is 2147483648; must be an integer"},
        {"/channels/0/plan/step_kHz", 4294967296, "$.channels[0].plan.step_kHz: is 4294967296; must be an integer"},
        {"/channels/0/sweeps", json::array(), "$.channels[0].sweeps: has 0 items"},
        {"/channels/0/sweeps/0/ending", "good", "$.channels[0].sweeps[0].ending: is \"good\""},
        {"/channels/0/sweeps/0/samples/1/level_dBm", 1e9, "$.channels[0].sweeps[0].samples[1].level_dBm: is 1000000000.0"},
        {"/channels/0/sweeps/0/samples/1/level_dBm", -45.125,
            "level_dBm: is -45.125; must be a number from -21474836.48 to 21474836.47 with at most two decimals (level, "
            "dBm)"},
        {"/channels/0/sweeps/0/start", "yesterday", "sweeps[0].start: is \"yesterday\"; must be a moment in UTC such as"},
        {"/channels/0/sweeps/0/end", "2026-02-30T03:04:05.678Z",
            "sweeps[0].end: is \"2026-02-30T03:04:05.678Z\"; must be a mom"},
        {"/channels/0/sweeps/0/end", "2026-01-02T03:04:05.677Z",
            "sweeps[0].end: is \"2026-01-02T03:04:05.677Z\"; must be not b"},
        {"/channels/0/sweeps/0/samples/1/time", "2026-01-02T03:04:05.677Z",
            "sweeps[0].samples[1].time: is \"2026-01-02T03:04:05.677Z\"; must be not before the start of the sweep"},
        {"/provenance/speed", -1, "$.provenance.speed: is -1; must be a number from 0 to "},
        {"/channels/0/sweeps/0/planned", 9, "sweeps[0].planned: is 9; must be 8, as the plan says"},
        {"/channels/0/sweeps/0/taken", 7, "sweeps[0].taken: is 7; must be 8, the number of samples"},
        {"/channels/1/sweeps/0/ending", "complete",
            "channels[1].sweeps[0].ending: is \"complete\"; must be stopped or failed, because 1 of 2 samples were taken"},
        {"/channels/0/sweeps/1/ending", "stopped",
            "sweeps[1].ending: is \"stopped\"; must be failed, because there is a reason"},
        {"/channels/0/sweeps/1/samples/0/frequency_kHz", 100001,
            "sweeps[1].samples[0].frequency_kHz: is 100001; must be 100000 (steps of 1000 kHz)"},
        {"/channels/0/sweeps/1/samples/2/frequency_kHz", 101000,
            "sweeps[1].samples[2].frequency_kHz: is 101000; must be 102000 (steps of 1000 kHz)"},
        {"/channels/0/sweeps/0/samples/3/frequency_kHz", 103500,
            "sweeps[0].samples[3].frequency_kHz: is 103500; must be 103000 (steps of 1000 kHz)"},
        {"/channels/0/sweeps/0/samples/0/frequency_kHz", 101500,
            "sweeps[0].samples[1].frequency_kHz: is 101000; must be no lower"},
        {"/channels/1/channel", 1, "$.channels[1].channel: is 1; must be a number that no other channel has"},
    };
    for (const auto& row : rows) {
        EXPECT_THAT(
            errorsAfter([&](json& result) { result[json::json_pointer(row.pointer)] = row.value; }), HasSubstr(row.error))
            << row.pointer;
    }
}

TEST(ResultFileErrors, everyRequiredKeyIsRequired)
{
    const std::function<void(const json&, const std::string&)> check = [&](const json& value, const std::string& pointer) {
        for (const auto& [key, member] : value.items()) {
            const std::string name = key;
            const std::string place = pointer + "/" + name;
            static const std::set<std::string> optional{"reason", "holds", "width_below_kHz", "floor_dBm", "max_dBm",
                "average_dBm", "threshold_dBm", "margin_dB", "occupancy_percent", "sweeps_needed", "band_occupancy_percent",
                "revisit_ms", "flags"};
            const bool isInVerdict =
                pointer.find("/verdict") != std::string::npos && key != "judgement" && key != "rule" && key != "would_help";
            if (value.is_object() && !optional.contains(key) && !isInVerdict) {
                EXPECT_THAT(errorsAfter([&](json& result) { result[json::json_pointer(pointer)].erase(name); }),
                    HasSubstr("lacks \"" + name + "\""))
                    << place;
            }
            if (key != "1" && key != "2" && member.is_structured()) { // the first of each list will do
                check(member, place);
            }
        }
    };
    auto small = json::parse(jsonOf(variedResult()));
    small["channels"][0]["sweeps"][0]["samples"].erase(1);
    small["channels"].erase(1);
    for (auto* list : {&small["channels"][0]["sweeps"][0]["samples"], &small["channels"][0]["analysis"]["raster"]}) {
        while (list->size() > 1) {
            list->erase(list->size() - 1);
        }
    }
    check(small, "");
}

TEST(ResultFileErrors, optionalKeysAreOptional)
{
    EXPECT_EQ(errorsAfter([](json& result) {
        result["$schema"] = "scan-result.schema.json";
        result["channels"][0].erase("holds");
        result["channels"][0]["analysis"].erase("floor_dBm");
        for (const char* const key : {"max_dBm", "average_dBm", "threshold_dBm", "occupancy_percent", "sweeps_needed"}) {
            result["channels"][0]["analysis"]["raster"][0].erase(key);
        }
        for (const char* const key : {"margin_dB", "band_occupancy_percent", "revisit_ms"}) {
            result["channels"][0]["analysis"]["occupancy"].erase(key);
        }
        result["channels"][0]["sweeps"][1].erase("reason");
    }),
        "");
}

TEST(ResultFileErrors, unknownKeysAreInvalidAtEveryLevel)
{
    for (const char* const place : {"", "/channels/0", "/channels/0/plan", "/channels/0/sweeps/0",
             "/channels/0/sweeps/0/samples/0", "/channels/0/holds", "/channels/0/analysis", "/channels/0/analysis/peaks/0",
             "/channels/0/analysis/raster/0", "/channels/0/analysis/occupancy"}) {
        EXPECT_THAT(errorsAfter([&](json& result) { result[json::json_pointer(place)]["colour"] = 1; }),
            HasSubstr("colour: unknown key"))
            << place;
    }
}

TEST(ResultFileErrors, noMoreThanTenErrorsAreTold)
{
    const std::string text = errorsAfter([](json& result) {
        for (json& sample : result["channels"][0]["sweeps"][0]["samples"]) {
            sample["level_dBm"] = "x";
            sample["frequency_kHz"] = "x";
        }
    });
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 10);
    EXPECT_THAT(text, testing::EndsWith("\nscan.json: and more"));
}

TEST(ResultFileErrors, readingEndsAfterTheFirstErrors)
{
    std::string text = "{\"channels\": [";
    for (int error = 0; error < 20; ++error) {
        text += "1, ";
    }
    const std::string errors = errorsOf(text + "no JSON");
    EXPECT_THAT(errors, HasSubstr("$.channels[9]: is 1; must be an object (one radio channel)\n"));
    EXPECT_THAT(errors, testing::EndsWith("\nscan.json: and more"));
}

// A sweep before the last may have had another plan: the receiver was not put back before the last one.
TEST(ResultFiles, plansOfEarlierSweepsMayHaveBeenOthers)
{
    auto result = variedResult();
    for (sdc::Sample& sample : result.channels[0].sweeps[0].samples) {
        sample.frequency_kHz += 500;
    }
    result.channels[0].sweeps[0].samples.pop_back();
    EXPECT_EQ(errorsOf(jsonOf(result)), "");
}

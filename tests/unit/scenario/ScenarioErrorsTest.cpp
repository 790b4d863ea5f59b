#include "tests/unit/scenario/TestScenario.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <sstream>

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;
using tests::errorsOf;
using tests::fullScenario;

std::size_t lines(const std::string& text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
}

TEST(MissingKey, isToldWithWhatWouldBeRight)
{
    json file = fullScenario();
    file["channels"][0]["receiver"].erase("jitter_dB");
    EXPECT_EQ(errorsOf(file),
        "$.channels[0].receiver: lacks \"jitter_dB\"; must be a number from 0 to 20 dB (standard deviation of one "
        "reading)");
}

TEST(UnknownKey, isToldWithAllThatAreKnown)
{
    json file = fullScenario();
    file["channels"][0]["receive_kHz"]["centre"] = 1;
    EXPECT_EQ(errorsOf(file), "$.channels[0].receive_kHz.centre: unknown key; known here: lowest, highest, configured");
}

struct Change {
    std::function<void(json&)> change;
    std::string why;
};

TEST(Refusals, sayWhatIsWrongAndWhatWouldBeRight)
{
    const Change rows[] = {
        {[](json& file) { file["channels"][0]["receiver"]["jitter_dB"] = "much"; },
            "$.channels[0].receiver.jitter_dB: is \"much\"; must be a number from 0 to 20 dB (standard deviation of one "
            "reading)"},
        {[](json& file) { file["name"] = ""; },
            "$.name: is \"\"; must be a line of 1 to 40 characters (short name of the scenario)"},
        {[](json& file) { file["description"] = std::string(100, 'd'); },
            "$.description: is \"" + std::string(57, 'd')
                + "...\"; must be a line of 1 to 99 characters (one line for people)"},
        {[](json& file) { file["sources"] = json::array(); },
            "$.sources: has 0 items; must be a list of 1 to 20 items (where the figures come from)"},
        {[](json& file) { file["sources"][1] = ""; },
            "$.sources[1]: is \"\"; must be a line of 1 to 300 characters (one sentence)"},
        {[](json& file) { file["channels"] = json::array(); },
            "$.channels: has 0 items; must be a list of 1 to 256 items (radio channels of the terminal)"},
        {[](json& file) { file["channels"][0]["unit_type"] = std::string(101, 'u'); },
            "$.channels[0].unit_type: is \"" + std::string(57, 'u')
                + "...\"; must be a line of at most 100 characters (type text of the outdoor unit)"},
        {[](json& file) { file["channels"][0]["emitters"]["carriers"][0]["fades"] = 1; },
            "$.channels[0].emitters.carriers[0].fades: is 1; must be true or false (whether it comes over the path that the "
            "channel's fading is on; false unless given)"},
        {[](json& file) { file["channels"][0]["faults"][0]["operation"] = "tune"; },
            "$.channels[0].faults[0].operation: is \"tune\"; must be \"setRxFrequency\", \"readRssi\", \"getRxFrequency\", "
            "\"getChannelSpacing\", \"getFrequencyParameters\", \"createPropertiesProvider\", \"getProperties\" or "
            "\"getUnitInfo\" (the operation that goes wrong)"},
        {[](json& file) { file["channels"][0]["faults"][0]["action"] = "fail"; },
            "$.channels[0].faults[0].action: is \"fail\"; must be \"refuse\", \"throw\", \"answer\" or \"stick\" (what the "
            "call does)"},
        {[](json& file) { file["channels"][0]["faults"][0]["calls"] = "some"; },
            "$.channels[0].faults[0].calls: is \"some\"; must be an integer from 1 to 1000000000 or \"all\" (calls in a row "
            "that go wrong; 1 unless given)"},
        {[](json& file) { file["channels"][0]["receive_kHz"]["lowest"] = 19700001; },
            "$.channels[0].receive_kHz.lowest: is 19700001; must not be above the highest, which is 19700000"},
        {[](json& file) { file["channels"][0]["raster"]["lowest_step"] = 6800; },
            "$.channels[0].raster.lowest_step: is 6800; must not be above the highest, which is 6799"},
        {[](json& file) { file["channels"][0]["emitters"]["noise_bands"][0]["lowest_kHz"] = 18700002.5; },
            "$.channels[0].emitters.noise_bands[0].lowest_kHz: is 18700002.5; must not be above the highest, which is "
            "18700002"},
        {[](json& file) { file["channels"][0]["receive_kHz"]["configured"] = 18699999; },
            "$.channels[0].receive_kHz.configured: is 18699999 kHz; must be from 18700000 to 19700000 kHz, the receive "
            "range"},
        {[](json& file) { file["channels"][0]["emitters"]["carriers"][0]["schedule"].erase("duration_ms"); },
            "$.channels[0].emitters.carriers[0].schedule: has every_ms but no duration_ms; must have both, or be on once"},
        {[](json& file) { file["channels"][0]["emitters"]["carriers"][0]["schedule"]["every_ms"] = 11.5; },
            "$.channels[0].emitters.carriers[0].schedule.duration_ms: is 12; must not be above every_ms, which is 11.5"},
        {[](json& file) { file["channels"][0]["fading"]["notches"] = json::array({1}); },
            "$.channels[0].fading.notches[0]: is 1; must be an object (a notch that moves through the band)"},
        {[](json& file) { file["channels"].push_back(file["channels"][0]); },
            "$.channels[1].number: is 3; must differ from other channels'"},
        {[](json& file) { file["channels"][0]["emitters"]["recordings"][1]["file"] = "none.csv"; },
            "$.channels[0].emitters.recordings[1]: has a file and rows; must have one of them"},
        {[](json& file) { file["channels"][0]["emitters"]["recordings"][1].erase("rows"); },
            "$.channels[0].emitters.recordings[1]: is empty; must have a file or rows"},
        {[](json& file) { file["channels"][0]["emitters"]["recordings"][1]["rows"].push_back("1, , 2, low"); },
            "$.channels[0].emitters.recordings[1].rows: line 2: has 4 fields; must have 7 or more: date, time, lowest Hz, "
            "highest Hz, step Hz, samples, levels"},
        {[](json& file) { file["channels"][0]["emitters"]["recordings"][0]["bandwidth_kHz"] = 269.5; },
            "$.channels[0].emitters.recordings[0].bandwidth_kHz: is 269.5 kHz; must be at least 270 kHz, a hundredth of "
            "the receiver's filter"},
        {[](json& file) { file["channels"][0]["emitters"]["recordings"][0]["file"] = "none.csv"; },
            "$.channels[0].emitters.recordings[0].file: " SDC_SCENARIOS
            "/none.csv: cannot be read: No such file or directory"},
    };
    for (const Change& row : rows) {
        json file = fullScenario();
        row.change(file);
        EXPECT_EQ(errorsOf(file), row.why);
    }
    EXPECT_EQ(errorsOf(fullScenario()), "");
}

TEST(ForeignTexts, areShownSoThatNoTerminalObeysThem)
{
    json file = fullScenario();
    file["channels"][0]["emitters"]["recordings"][0]["file"] = "a\033[2J\u009B.csv";
    EXPECT_THAT(errorsOf(file),
        StartsWith("$.channels[0].emitters.recordings[0].file: is \"a\\x1B[2J\\u009B.csv\"; must be a line of 1 to 1000 "));
    file = fullScenario();
    file["seed"] = "\u202Enine";
    EXPECT_THAT(errorsOf(file), StartsWith("$.seed: is \"\\u202Enine\"; must be "));
    file = fullScenario();
    file["\u009B1mseed"] = 1;
    EXPECT_THAT(errorsOf(file), StartsWith("$[\"\\u009B1mseed\"]: unknown key; "));
}

TEST(ForeignTexts, areShortened)
{
    const std::string endless(900000, 'a');
    json file = fullScenario();
    file[endless] = 1;
    EXPECT_LT(errorsOf(file).size(), 300U);
    file = fullScenario();
    file["seed"] = endless;
    EXPECT_LT(errorsOf(file).size(), 300U);
    try {
        simulator::loadScenario(endless);
        FAIL();
    } catch (const simulator::ScenarioError& error) {
        EXPECT_LT(std::string_view(error.what()).size(), 400U);
    }
}

TEST(Texts, areOneLineThatNoTerminalObeys)
{
    for (const char* const key :
        {"/name", "/description", "/sources/1", "/channels/0/unit_type", "/channels/0/faults/0/text"}) {
        for (const auto& [text, shown] :
            {std::pair("two\nlines", "two\\x0Alines"), std::pair("red \u009B31m", "red \\u009B31m")}) {
            json file = fullScenario();
            file.at(json::json_pointer(key)) = text;
            EXPECT_THAT(errorsOf(file), HasSubstr(": is \"" + std::string(shown) + "\"; must be a line of ")) << key;
        }
    }
}

TEST(Faults, areRefusedWhereTheOperationDoesNotKnowTheAction)
{
    const std::string known[][2] = {
        {"setRxFrequency", "refuse throw answer stick"},
        {"readRssi", "refuse throw answer stick"},
        {"getRxFrequency", "throw answer"},
        {"getChannelSpacing", "throw answer"},
        {"getFrequencyParameters", "throw"},
        {"createPropertiesProvider", "throw"},
        {"getProperties", "refuse throw"},
        {"getUnitInfo", "throw answer"},
    };
    for (const auto& [operation, actions] : known) {
        for (const std::string action : {"refuse", "throw", "answer", "stick"}) {
            json file = fullScenario();
            // A second one, so that the index is not 0; the value is one that a spacing and a frequency may have.
            file["channels"][0]["faults"].push_back({{"operation", operation}, {"action", action}, {"value", 19177500}});
            const std::string why = errorsOf(file);
            const bool isKnown = (" " + actions + " ").find(" " + action + " ") != std::string::npos;
            EXPECT_THAT(why, StartsWith(isKnown ? "" : "$.channels[0].faults[1].action: is \"" + action + "\"; must be \""))
                << operation;
            EXPECT_TRUE(!isKnown || why.find("faults[1].action") == std::string::npos) << why;
        }
    }
    json file = fullScenario();
    file["channels"][0]["faults"][0] = {{"operation", "getProperties"}, {"action", "stick"}};
    EXPECT_EQ(errorsOf(file),
        "$.channels[0].faults[0].action: is \"stick\"; must be \"refuse\" or \"throw\" where operation is "
        "\"getProperties\"");
}

TEST(SeveralErrors, areToldOnOneLineEachInTheOrderOfTheFile)
{
    json file = fullScenario();
    file["seed"] = -1;
    file["channels"][0]["number"] = "one";
    file["channels"][0]["receiver"].erase("jitter_dB");
    file["channels"][0]["receiver"]["jiter_dB"] = 0.5;
    EXPECT_EQ(errorsOf(file),
        "$.channels[0].number: is \"one\"; must be an integer from 0 to 4294967295 (of the radio channel, as the host "
        "counts; each one once)\n"
        "$.channels[0].receiver.jiter_dB: unknown key; did you mean 'jitter_dB'?\n"
        "$.channels[0].receiver: lacks \"jitter_dB\"; must be a number from 0 to 20 dB (standard deviation of one reading)\n"
        "$.seed: is -1; must be an integer from 0 to 4294967295 (of all that is random; each channel gets its own from it)");
}

TEST(ManyErrors, areCutAfterTen)
{
    const auto withUnknownKeys = [](int count) {
        json file = fullScenario();
        for (int index = 0; index < count; ++index) {
            file["unknown" + std::to_string(index)] = 0;
        }
        return errorsOf(file);
    };
    EXPECT_EQ(lines(withUnknownKeys(10)), 10U);
    EXPECT_THAT(withUnknownKeys(10), testing::Not(HasSubstr("more")));
    EXPECT_EQ(lines(withUnknownKeys(13)), 11U);
    EXPECT_THAT(withUnknownKeys(13), testing::EndsWith("\nand more"));
}

TEST(File, isNamedBeforeEachError)
{
    try {
        simulator::parseScenario(R"({"seed": -1, "names": 1})", "some/where.json");
        FAIL();
    } catch (const simulator::ScenarioError& error) {
        std::istringstream text(error.what());
        for (std::string line; std::getline(text, line);) {
            EXPECT_THAT(line, StartsWith("some/where.json: $"));
        }
    }
}

} // namespace

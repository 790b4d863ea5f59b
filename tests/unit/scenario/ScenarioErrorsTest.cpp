#include "simulator/scenario/ScenarioReader.h"
#include "tests/unit/scenario/TestScenario.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <set>
#include <sstream>

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;
using tests::fullScenario;
using tests::refusal;

/// "/channels/0/number" as messages write it: "$.channels[0].number".
std::string pathOf(const json::json_pointer& pointer)
{
    std::istringstream steps(pointer.to_string());
    std::string path = "$";
    std::string step;
    std::getline(steps, step, '/');
    while (std::getline(steps, step, '/')) {
        const bool index = std::all_of(step.begin(), step.end(), [](unsigned char one) { return std::isdigit(one) != 0; });
        path += index ? "[" + step + "]" : "." + step;
    }
    return path;
}

/// All places of the scenario that has every key, the root left out.
std::vector<json::json_pointer> places()
{
    std::vector<json::json_pointer> found;
    const json file = fullScenario();
    const std::function<void(const json::json_pointer&)> visit = [&](const json::json_pointer& parent) {
        for (const auto& member : file.at(parent).items()) {
            const json::json_pointer place =
                file.at(parent).is_array() ? parent / std::stoul(member.key()) : parent / member.key();
            found.push_back(place);
            if (file.at(place).is_structured()) {
                visit(place);
            }
        }
    };
    visit(json::json_pointer());
    return found;
}

std::size_t lines(const std::string& text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
}

/// A value of another type, and how it is shown.
std::pair<json, std::string> wrongFor(const json& value)
{
    return value.is_structured() || value.is_boolean() ? std::pair<json, std::string>{7, "7"}
        : value.is_string()                            ? std::pair<json, std::string>{false, "false"}
                                                       : std::pair<json, std::string>{json::array(), "a list"};
}

TEST(WrongType, isToldAtItsPathForEveryKey)
{
    const std::vector<json::json_pointer> all = places();
    EXPECT_GT(all.size(), 90U);
    for (const json::json_pointer& place : all) {
        json file = fullScenario();
        const auto [wrong, shown] = wrongFor(file.at(place));
        file.at(place) = wrong;
        const std::string why = refusal(file);
        EXPECT_THAT(why, StartsWith(pathOf(place) + ": is " + shown + "; must be "));
        EXPECT_EQ(lines(why), 1U) << why;
        EXPECT_EQ(why.back(), ')') << why << ": no description";
    }
}

TEST(Null, isNoValueForAnyKey)
{
    for (const json::json_pointer& place : places()) {
        json file = fullScenario();
        file.at(place) = nullptr;
        EXPECT_THAT(refusal(file), StartsWith(pathOf(place) + ": is null; must be "));
    }
}

TEST(MissingKey, isToldForAllThatAreRequired)
{
    const std::set<std::string> optional{"$schema", "properties", "long_haul", "extended_rx_wait", "slow_rx_wait",
        "spare_flag", "carriers", "continuous_waves", "noise_bands", "edges", "recordings", "shoulders", "row", "schedule",
        "from_ms", "duration_ms", "every_ms", "fades", "drift", "fading", "rain", "notches", "faults", "first_call", "calls",
        "value", "text"};
    const auto isRequired = [&optional](const json::json_pointer& place) {
        const bool ofRain = place.to_string().find("/rain/") != std::string::npos;
        const bool ofTurns = place.to_string() == "/channels/0/emitters/carriers/0/schedule/duration_ms";
        return optional.count(place.back()) == 0 || (ofRain && place.back() == "from_ms") || ofTurns;
    };
    for (const json::json_pointer& place : places()) {
        json file = fullScenario();
        json& parent = file.at(place.parent_pointer());
        if (!parent.is_object()) {
            continue;
        }
        parent.erase(place.back());
        const std::string lacks = pathOf(place.parent_pointer()) + ": lacks \"" + place.back() + "\"; must be ";
        const bool onlyMember = parent.empty() && place.parent_pointer().back() == "schedule";
        const std::string why = refusal(file);
        EXPECT_THAT(why, StartsWith(isRequired(place) ? lacks : onlyMember ? "$" : ""));
        EXPECT_TRUE(isRequired(place) || onlyMember || why.empty()) << why;
    }
}

TEST(MissingKey, isToldWithWhatWouldBeRight)
{
    json file = fullScenario();
    file["channels"][0]["receiver"].erase("jitter_dB");
    EXPECT_EQ(refusal(file),
        "$.channels[0].receiver: lacks \"jitter_dB\"; must be a number from 0 to 20 (standard deviation of one reading, "
        "dB)");
}

TEST(UnknownKey, isRefusedInEveryObjectWithWhatWasMeant)
{
    std::vector<json::json_pointer> all = places();
    all.emplace_back();
    for (const json::json_pointer& place : all) {
        json file = fullScenario();
        json& object = file.at(place);
        if (!object.is_object()) {
            continue;
        }
        const std::string known = object.begin().key();
        object[known + "x"] = 1;
        const std::string is = pathOf(place) + "." + known + "x: is no known key; ";
        EXPECT_EQ(refusal(file), is + "did you mean '" + known + "'?");
        object.erase(known + "x");
        object["something else"] = 1;
        EXPECT_THAT(refusal(file), StartsWith(pathOf(place) + "[\"something else\"]: is no known key; known here: "));
    }
}

TEST(UnknownKey, isToldWithAllThatAreKnown)
{
    json file = fullScenario();
    file["channels"][0]["receive_kHz"]["centre"] = 1;
    EXPECT_EQ(refusal(file), "$.channels[0].receive_kHz.centre: is no known key; known here: configured, highest, lowest");
}

struct Range {
    std::string place; ///< below the channel, or from the root on with a leading slash
    double lowest;
    double highest;
};

/// Ranges of all numbers, by their places.
const Range ranges[] = {
    {"//seed", 0, 4294967295},
    {"number", 0, 4294967295},
    {"band_GHz", 1, 200},
    {"receive_kHz/lowest", 1, 4294967295},
    {"receive_kHz/highest", 1, 4294967295},
    {"receive_kHz/configured", 1, 4294967295},
    {"raster/base_kHz", 0, 4294967295},
    {"raster/step_kHz", 1, 4294967295},
    {"raster/lowest_step", 0, 4294967295},
    {"raster/highest_step", 0, 4294967295},
    {"channel_spacing_kHz", 1, 4294967295},
    {"receiver/filter_kHz", 1, 10000000},
    {"receiver/noise_figure_dB", 0, 50},
    {"receiver/settling_ms", 0.01, 60000},
    {"receiver/jitter_dB", 0, 20},
    {"receiver/ultimate_rejection_dB", 0, 200},
    {"receiver/saturation_dBm", -200, 60},
    {"emitters/carriers/0/centre_kHz", 0, 4294967295},
    {"emitters/carriers/0/level_dBm", -200, 60},
    {"emitters/carriers/0/symbol_rate_kBd", 1, 10000000},
    {"emitters/carriers/0/roll_off", 0, 1},
    {"emitters/carriers/0/shoulders/channel_width_kHz", 1, 10000000},
    {"emitters/carriers/0/shoulders/adjacent_dB", 0, 200},
    {"emitters/carriers/0/shoulders/further_dB", 0, 200},
    {"emitters/carriers/0/row/count", 1, 1000},
    {"emitters/carriers/0/row/spacing_kHz", 1, 10000000},
    {"emitters/carriers/0/schedule/from_ms", 0, 1000000000000},
    {"emitters/carriers/0/schedule/duration_ms", 0.001, 1000000000000},
    {"emitters/carriers/0/schedule/every_ms", 0, 1000000000000},
    {"emitters/continuous_waves/0/frequency_kHz", 0, 4294967295},
    {"emitters/continuous_waves/0/level_dBm", -200, 60},
    {"emitters/continuous_waves/0/drift/reach_kHz", 0, 10000000},
    {"emitters/continuous_waves/0/drift/period_ms", 0.001, 1000000000000},
    {"emitters/continuous_waves/0/schedule/from_ms", 0, 1000000000000},
    {"emitters/noise_bands/0/lowest_kHz", 0, 4294967295},
    {"emitters/noise_bands/0/highest_kHz", 0, 4294967295},
    {"emitters/noise_bands/0/rise_dB", 0, 100},
    {"emitters/noise_bands/0/schedule/duration_ms", 0.001, 1000000000000},
    {"emitters/edges/0/edge_kHz", 0, 4294967295},
    {"emitters/edges/0/density_dBm_per_MHz", -200, 60},
    {"emitters/edges/0/slope_dB_per_MHz", 0.0001, 10000},
    {"emitters/edges/0/schedule/from_ms", 0, 1000000000000},
    {"emitters/recordings/0/lowest_kHz", 0, 4294967295},
    {"emitters/recordings/0/schedule/from_ms", 0, 1000000000000},
    {"fading/rain/0/from_ms", 0, 1000000000000},
    {"fading/rain/0/rate_dB_per_s", 0.0001, 1000},
    {"fading/rain/0/depth_dB", 0, 200},
    {"fading/rain/0/hold_ms", 0, 1000000000000},
    {"fading/notches/0/begin_kHz", 0, 4294967295},
    {"fading/notches/0/end_kHz", 0, 4294967295},
    {"fading/notches/0/speed_kHz_per_s", 0, 1000000000},
    {"fading/notches/0/width_kHz", 1, 10000000},
    {"fading/notches/0/depth_dB", 0, 200},
    {"faults/0/first_call", 1, 1000000000},
    {"faults/0/calls", 1, 1000000000},
    {"faults/0/value", -2147483648, 4294967295},
};

json::json_pointer placeOf(const Range& range)
{
    return json::json_pointer(range.place.front() == '/' ? range.place.substr(1) : "/channels/0/" + range.place);
}

/// A bound, in the type that the number at the place has.
json bound(const json& like, double value)
{
    return like.is_number_integer() && std::floor(value) == value ? json(static_cast<std::int64_t>(value)) : json(value);
}

std::string shown(double value)
{
    std::ostringstream text;
    text.precision(15);
    text << value;
    return text.str();
}

TEST(Numbers, areRefusedBeyondTheirRangeAndNotAtItsEnds)
{
    for (const Range& range : ranges) {
        const json::json_pointer place = placeOf(range);
        const json like = fullScenario().at(place);
        const double step = like.is_number_integer() ? 1.0 : 0.00001;
        for (const double value : {range.lowest - step, range.highest + std::max(step, 0.001)}) {
            json file = fullScenario();
            file.at(place) = bound(like, value);
            const std::string why = refusal(file);
            EXPECT_THAT(why, StartsWith(pathOf(place) + ": is "));
            EXPECT_THAT(why, HasSubstr(" from " + shown(range.lowest) + " to " + shown(range.highest)));
            EXPECT_EQ(lines(why), 1U) << why;
        }
        for (const double value : {range.lowest, range.highest}) {
            json file = fullScenario();
            file.at(place) = bound(like, value);
            EXPECT_THAT(refusal(file), testing::Not(HasSubstr(" from " + shown(range.lowest) + " to "))) << place;
        }
    }
}

TEST(Numbers, allStandInTheTable)
{
    std::set<std::string> known;
    for (const Range& range : ranges) {
        known.insert(placeOf(range).to_string());
    }
    for (const json::json_pointer& place : places()) {
        EXPECT_EQ(fullScenario().at(place).is_number(), known.count(place.to_string()) == 1) << place;
    }
}

TEST(Integers, haveNoFraction)
{
    for (const char* const place : {"/seed", "/channels/0/number", "/channels/0/receive_kHz/configured",
             "/channels/0/emitters/carriers/0/row/count", "/channels/0/faults/0/first_call"}) {
        json file = fullScenario();
        file.at(json::json_pointer(place)) = 1.5;
        EXPECT_THAT(refusal(file), StartsWith(pathOf(json::json_pointer(place)) + ": is 1.5; must be an integer from "));
    }
}

struct Change {
    std::function<void(json&)> change;
    std::string why;
};

TEST(Refusals, sayWhatIsWrongAndWhatWouldBeRight)
{
    const Change rows[] = {
        {[](json& file) { file["channels"][0]["receiver"]["jitter_dB"] = "much"; },
            "$.channels[0].receiver.jitter_dB: is \"much\"; must be a number from 0 to 20 (standard deviation of one "
            "reading, dB)"},
        {[](json& file) { file["name"] = ""; },
            "$.name: is \"\"; must be a text of 1 to 40 characters (short name of the scenario)"},
        {[](json& file) { file["description"] = std::string(100, 'd'); },
            "$.description: is \"" + std::string(57, 'd')
                + "...\"; must be a text of 1 to 99 characters (one line for people)"},
        {[](json& file) { file["sources"] = json::array(); },
            "$.sources: has 0 items; must be a list of 1 to 20 items (where the figures come from)"},
        {[](json& file) { file["sources"][1] = ""; },
            "$.sources[1]: is \"\"; must be a text of 1 to 300 characters (one sentence)"},
        {[](json& file) { file["channels"] = json::array(); },
            "$.channels: has 0 items; must be a list of 1 to 256 items (radio channels of the terminal)"},
        {[](json& file) { file["channels"][0]["unit_type"] = std::string(101, 'u'); },
            "$.channels[0].unit_type: is \"" + std::string(57, 'u')
                + "...\"; must be a text of at most 100 characters (type text of the outdoor unit)"},
        {[](json& file) { file["channels"][0]["emitters"]["carriers"][0]["fades"] = 1; },
            "$.channels[0].emitters.carriers[0].fades: is 1; must be true or false (whether it comes over the path that the "
            "channel's fading is on; false unless given)"},
        {[](json& file) { file["channels"][0]["emitters"]["edges"][0]["schedule"] = json::object(); },
            "$.channels[0].emitters.edges[0].schedule: has 0 keys; must be an object that is not empty (when it is on, in "
            "simulated time; "
            "always unless given)"},
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
        {[](json& file) { file["channels"].push_back(file["channels"][0]); },
            "$.channels[1].number: is 3; must differ from other channels'"},
        {[](json& file) { file["channels"][0]["emitters"]["recordings"][0]["file"] = "none.csv"; },
            "$.channels[0].emitters.recordings[0].file: " SDC_SCENARIOS
            "/none.csv: cannot be read: No such file or directory"},
    };
    for (const Change& row : rows) {
        json file = fullScenario();
        row.change(file);
        EXPECT_EQ(refusal(file), row.why);
    }
    EXPECT_EQ(refusal(fullScenario()), "");
}

TEST(ForeignTexts, areShownSoThatNoTerminalObeysThem)
{
    json file = fullScenario();
    file["channels"][0]["emitters"]["recordings"][0]["file"] = "a\033[2J\u009B.csv";
    EXPECT_EQ(refusal(file),
        "$.channels[0].emitters.recordings[0].file: " SDC_SCENARIOS
        "/a\\x1B[2J\\u009B.csv: cannot be read: No such file or directory");
    file = fullScenario();
    file["seed"] = "\u202Enine";
    EXPECT_THAT(refusal(file), StartsWith("$.seed: is \"\\u202Enine\"; must be "));
    file = fullScenario();
    file["\u009B1mseed"] = 1;
    EXPECT_THAT(refusal(file), StartsWith("$[\"\\u009B1mseed\"]: is no known key; "));
}

TEST(ForeignTexts, areShortened)
{
    const std::string endless(900000, 'a');
    json file = fullScenario();
    file[endless] = 1;
    EXPECT_LT(refusal(file).size(), 300U);
    file = fullScenario();
    file["seed"] = endless;
    EXPECT_LT(refusal(file).size(), 300U);
    try {
        simulator::loadScenario(endless);
        FAIL();
    } catch (const simulator::ScenarioError& error) {
        EXPECT_LT(std::string_view(error.what()).size(), 400U);
    }
}

TEST(Texts, areOneLineWithoutControlCharacters)
{
    for (const char* const key : {"name", "description", "unit_type"}) {
        nlohmann::json file = fullScenario();
        nlohmann::json& object = std::string(key) == "unit_type" ? file["channels"][0] : file;
        object[key] = "two\nlines";
        EXPECT_THAT(refusal(file), testing::HasSubstr(std::string(key) + ": holds a control character"));
        object[key] = "red \u009B31m";
        EXPECT_THAT(refusal(file), testing::HasSubstr(std::string(key) + ": holds a control character"));
        object[key] = "red \033[31m";
        EXPECT_THAT(refusal(file), testing::HasSubstr(std::string(key) + ": holds a control character"));
    }
    nlohmann::json file = fullScenario();
    file["sources"][1] = "a\tb";
    EXPECT_THAT(refusal(file), testing::HasSubstr("$.sources[1]: holds a control character"));
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
            const std::string why = refusal(file);
            const bool isKnown = (" " + actions + " ").find(" " + action + " ") != std::string::npos;
            EXPECT_THAT(why, StartsWith(isKnown ? "" : "$.channels[0].faults[1].action: is \"" + action + "\"; must be \""))
                << operation;
            EXPECT_TRUE(!isKnown || why.find("faults[1].action") == std::string::npos) << why;
        }
    }
    json file = fullScenario();
    file["channels"][0]["faults"][0] = {{"operation", "getProperties"}, {"action", "stick"}};
    EXPECT_EQ(refusal(file),
        "$.channels[0].faults[0].action: is \"stick\"; must be \"refuse\" or \"throw\" where operation is "
        "\"getProperties\"");
}

TEST(ImpossibleLinks, areRefusedAtTheirChannel)
{
    json file = fullScenario();
    file["channels"].push_back(file["channels"][0]);
    file["channels"][1]["number"] = 4;
    file["channels"][1]["receive_kHz"]["configured"] = 18699999;
    EXPECT_THAT(refusal(file), StartsWith("$.channels[1]"));
    EXPECT_THAT(refusal(file), HasSubstr("18699999"));
    EXPECT_THAT(refusal(file), HasSubstr("18700000"));
}

TEST(PathsOfALink, leadToTheListOfTheEmittersKind)
{
    simulator::ReadChannel channel;
    channel.path = "$.channels[2]";
    channel.emitterPaths = {"emitters.carriers[0]", "emitters.carriers[0]", "emitters.edges[4]"};
    const std::pair<const char*, const char*> rows[] = {
        {"", "$.channels[2]"},
        {"receiver.jitter_dB", "$.channels[2].receiver.jitter_dB"},
        {"emitters[1]", "$.channels[2].emitters.carriers[0]"},
        {"emitters[2].edge_kHz", "$.channels[2].emitters.edges[4].edge_kHz"},
        {"emitters[3]", "$.channels[2].emitters[3]"},
        {"emitters[x]", "$.channels[2].emitters[x]"},
        {"fading.rain[2]", "$.channels[2].fading.rain[2]"},
    };
    for (const auto& [path, inFile] : rows) {
        EXPECT_EQ(simulator::pathInFile(channel, path), inFile);
    }
}

TEST(SeveralFindings, areToldOnOneLineEach)
{
    json file = fullScenario();
    file["seed"] = -1;
    file["channels"][0]["number"] = "one";
    file["channels"][0]["receiver"].erase("jitter_dB");
    file["channels"][0]["receiver"]["jiter_dB"] = 0.5;
    EXPECT_EQ(refusal(file),
        "$.channels[0].number: is \"one\"; must be an integer from 0 to 4294967295 (of the radio channel, as the host "
        "counts; "
        "each one once)\n"
        "$.channels[0].receiver: lacks \"jitter_dB\"; must be a number from 0 to 20 (standard deviation of one reading, "
        "dB)\n"
        "$.channels[0].receiver.jiter_dB: is no known key; did you mean 'jitter_dB'?\n"
        "$.seed: is -1; must be an integer from 0 to 4294967295 (of all that is random; each channel gets its own from it)");
}

TEST(ManyFindings, areCutAfterTen)
{
    const auto withUnknownKeys = [](int count) {
        json file = fullScenario();
        for (int index = 0; index < count; ++index) {
            file["unknown" + std::to_string(index)] = 0;
        }
        return refusal(file);
    };
    EXPECT_EQ(lines(withUnknownKeys(10)), 10U);
    EXPECT_THAT(withUnknownKeys(10), testing::Not(HasSubstr("more")));
    EXPECT_EQ(lines(withUnknownKeys(13)), 11U);
    EXPECT_THAT(withUnknownKeys(13), testing::EndsWith("\nand 3 more"));
}

TEST(File, isNamedBeforeEachFinding)
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

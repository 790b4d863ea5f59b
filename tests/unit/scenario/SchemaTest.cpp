#include "simulator/scenario/ScenarioRecord.h"
#include "support/FieldsJson.h"
#include "tests/support/SchemaValidator.h"
#include "tests/unit/scenario/TestScenario.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <regex>
#include <sstream>

// The limits stand in one table. What follows from it in the tree is held against it here; with SDC_UPDATE_GOLDEN set in the
// environment the files are written anew. Another judge of schemas must come to the same verdicts as the reader.

namespace {

using nlohmann::json;
using Pointer = json::json_pointer;
using testing::HasSubstr;
using testing::StartsWith;
using tests::errorsOf;
using tests::fullScenario;

std::string textOf(const std::string& file)
{
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void expectIn(const std::string& file, const std::string& text)
{
    if (std::getenv("SDC_UPDATE_GOLDEN") != nullptr) {
        std::ofstream(file) << text;
    }
    EXPECT_EQ(textOf(file), text) << file << ": SDC_UPDATE_GOLDEN=1 ctest --preset release -R '^Schema' writes it anew";
}

json schema()
{
    return json::parse(support::schemaText(simulator::scenarioRecord()));
}

TEST(Schema, inTheTreeIsThatOfTheTable)
{
    expectIn(SDC_SOURCES "/simulator/scenario/scenario.schema.json", support::schemaText(simulator::scenarioRecord()));
}

/// The document with the tables of the records that its markers name.
TEST(Schema, tablesOfTheDocumentAreThoseOfTheTable)
{
    const std::string file = SDC_SOURCES "/docs/scenarios.md";
    std::set<std::string> told;
    std::map<std::string, std::string> tables;
    for (const support::RecordType* const record : support::recordsIn(simulator::scenarioRecord())) {
        tables[record->name()] = support::markdownTable(*record);
    }
    std::istringstream before(textOf(file));
    std::string after;
    bool isTable = false;
    for (std::string line; std::getline(before, line);) {
        isTable = isTable && line != "<!-- end -->";
        after += isTable ? "" : line + "\n";
        if (line.starts_with("<!-- fields: ")) {
            isTable = true;
            std::istringstream names(line.substr(13, line.size() - 17));
            for (std::string name; names >> name;) {
                after += (after.ends_with("-->\n") ? "" : "\n") + tables.at(name);
                told.insert(name);
            }
        }
    }
    expectIn(file, after);
    EXPECT_EQ(told.size(), tables.size()) << "each record is told of";
}

TEST(Schema, isClosedBoundedAndDescribed)
{
    const std::function<void(const json&)> visit = [&visit](const json& node) {
        const json properties = node.value("properties", json::object());
        for (const auto& [key, member] : properties.items()) {
            EXPECT_TRUE(member.contains("description")) << key;
            visit(member);
        }
        for (const json& definition : node.value("definitions", json::object())) {
            visit(definition);
        }
        const std::string type = node.value("type", "");
        const bool isNumber = type == "number" || type == "integer";
        EXPECT_TRUE(type != "object" || node.at("additionalProperties") == false) << node;
        EXPECT_TRUE(!isNumber || (node.contains("minimum") && node.contains("maximum"))) << node;
        EXPECT_TRUE(type != "array" || node.contains("maxItems")) << node;
        EXPECT_TRUE(type != "string" || node.contains("maxLength")) << node;
    };
    visit(schema());
    EXPECT_EQ(schema().at("$schema"), "http://json-schema.org/draft-07/schema#");
}

TEST(Schema, acceptsEveryBuiltInScenario)
{
    const tests::SchemaValidator validator(schema());
    for (const embedded::Text& one : simulator::builtInScenarios()) {
        constexpr bool withComments = true;
        EXPECT_TRUE(validator.accepts(json::parse(one.text, nullptr, true, withComments))) << one.name;
    }
}

/// "/channels/0/number" as messages write it: "$.channels[0].number".
std::string pathOf(const Pointer& pointer)
{
    static const std::regex index("/([0-9]+)(?=/|$)");
    static const std::regex key("/([^/]+)");
    return "$" + std::regex_replace(std::regex_replace(pointer.to_string(), index, "[$1]"), key, ".$1");
}

/// All places of the scenario that has every key, the root left out.
std::vector<Pointer> places()
{
    std::vector<Pointer> found;
    const json flat = fullScenario().flatten();
    for (const auto& place : flat.items()) {
        for (Pointer pointer(place.key()); !pointer.empty(); pointer = pointer.parent_pointer()) {
            if (std::ranges::find(found, pointer) == found.end()) {
                found.push_back(pointer);
            }
        }
    }
    return found;
}

/// The node of the schema for a place.
json nodeOf(const Pointer& place)
{
    static const json whole = schema();
    json node = whole;
    const auto resolve = [&node] {
        if (node.contains("$ref")) {
            node = whole.at(Pointer(node.at("$ref").get<std::string>().substr(1)));
        }
    };
    if (!place.empty()) {
        node = nodeOf(place.parent_pointer());
        node =
            fullScenario().at(place.parent_pointer()).is_array() ? node.at("items") : node.at("properties").at(place.back());
    }
    resolve();
    return node;
}

/// Values to put in the place of another, right ones and wrong ones, whatever stands there.
std::vector<json> substitutes(const Pointer& place)
{
    const json node = nodeOf(place);
    const json& limits = node.contains("anyOf") ? node.at("anyOf")[0] : node;
    std::vector<json> values{nullptr, false, "text", "all", 0.5, json::array(), json::object(), ""};
    if (limits.contains("minimum")) {
        const double step = limits.at("type") == "integer" ? 1.0 : 1e-5;
        for (const char* const limit : {"minimum", "maximum"}) {
            values.push_back(limits.at(limit));
            const double beyond = limits.at(limit).get<double>()
                + (limit[1] == 'i' ? -1.0 : 1.0) * std::max(step, std::abs(limits.at(limit).get<double>()) * 1e-12);
            values.push_back(step == 1.0 ? json(static_cast<std::int64_t>(beyond)) : json(beyond));
        }
    }
    if (limits.contains("maxLength")) {
        values.emplace_back(std::string(limits.at("maxLength").get<std::size_t>(), 'x'));
        values.emplace_back(std::string(limits.at("maxLength").get<std::size_t>() + 1, 'x'));
    }
    if (limits.contains("maxItems")) {
        const json item = fullScenario().at(place).at(0);
        values.emplace_back(std::vector<json>(limits.at("maxItems").get<std::size_t>(), item));
        values.emplace_back(std::vector<json>(limits.at("maxItems").get<std::size_t>() + 1, item));
    }
    return values;
}

/// Whether the reader has nothing against what stands in a place; rules about several fields do not count. What it has is
/// told at the place, and with what would be right.
bool readerAccepts(const json& file, const std::string& path)
{
    const std::string whole = errorsOf(file);
    const std::string error = whole.substr(0, whole.find('\n'));
    const bool isOfPlace = error.ends_with(")") && error.starts_with(path);
    EXPECT_TRUE(!isOfPlace || error.find("; must be ") != std::string::npos || error.find(": lacks ") != std::string::npos)
        << error;
    return !isOfPlace;
}

TEST(ReaderAndSchema, agreeOnEveryValueOfEveryKey)
{
    const tests::SchemaValidator validator(schema());
    const std::vector<Pointer> all = places();
    EXPECT_GT(all.size(), 90U);
    for (const Pointer& place : all) {
        for (const json& value : substitutes(place)) {
            json file = fullScenario();
            file.at(place) = value;
            const bool isListOfChannels = place.back() == "channels" && value.size() > 1; // each has a number of its own
            if (!isListOfChannels) {
                EXPECT_EQ(readerAccepts(file, pathOf(place)), validator.accepts(file)) << pathOf(place) << ' ' << value;
            }
        }
    }
}

TEST(ReaderAndSchema, agreeOnMissingKeys)
{
    const tests::SchemaValidator validator(schema());
    for (const Pointer& place : places()) {
        json file = fullScenario();
        json& parent = file.at(place.parent_pointer());
        if (parent.is_object()) {
            parent.erase(place.back());
            const std::string error = errorsOf(file);
            const std::string lacks = pathOf(place.parent_pointer()) + ": lacks \"" + place.back() + "\"; must be ";
            EXPECT_EQ(!error.starts_with(lacks), validator.accepts(file)) << error;
        }
    }
}

TEST(ReaderAndSchema, agreeOnUnknownKeysAndTheReaderTellsWhatWasMeant)
{
    const tests::SchemaValidator validator(schema());
    std::vector<Pointer> all = places();
    all.emplace_back();
    for (const Pointer& place : all) {
        json file = fullScenario();
        json& object = file.at(place);
        if (object.is_object()) {
            const std::string known = object.begin().key();
            object[known + "x"] = 1;
            EXPECT_FALSE(validator.accepts(file));
            EXPECT_EQ(errorsOf(file), pathOf(place) + "." + known + "x: unknown key; did you mean '" + known + "'?");
        }
    }
}

} // namespace

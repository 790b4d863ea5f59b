#include "simulator/scenario/JsonSchema.h"
#include "tests/unit/scenario/TestScenario.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using tests::refusalOfText;

struct Row {
    std::string text;
    std::string why; ///< how the finding begins
};

TEST(NoJson, isToldByLineAndColumn)
{
    const std::string nul(1, '\0');
    const Row rows[] = {
        {"", "line 1, column 1: there is nothing; must be a JSON object"},
        {" \n\t\r\n ", "line 1, column 1: there is nothing; must be a JSON object"},
        {"{", "line 1, column 2: "},
        {"{\n  \"name\" 5\n}", "line 2, column 10: "},
        {"{\n  \"name\": tru\n}", "line 2, column "},
        {"{} {}", "line 1, column 4: "},
        {"{\"seed\": 1,}", "line 1, column 12: "},
        {"{\"name\": \"two\nlines\"}", "line 1, column "},
        {"{\"name\": \"\xFF\"}", "line 1, column 11: "},
        {"\xFE\xFF", "line 1, column 1: "},
        {"// only a comment", "line 1, column "},
        {"/* never ends", "line 1, column "},
        {"{\"seed\": 1e999}", "line 1, column "},
        {"{\"seed\": 01}", "line 1, column "},
        {"{\"seed\": NaN}", "line 1, column "},
        {"{\n" + nul + "}", "line 2, column 1: a NUL byte; must be text in UTF-8"},
        {"{}" + nul, "line 1, column 3: a NUL byte; must be text in UTF-8"},
    };
    for (const Row& row : rows) {
        const std::string why = refusalOfText(row.text);
        EXPECT_THAT(why, StartsWith(row.why)) << row.text;
        EXPECT_THAT(why, testing::Not(HasSubstr("json.exception"))) << row.text;
        EXPECT_TRUE(std::all_of(why.begin(), why.end(), [](unsigned char one) { return one >= 0x20 && one < 0x7F; })) << why;
    }
}

TEST(JsonOfAnotherKind, isNoScenario)
{
    const Row rows[] = {
        {"null", "$: is null; must be an object (a terminal, its radio channels, and what is on the air around it)"},
        {"[]", "$: is a list; must be an object ("},
        {"\"text\"", "$: is \"text\"; must be an object ("},
        {"5", "$: is 5; must be an object ("},
        {"{}", "$: lacks \"name\"; must be a text of 1 to 40 characters"},
    };
    for (const Row& row : rows) {
        EXPECT_THAT(refusalOfText(row.text), StartsWith(row.why));
    }
}

TEST(HugeNumbers, areOutOfRange)
{
    for (const char* const number : {"18446744073709551615", "18446744073709551616", "9223372036854775808",
             "-9223372036854775808", "1e300", "-1e300", "123456789012345678901234567890"}) {
        std::string text = tests::fullScenario().dump();
        const std::string seed = "\"seed\":77";
        text.replace(text.find(seed), seed.size(), std::string("\"seed\":") + number);
        const std::string level = "\"level_dBm\":-35";
        text.replace(text.find(level), level.size(), std::string("\"level_dBm\":") + number);
        const std::string why = refusalOfText(text);
        EXPECT_THAT(why, HasSubstr("$.seed: is ")) << number;
        EXPECT_THAT(why, HasSubstr("$.channels[0].emitters.carriers[0].level_dBm: is ")) << number;
    }
}

TEST(DeepNesting, isRefusedAtItsPlace)
{
    const auto nested = [](std::size_t levels) {
        return "{\"a\":" + std::string(levels - 1, '[') + std::string(levels - 1, ']') + "}";
    };
    EXPECT_THAT(refusalOfText(nested(64)), StartsWith("$: lacks"));
    EXPECT_THAT(refusalOfText(nested(65)), StartsWith("$.a[0][0][0]"));
    EXPECT_THAT(refusalOfText(nested(65)), testing::EndsWith(": is nested too deeply; at most 64 levels"));
    EXPECT_THAT(refusalOfText(nested(10000)), HasSubstr("nested too deeply"));
    EXPECT_THAT(refusalOfText(std::string(10000, '[')), HasSubstr("nested too deeply"));
    std::string objects;
    for (int level = 0; level < 10000; ++level) {
        objects += "{\"a\":";
    }
    EXPECT_THAT(refusalOfText(objects), StartsWith("$.a.a.a"));
}

TEST(KeysThatStandTwice, areRefusedAtTheirPath)
{
    EXPECT_EQ(refusalOfText("{\"name\": 1, \"seed\": 2, \"name\": 3}"), "$.name: stands twice; keep one");
    EXPECT_EQ(refusalOfText("{\"channels\": [{}, {\"raster\": {}, \"a b\": [{\"x\": 1, \"x\": 1}]}]}"),
        "$.channels[1][\"a b\"][0].x: stands twice; keep one");
    EXPECT_EQ(refusalOfText("{\"a\": {}, \"a\": {}}"), "$.a: stands twice; keep one");
    EXPECT_EQ(refusalOfText("{\"a\": {\"b\": 1}, \"b\": 2, \"c\": [{\"b\": 1}, {\"b\": 2}], \"b\": 0}"),
        "$.b: stands twice; keep one");
}

TEST(SpoiltTexts, endInAScenarioOrAnError)
{
    std::mt19937 random(1); // the same texts each time
    const std::string text = tests::fullScenario().dump();
    const std::string pieces[] = {
        "{", "}", "[", "]", "\"", ",", ":", "-", "1e9", "null", "\\u0000", "//", "/*", "\xC3", "9999999999"};
    int refused = 0;
    for (int round = 0; round < 2000; ++round) {
        std::string spoilt = text;
        for (auto edits = 1 + random() % 3; edits > 0; --edits) {
            const std::size_t length = random() % 2 == 0 ? 0 : random() % 40;
            spoilt.replace(random() % spoilt.size(), length, random() % 3 == 0 ? "" : pieces[random() % std::size(pieces)]);
        }
        refused += refusalOfText(spoilt).empty() ? 0 : 1; // any other exception ends the test
    }
    EXPECT_GT(refused, 1500);
}

const char* const smallSchema = R"({
    "type": "object", "required": ["kind"], "properties": {
        "kind": {"const": "sweep", "description": "kind of file"},
        "when": {"type": ["string", "null"], "minLength": 2},
        "list": {"type": "array", "items": {"$ref": "#/definitions/item"}},
        "pair": {"type": "array", "items": [{"type": "integer"}, {"type": "string"}]},
        "odd": {"not": {"type": "string"}},
        "level": {"type": "number", "minimum": 3},
        "short": {"type": "string", "pattern": "^a"},
        "exact": {"type": "array", "minItems": 2, "maxItems": 2}
    },
    "definitions": {"item": {"type": "number", "maximum": 5}}
})";

TEST(SchemaFindings, explainWhateverTheSchemaIs)
{
    using simulator::schemaFindings;
    using testing::ElementsAre;
    const auto of = [](const char* json) { return schemaFindings(json, smallSchema); };
    EXPECT_THAT(of(R"({"kind": "sweep", "when": null, "list": [1, 5.0], "other": {}})"), ElementsAre());
    EXPECT_THAT(of(R"({})"), ElementsAre("$: lacks \"kind\"; must be \"sweep\" (kind of file)"));
    EXPECT_THAT(of(R"({"kind": "swept"})"), ElementsAre("$.kind: is \"swept\"; must be \"sweep\" (kind of file)"));
    EXPECT_THAT(
        of(R"({"kind": "sweep", "when": 5})"), ElementsAre("$.when: is 5; must be a text of at least 2 characters or null"));
    EXPECT_THAT(of(R"({"kind": "sweep", "list": [1, 6, "x", 2, 5.5]})"),
        ElementsAre("$.list[1]: is 6; must be a number of at most 5", "$.list[2]: is \"x\"; must be a number of at most 5",
            "$.list[4]: is 5.5; must be a number of at most 5"));
    EXPECT_THAT(of(R"({"kind": "sweep", "level": 2})"), ElementsAre("$.level: is 2; must be a number of at least 3"));
    EXPECT_THAT(of(R"({"kind": "sweep", "short": "b"})"), ElementsAre("$.short: is \"b\"; must be a text that matches ^a"));
    EXPECT_THAT(of(R"({"kind": "sweep", "exact": [1]})"), ElementsAre("$.exact: has 1 items; must be a list of 2 items"));
    EXPECT_THAT(of("{\"kind\" 1}"), ElementsAre(StartsWith("line 1, column 9: ")));
}

TEST(SchemaFindings, fallBackOnTheValidatorsWords)
{
    const auto findings = simulator::schemaFindings(R"({"kind": "sweep", "odd": "x", "pair": [1, 2]})", smallSchema);
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_THAT(findings[0], StartsWith("$.odd: "));
    EXPECT_THAT(findings[1], StartsWith("$.pair[1]: "));
}

TEST(SchemaFindings, refuseASchemaThatIsNone)
{
    EXPECT_THROW(simulator::schemaFindings("{}", "{"), std::invalid_argument);
    EXPECT_THROW(simulator::schemaFindings("{}", R"({"type": 5})"), std::invalid_argument);
    EXPECT_THROW(simulator::schemaFindings("{}", R"({"$ref": "#/definitions/none"})"), std::invalid_argument);
}

/// Each node of the schema that describes a value, and its name.
void visitNodes(const nlohmann::json& schema, const std::string& name,
    const std::function<void(const nlohmann::json&, const std::string&)>& visit)
{
    visit(schema, name);
    for (const char* const group : {"properties", "definitions"}) {
        const nlohmann::json members = schema.value(group, nlohmann::json::object());
        for (const auto& member : members.items()) {
            visitNodes(member.value(), name + "/" + member.key(), visit);
        }
    }
}

TEST(ScenarioSchema, isClosedBoundedAndDescribed)
{
    const auto schema = nlohmann::json::parse(simulator::scenarioSchema());
    EXPECT_EQ(schema.at("$schema"), "http://json-schema.org/draft-07/schema#");
    visitNodes(schema, "", [](const nlohmann::json& node, const std::string& name) {
        const std::string type = node.value("type", "");
        if (type == "object") {
            EXPECT_EQ(node.value("additionalProperties", true), false) << name;
            for (const auto& member : node.at("properties").items()) {
                const bool group = member.value().contains("$ref");
                EXPECT_TRUE(group || member.value().contains("description")) << name << "/" << member.key();
            }
        }
        if (type == "number" || type == "integer") {
            EXPECT_TRUE(node.contains("minimum") && node.contains("maximum")) << name;
        }
        if (type == "array") {
            EXPECT_TRUE(node.contains("maxItems") && node.contains("items")) << name;
        }
        for (const auto& required : node.value("required", nlohmann::json::array())) {
            EXPECT_TRUE(node.at("properties").contains(required.get<std::string>())) << name << "/" << required;
        }
        EXPECT_EQ(node.count("oneOf"), 0U) << name;
    });
}

/// The parts of the draft's own schema that this schema uses.
const char* const metaSchema = R"({
    "definitions": {"node": {
        "type": "object", "additionalProperties": false,
        "properties": {
            "$schema": {"type": "string"}, "$ref": {"type": "string"}, "title": {"type": "string"},
            "description": {"type": "string"},
            "type": {"enum": ["array", "boolean", "integer", "null", "number", "object", "string"]},
            "enum": {"type": "array"}, "const": {}, "anyOf": {"type": "array", "minItems": 1, "items": {"$ref": "#/definitions/node"}},
            "minimum": {"type": "number"}, "maximum": {"type": "number"},
            "minLength": {"type": "integer", "minimum": 0}, "maxLength": {"type": "integer", "minimum": 0},
            "minItems": {"type": "integer", "minimum": 0}, "maxItems": {"type": "integer", "minimum": 0},
            "minProperties": {"type": "integer", "minimum": 0},
            "required": {"type": "array", "uniqueItems": true, "items": {"type": "string"}},
            "additionalProperties": {"type": "boolean"},
            "dependencies": {"type": "object", "additionalProperties": {"type": "array"}}, "items": {"$ref": "#/definitions/node"},
            "properties": {"type": "object", "additionalProperties": {"$ref": "#/definitions/node"}},
            "definitions": {"type": "object", "additionalProperties": {"$ref": "#/definitions/node"}}
        }
    }},
    "allOf": [{"$ref": "#/definitions/node"}]
})";

TEST(ScenarioSchema, obeysTheRulesOfItsDraft)
{
    EXPECT_THAT(simulator::schemaFindings(simulator::scenarioSchema(), metaSchema), testing::ElementsAre());
    EXPECT_FALSE(simulator::schemaFindings(R"({"properties": {"a": {"minLenght": 1}}})", metaSchema).empty());
}

} // namespace

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
    std::string why; ///< what stands in the error
};

TEST(NoJson, isToldByLineAndColumn)
{
    const std::string nul(1, '\0');
    const Row rows[] = {
        {"", "is empty; must be a JSON object"},
        {" \n\t\r\n ", "is empty; must be a JSON object"},
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
        {"{\"seed\": 1e999}", "line 1, column 14: number overflow"},
        {"{\"seed\": 01}", "line 1, column "},
        {"{\"seed\": NaN}", "line 1, column "},
        {"{\n" + nul + "}", "holds a NUL byte; must be text in UTF-8"},
        {"{}" + nul, "holds a NUL byte; must be text in UTF-8"},
    };
    for (const Row& row : rows) {
        const std::string why = refusalOfText(row.text);
        EXPECT_THAT(why, HasSubstr(row.why)) << row.text;
        EXPECT_THAT(why, testing::Not(HasSubstr("json.exception"))) << row.text;
        EXPECT_TRUE(std::all_of(why.begin(), why.end(), [](unsigned char one) {
            return one == '\n' || (one >= 0x20 && one < 0x7F);
        })) << why;
    }
}

TEST(JsonOfAnotherKind, isNoScenario)
{
    const Row rows[] = {
        {"null", "$: is null; must be an object (a terminal, its radio channels, and what is on the air around it)"},
        {"[]", "$: is a list; must be an object ("},
        {"\"text\"", "$: is \"text\"; must be an object ("},
        {"5", "$: is 5; must be an object ("},
        {"{}", "$: lacks \"name\"; must be a line of 1 to 40 characters"},
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

TEST(DeepNesting, isNotKept)
{
    EXPECT_THAT(refusalOfText("{\"a\":" + std::string(10000, '[') + std::string(10000, ']') + "}"),
        StartsWith("$.a: is no known key"));
    EXPECT_THAT(refusalOfText(std::string(10000, '[')), StartsWith("$: is a list; must be an object"));
    std::string objects;
    for (int level = 0; level < 10000; ++level) {
        objects += "{\"name\":";
    }
    EXPECT_THAT(refusalOfText(objects), StartsWith("$.name: is an object; must be a line of"));
}

TEST(KeysThatStandTwice, areRefusedAtTheirPath)
{
    EXPECT_THAT(
        refusalOfText(
            R"({"name": "a", "seed": 2, "name": "b", "channels": [{}, {"raster": {"step_kHz": 1, "step_kHz": 1}}]})"),
        testing::AllOf(StartsWith("$.name: stands twice; keep one\n"),
            HasSubstr("\n$.channels[1].raster.step_kHz: stands twice; keep one\n")));
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

} // namespace

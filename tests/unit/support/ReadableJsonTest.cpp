#include "support/ReadableJson.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using Json = nlohmann::ordered_json;

std::string textOf(const Json& value)
{
    std::ostringstream stream;
    support::writeReadably(stream, value);
    return stream.str();
}

} // namespace

TEST(ReadableJson, whatFitsOnALineStandsOnOne)
{
    EXPECT_EQ(textOf({{"b", 1}, {"a", "x"}, {"c", nullptr}}), "{\"b\": 1, \"a\": \"x\", \"c\": null}\n");
    EXPECT_EQ(textOf(Json::array({1, 2.5, true})), "[1, 2.5, true]\n");
    EXPECT_EQ(textOf(Json::array()), "[]\n");
    EXPECT_EQ(textOf(Json::object()), "{}\n");
    EXPECT_EQ(textOf(-99.7), "-99.7\n");
}

TEST(ReadableJson, whatATerminalMightObeyIsEscaped)
{
    EXPECT_EQ(textOf("Z\xC3\xBCrich"), "\"Z\xC3\xBCrich\"\n");
    EXPECT_EQ(textOf("\xC2\x9B Z\xC3\xBCrich"), "\"\\u009b Z\\u00fcrich\"\n");
}

TEST(ReadableJson, whatHoldsObjectsOrListsIsOpened)
{
    EXPECT_EQ(textOf({{"a", Json::array({Json::array({1}), Json::array()})}}), "{\n  \"a\": [\n    [1],\n    []\n  ]\n}\n");
    EXPECT_EQ(textOf({{"a", {{"b", 1}}}}), "{\n  \"a\": {\"b\": 1}\n}\n");
    EXPECT_EQ(textOf({{"a", {1, 2, 3, 4, 5}}}), "{\n  \"a\": [1, 2, 3, 4, 5]\n}\n");
}

TEST(ReadableJson, fewWordsInAListOpenNoObject)
{
    EXPECT_EQ(textOf({{"a", {"b", "c", "d", "e"}}, {"f", 1}}), "{\"a\": [\"b\", \"c\", \"d\", \"e\"], \"f\": 1}\n");
}

TEST(ReadableJson, objectsThatDoNotFitInto120ColumnsAreOpened)
{
    const auto object = [](std::size_t size) { return Json{{"a", std::string(size, 'x')}, {"b", 1}}; };
    EXPECT_EQ(textOf(object(103)), "{\"a\": \"" + std::string(103, 'x') + "\", \"b\": 1}\n") << "120 columns";
    EXPECT_EQ(textOf(object(104)), "{\n  \"a\": \"" + std::string(104, 'x') + "\",\n  \"b\": 1\n}\n");
}

TEST(ReadableJson, listsOfMoreThanSixteenFillLines)
{
    Json list = Json::array();
    for (int number = 10; number < 26; ++number) {
        list.push_back(number);
    }
    EXPECT_EQ(textOf(list), "[10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25]\n");
    list.push_back(26);
    EXPECT_EQ(textOf(list), "[\n  10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26\n]\n");
}

TEST(ReadableJson, linesAreFilledTo120Columns)
{
    // An indentation of six, a number of four columns with its comma, and 22 more with a blank before them.
    std::string full = "      100,";
    for (int count = 0; count < 22; ++count) {
        full += " 100,";
    }
    ASSERT_EQ(full.size(), 120U);
    const Json list{{"a", {{"b", Json(24, 100)}}}};
    EXPECT_EQ(textOf(list), "{\n  \"a\": {\n    \"b\": [\n" + full + "\n      100\n    ]\n  }\n}\n");
}

#include "support/Fields.h"
#include "support/FieldsJson.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using namespace support;

enum class Colour { red, green };

struct Wheel {
    double size_mm = 0.0;
    bool spare = false;
};

struct Car {
    std::string name;
    std::uint32_t seats = 4;
    std::uint64_t owners = 1;
    Colour colour{};
    std::vector<Wheel> wheels;
    std::optional<Wheel> fifth;
    std::vector<std::string> notes;
};

const Record<Wheel>& wheelRecord()
{
    static const Record<Wheel> record{"wheel", "what it rolls on",
        {
            {"size_mm", &Wheel::size_mm, number(0.5, 900, "mm"), "its diameter"},
            {"spare", &Wheel::spare, flag(), "whether it is carried along", support::optional},
        },
        {[](const Wheel& wheel) -> std::optional<Wrong> {
            return wheel.spare && wheel.size_mm > 100.0
                ? std::optional(Wrong{"spare", "is true; must be false where the size is above 100"})
                : std::nullopt;
        }}};
    return record;
}

const Record<Car>& carRecord()
{
    static constexpr std::string_view colours[] = {"red", "green"};
    static const Record<Car> record{"car", "what drives",
        {
            ignored<Car>("comment", line(0, 9), "nobody reads it"),
            {"name", &Car::name, line(1, 5), "its name"},
            {"seats", &Car::seats, integer(1, 9), "how many may sit", support::optional},
            {"owners", &Car::owners, integer(1, 9).orWord("many", 1000), "how many had it", support::optional},
            {"colour", &Car::colour, choice(colours), "how it looks", support::optional},
            {"wheels", &Car::wheels, list(wheelRecord(), 1, 3), "all but the fifth"},
            {"fifth", &Car::fifth, wheelRecord(), "one more", support::optional},
            {"notes", &Car::notes, list(line(0, 5), 0, 20, "one word"), "whatever", support::optional},
        },
        {[](const Car& car) {
            return notAbove("seats", car.seats, static_cast<double>(car.owners) * 9.0, "nine times the owners");
        }}};
    return record;
}

std::string errorsIn(const std::string& text, Car& car)
{
    Errors errors;
    readJson(text, carRecord(), car, errors);
    return errors.text();
}

std::string errorsIn(const std::string& text)
{
    Car car;
    return errorsIn(text, car);
}

TEST(Fields, areReadIntoTheirMembers)
{
    Car car;
    EXPECT_EQ(errorsIn(R"({"comment": "x", "name": "a\u00FC", "seats": 9, "owners": "many", "colour": "green",
        "wheels": [{"size_mm": 600}, {"size_mm": 0.5, "spare": true}], "fifth": {"size_mm": 7}, "notes": ["a", ""]})",
                  car),
        "");
    EXPECT_EQ(car.name, "a\u00FC");
    EXPECT_EQ(car.seats, 9U);
    EXPECT_EQ(car.owners, 1000U);
    EXPECT_EQ(car.colour, Colour::green);
    ASSERT_EQ(car.wheels.size(), 2U);
    EXPECT_EQ(car.wheels[0].size_mm, 600.0);
    EXPECT_FALSE(car.wheels[0].spare);
    EXPECT_TRUE(car.wheels[1].spare);
    EXPECT_EQ(car.fifth.value().size_mm, 7.0);
    EXPECT_THAT(car.notes, testing::ElementsAre("a", ""));
}

TEST(Fields, thatAreNotGivenKeepTheirDefaults)
{
    Car car;
    EXPECT_EQ(errorsIn(R"({"name": "a", "wheels": [{"size_mm": 1}]})", car), "");
    EXPECT_EQ(car.seats, 4U);
    EXPECT_EQ(car.owners, 1U);
    EXPECT_FALSE(car.fifth);
}

TEST(Fields, areWrittenAsTheyAreRead)
{
    const std::string text =
        R"({"name":"a","seats":9,"owners":"many","colour":"green","wheels":[{"size_mm":0.5,"spare":true}],)"
        R"("fifth":{"size_mm":7.0,"spare":false},"notes":["b",""]})";
    Car car;
    EXPECT_EQ(errorsIn(text, car), "");
    std::string written = text;
    const std::string asWithout = R"(,"spare":false)";
    written.erase(written.find(asWithout), asWithout.size());
    EXPECT_EQ(jsonOf(carRecord(), &car).dump(), written);
    car.notes.clear();
    EXPECT_FALSE(jsonOf(carRecord(), &car).contains("notes"));
    car.fifth.reset();
    EXPECT_FALSE(jsonOf(carRecord(), &car).contains("fifth"));
}

TEST(Fields, areToldWithWhatIsExpected)
{
    const std::string good = R"("wheels": [{"size_mm": 1}])";
    const std::pair<std::string, std::string> rows[] = {
        {R"({"name": 5, )" + good + "}", "$.name: is 5; must be a line of 1 to 5 characters (its name)"},
        {R"({"name": "123456", )" + good + "}", "$.name: is \"123456\"; must be a line of 1 to 5 characters (its name)"},
        {R"({"name": "a", "seats": 1.5, )" + good + "}",
            "$.seats: is 1.5; must be an integer from 1 to 9 (how many may sit; 4 unless given)"},
        {R"({"name": "a", "seats": 4294967297, )" + good + "}",
            "$.seats: is 4294967297; must be an integer from 1 to 9 (how many may sit; 4 unless given)"},
        {R"({"name": "a", "owners": "few", )" + good + "}",
            "$.owners: is \"few\"; must be an integer from 1 to 9 or \"many\" (how many had it; 1 unless given)"},
        {R"({"name": "a", "colour": "blue", )" + good + "}",
            "$.colour: is \"blue\"; must be \"red\" or \"green\" (how it looks; \"red\" unless given)"},
        {R"({"name": "a", "wheels": []})", "$.wheels: has 0 items; must be a list of 1 to 3 items (all but the fifth)"},
        {R"({"name": "a", "wheels": [{"size_mm": 1}, {"size_mm": 1}, {"size_mm": 1}, 5, 6]})",
            "$.wheels: has more than 3 items; must be a list of 1 to 3 items (all but the fifth)"},
        {R"({"name": "a", "wheels": [{"size_mm": 901}]})",
            "$.wheels[0].size_mm: is 901; must be a number from 0.5 to 900 mm (its diameter)"},
        {R"({"name": "a", "fifth": [{"a": [1]}], )" + good + "}", "$.fifth: is a list; must be an object (one more)"},
        {R"({"name": "a", "fifth": {"spare": null, "size_mm": 1}, )" + good + "}",
            "$.fifth.spare: is null; must be true or false (whether it is carried along; false unless given)"},
        {R"({"name": "a", "fifth": {"size_mm": 101, "spare": true}, )" + good + "}",
            "$.fifth.spare: is true; must be false where the size is above 100"},
        {R"({"name": "a", "naem": {"x": [1, {}]}, )" + good + "}", "$.naem: unknown key; did you mean 'name'?"},
        {R"({"name": "a", "fifth": {"size_mm": 1, "zz": 1}, )" + good + "}",
            "$.fifth.zz: unknown key; known here: size_mm, spare"},
        {R"({"name": "a", "name": "b", )" + good + "}", "$.name: stands twice; keep one"},
        {"{" + good + "}", "$: lacks \"name\"; must be a line of 1 to 5 characters (its name)"},
        {"[]", "$: is a list; must be an object (what drives)"},
        {"", "is empty; must be a JSON object"},
    };
    for (const auto& [text, error] : rows) {
        EXPECT_EQ(errorsIn(text), error);
    }
    EXPECT_THAT(errorsIn("{\n \"name\": \"a\" 5}"), testing::StartsWith("line 2, column 14: syntax error"));
}

TEST(Fields, endTheReadingAfterTheFirstErrors)
{
    std::string items;
    for (int item = 0; item < 100000; ++item) {
        items += item == 0 ? "{}" : ",{}";
    }
    Errors errors;
    std::vector<Car> cars;
    const Record<std::vector<Car>> record{"cars", "many", {{"cars", whole, list(carRecord(), 0, 1000000), "each of them"}}};
    readJson(R"({"cars": [)" + items + "]}", record, cars, errors);
    EXPECT_TRUE(errors.isFull());
    EXPECT_EQ(cars.size(), 6U) << "two errors each";
    EXPECT_THAT(errors.listed("a"), testing::EndsWith("\na: and more"));
}

/// The parser copies all that stands before an error, and escapes it: a few MiB of line feeds would take seconds.
TEST(Fields, doNotBeginOrEndFarBehindAnother)
{
    const std::string far(70000, '\n');
    const std::string error = "more than 65536 characters without an end of a value; must be fewer";
    EXPECT_EQ(errorsIn(far + "x"), "line 1, column 1: " + error);
    EXPECT_EQ(errorsIn("{\n\"name\":" + far + "\"a\"}"), "line 2, column 7: " + error);
    EXPECT_EQ(errorsIn("{\"name\": \"" + std::string(70000, 'a')), "line 1, column 8: " + error);
    const std::string near(65000, '\n');
    EXPECT_EQ(errorsIn("{" + near + "\"name\":" + near + "\"a\"," + near + "\"wheels\": [{\"size_mm\": 1}]}"), "");
}

TEST(Fields, ofARecordInTheProgramAreJudgedAlike)
{
    Car car;
    car.name = "a";
    car.wheels = {{600.0, false}, {7.0, true}};
    Errors none;
    carRecord().check(car, "", none);
    EXPECT_EQ(none.text(), "");
    car.seats = 0;
    car.colour = static_cast<Colour>(2);
    car.wheels[1].size_mm = 101.0;
    car.fifth = Wheel{std::numeric_limits<double>::quiet_NaN()};
    Errors errors;
    carRecord().check(car, "cars[2]", errors);
    EXPECT_EQ(errors.text(),
        "cars[2].seats: is 0; must be an integer from 1 to 9 (how many may sit; 4 unless given)\n"
        "cars[2].colour: is unknown; must be \"red\" or \"green\" (how it looks; \"red\" unless given)\n"
        "cars[2].wheels[1].spare: is true; must be false where the size is above 100\n"
        "cars[2].fifth.size_mm: is nan mm; must be a number from 0.5 to 900 mm (its diameter)");
}

TEST(Fields, areTheSchema)
{
    const auto schema = nlohmann::json::parse(schemaText(carRecord()));
    EXPECT_EQ(schema["required"], (nlohmann::json{"name", "wheels"}));
    EXPECT_EQ(schema["properties"]["owners"]["anyOf"][1]["const"], "many");
    EXPECT_EQ(schema["properties"]["wheels"]["items"]["$ref"], "#/definitions/wheel");
    EXPECT_EQ(schema["definitions"]["wheel"]["properties"]["size_mm"],
        (nlohmann::json{{"type", "number"}, {"minimum", 0.5}, {"maximum", 900}, {"description", "its diameter"}}));
}

TEST(Fields, areTheTableOfADocument)
{
    EXPECT_EQ(markdownTable(carRecord()),
        "**car**: what drives\n\n|Key|Expected|What it is|\n|---|---|---|\n"
        "|`comment`|at most 9 characters, optional|nobody reads it|\n"
        "|`name`|1 to 5 characters|its name|\n"
        "|`seats`|1 to 9|how many may sit; 4 unless given|\n"
        "|`owners`|1 to 9 or \"many\"|how many had it; 1 unless given|\n"
        "|`colour`|\"red\" or \"green\"|how it looks; \"red\" unless given|\n"
        "|`wheels`|1 to 3 items: wheel|all but the fifth|\n"
        "|`fifth`|wheel, optional|one more|\n"
        "|`notes`|at most 20 items, optional|whatever|\n");
    EXPECT_THAT(recordsIn(carRecord()), testing::ElementsAre(&carRecord(), &wheelRecord()));
}

} // namespace

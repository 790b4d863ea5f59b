// sdc schema.

#include "tests/cli/SdcFixture.h"
#include "tests/support/SchemaValidator.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

class SchemaCommand : public Sdc {
protected:
    bool accepts(const std::string& document, const json& value) const
    {
        return tests::SchemaValidator(json::parse(run("schema " + document).out)).accepts(value);
    }

    json outputOf(const std::string& arguments) const
    {
        constexpr bool withComments = true;
        return json::parse(run(arguments).out, nullptr, true, withComments);
    }
};

TEST_F(SchemaCommand, printsWhatIsInTheTree)
{
    for (const auto& [document, file] : {std::pair("scenario", "/../simulator/scenario/scenario.schema.json"),
             {"result", "/../apps/sdc/result/scan-result.schema.json"}}) {
        std::ifstream stream(SDC_SCENARIOS + std::string(file));
        EXPECT_EQ(run(std::string("schema ") + document).out, std::string(std::istreambuf_iterator<char>(stream), {}));
    }
}

TEST_F(SchemaCommand, describesWhatIsReadAndWritten)
{
    const std::pair<std::string, json> rows[] = {
        {"scenario", outputOf("scenarios show 28-replay")},
        {"result", outputOf("scan channel --repeat 2 --quiet --json -")},
        {"plan", outputOf("plan --scenario 8-quad --json")},
    };
    for (const auto& [document, value] : rows) {
        EXPECT_TRUE(accepts(document, value)) << document;
        json changed = value;
        changed["channels"][0].erase("channel");
        changed["channels"][0].erase("number");
        EXPECT_FALSE(accepts(document, changed)) << document;
    }
    ASSERT_NO_FATAL_FAILURE(writeScenario("mine.json", "18-f595", {{"\"KLM6 18G\"", "\"XYZ 18G\""}}));
    EXPECT_TRUE(accepts("plan", outputOf("plan --scenario mine.json --json"))) << "a refusal";
}

} // namespace

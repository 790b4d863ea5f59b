// sdc scan: what is odd about readings is told in the table, in machine outputs and on standard error.

#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

class Sanity : public Sdc {
protected:
    /// Of the samples in JSON lines, their flags or null.
    std::vector<json> flagsInLines(const std::string& file) const
    {
        std::vector<json> flags;
        for (const std::string& line : lines(read(file))) {
            const json object = json::parse(line);
            if (object["type"] == "sample") {
                flags.push_back(object.value("flags", json()));
            }
        }
        return flags;
    }

    static std::vector<json> flagsInResult(const json& channel)
    {
        std::vector<json> flags;
        for (const json& sample : channel["sweeps"][0]["samples"]) {
            flags.push_back(sample.value("flags", json()));
        }
        return flags;
    }
};

TEST_F(Sanity, ofTheReceiverIsToldWhereverTheScanIs)
{
    struct Row {
        const char* fault;
        const char* oddity;
        const char* sentence;
        json flags; ///< of the third sample
    };
    for (const Row& row : {Row{R"("action": "answer", "value": -4512, "calls": "all")", "all_equal",
                               "all 13 readings are equal, -45.12 dBm: the receiver may be dead", {"repeated"}},
             {R"("action": "answer", "value": -20000, "calls": "all")", "too_low",
                 "all 13 readings are at the floor of -99.70 dBm, far below the receiver's own noise: it may be dead",
                 {"at_floor"}},
             {R"("action": "stick", "first_call": 3, "calls": 6)", "stuck",
                 "7 readings in a row are equal, -37.64 dBm: the receiver may be stuck", {"repeated"}},
             {R"("action": "answer", "value": -1200, "first_call": 3)", "above_saturation",
                 "1 of 13 readings are above -20.00 dBm, where the receiver saturates: levels there are higher than read",
                 {"above_saturation"}},
             {R"("action": "refuse", "first_call": 3, "calls": 2)", "refused",
                 "2 of 13 readings were refused by the radio and stand as 0.00 dBm", {"refused"}}}) {
        SCOPED_TRACE(row.fault);
        writeFaultyScenario("odd.json", std::string(R"({"operation": "readRssi", )") + row.fault + "}");
        const Outcome outcome = run("scan channel --scenario odd.json --quiet --table - --json a.json --jsonl a.jsonl");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.out, StartsWith(row.sentence + std::string("\n")));
        EXPECT_EQ(outcome.err, std::string("sdc: channel 1: ") + row.sentence + "\n");
        const json channel = json::parse(read("a.json"))["channels"][0];
        EXPECT_EQ(channel["sanity"].size(), 1U);
        EXPECT_EQ(channel["sanity"][0]["oddity"], row.oddity);
        EXPECT_EQ(flagsInResult(channel).at(2), row.flags);
        EXPECT_EQ(flagsInLines("a.jsonl"), flagsInResult(channel));
    }
}

TEST_F(Sanity, ofAReceiverThatIsWellIsNotSpokenOf)
{
    const Outcome outcome = run("scan channel --quiet --table - --json a.json");
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out, Not(HasSubstr("readings")));
    EXPECT_THAT(json::parse(read("a.json"))["channels"][0]["sanity"], testing::IsEmpty());
}

} // namespace

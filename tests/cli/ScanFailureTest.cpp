// sdc scan: what goes wrong in the radio is told, the outputs are written, and the status is 3.

#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using Json = nlohmann::json;

class ScanFailure : public Sdc {
protected:
    /// Scans the channel of a link with faults. Returns the sweeps as they were written all the same.
    Json sweeps(const std::string& faults, const std::string& arguments = "")
    {
        writeFaultyScenario("faulty.json", faults);
        outcome = run("scan channel --scenario faulty.json --json result.json --csv - " + arguments);
        EXPECT_EQ(outcome.status, 3);
        return Json::parse(read("result.json"))["channels"][0]["sweeps"];
    }

    Outcome outcome;
};

TEST_F(ScanFailure, isToldAndKeptWithTheSamplesBeforeIt)
{
    struct Row {
        const char* faults;
        const char* reason; ///< its beginning
        int taken;
        const char* status;
    };
    for (const Row& row : {Row{R"({ "operation": "setRxFrequency", "action": "refuse", "first_call": 4 })",
                               "tuning to 19170.750 MHz failed after 3 of 13 samples (trace, level 1: \"Failed to set RX "
                               "frequency 19170750\")",
                               3, "scan-not-started"},
             Row{R"({ "operation": "setRxFrequency", "action": "refuse", "first_call": 14 })",
                 "the receiver was not put back: it stands at 19188.750 MHz instead of 19177.500 MHz", 13,
                 "channel-scan-finished"},
             Row{R"({ "operation": "readRssi", "action": "throw", "first_call": 6, "text": "no answer" })",
                 "an exception ended the controller's worker (trace, level 1: \"Exception timerThread SpectDiagCtrl1: no "
                 "answer\"); "
                 "the receiver was not put back: it stands at 19174.750 MHz instead of 19177.500 MHz",
                 5, "channel-scan-ongoing"},
             Row{R"({ "operation": "getRxFrequency", "action": "throw", "text": "bus error" })",
                 "the start ended with an exception of the radio: bus error", 0, "scan-not-started"},
             Row{R"({ "operation": "getUnitInfo", "action": "answer", "text": "XYZ 18G", "calls": "all" })",
                 "the controller cannot plan a scan: it does not support the unit type ", 0, "scan-not-started"},
             Row{R"({ "operation": "createPropertiesProvider", "action": "throw", "text": "no radio" })",
                 "the terminal did not come up: ", 0, "scan-not-started"}}) {
        SCOPED_TRACE(row.faults);
        const Json sweep = sweeps(row.faults, "--plot a.svg --sweep a.txt")[0];
        const std::string reason = sweep["reason"];
        EXPECT_THAT(reason, testing::StartsWith(row.reason));
        EXPECT_THAT(outcome.err, HasSubstr("sdc: channel 1: " + reason + "\n"));
        EXPECT_EQ(sweep["ending"], "failed");
        EXPECT_EQ(sweep["status"], row.status);
        EXPECT_EQ(sweep["taken"], row.taken);
        EXPECT_EQ(lines(outcome.out).size(), static_cast<std::size_t>(row.taken) + 1);
    }
}

TEST_F(ScanFailure, ofAWorkerEndsTheRepetitions)
{
    const Json all = sweeps(R"({ "operation": "readRssi", "action": "throw", "first_call": 20 })", "--repeat 5");
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0]["ending"], "complete");
    EXPECT_EQ(all[1]["taken"], 6);
    EXPECT_THAT(outcome.err, HasSubstr("sdc: channel 1, sweep 2: an exception ended "));
}

/// A thread's stack is as large as the limit of this.
TEST_F(ScanFailure, ofAWorkerThatCannotBeCreatedIsToldAtOnceByEveryCommand)
{
    for (const char* const command : {"scan channel", "plan", "console"}) {
        SCOPED_TRACE(command);
        outcome = run(command, "ulimit -s 137438953472 &&");
        EXPECT_EQ(outcome.status, 3);
        EXPECT_THAT(outcome.err,
            testing::EndsWith("sdc: the terminal did not come up: channel 1 has no worker: Thread SpectDiagCtrl1 caught "
                              "exception [Resource temporarily unavailable].\n"));
    }
}

TEST_F(ScanFailure, ofOneSweepDoesNotKeepTheOthersFromBeingMade)
{
    const Json all = sweeps(R"({ "operation": "setRxFrequency", "action": "refuse", "first_call": 2 })", "--repeat 3");
    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(all[0]["ending"], "failed");
    EXPECT_EQ(all[1]["ending"], "complete");
    EXPECT_EQ(all[2]["ending"], "complete");
    EXPECT_THAT(outcome.err, HasSubstr("\nstatus     3 sweeps, 2 complete; the last: channel-scan-finished"));
}

TEST_F(ScanFailure, ofOneChannelLeavesTheOthersComplete)
{
    ASSERT_NO_FATAL_FAILURE(writeScenario("quad.json", "8-quad",
        {{"\"emitters\":", R"("faults": [{ "operation": "setRxFrequency", "action": "refuse" }], "emitters":)"}}));
    outcome = run("scan channel --scenario quad.json --json -");
    EXPECT_EQ(outcome.status, 3);
    const Json channels = Json::parse(outcome.out)["channels"];
    EXPECT_EQ(channels[0]["sweeps"][0]["ending"], "failed");
    for (const std::size_t other : {1U, 2U, 3U}) {
        EXPECT_EQ(channels[other]["sweeps"][0]["ending"], "complete");
    }
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("sdc: channel 1: tuning to "), Not(HasSubstr("sdc: channel 2: "))));
}

TEST_F(ScanFailure, comesBeforeAStopInTheStatus)
{
    writeFaultyScenario("faulty.json", R"({ "operation": "setRxFrequency", "action": "refuse" })");
    RunningSdc sdc(folder, {"scan", "channel", "--scenario", "faulty.json", "--repeat", "forever", "--speed", "10"});
    ASSERT_TRUE(tests::eventually([&] { return read("err.txt").find("sweep 2") != std::string::npos; }));
    sdc.interrupt();
    EXPECT_EQ(sdc.waitForExitStatus(), 3);
}

} // namespace

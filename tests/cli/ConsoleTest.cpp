// The console: a script of commands in, the controller's own codes and texts out.

#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class ConsoleRun : public Sdc {
protected:
    Outcome script(const std::string& text, const std::string& arguments = "") const
    {
        write("script.txt", text);
        return run("console " + arguments + " <script.txt");
    }
};

TEST_F(ConsoleRun, showsEachLineWithItsAnswer)
{
    const Outcome outcome = script("get-status\n\n# a remark\nchannel\nget-scan-properties # behind a command\n");
    EXPECT_EQ(outcome.out,
        "sdc> get-status\nscan-not-started, progress 0 %\nsdc> \nsdc> # a remark\nsdc> channel\nchannel 1\n"
        "sdc> get-scan-properties # behind a command\nlong haul no, extended rx wait no, slow rx wait no, spare flag no\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ConsoleRun, scansAndShowsTheSamples)
{
    const Outcome outcome =
        script("channel-scan-start\nwait\nget-result 2\nget-result 0\nsub-band-scan-start\nwait\nget-result 1\n");
    EXPECT_THAT(outcome.out,
        HasSubstr("sdc> channel-scan-start\n0 SDC_RC_OK\nsdc> wait\nchannel-scan-finished, progress 92 %\n"
                  "receiver at 19177.500 MHz\nsdc> get-result 2\n0 SDC_RC_OK, 2 samples\n   19164.750 MHz  -3"));
    EXPECT_THAT(
        outcome.out, HasSubstr("sdc> get-result 0\n0 SDC_RC_OK, 0 samples\nsdc> sub-band-scan-start\n0 SDC_RC_OK\n"));
    EXPECT_THAT(outcome.out, HasSubstr("sub-band-scan-finished, progress 99 %\n"));
    EXPECT_THAT(outcome.out, HasSubstr("0 SDC_RC_OK, 1 sample\n   18701.000 MHz "));
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(ConsoleRun, startDuringAScanIsRefusedWithResult0AndChangesNothing)
{
    const Outcome outcome = script("hold\nsub-band-scan-start\nchannel-scan-start\nget-status\nrelease\nwait\n");
    EXPECT_THAT(
        outcome.out, HasSubstr("sdc> channel-scan-start\n0 SDC_RC_OK\nsdc> get-status\nsub-band-ongoing, progress 0 %\n"));
    EXPECT_THAT(outcome.out, HasSubstr("sdc> wait\nsub-band-scan-finished, progress 99 %\n"));
}

TEST_F(ConsoleRun, stopEndsAScanAfterTheStepInHand)
{
    const Outcome outcome =
        script("hold\nsub-band-scan-start\nscan-stop\nscan-stop\nchannel-scan-start\nget-status\nrelease\n"
               "wait\nget-result\nscan-stop\nchannel-scan-start\nwait\n");
    EXPECT_THAT(outcome.out,
        HasSubstr("sdc> scan-stop\n0 SDC_RC_OK\nsdc> scan-stop\n0 SDC_RC_OK\nsdc> channel-scan-start\n"
                  "0 SDC_RC_OK\nsdc> get-status\nscan-not-started, progress 0 %\n"));
    EXPECT_THAT(outcome.out, HasSubstr("sdc> get-result\n0 SDC_RC_OK, 1 sample\n"));
    EXPECT_THAT(outcome.out, EndsWith("sdc> wait\nchannel-scan-finished, progress 92 %\nreceiver at 19177.500 MHz\n"));
}

TEST_F(ConsoleRun, unsupportedUnitIsRefusedWithTheControllersCode)
{
    writeScenario("odd.json", "18-f595", {{"KLM6 18G", "NONE 18G"}});
    const Outcome outcome = script("channel-scan-start\nget-status\n", "--scenario odd.json");
    EXPECT_THAT(outcome.out, HasSubstr("sdc> channel-scan-start\n32768 SDC_RC_FAILED\nsdc> get-status\nscan-not-started"));
    EXPECT_THAT(outcome.err, HasSubstr("Unknown radio type : (NONE 18G)"));
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(ConsoleRun, exceptionInASweepIsToldInTheControllersWords)
{
    const Outcome outcome = script("fault readRssi throw\nchannel-scan-start\nwait\nchannel-scan-start\n");
    const std::string failure = "Exception timerThread SpectDiagCtrl1: simulated fault in readRssi, call 1\n";
    EXPECT_THAT(outcome.out, HasSubstr("sdc> wait\nchannel-scan-ongoing, progress 0 %\n" + failure));
    EXPECT_THAT(outcome.out, EndsWith("sdc> channel-scan-start\n" + failure));
}

TEST_F(ConsoleRun, faultsHitTheCallsToCome)
{
    const Outcome outcome = script("fault setRxFrequency refuse 1\nchannel-scan-start\nwait\nget-result\n"
                                   "fault readRssi answer all -4200\nchannel-scan-start\nwait\nget-result 1\n"
                                   "fault getUnitInfo answer 1 NONE\nchannel-scan-start\n"
                                   "fault getRxFrequency throw\nchannel-scan-start\n");
    EXPECT_THAT(outcome.out,
        HasSubstr("scan-not-started, progress 0 %\nreceiver at 19177.500 MHz\nsdc> get-result\n0 SDC_RC_OK, 0 samples\n"));
    EXPECT_THAT(outcome.out, HasSubstr("   19164.750 MHz  -42.00 dBm\n"));
    EXPECT_THAT(outcome.out, HasSubstr("sdc> channel-scan-start\n32768 SDC_RC_FAILED\n"));
    EXPECT_THAT(outcome.out, HasSubstr("error: the call ended with an exception: simulated fault in getRxFrequency, call "));
    EXPECT_EQ(outcome.status, 2);
}

TEST_F(ConsoleRun, channelsAreChosenAtTheStartAndLater)
{
    EXPECT_THAT(script("channel\n", "--scenario 8-quad --channel 3").out, HasSubstr("channel 3\n"));
    const Outcome outcome =
        script("channel 2\nchannel-scan-start\nwait\nchannel 1\nget-status\nchannel 9\n", "--scenario 8-quad");
    EXPECT_THAT(outcome.out, HasSubstr("sdc> channel 1\nchannel 1\nsdc> get-status\nscan-not-started, progress 0 %\n"));
    EXPECT_THAT(outcome.out, EndsWith("error: the terminal has no radio channel 9\n"));
    const Outcome unknown = script("", "--channel 9");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_THAT(unknown.err, HasSubstr("9"));
}

TEST_F(ConsoleRun, traceIsShownOnStandardErrorFromTheLevelOn)
{
    const Outcome outcome = script("get-status\ntrace 6\nget-status\ntrace 0\nget-status\n");
    EXPECT_THAT(outcome.err, HasSubstr("ZRP.SDC 6 > getStatus: m_radioChannelId=1"));
    EXPECT_THAT(outcome.err, HasSubstr("ZRP.SDC 6 > getProgress: "));
    EXPECT_EQ(
        outcome.err.find("getStatus", outcome.err.find("getStatus") + 1), std::string::npos); // before and after: nothing
    EXPECT_THAT(script("fault setRxFrequency refuse\nchannel-scan-start\nwait\n").err,
        HasSubstr("Failed to set RX frequency 19164750"));
    EXPECT_EQ(script("fault setRxFrequency refuse\nchannel-scan-start\nwait\n", "--trace 0").err, "");
}

TEST_F(ConsoleRun, quitEndsItAndAnOpenScanIsBroughtToItsEnd)
{
    const Outcome outcome = script("hold\nsub-band-scan-start\nquit\nget-status\n");
    EXPECT_THAT(outcome.out, EndsWith("sdc> quit\n"));
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(ConsoleRun, linesItCannotActUponAreToldAndTheRestIsDone)
{
    struct Row {
        const char* line;
        const char* said;
    };
    for (const Row& row :
        {Row{"get-stauts", "error: unknown command 'get-stauts'; did you mean 'get-status'?"},
            {"abracadabra", "error: unknown command 'abracadabra'; 'help' lists the commands"},
            {"get-status now", "error: too many words; expected: get-status"},
            {"get-result many", "error: invalid count of samples 'many'; expected a number such as 10"},
            {"get-result -1", "error: invalid count of samples '-1'"}, {"trace", "error: invalid trace level ''"},
            {"trace 8", "error: invalid trace level '8'; expected 0"}, {"release", "error: the clock is not held"},
            {"channel x", "error: invalid channel number 'x'"}, {"fault", "error: a fault needs an operation and an action"},
            {"fault readRsi stick", "error: unknown operation 'readRsi'; expected one of setRxFrequency, readRssi, "},
            {"fault readRssi stuck", "error: unknown action 'stuck'; expected one of refuse, throw, answer, stick"},
            {"fault getChannelSpacing refuse", "error: "}, {"fault getChannelSpacing answer 1 0", "must be from 2 to"},
            {"fault readRssi stick no", "error: invalid number of calls 'no'; expected"},
            {"fault readRssi answer 1 x", "error: invalid answer 'x'"}}) {
        SCOPED_TRACE(row.line);
        const Outcome outcome = script(std::string(row.line) + "\nget-status\n");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.out, HasSubstr(row.said));
        EXPECT_THAT(outcome.out, EndsWith("sdc> get-status\nscan-not-started, progress 0 %\n"));
    }
    const Outcome held = script("hold\nhold\nsub-band-scan-start\nwait\nscan-stop\nwait\n");
    EXPECT_THAT(held.out, HasSubstr("sdc> hold\nerror: the clock is held already"));
    EXPECT_THAT(
        held.out, HasSubstr("sdc> wait\nerror: the clock is held, so the scan cannot end: 'release' first\nsdc> scan-stop"));
    EXPECT_THAT(held.out, EndsWith("sdc> wait\nerror: the clock is held, so the scan cannot end: 'release' first\n"));
}

TEST_F(ConsoleRun, stopOfOneChannelDoesNotHinderAnother)
{
    const Outcome other = script("channel-scan-start\nwait\nhold\nchannel-scan-start\nscan-stop\nchannel 2\nget-status\n"
                                 "scan-stop\nrelease\nchannel 1\nwait\nhold\nwait\n",
        "--scenario 8-quad");
    EXPECT_THAT(other.out, EndsWith("sdc> hold\nsdc> wait\nscan-not-started, progress 0 %\nreceiver at 8058.500 MHz\n"));
    EXPECT_EQ(other.status, 0);
    const Outcome held =
        script("hold\nchannel-scan-start\nscan-stop\nchannel 2\nwait\nchannel 1\nwait\nscan-stop\n", "--scenario 8-quad");
    EXPECT_THAT(held.out, HasSubstr("sdc> wait\nscan-not-started, progress 0 %\nreceiver at 8114.500 MHz\nsdc> channel 1"));
    EXPECT_THAT(held.out,
        EndsWith("sdc> wait\nerror: the clock is held, so the scan cannot end: 'release' first\n"
                 "sdc> scan-stop\n0 SDC_RC_OK\n"));
}

TEST_F(ConsoleRun, waitTellsAnExceptionAfterAStop)
{
    const std::string text = "hold\nchannel-scan-start\nfault readRssi throw\nscan-stop\nrelease\nwait\n";
    for (int round = 0; round < 20; ++round) {
        EXPECT_THAT(
            script(text).out, HasSubstr("\nException timerThread SpectDiagCtrl1: simulated fault in readRssi, call 1\n"));
    }
}

TEST_F(ConsoleRun, inputThatCannotBeReadIsToldWithStatus1)
{
    const Outcome outcome = run("console <.");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("sdc: cannot read standard input"));
}

TEST_F(ConsoleRun, helpNamesEveryCommand)
{
    const Outcome outcome = script("help\n");
    for (const char* const command : {"channel-scan-start", "sub-band-scan-start", "scan-stop", "get-status", "get-result",
             "get-scan-properties", "wait", "hold", "release", "channel", "fault", "trace", "help", "quit"}) {
        EXPECT_THAT(outcome.out, HasSubstr(std::string("\n") + command + " "));
    }
}

TEST_F(ConsoleRun, runsAtAnySpeedWithTheSameSamples)
{
    const std::string text = "channel-scan-start\nwait\nget-result\n";
    const Outcome outcome = script(text);
    EXPECT_THAT(outcome.out, HasSubstr("13 samples"));
    EXPECT_EQ(script(text, "--speed 1000").out, outcome.out);
}

} // namespace

// The console: a script of commands in, the controller's own codes and texts out, errors on standard error.

#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include <map>
#include <regex>

namespace {

using Json = nlohmann::json;

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ConsoleRun : public Sdc {
protected:
    Outcome script(const std::string& text, const std::string& arguments = "") const
    {
        write("script.txt", text);
        return run("console " + arguments + " <script.txt");
    }

    /// Without times, and with what arguments it was made.
    static std::string withoutItsMaking(const std::string& text)
    {
        const std::regex making("[0-9-]{10}(T|, | )[0-9:]{8}(\\.[0-9]{3}Z)?|\"arguments\": \\[[^\\]]*\\]");
        return std::regex_replace(text, making, "");
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
    EXPECT_EQ(outcome.err,
        "sdc: line 3: the scan was not started: one is under way; 'wait' waits for its end, 'scan-stop' stops it\n");
    EXPECT_EQ(outcome.status, 3);
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
    EXPECT_EQ(outcome.err,
        "sdc: line 5: the scan was not started: the one before is still in its settle delay, and the clock is held; "
        "'release' first\n");
}

TEST_F(ConsoleRun, unsupportedUnitIsRefusedWithTheControllersCode)
{
    writeScenario("odd.json", "18-f595", {{"KLM6 18G", "NONE 18G"}});
    const Outcome outcome = script("channel-scan-start\nget-status\n", "--scenario odd.json");
    EXPECT_THAT(outcome.out, HasSubstr("sdc> channel-scan-start\n32768 SDC_RC_FAILED\nsdc> get-status\nscan-not-started"));
    EXPECT_THAT(outcome.err, HasSubstr("Unknown radio type : (NONE 18G)"));
    EXPECT_THAT(outcome.err,
        HasSubstr("\nsdc: line 1: the scan was not started: the controller does not support the unit type that the radio "
                  "tells\n"));
    EXPECT_EQ(outcome.status, 3);
}

TEST_F(ConsoleRun, exceptionInASweepIsToldInTheControllersWords)
{
    const Outcome outcome =
        script("fault readRssi throw\nchannel-scan-start\nwait\nget-status\nchannel-scan-start\n", "--trace 0");
    const std::string failure = "Exception timerThread SpectDiagCtrl1: simulated fault in readRssi, call 1\n";
    EXPECT_THAT(outcome.out, HasSubstr("sdc> wait\nchannel-scan-ongoing, progress 0 %\n" + failure));
    EXPECT_THAT(outcome.out, EndsWith("sdc> channel-scan-start\n" + failure));
    EXPECT_EQ(outcome.err,
        "sdc: line 3: an exception has ended the worker of channel 1: no more scans there until the console is started "
        "anew\n"
        "sdc: line 5: the scan was not started: an exception has ended the worker; start the console anew\n");
    EXPECT_EQ(outcome.status, 3);
}

TEST_F(ConsoleRun, workerThatDiesUnobservedIsToldAtTheEnd)
{
    const Outcome outcome =
        script("channel 2\nhold\nfault readRssi throw\nchannel-scan-start\nchannel 1\n", "--scenario 8-quad --trace 0");
    EXPECT_THAT(outcome.out, EndsWith("sdc> channel 1\nchannel 1\n"));
    EXPECT_EQ(outcome.err,
        "sdc: an exception has ended the worker of channel 2: no more scans there until the console is started anew\n");
    EXPECT_EQ(outcome.status, 3);
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
    EXPECT_THAT(
        outcome.err, HasSubstr("sdc: line 12: the call ended with an exception: simulated fault in getRxFrequency, call "));
    EXPECT_EQ(outcome.status, 3);
}

TEST_F(ConsoleRun, channelsAreChosenAtTheStartAndLater)
{
    EXPECT_THAT(script("channel\n", "--scenario 8-quad --channel 3").out, HasSubstr("channel 3\n"));
    const Outcome outcome =
        script("channel 2\nchannel-scan-start\nwait\nchannel 1\nget-status\nchannel 9\n", "--scenario 8-quad");
    EXPECT_THAT(outcome.out, HasSubstr("sdc> channel 1\nchannel 1\nsdc> get-status\nscan-not-started, progress 0 %\n"));
    EXPECT_EQ(outcome.err, "sdc: line 6: the terminal has no radio channel 9\n");
    EXPECT_EQ(outcome.status, 2);
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
    for (const Row& row : {Row{"get-stauts", "unknown command 'get-stauts'; did you mean 'get-status'?"},
             {"abracadabra", "unknown command 'abracadabra'; 'help' lists the commands"},
             {"get-status now", "too many words; expected: get-status"},
             {"get-result many", "invalid count of samples 'many'; expected a number such as 10"},
             {"get-result -1", "invalid count of samples '-1'"}, {"trace", "invalid trace level ''"},
             {"trace 8", "invalid trace level '8'; expected 0"}, {"release", "the clock is not held"},
             {"channel x", "invalid channel number 'x'"}, {"fault", "a fault needs an operation and an action"},
             {"fault readRsi stick", "unknown operation 'readRsi'; expected one of setRxFrequency, readRssi, "},
             {"fault readRssi stuck", "unknown action 'stuck'; expected one of refuse, throw, answer, stick"},
             {"fault getChannelSpacing refuse", "must be \"throw\" or \"answer\""},
             {"fault getChannelSpacing answer 1 0", "must be from 2 to"},
             {"fault readRssi stick no", "invalid number of calls 'no'; expected"},
             {"fault readRssi answer 1 x", "invalid answer 'x'"}}) {
        SCOPED_TRACE(row.line);
        const Outcome outcome = script(std::string(row.line) + "\nget-status\n");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.err, AllOf(StartsWith("sdc: line 1: "), HasSubstr(row.said)));
        EXPECT_THAT(outcome.out, EndsWith("sdc> get-status\nscan-not-started, progress 0 %\n"));
    }
    const Outcome held = script("hold\nhold\nsub-band-scan-start\nwait\nscan-stop\nwait\n");
    EXPECT_EQ(held.err,
        "sdc: line 2: the clock is held already; 'release' lets it go on\n"
        "sdc: line 4: the clock is held, so the scan cannot end: 'release' first\n"
        "sdc: line 6: the clock is held, so the scan cannot end: 'release' first\n");
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
    EXPECT_THAT(held.out, EndsWith("sdc> wait\nsdc> scan-stop\n0 SDC_RC_OK\n"));
    EXPECT_EQ(held.err, "sdc: line 7: the clock is held, so the scan cannot end: 'release' first\n");
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

TEST_F(ConsoleRun, firstErrorIsTheStatus)
{
    const std::string refused = "hold\nchannel-scan-start\nchannel-scan-start\n";
    EXPECT_EQ(script("bogus\n" + refused).status, 2);
    EXPECT_EQ(script(refused + "bogus\n").status, 3);
    EXPECT_EQ(script("bogus\nget-status\n").status, 2);
}

TEST_F(ConsoleRun, stopOnErrorEndsAScriptAtItsFirstErrorAndNamesTheLine)
{
    const Outcome usage = script("get-status\n\nchannel 9\nget-status\nbogus\n", "--stop-on-error");
    EXPECT_THAT(usage.out, EndsWith("sdc> \nsdc> channel 9\n"));
    EXPECT_EQ(usage.err, "sdc: line 3: the terminal has no radio channel 9\n");
    EXPECT_EQ(usage.status, 2);
    const Outcome refused = script("hold\nchannel-scan-start\nchannel-scan-start\nbogus\n", "--stop-on-error");
    EXPECT_THAT(refused.err, StartsWith("sdc: line 3: the scan was not started: one is under way"));
    EXPECT_EQ(refused.status, 3);
    const Outcome dead = script("fault readRssi throw\nchannel-scan-start\nwait\nget-status\n", "--stop-on-error --trace 0");
    EXPECT_THAT(dead.out, EndsWith("call 1\nreceiver at 19164.750 MHz\n"));
    EXPECT_THAT(dead.err, StartsWith("sdc: line 3: an exception has ended the worker of channel 1: "));
    EXPECT_EQ(dead.status, 3);
    EXPECT_EQ(script("get-status\nchannel-scan-start\nwait\n", "--stop-on-error").status, 0);
}

TEST_F(ConsoleRun, withoutEchoShowsTheAnswersAlone)
{
    const Outcome outcome = script("channel\n# a remark\nbogus\nget-status", "--no-echo");
    EXPECT_EQ(outcome.out, "channel 1\nscan-not-started, progress 0 %\n");
    EXPECT_THAT(outcome.err, StartsWith("sdc: line 3: unknown command 'bogus'"));
}

TEST_F(ConsoleRun, quotesAndBackslashesPutBlanksIntoAWord)
{
    for (const char* const unit : {"'NONE # 18G'", "\"NONE # 18G\"", "NONE\\ #\\ 18G", "N'ONE '\"# 18G\""}) {
        const Outcome outcome = script("fault getUnitInfo answer 1 " + std::string(unit) + "\nchannel-scan-start\n");
        EXPECT_THAT(outcome.err, HasSubstr("Unknown radio type : (NONE # 18G)")) << unit;
    }
    EXPECT_THAT(script("get-status 'now\n").err, StartsWith("sdc: line 1: the quotes are not closed"));
}

TEST_F(ConsoleRun, lineThatIsTooLongIsToldAndTheRestIsDone)
{
    const std::string longest = "# " + std::string(4094, 'x');
    EXPECT_EQ(script(longest + "\n").status, 0);
    for (const std::size_t length : {longest.size() + 1, std::size_t{1} << 20}) {
        const Outcome outcome = script("#" + std::string(length - 1, 'x') + "\nchannel\n");
        EXPECT_EQ(outcome.err, "sdc: line 1: the line is too long; expected 4096 bytes at most\n");
        EXPECT_THAT(outcome.out, EndsWith("sdc> channel\nchannel 1\n"));
        EXPECT_EQ(outcome.status, 2);
    }
}

TEST_F(ConsoleRun, bytesThatAreNoTextAreShownAsEscapes)
{
    const Outcome outcome = script(std::string("get\0status\n\xFF\x1B[2J\r\nchannel\r\n", 27));
    EXPECT_EQ(outcome.err,
        "sdc: line 1: unknown command 'get\\x00status'; did you mean 'get-status'?\n"
        "sdc: line 2: unknown command '\\xFF\\x1B[2J'; 'help' lists the commands\n");
    EXPECT_THAT(outcome.out, EndsWith("sdc> channel\\x0D\nchannel 1\n"));
}

TEST_F(ConsoleRun, outputThatNobodyReadsAnyMoreEndsIt)
{
    write("script.txt", "channel-scan-start\nwait\n");
    EXPECT_EQ(run("console <script.txt", "", ">/dev/full").status, 1);
    EXPECT_EQ(run("console <script.txt", "", ">&-").status, 1);
    EXPECT_EQ(run("console <&-").status, 1);
}

TEST_F(ConsoleRun, keepsNoHistoryOfAScript)
{
    write("script.txt", "channel\n");
    EXPECT_EQ(run("console <script.txt", "HOME=\"$PWD\" XDG_STATE_HOME=").status, 0);
    EXPECT_FALSE(std::filesystem::exists(folder / ".local"));
}

TEST_F(ConsoleRun, savesTheLastScanAsTheNameOfTheFileTells)
{
    const Outcome outcome = script("channel-scan-start\nwait\nsave a.json\nsave result\nsave a.csv\nsave a.sweep\n"
                                   "save a.txt\nsave a.svg\nplot b.txt\nplot\nsave -\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, HasSubstr("sdc> save a.json\n13 of 13 samples written to a.json\n"));
    EXPECT_EQ(read("a.json"), read("result"));
    EXPECT_THAT(outcome.out, EndsWith("sdc> save -\n" + read("a.json")));
    EXPECT_THAT(outcome.out, HasSubstr("sdc> plot\n" + read("b.txt")));
    for (const auto& [file, option] : std::map<std::string, std::string>{
             {"a.csv", "--csv"}, {"a.txt", "--table"}, {"b.txt", "--plot"}, {"a.sweep", "--sweep"}, {"a.json", "--json"}}) {
        SCOPED_TRACE(file);
        EXPECT_EQ(run("scan channel --quiet --table /dev/null " + option + " scan-" + file).status, 0);
        EXPECT_EQ(withoutItsMaking(read(file)), withoutItsMaking(read("scan-" + file)));
    }
    EXPECT_THAT(read("a.svg"), HasSubstr("<svg"));
}

TEST_F(ConsoleRun, savesTheScanOfTheChannelThatItIsOn)
{
    const Outcome outcome = script("channel 2\nsub-band-scan-start\nchannel 3\nhold\nchannel-scan-start\nsave c.json\n"
                                   "channel 1\nsave a.json\nrelease\nchannel 2\nwait\nsave b.json\n",
        "--scenario 8-quad");
    EXPECT_EQ(outcome.err, "sdc: line 8: there is no scan on channel 1 yet; 'channel-scan-start' starts one\n");
    EXPECT_EQ(outcome.status, 2);
    const Json whole = Json::parse(read("b.json"));
    EXPECT_EQ(whole["kind"], "sub-band");
    EXPECT_EQ(whole["channels"].size(), 1U);
    EXPECT_EQ(whole["channels"][0]["channel"], 2);
    EXPECT_EQ(whole["channels"][0]["sweeps"][0]["ending"], "complete");
    const Json part = Json::parse(read("c.json"))["channels"][0];
    EXPECT_EQ(part["channel"], 3);
    EXPECT_EQ(part["sweeps"][0]["ending"], "failed");
    EXPECT_EQ(part["sweeps"][0]["reason"], "the scan was still under way");
    EXPECT_EQ(part["sweeps"][0]["taken"], 0);
}

TEST_F(ConsoleRun, savesWhatAStopOrAFailureHasLeft)
{
    const Outcome outcome = script("hold\nsub-band-scan-start\nscan-stop\nrelease\nwait\nsave stopped.json\n"
                                   "fault setRxFrequency refuse 1\nchannel-scan-start\nwait\nsave refused.json\n"
                                   "fault readRssi throw\nchannel-scan-start\nwait\nsave dead.json\n");
    const auto sweepIn = [this](const char* name) { return Json::parse(read(name))["channels"][0]["sweeps"][0]; };
    EXPECT_EQ(sweepIn("stopped.json")["ending"], "stopped");
    EXPECT_EQ(sweepIn("stopped.json")["taken"], 1);
    EXPECT_EQ(sweepIn("stopped.json")["rx_before_kHz"], 19177500);
    EXPECT_THAT(sweepIn("refused.json")["reason"], StartsWith("tuning to 19164.750 MHz failed after 0 of 13 samples"));
    EXPECT_THAT(sweepIn("dead.json")["reason"], StartsWith("an exception ended the controller's worker"));
    EXPECT_EQ(outcome.status, 3);
}

TEST_F(ConsoleRun, filesThatCannotBeWrittenAreErrors)
{
    const Outcome outcome =
        script("save\nsave a.json\nchannel-scan-start\nwait\nplot a.gif\nsave none/a.json\nplot /dev/full\n");
    EXPECT_THAT(outcome.err,
        StartsWith("sdc: line 1: the name of a file is missing, such as: save scan.json\n"
                   "sdc: line 2: there is no scan on channel 1 yet; 'channel-scan-start' starts one\nsdc: line 5: "));
    EXPECT_THAT(outcome.err, HasSubstr("\nsdc: line 6: cannot write to none/a.json: "));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(script("channel-scan-start\nwait\nsave none/a.json\nchannel\n", "--stop-on-error").status, 1);
}

TEST_F(ConsoleRun, helpNamesEveryCommand)
{
    const Outcome outcome = script("help\n");
    for (const char* const command :
        {"channel-scan-start", "sub-band-scan-start", "scan-stop", "get-status", "get-result", "get-scan-properties", "wait",
            "hold", "release", "channel", "fault", "trace", "save", "plot", "help", "quit"}) {
        EXPECT_THAT(outcome.out, HasSubstr(std::string("\n") + command + " "));
    }
    for (const std::string& line : lines(outcome.out)) {
        EXPECT_LE(line.size(), 80U) << line;
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

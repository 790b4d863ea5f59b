// The console on a terminal: editing, history, completion, Ctrl-C, signals.

#include "tests/cli/PseudoTerminal.h"
#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>

#include <csignal>

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr const char* prompt = "sdc> ";
constexpr const char* ctrlC = "\x03";
constexpr const char* ctrlD = "\x04";
constexpr const char* up = "\033[A";

class ConsoleOnATerminal : public Sdc {
protected:
    using Terminal = OnPseudoTerminal;

    /// In a home of its own.
    Terminal console(const std::vector<std::string>& arguments = {}, const Terminal::Environment& environment = {},
        unsigned short columns = 80)
    {
        std::vector<std::string> command{SDC_PROGRAM, "console"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return started(command, environment, columns);
    }

    Terminal started(
        const std::vector<std::string>& command, const Terminal::Environment& environment = {}, unsigned short columns = 80)
    {
        Terminal::Environment all{{"HOME", folder.string()}, {"XDG_STATE_HOME", ""}, {"LC_ALL", "C.UTF-8"}};
        all.insert(all.end(), environment.begin(), environment.end());
        return {folder, command, columns, all};
    }

    static void expectEndsWell(Terminal& terminal)
    {
        EXPECT_TRUE(terminal.goesOnWith(prompt));
        terminal.type(ctrlD);
        EXPECT_EQ(terminal.finish(), 0) << terminal.shown();
    }

    std::string history() const { return read(".local/state/sdc/history"); }
};

TEST_F(ConsoleOnATerminal, linesAreEditedBeforeTheyAreObeyed)
{
    Terminal terminal = console();
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    terminal.type("channexx\x7f\x7fl\r");
    EXPECT_TRUE(terminal.goesOnWith("channel 1\r\n"));
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    terminal.type("et-status\x01g\r"); // Ctrl-A: to the beginning
    EXPECT_TRUE(terminal.goesOnWith("scan-not-started, progress 0 %\r\n"));
    expectEndsWell(terminal);
}

TEST_F(ConsoleOnATerminal, ctrlDEndsItAndSoDoesQuit)
{
    Terminal first = console();
    expectEndsWell(first);
    Terminal second = console();
    ASSERT_TRUE(second.goesOnWith(prompt));
    second.type("quit\r");
    EXPECT_EQ(second.finish(), 0);
}

TEST_F(ConsoleOnATerminal, tabGoesOnAsFarAsThereIsNoChoice)
{
    Terminal terminal = console({"--scenario", "8-quad"});
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    terminal.type("get-st\t\r");
    EXPECT_TRUE(terminal.goesOnWith("scan-not-started"));
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    terminal.type("fault get\t");
    terminal.type("\t");
    EXPECT_TRUE(terminal.goesOnWith("getRxFrequency"));
    EXPECT_TRUE(terminal.goesOnWith("getUnitInfo"));
    EXPECT_TRUE(terminal.goesOnWith("sdc> fault get"));
    terminal.type("U\tan\t1 NONE\rchannel-scan-start\r");
    EXPECT_TRUE(terminal.goesOnWith("32768 SDC_RC_FAILED"));
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    terminal.type("channel \t");
    EXPECT_TRUE(terminal.goesOnWith("1  2  3  4"));
    terminal.type("4\r");
    EXPECT_TRUE(terminal.goesOnWith("channel 4\r\n"));
}

TEST_F(ConsoleOnATerminal, tabKnowsFilesAndWritesTheirNamesAsWords)
{
    write("a file.json", "");
    std::filesystem::create_directory(folder / "sub");
    Terminal terminal = console();
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    terminal.type("channel-scan-start\rwait\rsave a\t\r");
    EXPECT_TRUE(terminal.goesOnWith("13 of 13 samples written to a file.json\r\n"));
    terminal.type("save su\tx.csv\r");
    EXPECT_TRUE(terminal.goesOnWith("13 of 13 samples written to sub/x.csv\r\n"));
    expectEndsWell(terminal);
    EXPECT_THAT(read("a file.json"), HasSubstr("19164750"));
}

TEST_F(ConsoleOnATerminal, historyIsKeptForTheNextAndReadByNobodyElse)
{
    Terminal first = console();
    ASSERT_TRUE(first.goesOnWith(prompt));
    first.type("channel\rget-status\rget-status\r\r");
    EXPECT_TRUE(first.goesOnWith("progress 0 %\r\n"));
    EXPECT_TRUE(first.goesOnWith("progress 0 %\r\n"));
    ASSERT_TRUE(first.goesOnWith(prompt));
    expectEndsWell(first);
    EXPECT_EQ(history(), "channel\nget-status\n");
    EXPECT_EQ(std::filesystem::status(folder / ".local/state/sdc/history").permissions(),
        std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    Terminal second = console();
    ASSERT_TRUE(second.goesOnWith(prompt));
    second.type(std::string(up) + up + "\r");
    EXPECT_TRUE(second.goesOnWith("channel 1\r\n"));
    expectEndsWell(second);
    EXPECT_EQ(history(), "channel\nget-status\nchannel\n");
}

TEST_F(ConsoleOnATerminal, worksWhereNoHistoryCanBeKept)
{
    std::filesystem::create_directories(folder / "full/sdc");
    std::filesystem::create_symlink("/dev/full", folder / "full/sdc/history");
    const std::string file = (folder / "full/sdc/history").string();
    Terminal full = console({}, {{"XDG_STATE_HOME", (folder / "full").string()}}, 300);
    ASSERT_TRUE(full.goesOnWith(prompt));
    full.type("channel\r");
    EXPECT_TRUE(full.goesOnWith("sdc: the history is not kept: cannot write to " + file + ": it is no regular file\r\n"));
    EXPECT_TRUE(full.goesOnWith("channel 1\r\n"));
    full.type("get-status\r" + std::string(up) + up + "\r");
    EXPECT_TRUE(full.goesOnWith("channel 1\r\n"));
    expectEndsWell(full);
    EXPECT_EQ(full.shown().find("history is not kept"), full.shown().rfind("history is not kept"));

    Terminal homeless = started({"/usr/bin/env", "-u", "HOME", SDC_PROGRAM, "console"});
    ASSERT_TRUE(homeless.goesOnWith(prompt));
    homeless.type("channel\r");
    EXPECT_TRUE(homeless.goesOnWith("channel 1\r\n"));
    expectEndsWell(homeless);
    EXPECT_THAT(homeless.shown(), Not(HasSubstr("history")));
}

TEST_F(ConsoleOnATerminal, ctrlCClearsTheLine)
{
    Terminal terminal = console();
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    terminal.type(std::string("bogus") + ctrlC);
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    terminal.signal(SIGINT);
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    terminal.type("channel\r");
    EXPECT_TRUE(terminal.goesOnWith("channel 1\r\n"));
    expectEndsWell(terminal);
    EXPECT_THAT(terminal.shown(), Not(HasSubstr("unknown command")));
    EXPECT_EQ(history(), "channel\n");
}

TEST_F(ConsoleOnATerminal, ctrlCEndsAWaitAndNotTheScan)
{
    Terminal terminal = console({"--speed", "real"}); // 153 s
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    terminal.type("sub-band-scan-start\rwait\r");
    EXPECT_TRUE(terminal.goesOnWith("/500 samples"));
    terminal.type(ctrlC);
    EXPECT_TRUE(terminal.goesOnWith("sdc: the scan goes on; 'scan-stop' stops it, 'wait' waits for its end\r\n"));
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    terminal.type("get-status\r");
    EXPECT_TRUE(terminal.goesOnWith("sub-band-ongoing, progress "));
    terminal.type("scan-stop\r");
    EXPECT_TRUE(terminal.goesOnWith("0 SDC_RC_OK"));
    terminal.type("wait\r");
    EXPECT_TRUE(terminal.goesOnWith("scan-not-started"));
    EXPECT_TRUE(terminal.goesOnWith("receiver at 19177.500 MHz"));
    expectEndsWell(terminal);
}

TEST_F(ConsoleOnATerminal, progressOfAWaitIsTakenAwayInTheEnd)
{
    Terminal terminal = console({"--speed", "100"});
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    terminal.type("channel-scan-start\rwait\r");
    EXPECT_TRUE(terminal.goesOnWith("/13 samples"));
    EXPECT_TRUE(terminal.goesOnWith("\r\033[Kchannel-scan-finished, progress 92 %\r\n"));
    expectEndsWell(terminal);
}

TEST_F(ConsoleOnATerminal, signalsEndItInOrder)
{
    for (const int signal : {SIGTERM, SIGHUP}) {
        Terminal atPrompt = console();
        ASSERT_TRUE(atPrompt.goesOnWith(prompt));
        atPrompt.signal(signal);
        EXPECT_EQ(atPrompt.finish(), 4);
        EXPECT_THAT(atPrompt.shown(), EndsWith("sdc: stopped by a signal\r\n"));
        Terminal waiting = console({"--speed", "real"});
        ASSERT_TRUE(waiting.goesOnWith(prompt));
        waiting.type("sub-band-scan-start\rwait\r");
        EXPECT_TRUE(waiting.goesOnWith("/500 samples"));
        waiting.signal(signal);
        EXPECT_EQ(waiting.finish(), 4);
    }
}

TEST_F(ConsoleOnATerminal, ctrlCEndsAScript)
{
    write("script.txt", "sub-band-scan-start\nwait\nget-status\n");
    Terminal terminal = started({"/bin/sh", "-c", "exec '" SDC_PROGRAM "' console --speed real <script.txt"});
    ASSERT_TRUE(terminal.goesOnWith("/500 samples"));
    terminal.type(ctrlC);
    EXPECT_EQ(terminal.finish(), 4);
    EXPECT_THAT(terminal.shown(), EndsWith("sdc: stopped by a signal\r\n"));
    EXPECT_THAT(terminal.shown(), Not(HasSubstr("sdc> get-status")));
    EXPECT_THAT(terminal.shown(), Not(HasSubstr("goes on")));
}

TEST_F(ConsoleOnATerminal, thatCannotMoveItsCursorLinesArePlain)
{
    for (const std::vector<std::string>& term : {std::vector<std::string>{"TERM=dumb"}, {"-u", "TERM"}}) {
        std::vector<std::string> command{"/usr/bin/env"};
        command.insert(command.end(), term.begin(), term.end());
        command.insert(command.end(), {SDC_PROGRAM, "console"});
        Terminal terminal = started(command);
        ASSERT_TRUE(terminal.goesOnWith(prompt));
        terminal.type(std::string("bogus") + ctrlC);
        ASSERT_TRUE(terminal.goesOnWith(prompt));
        terminal.type("channel\n");
        EXPECT_TRUE(terminal.goesOnWith("channel 1\r\n"));
        expectEndsWell(terminal);
        EXPECT_THAT(terminal.shown(), Not(HasSubstr("\033")));
        EXPECT_THAT(terminal.shown(), Not(HasSubstr("unknown command")));
    }
}

TEST_F(ConsoleOnATerminal, answersCanGoIntoAFile)
{
    Terminal terminal = started({"/bin/sh", "-c", "exec '" SDC_PROGRAM "' console >out.txt"});
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    terminal.type("chan\t");
    EXPECT_TRUE(terminal.goesOnWith("nel"));
    terminal.type("\r");
    expectEndsWell(terminal);
    EXPECT_EQ(read("out.txt"), "channel 1\n");
}

TEST_F(ConsoleOnATerminal, charactersOfSeveralBytesAreOneEach)
{
    for (const char* const locale : {"C.UTF-8", "C"}) {
        Terminal terminal = console({}, {{"LC_ALL", locale}});
        ASSERT_TRUE(terminal.goesOnWith(prompt));
        terminal.type("\xC3\xA4\xF0\x9F\x93\xA1\x7F\xE2\x82\xAC\r");
        EXPECT_TRUE(terminal.goesOnWith("sdc: unknown command '\xC3\xA4\xE2\x82\xAC'")) << locale;
    }
}

TEST_F(ConsoleOnATerminal, whatIsNoTextDoesNoHarm)
{
    Terminal terminal = console();
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    terminal.type(std::string("ch\0an\xFF\xC3nel\0\r", 12));
    EXPECT_TRUE(terminal.goesOnWith("channel 1\r\n"));
    ASSERT_TRUE(terminal.goesOnWith(prompt)); // before it Ctrl-V is the terminal's own
    terminal.type("\x16\033[2J\r");           // Ctrl-V: the next as it is
    EXPECT_TRUE(terminal.goesOnWith("sdc: unknown command '\\x1B[2J'"));
}

TEST_F(ConsoleOnATerminal, veryLongLineIsAnError)
{
    Terminal terminal = console();
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    for (int piece = 0; piece < 50; ++piece) {
        terminal.type(std::string(100, 'x'));
        ASSERT_TRUE(terminal.goesOnWith("xxxxxxxxxx"));
    }
    terminal.type("\r");
    EXPECT_TRUE(terminal.goesOnWith("sdc: the line is too long; expected 4096 bytes at most\r\n"));
}

TEST_F(ConsoleOnATerminal, lineIsDrawnAnewWhereTheWindowHasChanged)
{
    Terminal terminal = console();
    ASSERT_TRUE(terminal.goesOnWith(prompt));
    terminal.type("get-stat");
    ASSERT_TRUE(terminal.goesOnWith("get-stat"));
    terminal.resize(40);
    EXPECT_TRUE(terminal.goesOnWith("sdc> get-stat"));
    terminal.resize(1);
    terminal.resize(0);
    terminal.resize(60);
    terminal.type("us\r");
    EXPECT_TRUE(terminal.goesOnWith("scan-not-started"));
}

} // namespace

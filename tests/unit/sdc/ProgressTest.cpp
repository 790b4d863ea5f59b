// The progress of a run in one line.

#include "apps/sdc/tty/Progress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using namespace std::chrono_literals;

using sdc::Progress;
using sdc::progressLine;
using sdc::ProgressState;

ProgressState half()
{
    ProgressState state;
    state.taken = 250;
    state.planned = 500;
    state.last = sdc::Sample{19164750, -3804, {}};
    state.left = 21s;
    return state;
}

TEST(ProgressLine, showsPartBarCountsTheLastSampleAndTheTimeLeft)
{
    EXPECT_EQ(
        progressLine(half(), 79, false), " 50 %  ########.........  250/500 samples  19164.750 MHz  -38.04 dBm  21 s left");
    ProgressState state = half();
    state.left.reset();
    EXPECT_EQ(
        progressLine(state, 79, false), " 50 %  ##############..............  250/500 samples  19164.750 MHz  -38.04 dBm");
}

TEST(ProgressLine, fillsTheColumnsWithABarOf60AtMost)
{
    for (const int columns : {72, 79, 100, 119}) {
        EXPECT_EQ(progressLine(half(), columns, false).size(), static_cast<std::size_t>(columns)) << columns;
    }
    EXPECT_EQ(progressLine(half(), 200, false), progressLine(half(), 125, false));
    EXPECT_EQ(std::ranges::count(progressLine(half(), 200, false), '#'), 30);
}

TEST(ProgressLine, leavesOutTheBarFirstThenWhatStandsFarthestRight)
{
    const std::string text = " 50 %  250/500 samples  19164.750 MHz  -38.04 dBm  21 s left";
    EXPECT_EQ(progressLine(half(), static_cast<int>(text.size()), false), text);
    EXPECT_EQ(
        progressLine(half(), static_cast<int>(text.size()) - 1, false), " 50 %  250/500 samples  19164.750 MHz  -38.04 dBm");
    EXPECT_EQ(progressLine(half(), 40, false), " 50 %  250/500 samples");
    EXPECT_EQ(progressLine(half(), 4, false), " 50 ");
    EXPECT_EQ(progressLine(half(), 0, false), "");
    EXPECT_EQ(progressLine(half(), -1, false), "");
}

TEST(ProgressLine, isNoWiderInColour)
{
    const std::string plain = progressLine(half(), 79, false);
    std::string colored = progressLine(half(), 79, true);
    EXPECT_THAT(colored, testing::HasSubstr("\033[36m########\033[0m........."));
    colored.erase(colored.find("\033[36m"), 5);
    colored.erase(colored.find("\033[0m"), 4);
    EXPECT_EQ(colored, plain);
}

TEST(ProgressLine, namesTheChannelWhereThereAreSeveralAndTheSweep)
{
    ProgressState state = half();
    state.channel = 2;
    state.sweep = 3;
    state.sweeps = 5;
    EXPECT_THAT(progressLine(state, 119, false),
        testing::HasSubstr("  channel 2 at 19164.750 MHz  -38.04 dBm  21 s left  sweep 3/5"));
    state.sweeps = 0;
    EXPECT_THAT(progressLine(state, 119, false), testing::EndsWith("  sweep 3"));
}

TEST(ProgressLine, tellsTheTimeLeftInWholeSecondsRoundedUp)
{
    ProgressState state = half();
    for (const auto& [left, text] : {std::pair{0ms, "  0 s left"}, {1ms, "  1 s left"}, {1000ms, "  1 s left"},
             {59001ms, "  1 min 0 s left"}, {20640000ms, "  5 h 44 min 0 s left"}}) {
        state.left = left;
        EXPECT_THAT(progressLine(state, 119, false), testing::EndsWith(text));
    }
}

TEST(ProgressLine, beforeTheFirstSampleHasNone)
{
    ProgressState state;
    state.planned = 13;
    EXPECT_EQ(progressLine(state, 40, false), "  0 %  ..................   0/13 samples");
    state.planned = 0; // nothing could be planned
    EXPECT_EQ(progressLine(state, 20, false), "  0 %  0/0 samples");
}

TEST(Progress, onATerminalWritesOverItsLineAndLeavesAColumnFree)
{
    std::ostringstream stream;
    int columns = 80;
    Progress progress(stream, {.isTerminal = true, .isColored = false, .columns = [&] { return columns; }});
    progress.show(half());
    const std::string line = "\r\033[K" + progressLine(half(), 79, false);
    EXPECT_EQ(stream.str(), line);
    progress.show(half());
    EXPECT_EQ(stream.str(), line); // it has not moved
    columns = 120;
    progress.show(half());
    EXPECT_EQ(stream.str(), line + "\r\033[K" + progressLine(half(), 119, false));
}

TEST(Progress, onATerminalIsTakenAwayOrLeftStanding)
{
    std::ostringstream stream;
    Progress progress(stream, {.isTerminal = true, .isColored = false, .columns = [] { return 80; }});
    progress.clear();
    progress.end();
    EXPECT_EQ(stream.str(), "");
    progress.show(half());
    stream.str("");
    progress.clear();
    progress.end();
    EXPECT_EQ(stream.str(), "\r\033[K");
    progress.show(half());
    stream.str("");
    progress.end();
    progress.end();
    EXPECT_EQ(stream.str(), "\n");
}

TEST(Progress, elsewhereIsALineForEachTenthAtMost)
{
    std::ostringstream stream;
    Progress progress(stream, {.isTerminal = false, .isColored = true, .columns = [] { return 20; }});
    ProgressState state = half();
    for (state.taken = 0; state.taken <= 500; ++state.taken) {
        progress.show(state);
        progress.show(state);
    }
    progress.end();
    const std::string text = stream.str();
    EXPECT_EQ(std::ranges::count(text, '\n'), 11);
    EXPECT_THAT(text, testing::StartsWith("progress     0 %    1/500 samples  19164.750 MHz  -38.04 dBm  21 s left\n"));
    EXPECT_THAT(text, testing::EndsWith("progress   100 %  500/500 samples  19164.750 MHz  -38.04 dBm  21 s left\n"));
    EXPECT_EQ(text.find('\033'), std::string::npos);
}

TEST(Progress, elsewhereComesEverMoreRarelyForSweepsWithoutEnd)
{
    std::ostringstream stream;
    Progress progress(stream, {.isTerminal = false, .isColored = false, .columns = [] { return 80; }});
    ProgressState state = half();
    state.sweeps = 0;
    state.taken = 0;
    for (state.sweep = 1; state.sweep <= 64; ++state.sweep) {
        state.taken += 10;
        state.planned = state.taken;
        progress.show(state);
    }
    EXPECT_EQ(std::ranges::count(stream.str(), '\n'), 7); // 1, 2, 4 ... 64 sweeps
}

} // namespace

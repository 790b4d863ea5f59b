#include "apps/sdc/plot/Gnuplot.h"

#include "tests/support/FakeGnuplot.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <string>

using namespace std::chrono_literals;
using sdc::runGnuplot;
using testing::HasSubstr;
using testing::StartsWith;
using tests::FakeGnuplot;
using tests::SearchPath;

namespace {

std::string failureOf(const std::string& program, std::chrono::milliseconds limit = sdc::longestDrawing)
{
    try {
        static_cast<void>(runGnuplot(program, limit));
        return "";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

/// One that has ended and waits for its parent, which may be anybody, does not run.
bool runs(const std::string& process)
{
    std::ifstream file("/proc/" + process + "/stat");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::size_t name = text.rfind(") ");
    return name != std::string::npos && text.at(name + 2) != 'Z';
}

} // namespace

TEST(Gnuplots, whatItWritesIsReturned)
{
    EXPECT_EQ(runGnuplot("set print '-'\nprint 'text'\n"), "text\n");
    EXPECT_EQ(runGnuplot(""), "");
}

TEST(Gnuplots, failureIsToldInItsOwnWordsOnOneLine)
{
    const std::string failure = failureOf("nonsense here\n");
    EXPECT_THAT(failure, StartsWith("gnuplot failed: "));
    EXPECT_THAT(failure, HasSubstr("invalid command"));
    EXPECT_EQ(failure.find('\n'), std::string::npos);
}

TEST(Gnuplots, wordsOfAFailureAreShownSoThatNoTerminalObeysThem)
{
    const std::string failure = failureOf("\"\033[2J\xC2\x9B" + std::string(10'000, 'x') + "\" nonsense\n");
    EXPECT_EQ(failure.find('\033'), std::string::npos);
    EXPECT_EQ(failure.find('\x9B'), std::string::npos);
    EXPECT_LT(failure.size(), 600U);
}

TEST(Gnuplots, deathBySignalIsTold)
{
    EXPECT_EQ(failureOf("system('kill -KILL $PPID')\n"), "gnuplot was ended by signal 9");
}

TEST(Gnuplots, oneThatIsStuckIsEnded)
{
    const FakeGnuplot stuck("exec sleep 1000");
    EXPECT_EQ(failureOf("", 0ms), "gnuplot was ended, because it took more than 0.0 s");
}

TEST(Gnuplots, oneThatIsStuckBehindItsPictureIsEnded)
{
    const FakeGnuplot stuck("exec sleep 1000 >&-");
    EXPECT_EQ(failureOf("", 100ms), "gnuplot was ended, because it took more than 0.1 s");
}

TEST(Gnuplots, whatItHasStartedEndsWithIt)
{
    const FakeGnuplot leaving("sleep 1000 >&- & echo $!");
    std::string child = runGnuplot("");
    child.pop_back();
    EXPECT_TRUE(tests::eventually([&] { return !runs(child); })) << child;
}

TEST(Gnuplots, itsWordsAreThoseOfThePortableLanguage)
{
    const FakeGnuplot telling("echo $LC_ALL $GNUTERM $@");
    EXPECT_EQ(runGnuplot(""), "C.UTF-8 dumb --default-settings\n");
}

TEST(Gnuplots, aBatchOfAnyLengthGoesInAndOut)
{
    const FakeGnuplot copying("exec cat");
    const std::string text(1'000'000, 'x');
    EXPECT_EQ(runGnuplot(text), text);
}

TEST(Gnuplots, oneThatIsNotThereIsFoundBefore)
{
    EXPECT_EQ(sdc::gnuplotObstacle(), "");
    const SearchPath path("/nonexistent:");
    EXPECT_EQ(sdc::gnuplotObstacle(),
        "a picture needs gnuplot, which is not there: install gnuplot-nox (a plot as text needs none)");
    EXPECT_EQ(failureOf(""), sdc::gnuplotObstacle());
}

TEST(Gnuplots, oneThatCannotBeStartedIsToldSo)
{
    const FakeGnuplot odd("", "/nonexistent");
    EXPECT_EQ(failureOf(""), "gnuplot failed: it cannot be started");
}

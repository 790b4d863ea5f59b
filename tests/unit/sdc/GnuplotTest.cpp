#include "apps/sdc/plot/Gnuplot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using sdc::runGnuplot;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

std::string failureOf(const std::string& program)
{
    try {
        static_cast<void>(runGnuplot(program));
        return "";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
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

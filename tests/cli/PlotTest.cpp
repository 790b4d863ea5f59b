// sdc plot: pictures of what has been scanned before.

#include "tests/cli/SdcFixture.h"
#include "tests/support/FakeGnuplot.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>

namespace {

using testing::HasSubstr;
using testing::Not;

class Plots : public Sdc {
protected:
    void SetUp() override
    {
        ASSERT_EQ(run("scan channel --quiet --json a.json --start-time 2026-01-02T03:04:05Z").status, 0);
    }

    /// One that has ended and waits for its parent, which may be anybody, does not run.
    bool runs(const std::string& process) const
    {
        const std::string text = read("/proc/" + process + "/stat");
        const std::size_t name = text.rfind(") ");
        return name != std::string::npos && text.at(name + 2) != 'Z';
    }
};

TEST_F(Plots, arePlainUnlessColourIsAskedFor)
{
    EXPECT_THAT(run("plot a.json").out, Not(HasSubstr("\033[")));
    EXPECT_THAT(run("plot a.json --color never").out, Not(HasSubstr("\033[")));
    EXPECT_THAT(run("plot a.json --color always", "NO_COLOR=1").out, HasSubstr("\033["));
    EXPECT_EQ(run("plot a.json --color always --output a.txt").status, 0);
    EXPECT_EQ(read("a.txt"), run("plot a.json").out);
}

TEST_F(Plots, endTheirGnuplotWhenTheyEnd)
{
    const tests::FakeGnuplot stuck("echo $$ >>process; exec sleep 1000");
    for (const int signal : {SIGTERM, SIGHUP, SIGINT, SIGQUIT, SIGKILL}) {
        SCOPED_TRACE(signal);
        std::filesystem::remove(folder / "process");
        RunningSdc plot(folder, {"plot", "a.json", "--output", "a.svg"});
        ASSERT_TRUE(tests::eventually([&] { return read("process").ends_with('\n'); }));
        std::string process = read("process");
        process.pop_back();
        EXPECT_TRUE(runs(process));
        plot.send(signal);
        EXPECT_EQ(plot.waitForExitStatus(), 128 + signal);
        EXPECT_TRUE(tests::eventually([&] { return !runs(process); }));
        EXPECT_FALSE(std::filesystem::exists(folder / "a.svg"));
    }
}

} // namespace

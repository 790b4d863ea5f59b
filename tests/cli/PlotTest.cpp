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

TEST_F(Plots, takeSeveralResults)
{
    run("scan channel --quiet --json b.json --repeat 2 --start-time 2026-01-03T03:04:05Z");
    const Outcome outcome = run("plot a.json b.json");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("\n* a.json, 2026-01-02 03:04:05 UTC\no b.json, 2026-01-03 03:04:05 UTC, 2 sweeps"));
    EXPECT_EQ(run("plot a.json - <b.json").status, 0);
    EXPECT_THAT(run("plot a.json - <b.json").out, HasSubstr("o standard input, 2026-01-03"));
}

TEST_F(Plots, showTheTraceChosen)
{
    run("scan channel --quiet --repeat 3 --trace min --json b.json --plot b.txt --start-time 2026-01-02T03:04:05Z");
    EXPECT_THAT(read("b.txt"), HasSubstr("\nv min hold   ^ max hold   * average power"));
    EXPECT_EQ(run("plot b.json --trace min").out, read("b.txt"));
    EXPECT_THAT(run("plot b.json").out, HasSubstr("\n^ max hold"));
    run("compare b.json b.json --trace average --plot both.txt");
    EXPECT_THAT(read("both.txt"), HasSubstr("3 sweeps, average power"));
}

TEST_F(Plots, tellWhatIsAskedAtMarksAndLimits)
{
    const std::string text = run("plot a.json --mark 19177.5 --mark 19180.750 --limit -35 --duplex -1010").out;
    EXPECT_THAT(text, HasSubstr("receives (RX) at 19177.500 MHz, transmits\n  (TX) at 18167.500 MHz, outside the plot\n"));
    EXPECT_THAT(text, HasSubstr("mark 1: 19177.500 MHz, level -34."));
    EXPECT_THAT(text, HasSubstr("mark 2: 19180.750 MHz, level -35.09 dBm\n"));
    EXPECT_THAT(text, HasSubstr("mark 2 - mark 1: 3.250 MHz, level -0."));
    EXPECT_THAT(text, HasSubstr("above -35.00 dBm: 19174.750 to 19178.750 MHz (-34.62 dBm)\n"));
}

TEST_F(Plots, showSweepsOneBelowTheOther)
{
    run("scan channel --quiet --repeat 5 --json b.json --waterfall b.txt --waterfall b.svg --start-time "
        "2026-01-02T03:04:05Z");
    EXPECT_THAT(read("b.txt"), HasSubstr("2026-01-02 03:04:05 UTC, 5 sweeps"));
    EXPECT_THAT(read("b.svg"), HasSubstr("<svg"));
    EXPECT_EQ(run("plot b.json --waterfall").out, read("b.txt"));
}

TEST_F(Plots, tellOfAllSweepsThoughTheyAreNotKept)
{
    run("scan channel --quiet --repeat 600 --waterfall b.txt --plot c.txt --start-time 2026-01-02T03:04:05Z");
    EXPECT_THAT(read("b.txt"), HasSubstr("2026-01-02 03:04:05 UTC, 600 sweeps"));
    EXPECT_THAT(read("b.txt"), HasSubstr("each row shows the strongest levels of "));
    EXPECT_THAT(read("c.txt"), HasSubstr("2026-01-02 03:04:05 UTC, 600 sweeps"));
    run("scan channel --quiet --repeat 600 --json b.json --plot d.txt --start-time 2026-01-02T03:04:05Z");
    EXPECT_EQ(read("c.txt"), read("d.txt"));
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

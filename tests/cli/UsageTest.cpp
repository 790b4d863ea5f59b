// Arguments: what is invalid, and in which words; help and version.

#include "tests/cli/SdcFixture.h"

#include <gmock/gmock.h>

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

using Usage = Sdc;

struct Row {
    const char* arguments;
    const char* said;
};

std::ostream& operator<<(std::ostream& stream, const Row& row)
{
    return stream << row.arguments;
}

class InvalidUsage : public Sdc, public testing::WithParamInterface<Row> {};

TEST_P(InvalidUsage, endsWithStatus2AndOneLineThatSaysWhatWouldBeRight)
{
    const Outcome outcome = run(GetParam().arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "sdc: " + std::string(GetParam().said) + "\n");
    EXPECT_THAT(outcome.out, IsEmpty());
}

constexpr Row commandRows[] = {
    {"scna", "unknown command 'sdc scna'; did you mean 'scan'?"},
    {"--verison", "unknown option '--verison'; did you mean '--version'?"},
    {"scenarios shw", "unknown command 'sdc scenarios shw'; did you mean 'show'?"},
    {"scenarios erase", "unknown command 'sdc scenarios erase'; expected one of list, show, check, replay"},
    {"scenarios", "'sdc scenarios' needs a command behind it; 'sdc scenarios --help' tells more"},
    {"scenarios show", "'sdc scenarios show' needs NAME behind it; 'sdc scenarios show --help' tells more"},
    {"scenarios check", "'sdc scenarios check' needs FILE behind it; 'sdc scenarios check --help' tells more"},
    {"scenarios list all", "unexpected word 'all'; 'sdc scenarios list --help' tells more"},
    {"scenarios list --nmaes", "unknown option '--nmaes'; did you mean '--names'?"},
    {"plan --quiet", "unknown option '--quiet'; it belongs to 'sdc scan'"},
    {"plan --trace-level 6", "unknown option '--trace-level'; it belongs to 'sdc scan', 'sdc console'"},
    {"scenarios --json",
        "unknown option '--json'; it belongs to 'sdc scan', 'sdc plan', 'sdc scenarios list', 'sdc compare'"},
    {"plan --bogus", "unknown option '--bogus'; 'sdc plan --help' tells more"},
    {"plan --json=no", "--json: takes no value; 'sdc plan --help' tells more"},
    {"plot", "'sdc plot' needs RESULT behind it; 'sdc plot --help' tells more"},
    {"plot a.json --output a.gif",
        "--output: 'a.gif' tells no kind of picture: let it end in .svg, .png or .txt, or write --format"},
    {"plot a.json --format gif", "--format: invalid kind of picture 'gif'; expected svg, png or text"},
    {"plot a.json --mark 13088.0001",
        "--mark: invalid frequency '13088.0001'; expected MHz with at most three decimals, such as 13088"},
    {"plot a.json --mark -1", "--mark: invalid frequency '-1'; expected MHz with at most three decimals, such as 13088"},
    {"plot a.json --mark 4294967.296",
        "--mark: invalid frequency '4294967.296'; expected MHz with at most three decimals, such as 13088"},
    {"plot a.json --limit -85.125",
        "--limit: invalid level '-85.125'; expected a number of dBm with at most two decimals, such as -85"},
    {"plot a.json --duplex 1e3",
        "--duplex: invalid duplex distance '1e3'; expected a number of MHz with at most three decimals, such as 1010 or "
        "-1010"},
    {"plot - -", "standard input holds one result; write - once"},
    {"plot 1 2 3 4 5 6 7 8 9", "9 results in one plot cannot be told apart; write at most 8"},
    {"plot a.json b.json --waterfall", "--waterfall draws one result; write one"},
    {"plot a.json --waterfall --limit -85", "--waterfall has no line for --limit; write one of them"},
    {"plot a.json --waterfall --trace max",
        "--waterfall shows each sweep, and --trace chooses of several; write one of them"},
    {"plot a.json --width 9", "--width: invalid size '9'; expected a number from 10 to 10000"},
    {"plot a.json --height 10001", "--height: invalid size '10001'; expected a number from 10 to 10000"},
    {"compare a.json", "'sdc compare' needs AFTER behind it; 'sdc compare --help' tells more"},
    {"compare a.json b.json --threshold -1", "--threshold: invalid level '-1'; expected 0 to 1000, such as 3"},
    {"compare a.json b.json --threshold 1e17", "--threshold: invalid level '1e17'; expected 0 to 1000, such as 3"},
};
INSTANTIATE_TEST_SUITE_P(Commands, InvalidUsage, testing::ValuesIn(commandRows));

constexpr Row scanRows[] = {
    {"scan", "'sdc scan' needs channel or sub-band behind it; 'sdc scan --help' tells more"},
    {"scan sideways", "invalid kind of scan 'sideways'; expected channel or sub-band"},
    {"scan chanel", "invalid kind of scan 'chanel'; expected channel or sub-band; did you mean 'channel'?"},
    {"scan channel twice", "unexpected word 'twice'; 'sdc scan --help' tells more"},
    {"scan channel --sped 3", "unknown option '--sped'; did you mean '--speed'?"},
    {"scan --sped 3 channel", "unknown option '--sped'; did you mean '--speed'?"},
    {"scan --sped=3 channel", "unknown option '--sped'; did you mean '--speed'?"},
    {"scan channel --mark 19177.5", "unknown option '--mark'; it belongs to 'sdc plot'"},
    {"scan channel --bogus", "unknown option '--bogus'; 'sdc scan --help' tells more"},
    {"scan channel -x", "unknown option '-x'; 'sdc scan --help' tells more"},
    {"scan channel --speed 0", "--speed: invalid speed '0'; expected real, max, or a factor above 0 such as 20"},
    {"scan channel --speed 2 --speed 3", "--speed: is given more than once; 'sdc scan --help' tells more"},
    {"scan channel --speed", "--speed: needs a value behind it; 'sdc scan --help' tells more"},
    {"scan channel --channel 1,1",
        "--channel: invalid list of channels '1,1'; expected all, or numbers such as 1, 1,3 or 1-8, each once"},
    {"scan channel --channel 3-1",
        "--channel: invalid list of channels '3-1'; expected all, or numbers such as 1, 1,3 or 1-8, each once"},
    {"scan channel --scenario 8-quad --channel 2-5",
        "--channel: scenario '8-quad' has no channel 5; it has channels 1, 2, 3, 4"},
    {"help scna", "unknown command 'sdc scna'; did you mean 'scan'?"},
    {"schema", "'sdc schema' needs DOCUMENT behind it; 'sdc schema --help' tells more"},
    {"schema result plan", "unexpected word 'plan'; 'sdc schema --help' tells more"},
    {"schema plam", "invalid document 'plam'; expected result, scenario, plan or compare; did you mean 'plan'?"},
    {"scenarios list --json --names", "--names excludes --json; 'sdc scenarios list --help' tells more"},
    {"console --scenario -", "--scenario: standard input is for the console's commands; expected a name or a file"},
    {"scan channel --scenario -", "standard input: is empty; must be a JSON object"},
    {"scan channel --channel 7", "--channel: scenario '18-f595' has no channel 7; it has channel 1"},
    {"scan channel --scenario 8-quad --channel 1,5",
        "--channel: scenario '8-quad' has no channel 5; it has channels 1, 2, 3, 4"},
    {"scan channel --repeat 0", "--repeat: invalid number of sweeps '0'; expected 1 or more, or forever"},
    {"scan channel --for 30m", "--for: invalid length of time '30m'; expected one such as 90s, 30min, 2h or 1h30min"},
    {"scan channel --every 0s", "--every: invalid length of time '0s'; expected one such as 90s, 30min, 2h or 1h30min"},
    {"scan channel --every 1min", "--every needs several sweeps; add --repeat or --for"},
    {"scan channel --trace maximum", "--trace: invalid trace 'maximum'; expected max, average or min"},
    {"scan channel --trace 8", "--trace: invalid trace '8'; expected max, average or min"},
    {"scan channel --trace-level 8", "--trace-level: invalid trace level '8'; expected 0 to 7"},
    {"console --trace 8", "--trace-level: invalid trace level '8'; expected 0 to 7"},
    {"scan channel --rows -1", "--rows: invalid number of rows '-1'; expected a number such as 50, or 0 for no limit"},
    {"scan channel --color red", "--color: invalid choice of colours 'red'; expected auto, always or never"},
    {"scan channel --quiet=1", "--quiet: takes no value; 'sdc scan --help' tells more"},
    {"scan channel --start-time today", "--start-time: invalid time 'today'; expected one such as 2026-01-02T03:04:05Z"},
    {"scan channel --csv", "--csv: needs a value behind it; 'sdc scan --help' tells more"},
    {"scan channel --csv ''", "--csv: the name of the file is empty: write a name, or - for standard output"},
    {"scan channel --csv --quiet",
        "--csv: '--quiet' looks like an option: write the name of a file (./--quiet if that is one)"},
    {"scan channel --csv - --json -", "--json: another output goes to standard output already: write the name of a file"},
    {"scan channel --plot a.gif", "--plot: 'a.gif' tells no kind of picture: let it end in .svg, .png or .txt"},
};
INSTANTIATE_TEST_SUITE_P(Scan, InvalidUsage, testing::ValuesIn(scanRows));

TEST_F(Usage, suggestsAScenario)
{
    for (const char* const command : {"scan channel", "plan"}) {
        const Outcome outcome = run(std::string(command) + " --scenario 18-f959");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.err, AllOf(StartsWith("sdc: 18-f959: "), HasSubstr("did you mean '18-f595'?")));
        EXPECT_EQ(lines(outcome.err).size(), 1U);
    }
}

TEST_F(Usage, saysVersionOnStandardOutput)
{
    const Outcome outcome = run("--version");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "sdc " SDC_VERSION "\n");
    EXPECT_THAT(outcome.err, IsEmpty());
}

TEST_F(Usage, helpFitsInto80Columns)
{
    const std::string help = run("--help").out;
    EXPECT_EQ(run("-h").out, help);
    for (const char* const command : {"", "scan ", "scan channel ", "plan ", "console ", "scenarios ", "scenarios list ",
             "scenarios show ", "scenarios check ", "scenarios replay ", "plot ", "compare ", "schema ", "help "}) {
        const Outcome outcome = run(command + std::string("--help"));
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.out, HasSubstr("Usage: sdc "));
        for (const std::string& line : lines(outcome.out)) {
            EXPECT_LE(line.size(), 80U) << line;
        }
    }
}

TEST_F(Usage, helpOfACommandIsItsOptionHelp)
{
    EXPECT_EQ(run("help").out, run("--help").out);
    for (const std::string command : {"scan", "scenarios", "scenarios replay", "help"}) {
        const Outcome outcome = run("help " + command);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.out, run(command + " --help").out);
    }
}

TEST_F(Usage, thatCannotBePrintedEndsWithStatus1)
{
    for (const char* const arguments :
        {"--help", "scan --help", "--version", "scenarios list", "plan", "scenarios show storm"}) {
        SCOPED_TRACE(arguments);
        const Outcome full = run(arguments, "", ">/dev/full");
        EXPECT_EQ(full.status, 1);
        EXPECT_THAT(full.err, StartsWith("sdc: cannot write to standard output"));
        EXPECT_EQ(run(arguments, "", ">&-").status, 1);
    }
}

} // namespace

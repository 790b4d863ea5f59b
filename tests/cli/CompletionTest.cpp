// What the shell completes.

#include "tests/cli/SdcFixture.h"

namespace {

struct Row {
    const char* words; ///< behind the program's name, the last to be completed
    const char* offered;
};

using Completion = Sdc;

TEST_F(Completion, offersCommandsOptionsAndTheirWords)
{
    for (const Row& row : {Row{"s", "scan scenarios"}, {"--v", "--version"}, {"scenarios ''", "list show check --help"},
             {"scan ''",
                 "channel sub-band --help --scenario --channel --speed --repeat --table --csv --json --sweep --plot --rows "
                 "--color --quiet --trace --start-time"},
             {"scan sub-band --s", "--scenario --speed --sweep --start-time"}, {"scan --quiet s", "sub-band"},
             {"scan --speed ''", "real max"}, {"scan --color a", "auto always"}, {"scan --repeat ''", "forever"},
             {"scan --start-time ''", ""}, {"plan --trace ''", ""}, {"console --trace ''", "0 1 5 6 7"},
             {"scan --csv a", "FILE"}, {"plan --scenario 18-f", "18-f595 FILE"}, {"scenarios show 18-f", "18-f595 FILE"},
             {"scenarios check a b sto", "storm FILE"}, {"plot --format ''", "svg png text"}, {"plot ''", "FILE"},
             {"plot a.json --o", "--output"}, {"compare a.json ''", "FILE"},
             {"compare a.json b.json ''", "--help --threshold"}, {"bogus ''", ""}}) {
        SCOPED_TRACE(row.words);
        const Outcome outcome = run(std::string("--complete ") + row.words);
        EXPECT_EQ(outcome.status, 0);
        std::string offered = outcome.out;
        std::ranges::replace(offered, '\n', ' ');
        EXPECT_EQ(offered, *row.offered == '\0' ? "" : row.offered + std::string(" "));
    }
}

TEST_F(Completion, isAskedForByTheShell)
{
    write("ask.sh",
        "source '" SDC_COMPLETION "'\ncompopt() { COMPREPLY+=(\"compopt $*\"); }\n"
        "COMP_WORDS=('" SDC_PROGRAM "' plan --scenario 18-f more)\nCOMP_CWORD=3\n_sdc\necho \"${COMPREPLY[*]}\"\n");
    EXPECT_EQ(std::system(("bash " + (folder / "ask.sh").string() + " >" + (folder / "out.txt").string()).c_str()), 0);
    EXPECT_EQ(read("out.txt"), "18-f595 compopt -o default\n");
}

} // namespace

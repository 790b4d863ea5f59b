// What the shell completes.

#include "tests/cli/SdcFixture.h"

#include <algorithm>
#include <utility>

namespace {

struct Row {
    const char* words; ///< behind the program's name, the last to be completed
    const char* offered;
};

using Completion = Sdc;

TEST_F(Completion, offersCommandsOptionsAndTheirWords)
{
    for (const Row& row :
        {Row{"s", "scan scenarios schema"}, {"--v", "--version"}, {"scenarios ''", "list show check replay --help"},
            {"scan ''",
                "channel sub-band --help --scenario --channel --speed --repeat --for --every --far-end --threshold "
                "--confidence --accuracy --table --csv --jsonl --json "
                "--sweep --holds --plot --waterfall --rows "
                "--color --quiet --trace --trace-level --start-time"},
            {"scan sub-band --s", "--scenario --speed --sweep --start-time"}, {"scan --quiet s", "sub-band"},
            {"scan --speed ''", "real max"}, {"scan --color a", "auto always"}, {"scan --repeat ''", "forever"},
            {"scan --start-time ''", ""}, {"plan --trace ''", ""}, {"console --trace ''", "0 1 5 6 7"},
            {"console --s", "--scenario --speed --stop-on-error"}, {"scan --trace ''", "max average min"},
            {"scan --csv a", "FILE"}, {"plan --scenario 18-f", "18-f595 FILE"}, {"scenarios show 18-f", "18-f595 FILE"},
            {"scenarios check a b sto", "storm FILE"}, {"plot --format ''", "svg png text"}, {"plot ''", "FILE"},
            {"plot a.json --o", "--output"}, {"compare a.json ''", "FILE"},
            {"compare a.json b.json ''", "--help --trace --threshold --json --plot"}, {"bogus ''", ""},
            {"help ''", "scan plan console scenarios plot compare schema help"}, {"help scenarios s", "show"},
            {"help scan ''", ""}, {"schema ''", "result scenario plan compare --help"},
            {"scan --speed=", "--speed=real --speed=max"}, {"scan --speed=m", "--speed=max"},
            {"plan --scenario=18-f", "--scenario=18-f595 FILE"}, {"scan --csv=a", "FILE"}, {"scan --quiet=", ""},
            {"scan --bogus=a", ""}, {"scan --speed=max s", "sub-band"}, {"scan --scenario=1 --speed ''", "real max"}}) {
        SCOPED_TRACE(row.words);
        const Outcome outcome = run(std::string("--complete ") + row.words);
        EXPECT_EQ(outcome.status, 0);
        std::string offered = outcome.out;
        std::ranges::replace(offered, '\n', ' ');
        EXPECT_EQ(offered, *row.offered == '\0' ? "" : row.offered + std::string(" "));
    }
}

/// What bash offers in a folder with a file, and a folder, whose names begin as a scenario's.
TEST_F(Completion, isAskedForByTheShell)
{
    write("18-mine.json", "");
    std::filesystem::create_directory(folder / "18-folder");
    for (const auto& [words, offered] : {std::pair("plan --scenario 18-f", "18-f595 18-folder filenames"),
             {"plan --scenario = 18-f", "18-f595 18-folder filenames"},
             {"plan --scenario=18-f", "--scenario=18-f595 --scenario=18-folder filenames"},
             {"plan --scenario 18-m", "18-mine.json filenames"}, {"scan --csv = 18-m", "18-mine.json filenames"},
             {"scan --speed = ''", "real max"}, {"scan --speed =", "real max"}, {"scan --qu", "--quiet"},
             {"''", "scan plan"}}) {
        SCOPED_TRACE(words);
        write("ask.sh",
            "source '" SDC_COMPLETION "'\ncompopt() { COMPREPLY+=(\"$2\"); }\n"
            "COMP_WORDS=('" SDC_PROGRAM "' "
                + std::string(words) + ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_sdc\necho \"${COMPREPLY[*]}\"\n");
        EXPECT_EQ(std::system(("cd " + folder.string() + " && bash ask.sh >out.txt").c_str()), 0);
        EXPECT_EQ(read("out.txt").substr(0, std::string(offered).size()), offered);
    }
}

} // namespace

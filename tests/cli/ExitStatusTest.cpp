// What the endings of the sweeps come to as the program's exit status.

#include "apps/sdc/ExitStatus.h"

#include <gtest/gtest.h>

namespace {

using sdc::Ending;

TEST(ExitStatus, followsFromTheEndingOfASweep)
{
    EXPECT_EQ(exitStatus(Ending::complete), 0);
    EXPECT_EQ(exitStatus(Ending::failed), 3);
    EXPECT_EQ(exitStatus(Ending::stopped), 4);
}

TEST(ExitStatus, ofSeveralSweepsIsFailedBeforeStoppedBeforeComplete)
{
    using enum sdc::ExitStatus;
    struct Row {
        sdc::ExitStatus left;
        sdc::ExitStatus right;
        sdc::ExitStatus worse;
    };
    for (const Row& row : {Row{EXIT_COMPLETE, EXIT_COMPLETE, EXIT_COMPLETE}, {EXIT_COMPLETE, EXIT_STOPPED, EXIT_STOPPED},
             {EXIT_COMPLETE, EXIT_FAILED, EXIT_FAILED}, {EXIT_STOPPED, EXIT_FAILED, EXIT_FAILED}}) {
        EXPECT_EQ(sdc::worse(row.left, row.right), row.worse) << row.left << ", " << row.right;
        EXPECT_EQ(sdc::worse(row.right, row.left), row.worse) << row.right << ", " << row.left;
    }
}

} // namespace

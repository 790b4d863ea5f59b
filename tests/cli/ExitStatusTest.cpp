// What decides the program's exit status once a scan has ended.

#include "apps/sdc/ExitStatus.h"

#include <gtest/gtest.h>

namespace {

using sdc::ScanOutcome;

constexpr ScanOutcome complete{
    .isStopped = false, .status = SDC_STATUS_CHANNEL_SCAN_FINISHED, .taken = 13, .planned = 13, .isReceiverBack = true};

TEST(ExitStatus, isCompleteOnlyForAWholeScanWithTheReceiverBack)
{
    EXPECT_EQ(exitStatus(complete), sdc::EXIT_COMPLETE);
    ScanOutcome subBand = complete;
    subBand.status = SDC_STATUS_SUB_BAND_SCAN_FINISHED;
    EXPECT_EQ(exitStatus(subBand), sdc::EXIT_COMPLETE);
}

TEST(ExitStatus, isFailedForAReceiverThatIsNotBackWhateverElse)
{
    for (const bool isStopped : {false, true}) {
        ScanOutcome outcome = complete;
        outcome.isReceiverBack = false;
        outcome.isStopped = isStopped;
        EXPECT_EQ(exitStatus(outcome), sdc::EXIT_FAILED);
    }
}

TEST(ExitStatus, isFailedForAScanThatIsNotFinishedOrNotWhole)
{
    for (const ESDCStatus status :
        {SDC_STATUS_SCAN_NOT_STARTED, SDC_STATUS_SUB_BAND_ONGOING, SDC_STATUS_CHANNEL_SCAN_ONGOING}) {
        ScanOutcome outcome = complete;
        outcome.status = status;
        EXPECT_EQ(exitStatus(outcome), sdc::EXIT_FAILED);
    }
    for (const std::int64_t taken : {0, 12, 14}) {
        ScanOutcome outcome = complete;
        outcome.taken = taken;
        EXPECT_EQ(exitStatus(outcome), sdc::EXIT_FAILED);
    }
}

TEST(ExitStatus, isStoppedForAScanThatWasStoppedAndPutTheReceiverBack)
{
    ScanOutcome outcome = complete;
    outcome.isStopped = true;
    outcome.status = SDC_STATUS_SCAN_NOT_STARTED;
    outcome.taken = 3;
    EXPECT_EQ(exitStatus(outcome), sdc::EXIT_STOPPED);
}

} // namespace

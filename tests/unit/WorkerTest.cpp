#include "tests/support/ControllerFixture.h"

namespace {

using support::ControllerFixture;

class Worker : public ControllerFixture {};

TEST_F(Worker, startCommandRunsExactlyOneSweepAndWaitsAgain)
{
    start();
    ASSERT_TRUE(waitForWaits(1));
    ASSERT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START));
    ASSERT_TRUE(waitForWaits(2));
    EXPECT_EQ(samples().size(), 14U);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
}

} // namespace

// The example for module authors does what it says.

#include "docs/examples/ModuleAuthor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace {

TEST(ModuleAuthor, seesTheSamplesThenTheFaultInTheTrace)
{
    std::ostringstream out;
    tryScans(out);
    EXPECT_THAT(out.str(), testing::StartsWith("19164750 kHz: -3"));
    EXPECT_THAT(out.str(), testing::HasSubstr("\n19188750 kHz: -3"));
    EXPECT_THAT(out.str(), testing::EndsWith("\nscan-not-started after 2 samples\nFailed to set RX frequency 18705000\n"));
}

} // namespace

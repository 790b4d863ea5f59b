// Names of interfaces: the two general forms, the forms of the peers, and what each does with channel 0.

#include "Platform/Host/IInterface.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"
#include "Platform/Radio/IRssiHandler.h"

#include "tests/support/GroupingLocale.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>

namespace {

/// Digit counts from one to ten, each power of ten and its neighbour, both halves of the range and the ends of it.
constexpr std::pair<std::uint32_t, const char*> channels[] = {{1, "1"}, {9, "9"}, {10, "10"}, {12, "12"}, {99, "99"},
    {100, "100"}, {999, "999"}, {1000, "1000"}, {1234567, "1234567"}, {999999999, "999999999"}, {1000000000, "1000000000"},
    {2147483647, "2147483647"}, {2147483648, "2147483648"}, {4294967295, "4294967295"}};

void expectNamesOfAllChannels()
{
    for (const auto& [number, digits] : channels) {
        SCOPED_TRACE(digits);
        const std::string suffix = std::string("_") + digits;
        const RadioChannel channel{number};
        EXPECT_EQ(IInterface::interfaceName("X", number), "X" + suffix);
        EXPECT_EQ(IInterface::interfaceName("X", channel), "X" + suffix);
        EXPECT_EQ(IRssiHandler::interfaceName(number), "IRssiHandler" + suffix);
        EXPECT_EQ(IFrequencyController::interfaceName(number), "IFrequencyController" + suffix);
        EXPECT_EQ(IRadio::interfaceName(number), "IRadio" + suffix);
        EXPECT_EQ(IRadioCapability::interfaceName(channel), "IRadioCapability" + suffix);
    }
}

TEST(Naming, appendsAnUnderscoreAndTheChannelInUnsignedDecimal)
{
    expectNamesOfAllChannels();
}

TEST(Naming, unsignedFormOfChannelZeroIsTheBarePrefix)
{
    EXPECT_EQ(IInterface::interfaceName("IFrameFormat", 0U), "IFrameFormat");
    EXPECT_EQ(IRssiHandler::interfaceName(0), "IRssiHandler");
    EXPECT_EQ(IFrequencyController::interfaceName(0), "IFrequencyController");
    EXPECT_EQ(IRadio::interfaceName(0), "IRadio");
}

TEST(Naming, radioChannelFormOfChannelZeroHasASuffixToo)
{
    EXPECT_EQ(IInterface::interfaceName("IFrameFormat", RadioChannel{0}), "IFrameFormat_0");
    EXPECT_EQ(IInterface::interfaceName("ISystemPowerController", RadioChannel{0}), "ISystemPowerController_0");
    EXPECT_EQ(IRadioCapability::interfaceName(RadioChannel{0}), "IRadioCapability_0");
}

TEST(Naming, emptyPrefixLeavesOnlyTheSuffix)
{
    EXPECT_EQ(IInterface::interfaceName("", 3U), "_3");
    EXPECT_EQ(IInterface::interfaceName("", RadioChannel{3}), "_3");
    EXPECT_EQ(IInterface::interfaceName("", 0U), "");
    EXPECT_EQ(IInterface::interfaceName("", RadioChannel{0}), "_0");
}

TEST(Naming, prefixIsTakenAsItStands)
{
    EXPECT_EQ(IInterface::interfaceName("_", 1U), "__1");
    EXPECT_EQ(IInterface::interfaceName("A 0", 0U), "A 0");
    EXPECT_EQ(IInterface::interfaceName(std::string("A\0B", 3), RadioChannel{1}), std::string("A\0B_1", 5));
    const std::string longPrefix(1000, 'x');
    EXPECT_EQ(IInterface::interfaceName(longPrefix, 4294967295U), longPrefix + "_4294967295");
}

TEST(Naming, digitGroupingOfTheGlobalLocaleChangesNoName)
{
    const tests::GroupingLocale grouping;
    ASSERT_EQ((std::ostringstream() << 1234567).str(), "1.234.567");
    expectNamesOfAllChannels();
}

/// decltype of an overloaded function does not compile.
TEST(Naming, peersWithANameOfTheirOwnHaveExactlyOne)
{
    using Unsigned = std::string (*)(unsigned int);
    static_assert(std::is_same_v<decltype(&IRssiHandler::interfaceName), Unsigned>);
    static_assert(std::is_same_v<decltype(&IFrequencyController::interfaceName), Unsigned>);
    static_assert(std::is_same_v<decltype(&IRadio::interfaceName), Unsigned>);
    static_assert(std::is_same_v<decltype(&IRadioCapability::interfaceName), std::string (*)(RadioChannel)>);
}

} // namespace

// What a host or a peer compiled elsewhere relies on without a symbol to tell it: places in tables of virtual functions,
// sizes and offsets. The controller's own interface and class are looked at in TypesTest and ControllerLayoutTest.

#include "tests/support/VirtualSlot.h"

#include "Platform/Host/DefaultSleepApi.h"
#include "Platform/Host/ModuleInterface.h"
#include "Platform/Host/PlxTrace.h"
#include "Platform/Radio/IFrameFormat.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"
#include "Platform/Radio/IRssiHandler.h"
#include "Platform/Radio/ISystemPowerController.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

namespace {

using support::slotsOfADestructor;
using support::virtualSlot;

TEST(BinaryInterface, operationsOfThePeersFollowTheirDestructors)
{
    EXPECT_EQ(virtualSlot(&IFrameFormat::getChannelSpacing), slotsOfADestructor);
    EXPECT_EQ(virtualSlot(&IFrequencyController::getRxFrequency), slotsOfADestructor);
    EXPECT_EQ(virtualSlot(&IFrequencyController::setRxFrequency), slotsOfADestructor + 1);
    EXPECT_EQ(virtualSlot(&IRssiHandler::readRssi), slotsOfADestructor);
    EXPECT_EQ(virtualSlot(&IRadioCapability::getFrequencyParameters), slotsOfADestructor);
    EXPECT_EQ(virtualSlot(&IRadio::createPropertiesProvider), slotsOfADestructor);
    EXPECT_EQ(virtualSlot(&IRadioPropertiesProvider::getProperties), slotsOfADestructor);
    EXPECT_EQ(virtualSlot(&IRadioPropertiesProvider::getUnitInfo), slotsOfADestructor + 1);
    EXPECT_EQ(virtualSlot(&Util::SleepApi::sleepMs), slotsOfADestructor);
}

TEST(BinaryInterface, peersAddNoDataToTheRootOfInterfaces)
{
    EXPECT_EQ(sizeof(ISystemPowerController), sizeof(IInterface));
    EXPECT_EQ(sizeof(IFrameFormat), sizeof(IInterface));
    EXPECT_EQ(sizeof(IFrequencyController), sizeof(IInterface));
    EXPECT_EQ(sizeof(IRssiHandler), sizeof(IInterface));
    EXPECT_EQ(sizeof(IRadioCapability), sizeof(IInterface));
    EXPECT_EQ(sizeof(IRadio), sizeof(IInterface));
    EXPECT_EQ(sizeof(IRadioPropertiesProvider), sizeof(void*));
    EXPECT_EQ(sizeof(Util::SleepApi), sizeof(void*));
}

TEST(BinaryInterface, frequencyParametersStandAtTheirWords)
{
    using Parameters = RadioFrequencyParameters;
    constexpr std::size_t word = sizeof(std::uint32_t);
    EXPECT_EQ(offsetof(Parameters, frequencyBand_GHz), 0 * word);
    EXPECT_EQ(offsetof(Parameters, transmitAndDuplex), 1 * word);
    EXPECT_EQ(offsetof(Parameters, txBaseFrequency_kHz), 7 * word);
    EXPECT_EQ(offsetof(Parameters, txStepLimits), 9 * word);
    EXPECT_EQ(alignof(Parameters), alignof(std::uint32_t));
    EXPECT_TRUE(std::is_trivially_copyable_v<Parameters>);
}

TEST(BinaryInterface, unitInfoHoldsOneText)
{
    EXPECT_EQ(sizeof(UnitInfo), sizeof(std::string));
}

/// The module base as a host lays it out.
struct ModuleModel {
    virtual ~ModuleModel() = default;
    void* registrator;
    std::uint32_t moduleId;
    std::string moduleName;
    std::uint32_t radioChannel;
    std::uint32_t options;
    const std::uint32_t* values;
    std::uint32_t nrOfValues;
};

class Module : public ModuleInterface {
public:
    Module()
        : ModuleInterface(1, "module", 2, 3, nullptr, 0)
    {
    }
};

TEST(BinaryInterface, moduleBaseHoldsItsRegistrationFirstAndThenWhatItWasConstructedWith)
{
    const Module module;
    const ModuleModel model{};
    const auto offset = [](const void* member, const void* object) {
        return static_cast<const std::byte*>(member) - static_cast<const std::byte*>(object);
    };
    EXPECT_EQ(sizeof(CModuleManagerRegistrator), sizeof(void*));
    EXPECT_EQ(sizeof(ModuleInterface), sizeof(ModuleModel));
    EXPECT_EQ(offset(&module.moduleName(), &module), offset(&model.moduleName, &model));
}

TEST(BinaryInterface, callbackPrioritiesAre32BitsAndKeepTheirValues)
{
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<ECallbackPriority>, std::uint32_t>));
    EXPECT_EQ(CALLBACK_PRIORITY_FIRST, 0U);
    EXPECT_EQ(CALLBACK_PRIORITY_NORMAL, 1U);
    EXPECT_EQ(CALLBACK_PRIORITY_LAST, 2U);
}

TEST(BinaryInterface, traceComponentIsOnePointer)
{
    EXPECT_EQ(sizeof(PlxTrace), sizeof(void*));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<PlxTraceLevel>, std::uint32_t>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<PlxTraceHdrOption>, std::uint32_t>));
}

TEST(BinaryInterface, traceHeaderIsFileLineFunction)
{
    constexpr std::size_t pointer = sizeof(const char*);
    EXPECT_EQ(offsetof(PlxTraceHeader, file), 0U);
    EXPECT_EQ(offsetof(PlxTraceHeader, line), pointer);
    EXPECT_EQ(offsetof(PlxTraceHeader, function), 2 * pointer);
    EXPECT_EQ(sizeof(PlxTraceHeader), 3 * pointer);
}

} // namespace

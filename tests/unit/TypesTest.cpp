// The value types of the interface, the interfaces themselves, and the records exchanged with peers.

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "Platform/Host/DefaultSleepApi.h"
#include "Platform/Host/thread_utilities.h"
#include "Platform/Radio/IFrameFormat.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"
#include "Platform/Radio/IRssiHandler.h"
#include "Platform/Radio/ISystemPowerController.h"

#include "tests/support/VirtualSlot.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace {

using support::virtualSlot;

constexpr std::uint32_t minusOne = 0xFFFFFFFF;

TEST(Command, hasTheListedValuesAndTexts)
{
    const struct {
        ESDCCommand command;
        std::uint32_t value;
        const char* text;
    } rows[] = {
        {SDC_CMD_CHANNEL_SCAN_START, 0, "channel-scan-start"},
        {SDC_CMD_SUB_BAND_SCAN_START, 1, "sub-band-scan-start"},
        {SDC_CMD_SCAN_STOP, 2, "scan-stop"},
        {SDC_CMD_GET_STATUS, 3, "get-status"},
        {SDC_CMD_GET_RESULT, 4, "get-result"},
        {SDC_CMD_GET_SCAN_PROPERTIES, 5, "get-scan-properties"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(std::uint32_t{row.command}, row.value);
        EXPECT_EQ(SDCCommand::toString(row.command), row.text);
    }
}

TEST(Command, anyOtherValueIsUnknown)
{
    for (const std::uint32_t value : {6U, 7U, 256U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFEU, minusOne}) {
        EXPECT_EQ(SDCCommand::toString(static_cast<ESDCCommand>(value)), "unknown") << value;
    }
}

TEST(Status, hasTheListedValuesAndTexts)
{
    const struct {
        ESDCStatus status;
        std::uint32_t value;
        const char* text;
    } rows[] = {
        {SDC_STATUS_SCAN_NOT_STARTED, 0, "scan-not-started"},
        {SDC_STATUS_SUB_BAND_ONGOING, 1, "sub-band-ongoing"},
        {SDC_STATUS_CHANNEL_SCAN_ONGOING, 2, "channel-scan-ongoing"},
        {SDC_STATUS_SUB_BAND_SCAN_FINISHED, 3, "sub-band-scan-finished"},
        {SDC_STATUS_CHANNEL_SCAN_FINISHED, 4, "channel-scan-finished"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(std::uint32_t{row.status}, row.value);
        EXPECT_EQ(SDCStatus::toString(row.status), row.text);
    }
}

TEST(Status, anyOtherValueIsUnknown)
{
    for (const std::uint32_t value : {5U, 6U, 256U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFEU, minusOne}) {
        EXPECT_EQ(SDCStatus::toString(static_cast<ESDCStatus>(value)), "unknown") << value;
    }
}

TEST(Types, enumerationsAreUnsignedNumbersOf32Bits)
{
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<ESDCCommand>, std::uint32_t>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<ESDCStatus>, std::uint32_t>));
}

TEST(Types, resultCodesAreSignedAndFailuresBeginAt32768)
{
    EXPECT_EQ(SDC_RC_OK, 0);
    EXPECT_EQ(SDC_RC_FAILED, 32768);
    EXPECT_EQ(SDC_RC_UNKNOWN_COMMAND, 32770);
    EXPECT_TRUE((std::is_same_v<decltype(SDC_RC_OK), const std::int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(SDC_RC_FAILED), const std::int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(SDC_RC_UNKNOWN_COMMAND), const std::int32_t>));
}

TEST(Types, threeSamplesAreSixWordsFrequencyFirst)
{
    using Words = std::array<std::uint32_t, 6>;
    using Samples = std::array<SDCResult, 3>;
    EXPECT_TRUE(std::is_trivially_copyable_v<SDCResult>);
    EXPECT_TRUE((std::is_same_v<decltype(SDCResult::frequency_kHz), std::uint32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(SDCResult::rssi), std::int32_t>));
    ASSERT_EQ(sizeof(SDCResult[3]), 24U);
    const Samples samples{{{1, -1}, {4294967295, -9970}, {3, 2147483647}}};
    EXPECT_EQ(std::bit_cast<Words>(samples), (Words{1, minusOne, minusOne, minusOne - 9969, 3, 0x7FFFFFFF}));
}

TEST(Types, propertiesAreFourBytesOfOneWordLongHaulLowest)
{
    ASSERT_EQ(sizeof(SDCProperties), 4U);
    EXPECT_TRUE(std::is_trivially_copyable_v<SDCProperties>);
    EXPECT_EQ(offsetof(SDCProperties, longHaul), 0U);
    EXPECT_EQ(offsetof(SDCProperties, extendedRxWait), 1U);
    EXPECT_EQ(offsetof(SDCProperties, slowRxWait), 2U);
    EXPECT_EQ(offsetof(SDCProperties, spareFlag), 3U);
    if constexpr (std::endian::native == std::endian::little) {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(SDCProperties{0x11, 0x22, 0x33, 0x44}), 0x44332211U);
    }
}

TEST(Types, propertiesBytesKeepEveryValue)
{
    SDCProperties properties{};
    properties.longHaul = 255;
    properties.extendedRxWait = 128;
    properties.slowRxWait = 2;
    properties.spareFlag = 77;
    EXPECT_EQ(std::bit_cast<std::uint32_t>(properties), std::bit_cast<std::uint32_t>(SDCProperties{255, 128, 2, 77}));
    EXPECT_EQ(int{properties.longHaul}, 255);
    EXPECT_EQ(int{properties.extendedRxWait}, 128);
    EXPECT_EQ(int{properties.slowRxWait}, 2);
    EXPECT_EQ(int{properties.spareFlag}, 77);
}

TEST(Interface, operationsHaveTheListedSignaturesAndArePureVirtual)
{
    using I = ISpectrumDiagnosticsController;
    EXPECT_TRUE((std::is_same_v<decltype(&I::setCommand), std::int32_t (I::*)(ESDCCommand, std::int32_t)>));
    EXPECT_TRUE((std::is_same_v<decltype(&I::getResult), std::int32_t (I::*)(std::int32_t*, SDCResult*)>));
    EXPECT_TRUE((std::is_same_v<decltype(&I::getStatus), ESDCStatus (I::*)()>));
    EXPECT_TRUE((std::is_same_v<decltype(&I::getProgress), std::int32_t (I::*)()>));
    EXPECT_TRUE((std::is_same_v<decltype(&I::getSpectrumDiagnosticsProperties), SDCProperties (I::*)()>));
    EXPECT_TRUE(std::is_abstract_v<I>);
}

// One operation each, on top of those of the base.

template <typename Base>
struct WithCommand : Base {
    std::int32_t setCommand(ESDCCommand, std::int32_t) override { return 0; }
};

template <typename Base>
struct WithResult : Base {
    std::int32_t getResult(std::int32_t*, SDCResult*) override { return 0; }
};

template <typename Base>
struct WithStatus : Base {
    ESDCStatus getStatus() override { return SDC_STATUS_SCAN_NOT_STARTED; }
};

template <typename Base>
struct WithProgress : Base {
    std::int32_t getProgress() override { return 0; }
};

template <typename Base>
struct WithProperties : Base {
    SDCProperties getSpectrumDiagnosticsProperties() override { return {}; }
};

TEST(Interface, eachOperationIsPureVirtual)
{
    using I = ISpectrumDiagnosticsController;
    EXPECT_TRUE((std::is_abstract_v<WithResult<WithStatus<WithProgress<WithProperties<I>>>>>));
    EXPECT_TRUE((std::is_abstract_v<WithCommand<WithStatus<WithProgress<WithProperties<I>>>>>));
    EXPECT_TRUE((std::is_abstract_v<WithCommand<WithResult<WithProgress<WithProperties<I>>>>>));
    EXPECT_TRUE((std::is_abstract_v<WithCommand<WithResult<WithStatus<WithProperties<I>>>>>));
    EXPECT_TRUE((std::is_abstract_v<WithCommand<WithResult<WithStatus<WithProgress<I>>>>>));
    EXPECT_FALSE((std::is_abstract_v<WithCommand<WithResult<WithStatus<WithProgress<WithProperties<I>>>>>>));
}

TEST(Interface, operationsAreDeclaredInTheListedOrderRightAfterTheDestructor)
{
    using I = ISpectrumDiagnosticsController;
    EXPECT_EQ(virtualSlot(&I::setCommand), support::slotsOfADestructor);
    EXPECT_EQ(virtualSlot(&I::getResult), support::slotsOfADestructor + 1);
    EXPECT_EQ(virtualSlot(&I::getStatus), support::slotsOfADestructor + 2);
    EXPECT_EQ(virtualSlot(&I::getProgress), support::slotsOfADestructor + 3);
    EXPECT_EQ(virtualSlot(&I::getSpectrumDiagnosticsProperties), support::slotsOfADestructor + 4);
}

TEST(Interface, rootHoldsOneStringAndTheControllersInterfaceAddsNoData)
{
    struct OneString {
        virtual ~OneString() = default;
        std::string text;
    };
    EXPECT_EQ(sizeof(IInterface), sizeof(OneString));
    EXPECT_EQ(sizeof(ISpectrumDiagnosticsController), sizeof(IInterface));
    EXPECT_TRUE((std::is_base_of_v<IInterface, ISpectrumDiagnosticsController>));
    EXPECT_TRUE(std::has_virtual_destructor_v<IInterface>);
}

TEST(Peers, allDeriveFromTheRootOfInterfaces)
{
    EXPECT_TRUE((std::is_convertible_v<ISystemPowerController*, IInterface*>));
    EXPECT_TRUE((std::is_convertible_v<IFrameFormat*, IInterface*>));
    EXPECT_TRUE((std::is_convertible_v<IFrequencyController*, IInterface*>));
    EXPECT_TRUE((std::is_convertible_v<IRssiHandler*, IInterface*>));
    EXPECT_TRUE((std::is_convertible_v<IRadioCapability*, IInterface*>));
    EXPECT_TRUE((std::is_convertible_v<IRadio*, IInterface*>));
    EXPECT_TRUE(std::has_virtual_destructor_v<IRadioPropertiesProvider>);
}

TEST(Peers, operationsHaveTheListedSignatures)
{
    using Provider = IRadioPropertiesProvider;
    using Tuner = IFrequencyController;
    using Owned = decltype(std::declval<IRadio&>().createPropertiesProvider());
    EXPECT_TRUE((std::is_same_v<Owned, std::unique_ptr<Provider>>));
    EXPECT_TRUE((std::is_same_v<decltype(&IFrameFormat::getChannelSpacing), std::uint32_t (IFrameFormat::*)()>));
    EXPECT_TRUE((std::is_same_v<decltype(&Tuner::getRxFrequency), std::uint32_t (Tuner::*)()>));
    EXPECT_TRUE((std::is_same_v<decltype(&Tuner::setRxFrequency), std::int32_t (Tuner::*)(std::uint32_t, bool)>));
    EXPECT_TRUE((std::is_same_v<decltype(&IRssiHandler::readRssi), std::int32_t (IRssiHandler::*)(std::int32_t&)>));
    EXPECT_TRUE((std::is_same_v<decltype(&IRadioCapability::getFrequencyParameters),
        RadioFrequencyParameters (IRadioCapability::*)()>));
    EXPECT_TRUE((std::is_same_v<decltype(&Provider::getUnitInfo), void (Provider::*)(UnitInfo&)>));
}

TEST(Peers, operationsOfOneInterfaceAreDeclaredInTheListedOrder)
{
    EXPECT_LT(virtualSlot(&IFrequencyController::getRxFrequency), virtualSlot(&IFrequencyController::setRxFrequency));
    EXPECT_LT(virtualSlot(&IRadioPropertiesProvider::getProperties), virtualSlot(&IRadioPropertiesProvider::getUnitInfo));
}

TEST(Peers, frequencyParametersAreThirteenWordsInTheListedPlaces)
{
    using Parameters = RadioFrequencyParameters;
    ASSERT_EQ(sizeof(Parameters), 13 * 4U);
    const auto parameters = std::bit_cast<Parameters>(
        std::array<std::uint32_t, 13>{100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112});
    EXPECT_EQ(parameters.frequencyBand_GHz, 100U);
    EXPECT_EQ(parameters.minRxFrequency_kHz, 104U);
    EXPECT_EQ(parameters.maxRxFrequency_kHz, 105U);
    EXPECT_EQ(parameters.frequencyStepSize_kHz, 106U);
    EXPECT_EQ(parameters.rxBaseFrequency_kHz, 108U);
    EXPECT_EQ(parameters.stepLimitLow, 111U);
    EXPECT_EQ(parameters.stepLimitHigh, 112U);
}

TEST(Peers, unitInfoBeginsWithTheTypeText)
{
    const UnitInfo unitInfo{"KLM6"};
    EXPECT_EQ(static_cast<const void*>(&unitInfo.typeText), static_cast<const void*>(&unitInfo));
    EXPECT_TRUE((std::is_same_v<decltype(UnitInfo::typeText), std::string>));
}

TEST(HostServices, sleepAndThreadNamingHaveTheListedSignatures)
{
    using Service = std::remove_reference_t<decltype(Util::DefaultSleepApi::get())>;
    EXPECT_TRUE((std::is_same_v<decltype(&Service::sleepMs), void (Service::*)(std::uint32_t)>));
    EXPECT_TRUE(
        (std::is_same_v<decltype(&os_extension::thread_utilities::setName), void (*)(std::thread&, const std::string&)>));
}

} // namespace

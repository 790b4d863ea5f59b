// What a host or another module compiled elsewhere relies on without a symbol to tell it, as far as the compiler can check
// it. The order of virtual functions and of members stands on record in tests/abi.

#include "Control/SpectrumDiagnosticsController/private/SpectrumDiagnosticsController.h"
#include "Platform/Host/DefaultSleepApi.h"
#include "Platform/Host/InterfaceBroker.h"
#include "Platform/Host/PlxTrace.h"
#include "Platform/Host/thread_utilities.h"
#include "Platform/Radio/IFrameFormat.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRadioCapability.h"
#include "Platform/Radio/IRssiHandler.h"
#include "Platform/Radio/ISystemPowerController.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <type_traits>

namespace {

using Controller = SpectrumDiagnosticsController;
using Interface = ISpectrumDiagnosticsController;

template <typename Type, typename... Others>
constexpr bool areAll = (std::is_same_v<Type, Others> && ...);

TEST(Layout, enumerationsAreUnsignedNumbersOf32Bits)
{
    static_assert(areAll<std::uint32_t, std::underlying_type_t<ESDCCommand>, std::underlying_type_t<ESDCStatus>,
        std::underlying_type_t<OduType>, std::underlying_type_t<Controller::State>, std::underlying_type_t<RadioChannel>,
        std::underlying_type_t<ECallbackPriority>, std::underlying_type_t<PlxTraceLevel>,
        std::underlying_type_t<PlxTraceHdrOption>>);
    static_assert(Controller::STATE_EXIT == 0 && Controller::STATE_IDLE == 1 && Controller::STATE_SCAN == 2
        && Controller::STATE_STOP == 3);
    static_assert(ODU_TYPE_QRU7_K == 0 && ODU_TYPE_4741 == 1 && ODU_TYPE_4742 == 2 && ODU_TYPE_4743 == 3 && ODU_TYPE_KLM == 4
        && ODU_TYPE_KLM5 == 5 && ODU_TYPE_KLM6 == 6 && ODU_TYPE_KLM6_P == 7 && ODU_TYPE_SDC == 8 && ODU_TYPE_UNKNOWN == 9);
    static_assert(CALLBACK_PRIORITY_FIRST == 0 && CALLBACK_PRIORITY_NORMAL == 1 && CALLBACK_PRIORITY_LAST == 2);
}

TEST(Layout, resultCodesAreSignedAndFailuresBeginAt32768)
{
    static_assert(
        areAll<const std::int32_t, decltype(SDC_RC_OK), decltype(SDC_RC_FAILED), decltype(SDC_RC_UNKNOWN_COMMAND)>);
    static_assert(SDC_RC_OK == 0 && SDC_RC_FAILED == 32768 && SDC_RC_UNKNOWN_COMMAND == 32770);
}

TEST(Layout, threeSamplesAreSixWordsFrequencyFirst)
{
    using Samples = std::array<SDCResult, 3>;
    using Words = std::array<std::uint32_t, 6>;
    static_assert(sizeof(SDCResult[3]) == 24 && std::is_trivially_copyable_v<SDCResult>);
    static_assert(
        areAll<std::uint32_t, decltype(SDCResult::frequency_kHz)> && areAll<std::int32_t, decltype(SDCResult::rssi)>);
    static_assert(std::bit_cast<Words>(Samples{{{1, -1}, {2, -9970}, {3, 4}}}) == Words{1, 0xFFFFFFFF, 2, 4294957326, 3, 4});
}

TEST(Layout, propertiesAreFourBytesOfOneWordLongHaulLowest)
{
    using Bytes = std::array<std::uint8_t, 4>;
    static_assert(sizeof(SDCProperties) == 4 && std::is_trivially_copyable_v<SDCProperties>);
    constexpr auto properties = std::bit_cast<SDCProperties>(Bytes{255, 128, 2, 77});
    static_assert(properties.longHaul == 255 && properties.extendedRxWait == 128 && properties.slowRxWait == 2
        && properties.spareFlag == 77);
    static_assert(sizeof(AtomicProperties) == 4
        && areAll<std::atomic<std::uint8_t>, decltype(AtomicProperties::longHaul),
            decltype(AtomicProperties::extendedRxWait), decltype(AtomicProperties::slowRxWait),
            decltype(AtomicProperties::spareFlag)>);
    static_assert(std::bit_cast<std::uint32_t>(SDCProperties{0x11, 0x22, 0x33, 0x44})
        == (std::endian::native == std::endian::little ? 0x44332211 : 0x11223344));
}

TEST(Layout, frequencyParametersAreThirteenWordsInTheListedPlaces)
{
    using Words = std::array<std::uint32_t, 13>;
    constexpr auto parameters = std::bit_cast<RadioFrequencyParameters>(Words{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    static_assert(parameters.frequencyBand_GHz == 0 && parameters.minRxFrequency_kHz == 4
        && parameters.maxRxFrequency_kHz == 5 && parameters.frequencyStepSize_kHz == 6 && parameters.rxBaseFrequency_kHz == 8
        && parameters.stepLimitLow == 11 && parameters.stepLimitHigh == 12);
}

TEST(Layout, unitInfoIsOneText)
{
    static_assert(areAll<std::string, decltype(UnitInfo::typeText)> && sizeof(UnitInfo) == sizeof(std::string));
}

TEST(Layout, traceComponentIsOnePointerAndItsHeaderFileLineFunction)
{
    static_assert(sizeof(PlxTrace) == sizeof(void*) && sizeof(PlxTraceHeader) == 3 * sizeof(void*));
    static_assert(offsetof(PlxTraceHeader, file) == 0 && offsetof(PlxTraceHeader, line) == sizeof(void*)
        && offsetof(PlxTraceHeader, function) == 2 * sizeof(void*));
}

TEST(Layout, interfacesHaveOneStringOfTheRootAndAddNoData)
{
    struct OneString {
        virtual ~OneString() = default;
        std::string text;
    };
    static_assert(sizeof(IInterface) == sizeof(OneString) && std::has_virtual_destructor_v<IInterface>);
    static_assert(sizeof(Interface) == sizeof(IInterface) && sizeof(ISystemPowerController) == sizeof(IInterface)
        && sizeof(IFrameFormat) == sizeof(IInterface) && sizeof(IFrequencyController) == sizeof(IInterface)
        && sizeof(IRssiHandler) == sizeof(IInterface) && sizeof(IRadioCapability) == sizeof(IInterface)
        && sizeof(IRadio) == sizeof(IInterface));
    static_assert(std::is_base_of_v<IInterface,
                      Interface> && std::is_base_of_v<IInterface, ISystemPowerController> && std::is_base_of_v<IInterface, IFrameFormat> && std::is_base_of_v<IInterface, IFrequencyController> && std::is_base_of_v<IInterface, IRssiHandler> && std::is_base_of_v<IInterface, IRadioCapability> && std::is_base_of_v<IInterface, IRadio>);
    static_assert(sizeof(IRadioPropertiesProvider) == sizeof(void*)
        && std::has_virtual_destructor_v<IRadioPropertiesProvider> && sizeof(Util::SleepApi) == sizeof(void*));
}

TEST(Layout, operationsHaveTheListedSignatures)
{
    using Provider = IRadioPropertiesProvider;
    using Tuner = IFrequencyController;
    static_assert(areAll<std::int32_t (Interface::*)(ESDCCommand, std::int32_t), decltype(&Interface::setCommand)>);
    static_assert(areAll<std::int32_t (Interface::*)(std::int32_t*, SDCResult*), decltype(&Interface::getResult)>);
    static_assert(areAll<ESDCStatus (Interface::*)(), decltype(&Interface::getStatus)>);
    static_assert(areAll<std::int32_t (Interface::*)(), decltype(&Interface::getProgress)>);
    static_assert(areAll<SDCProperties (Interface::*)(), decltype(&Interface::getSpectrumDiagnosticsProperties)>);
    static_assert(areAll<std::uint32_t (IFrameFormat::*)(), decltype(&IFrameFormat::getChannelSpacing)>);
    static_assert(areAll<std::uint32_t (Tuner::*)(), decltype(&Tuner::getRxFrequency)>);
    static_assert(areAll<std::int32_t (Tuner::*)(std::uint32_t, bool), decltype(&Tuner::setRxFrequency)>);
    static_assert(areAll<std::int32_t (IRssiHandler::*)(std::int32_t&), decltype(&IRssiHandler::readRssi)>);
    static_assert(
        areAll<RadioFrequencyParameters (IRadioCapability::*)(), decltype(&IRadioCapability::getFrequencyParameters)>);
    static_assert(areAll<std::unique_ptr<Provider> (IRadio::*)(), decltype(&IRadio::createPropertiesProvider)>);
    static_assert(areAll<std::int32_t (Provider::*)(SDCProperties&), decltype(&Provider::getProperties)>);
    static_assert(areAll<void (Provider::*)(UnitInfo&), decltype(&Provider::getUnitInfo)>);
    static_assert(areAll<void (Util::SleepApi::*)(std::uint32_t), decltype(&Util::SleepApi::sleepMs)>);
}

TEST(Layout, functionsOfTheHostHaveTheListedSignatures)
{
    using Header = const PlxTraceHeader&;
    using Entry = void (PlxTrace::*)(PlxTraceLevel, Header) const;
    using EntryWithText = void (PlxTrace::*)(PlxTraceLevel, Header, const std::string&) const;
    using Broker = InterfaceBroker;
    static_assert(std::is_constructible_v<PlxTrace, const char*, PlxTraceLevel, PlxTraceHdrOption>);
    static_assert(areAll<bool (PlxTrace::*)(PlxTraceLevel) const, decltype(&PlxTrace::isEnabled)>);
    static_assert(areAll<EntryWithText, decltype(&PlxTrace::logMsg)>);
    static_assert(areAll<Entry, decltype(static_cast<Entry>(&PlxTrace::logEnterMsg))>);
    static_assert(areAll<EntryWithText, decltype(static_cast<EntryWithText>(&PlxTrace::logEnterMsg))>);
    static_assert(areAll<Broker& (*)(), decltype(&Broker::getInstance)>);
    static_assert(areAll<std::int32_t (Broker::*)(const std::string&, IInterface*), decltype(&Broker::registerInterface)>);
    static_assert(areAll<std::int32_t (Broker::*)(const std::string&), decltype(&Broker::unregisterInterface)>);
    static_assert(areAll<const std::map<std::string, IInterface*>& (Broker::*)() const, decltype(&Broker::interfaces)>);
    static_assert(std::is_constructible_v<ModuleInterface, std::uint32_t, const std::string&, std::uint32_t, std::uint32_t,
        const std::uint32_t*, std::uint32_t>);
    static_assert(std::is_constructible_v<CModuleManagerRegistrator, ModuleInterface&>);
    static_assert(areAll<Util::SleepApi& (*)(), decltype(&Util::DefaultSleepApi::get)>);
    static_assert(areAll<void (*)(std::thread&, const std::string&), decltype(&os_extension::thread_utilities::setName)>);
}

/// The two words of a pointer to a virtual function are together one more than its place, in bytes.
TEST(Layout, sleepServiceHasItsTwoDestructorsFirstAndThenItsSleep)
{
    const auto sleepMs = &Util::SleepApi::sleepMs;
    std::array<std::size_t, 2> words{};
    static_assert(sizeof words == sizeof sleepMs && std::has_virtual_destructor_v<Util::SleepApi>);
    std::memcpy(words.data(), &sleepMs, sizeof words);
    EXPECT_EQ(words[0] + words[1], 2 * sizeof(void*) + 1);
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

TEST(Layout, eachOperationOfTheInterfaceIsPureVirtual)
{
    static_assert(std::is_abstract_v<WithResult<WithStatus<WithProgress<WithProperties<Interface>>>>>);
    static_assert(std::is_abstract_v<WithCommand<WithStatus<WithProgress<WithProperties<Interface>>>>>);
    static_assert(std::is_abstract_v<WithCommand<WithResult<WithProgress<WithProperties<Interface>>>>>);
    static_assert(std::is_abstract_v<WithCommand<WithResult<WithStatus<WithProperties<Interface>>>>>);
    static_assert(std::is_abstract_v<WithCommand<WithResult<WithStatus<WithProgress<Interface>>>>>);
    static_assert(!std::is_abstract_v<WithCommand<WithResult<WithStatus<WithProgress<WithProperties<Interface>>>>>>);
}

TEST(Layout, ofTheCallbacksTheControllerOverridesInitialisationAndStopOnly)
{
    using C = Controller;
    static_assert(areAll<unsigned int (ModuleInterface::*)(), decltype(&C::onModuleRegisterStorageObjects),
        decltype(&C::onPhaseModuleStorageObjectsRetrieved), decltype(&C::onPhasePostFrameformatLoad),
        decltype(&C::onPhaseEndFrameformatLoad), decltype(&C::onPhaseRestartTickScheduler),
        decltype(&C::onModuleRegisterImTi), decltype(&C::onWarmRestartWaitForHw), decltype(&C::onWarmRestartInit),
        decltype(&C::onWarmRestartWaitForSetInitCompleteRequest), decltype(&C::onPhaseStart),
        decltype(&C::onPhaseFrameformatLoad), decltype(&C::onPhasePreFrameformatLoad), decltype(&C::onPhaseSuppressErrors),
        decltype(&C::onPhaseSetRadioChannelNearEndFinished), decltype(&C::onPhasePreRadioRestartCold),
        decltype(&C::onPhasePreRadioRestartWarm), decltype(&C::onPhasePostRadioRestartCold),
        decltype(&C::onPhasePostRadioRestartWarm), decltype(&C::onPhaseDisableAlarmThread),
        decltype(&C::onPhasePreDspRecovery), decltype(&C::onPhaseDspRecoveryReloadFw),
        decltype(&C::onPhaseDspRecoveryReloadFf), decltype(&C::onPhaseDspRecoveryReconfig),
        decltype(&C::onPhasePostDspRecovery), decltype(&C::onPhaseEnableAlarmThread)>);
    static_assert(
        areAll<unsigned int (ModuleInterface::*)(unsigned int, ECallbackPriority), decltype(&C::onPhaseActivation)>);
    static_assert(areAll<unsigned int (C::*)(), decltype(&C::onModuleInit), decltype(&C::onPhaseStop)>);
}

TEST(Layout, controllerIsAModuleAndAnInterfaceAndIsNotCopied)
{
    static_assert(std::is_base_of_v<ModuleInterface, Controller> && std::is_base_of_v<Interface, Controller>);
    static_assert(std::is_constructible_v<Controller, RadioChannel> && std::has_virtual_destructor_v<Controller>);
    static_assert(!std::is_copy_constructible_v<Controller> && !std::is_copy_assignable_v<Controller>);
}

} // namespace

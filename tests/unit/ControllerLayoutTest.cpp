// The controller's class as the host and other modules are compiled against it: bases, virtual operations, members.

#include "tests/support/ControllerFixture.h"
#include "tests/support/VirtualSlot.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

using support::virtualSlot;
using Controller = SpectrumDiagnosticsController;
using Interface = ISpectrumDiagnosticsController;

class ControllerLayout : public support::ControllerFixture {};

TEST_F(ControllerLayout, membersAreDeclaredInTheListedOrder)
{
    construct(7);
    const ControllerInspector is = inspect();
    const void* const members[] = {&is.m_radioChannelId(), &is.m_systemPowerController(), &is.m_frameFormat(),
        &is.m_frequencyController(), &is.m_rssiHandler(), &is.m_radio(), &is.m_radioCapability(), &is.m_propertiesProvider(),
        &is.m_mutex(), &is.m_condition(), &is.m_state(), &is.m_thread(), &is.m_threadName(), &is.m_status(), &is.m_command(),
        &is.m_channelSpacing_kHz(), &is.m_currentRxFrequency_kHz(), &is.m_minRxFrequency_kHz(), &is.m_maxRxFrequency_kHz(),
        &is.m_rxBaseFrequency_kHz(), &is.m_frequencyBand_GHz(), &is.m_frequencyStepSize_kHz(), &is.m_stepLimitLow(),
        &is.m_stepLimitHigh(), &is.m_scanStep_kHz(), &is.m_frequencyMargin_kHz(), &is.m_scanLowestRxFrequency_kHz(),
        &is.m_scanHighestRxFrequency_kHz(), &is.m_results(), &is.m_setRxWait_ms(), &is.m_firstSetRxWait_ms(),
        &is.m_progress(), &is.m_nrOfSamplesDone(), &is.m_totalNrOfSamples(), &is.m_properties()};
    EXPECT_TRUE(std::is_sorted(std::begin(members), std::end(members), std::less<>{}));
    EXPECT_LT(static_cast<const void*>(static_cast<Interface*>(controller.get())), members[0]);
}

template <typename Type, typename... Members>
constexpr bool areAll(const Members&...)
{
    return (std::is_same_v<Members, Type> && ...);
}

TEST_F(ControllerLayout, membersHaveTheListedTypes)
{
    construct(7);
    const ControllerInspector is = inspect();
    EXPECT_TRUE(areAll<std::uint32_t>(is.m_radioChannelId(), is.m_channelSpacing_kHz(), is.m_currentRxFrequency_kHz(),
        is.m_minRxFrequency_kHz(), is.m_maxRxFrequency_kHz(), is.m_rxBaseFrequency_kHz(), is.m_frequencyBand_GHz(),
        is.m_frequencyStepSize_kHz(), is.m_stepLimitLow(), is.m_stepLimitHigh(), is.m_scanStep_kHz(),
        is.m_frequencyMargin_kHz(), is.m_scanLowestRxFrequency_kHz(), is.m_scanHighestRxFrequency_kHz(), is.m_setRxWait_ms(),
        is.m_firstSetRxWait_ms()));
    EXPECT_TRUE(areAll<std::int32_t>(is.m_nrOfSamplesDone(), is.m_totalNrOfSamples()));
    EXPECT_TRUE(areAll<std::atomic<std::int32_t>>(is.m_progress()));
    EXPECT_TRUE(areAll<std::atomic<Controller::State>>(is.m_state()));
    EXPECT_TRUE(areAll<std::atomic<ESDCStatus>>(is.m_status()));
    EXPECT_TRUE(areAll<std::atomic<ESDCCommand>>(is.m_command()));
    EXPECT_EQ(sizeof is.m_state() + sizeof is.m_status() + sizeof is.m_command() + sizeof is.m_progress(), 4 * 4U);
    EXPECT_EQ(sizeof is.m_properties(), 4U);
    EXPECT_TRUE(areAll<std::atomic<std::uint8_t>>(is.m_properties().longHaul, is.m_properties().extendedRxWait,
        is.m_properties().slowRxWait, is.m_properties().spareFlag));
    EXPECT_TRUE(areAll<std::unique_ptr<IRadioPropertiesProvider>>(is.m_propertiesProvider()));
    EXPECT_TRUE(areAll<std::vector<SDCResult>>(is.m_results()));
    EXPECT_TRUE(areAll<std::mutex>(is.m_mutex()));
    EXPECT_TRUE(areAll<std::condition_variable>(is.m_condition()));
    EXPECT_TRUE(areAll<std::thread>(is.m_thread()));
    EXPECT_TRUE(areAll<std::string>(is.m_threadName()));
}

TEST_F(ControllerLayout, stringOfTheInterfaceRootStaysEmpty)
{
    start(7);
    ASSERT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START));
    const IInterface* const root = static_cast<Interface*>(controller.get());
    const char* const afterTheTable = reinterpret_cast<const char*>(root) + sizeof(void*); // the root's one member
    EXPECT_EQ(*reinterpret_cast<const std::string*>(afterTheTable), "");
}

TEST_F(ControllerLayout, moduleBaseIsTheFirstAndTheInterfaceTheSecond)
{
    construct(7);
    const auto address = [](const void* base) { return reinterpret_cast<std::uintptr_t>(base); };
    EXPECT_EQ(address(static_cast<ModuleInterface*>(controller.get())), address(controller.get()));
    EXPECT_EQ(address(static_cast<Interface*>(controller.get())), address(controller.get()) + sizeof(ModuleInterface));
}

TEST_F(ControllerLayout, constructorTakesTheChannelByValueAndDestructorIsVirtual)
{
    EXPECT_TRUE((std::is_constructible_v<Controller, RadioChannel>));
    EXPECT_TRUE(std::has_virtual_destructor_v<Controller>);
    EXPECT_FALSE(std::is_copy_constructible_v<Controller>);
    EXPECT_FALSE(std::is_copy_assignable_v<Controller>);
}

/// One phase callback: its slot in the host's table, and whether the controller declares one of its own.
struct CallbackRow {
    const char* name;
    std::size_t slot;
    bool isOverridden;
};

// clang-format off
#define CALLBACK_ROW(name)                                                                                                  \
    CallbackRow{#name, virtualSlot(&ModuleInterface::name),                                                                 \
        !std::is_same_v<decltype(&Controller::name), decltype(&ModuleInterface::name)>}
// clang-format on

TEST_F(ControllerLayout, callbacksOfTheModuleBaseStandInTheListedOrderAndOnlyTwoAreOverridden)
{
    const CallbackRow rows[] = {CALLBACK_ROW(onPhaseActivation), CALLBACK_ROW(onModuleRegisterStorageObjects),
        CALLBACK_ROW(onModuleInit), CALLBACK_ROW(onPhaseModuleStorageObjectsRetrieved),
        CALLBACK_ROW(onPhasePostFrameformatLoad), CALLBACK_ROW(onPhaseEndFrameformatLoad),
        CALLBACK_ROW(onPhaseRestartTickScheduler), CALLBACK_ROW(onModuleRegisterImTi), CALLBACK_ROW(onWarmRestartWaitForHw),
        CALLBACK_ROW(onWarmRestartInit), CALLBACK_ROW(onWarmRestartWaitForSetInitCompleteRequest),
        CALLBACK_ROW(onPhaseStart), CALLBACK_ROW(onPhaseStop), CALLBACK_ROW(onPhaseFrameformatLoad),
        CALLBACK_ROW(onPhasePreFrameformatLoad), CALLBACK_ROW(onPhaseSuppressErrors),
        CALLBACK_ROW(onPhaseSetRadioChannelNearEndFinished), CALLBACK_ROW(onPhasePreRadioRestartCold),
        CALLBACK_ROW(onPhasePreRadioRestartWarm), CALLBACK_ROW(onPhasePostRadioRestartCold),
        CALLBACK_ROW(onPhasePostRadioRestartWarm), CALLBACK_ROW(onPhaseDisableAlarmThread),
        CALLBACK_ROW(onPhasePreDspRecovery), CALLBACK_ROW(onPhaseDspRecoveryReloadFw),
        CALLBACK_ROW(onPhaseDspRecoveryReloadFf), CALLBACK_ROW(onPhaseDspRecoveryReconfig),
        CALLBACK_ROW(onPhasePostDspRecovery), CALLBACK_ROW(onPhaseEnableAlarmThread)};
    ASSERT_EQ(std::size(rows), 28U);
    for (std::size_t index = 0; index < std::size(rows); ++index) {
        SCOPED_TRACE(rows[index].name);
        EXPECT_EQ(rows[index].slot, support::slotsOfADestructor + index);
        EXPECT_EQ(rows[index].isOverridden, index == 2 || index == 12);
    }
    EXPECT_EQ(virtualSlot(&Controller::onModuleInit), support::slotsOfADestructor + 2);
    EXPECT_EQ(virtualSlot(&Controller::onPhaseStop), support::slotsOfADestructor + 12);
}

TEST_F(ControllerLayout, interfaceOperationsFollowTheCallbacksInTheListedOrder)
{
    constexpr std::size_t afterCallbacks = support::slotsOfADestructor + 28;
    EXPECT_EQ(virtualSlot(&Controller::setCommand), afterCallbacks);
    EXPECT_EQ(virtualSlot(&Controller::getResult), afterCallbacks + 1);
    EXPECT_EQ(virtualSlot(&Controller::getStatus), afterCallbacks + 2);
    EXPECT_EQ(virtualSlot(&Controller::getProgress), afterCallbacks + 3);
    EXPECT_EQ(virtualSlot(&Controller::getSpectrumDiagnosticsProperties), afterCallbacks + 4);
    EXPECT_EQ(virtualSlot(&Controller::initialize), support::noSlot);
}

#if !defined(__has_feature)
#define __has_feature(feature) 0
#endif
#if !__has_feature(address_sanitizer) // of clang counts the zone behind a table as part of it
/// The size of a class's table of virtual functions, from the symbol of the table that one of its objects points to.
std::size_t sizeOfVirtualTable(const void* object)
{
    const void* table = nullptr;
    std::memcpy(&table, object, sizeof table);
    Dl_info info{};
    void* extra = nullptr;
    if (dladdr1(table, &info, &extra, RTLD_DL_SYMENT) == 0 || extra == nullptr) {
        return 0;
    }
    return static_cast<const ElfW(Sym)*>(extra)->st_size;
}

TEST_F(ControllerLayout, noOtherMemberFunctionIsVirtual)
{
    construct(7);
    constexpr std::size_t head = 2; // offset to the top, type information
    constexpr std::size_t primary = head + support::slotsOfADestructor + 28 + 5;
    constexpr std::size_t ofTheInterface = head + support::slotsOfADestructor + 5;
    EXPECT_EQ(sizeOfVirtualTable(controller.get()), (primary + ofTheInterface) * sizeof(void*));
}
#endif

TEST_F(ControllerLayout, stateIsA32BitEnumerationWithTheListedValues)
{
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<Controller::State>, std::uint32_t>));
    EXPECT_EQ(Controller::STATE_EXIT, 0U);
    EXPECT_EQ(Controller::STATE_IDLE, 1U);
    EXPECT_EQ(Controller::STATE_SCAN, 2U);
    EXPECT_EQ(Controller::STATE_STOP, 3U);
}

} // namespace

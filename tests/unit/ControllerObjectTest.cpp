// The controller object: construction, registration, layout, defaults, the worker state's accessors, end of life.

#include "tests/support/ControllerFixture.h"
#include "tests/support/VirtualSlot.h"

#include "Platform/Host/InterfaceBroker.h"
#include "simulator/host/ModuleManager.h"

#include <gmock/gmock.h>

#include <dlfcn.h>
#include <link.h>

#include <bit>
#include <cstddef>
#include <cstring>
#include <new>
#include <stdexcept>
#include <thread>
#include <type_traits>

namespace {

using support::CallLog;
using support::virtualSlot;
using testing::ElementsAre;
using testing::IsEmpty;
using Controller = SpectrumDiagnosticsController;
using Interface = ISpectrumDiagnosticsController;

class ControllerObject : public support::ControllerFixture {
protected:
    static const std::map<std::string, IInterface*>& broker() { return InterfaceBroker::getInstance().interfaces(); }

    /// A controller without any peers.
    void constructAlone(std::uint32_t channel) { controller = std::make_unique<Controller>(RadioChannel{channel}); }
};

/// Memory in which nothing is zero by chance.
class PaintedController {
public:
    PaintedController()
    {
        std::memset(m_memory, 0xA5, sizeof m_memory);
        m_controller = new (m_memory) Controller(RadioChannel{7});
    }
    ~PaintedController() { m_controller->~SpectrumDiagnosticsController(); }
    PaintedController(const PaintedController&) = delete;
    PaintedController& operator=(const PaintedController&) = delete;

    ControllerInspector inspect() const { return ControllerInspector(*m_controller); }

private:
    alignas(Controller) unsigned char m_memory[sizeof(Controller)];
    Controller* m_controller;
};

struct IdentityRow {
    std::uint32_t channel;
    std::uint32_t moduleId;
    const char* name;
};

constexpr IdentityRow identities[] = {
    {0, 126000, "ISpectrumDiagnosticsController_0"},
    {7, 126007, "ISpectrumDiagnosticsController_7"},
    {12, 126012, "ISpectrumDiagnosticsController_12"},
    {2147483647, 2147609647, "ISpectrumDiagnosticsController_2147483647"},
    {2147483648, 2147609648, "ISpectrumDiagnosticsController_2147483648"},
    {4294841295, 4294967295, "ISpectrumDiagnosticsController_4294841295"},
    {4294841296, 0, "ISpectrumDiagnosticsController_4294841296"},
    {4294967295, 125999, "ISpectrumDiagnosticsController_4294967295"},
};

TEST_F(ControllerObject, traceComponentOfTheLibraryExistsWithItsDefaults)
{
    std::vector<simulator::TraceComponentInfo> own = simulator::trace::components();
    std::erase_if(own, [](const simulator::TraceComponentInfo& info) { return !info.name.starts_with("ZRP"); });
    ASSERT_EQ(own.size(), 1U);
    EXPECT_EQ(own[0].name, "ZRP.SDC");
    EXPECT_EQ(own[0].defaultLevel, 3U);
    EXPECT_EQ(own[0].hdrOption, 256U);
}

TEST_F(ControllerObject, givesTheModuleBaseItsIdentity)
{
    for (const IdentityRow& row : identities) {
        SCOPED_TRACE(row.channel);
        constructAlone(row.channel);
        EXPECT_EQ(controller->moduleId(), row.moduleId);
        EXPECT_EQ(controller->moduleName(), row.name);
        EXPECT_EQ(controller->radioChannel(), row.channel);
        EXPECT_EQ(controller->options(), 0U);
        ASSERT_EQ(controller->nrOfValues(), 2U);
        EXPECT_EQ(controller->values()[0], 11U);
        EXPECT_EQ(controller->values()[1], 16U);
        destroy();
    }
}

TEST_F(ControllerObject, valuesOfTheModuleBaseAreOneStaticArray)
{
    const Controller first(RadioChannel{1});
    const Controller second(RadioChannel{2});
    EXPECT_EQ(first.values(), second.values());
}

TEST_F(ControllerObject, constructionRegistersTheModuleThenTracesThenPublishesTheInterface)
{
    for (const IdentityRow& row : identities) {
        log.clear();
        constructAlone(row.channel);
        EXPECT_THAT(log.calls(),
            ElementsAre("module.register",
                "enter 6 SpectrumDiagnosticsController: m_radioChannelId=" + std::to_string(row.channel),
                "broker.getInstance", std::string("broker.register ") + row.name));
        destroy();
    }
}

TEST_F(ControllerObject, constructionPublishesTheInterfaceBaseUnderTheModuleName)
{
    for (const IdentityRow& row : identities) {
        SCOPED_TRACE(row.channel);
        constructAlone(row.channel);
        ASSERT_THAT(broker(), ElementsAre(testing::Key(row.name)));
        EXPECT_EQ(broker().at(row.name), static_cast<IInterface*>(static_cast<Interface*>(controller.get())));
        EXPECT_THAT(simulator::ModuleManager::instance().modules(), ElementsAre(controller.get()));
        destroy();
        EXPECT_THAT(broker(), IsEmpty());
        EXPECT_THAT(simulator::ModuleManager::instance().modules(), IsEmpty());
    }
}

TEST_F(ControllerObject, resultOfTheRegistrationIsNotExamined)
{
    support::FakeSystemPowerController other;
    InterfaceBroker::getInstance().registerInterface("ISpectrumDiagnosticsController_7", &other);
    EXPECT_NO_THROW(constructAlone(7));
    EXPECT_EQ(broker().at("ISpectrumDiagnosticsController_7"), &other);
    destroy();
    EXPECT_THAT(broker(), IsEmpty());
}

TEST_F(ControllerObject, constructionLooksUpNoPeerAndStartsNoThread)
{
    construct(7);
    EXPECT_EQ(log.count("broker.interfaces"), 0U);
    EXPECT_FALSE(inspect().m_thread().joinable());
    EXPECT_THAT(log.callsStartingWith("thread."), IsEmpty());
}

TEST_F(ControllerObject, exceptionOutOfTheRegistrationLeavesNothingBehind)
{
    onHostEvent = [](const std::string& event) {
        if (event.starts_with("broker.register")) {
            throw std::runtime_error("broker is full");
        }
    };
    EXPECT_THROW(constructAlone(7), std::runtime_error);
    onHostEvent = nullptr;
    EXPECT_THAT(log.calls(),
        ElementsAre("module.register", "enter 6 SpectrumDiagnosticsController: m_radioChannelId=7", "broker.getInstance",
            "broker.register ISpectrumDiagnosticsController_7", "module.unregister"));
    EXPECT_THAT(broker(), IsEmpty());
    EXPECT_THAT(simulator::ModuleManager::instance().modules(), IsEmpty());
}

TEST_F(ControllerObject, exceptionOutOfTheEntryRecordLeavesNothingBehind)
{
    traceIntoLog.onWrite = [](const simulator::TraceRecord&) { throw std::runtime_error("no room"); };
    EXPECT_THROW(constructAlone(7), std::runtime_error);
    EXPECT_THAT(log.calls(),
        ElementsAre("module.register", "enter 6 SpectrumDiagnosticsController: m_radioChannelId=7", "module.unregister"));
    EXPECT_THAT(broker(), IsEmpty());
}

TEST_F(ControllerObject, exceptionOutOfTheModuleRegistrationReachesTheHost)
{
    onHostEvent = [](const std::string& event) {
        if (event == "module.register") {
            throw std::runtime_error("no more modules");
        }
    };
    EXPECT_THROW(constructAlone(7), std::runtime_error);
    EXPECT_THAT(log.calls(), ElementsAre("module.register"));
}

TEST_F(ControllerObject, constructionEntryRecordNeedsLevel6)
{
    setTraceLevel(5);
    constructAlone(7);
    EXPECT_THAT(log.calls(),
        ElementsAre("module.register", "broker.getInstance", "broker.register ISpectrumDiagnosticsController_7"));
    EXPECT_EQ(controller->moduleName(), "ISpectrumDiagnosticsController_7");
}

TEST_F(ControllerObject, peersProviderAndNameAreEmptyAfterConstruction)
{
    const PaintedController painted;
    const ControllerInspector is = painted.inspect();
    EXPECT_EQ(is.m_radioChannelId(), 7U);
    EXPECT_EQ(is.m_systemPowerController(), nullptr);
    EXPECT_EQ(is.m_frameFormat(), nullptr);
    EXPECT_EQ(is.m_frequencyController(), nullptr);
    EXPECT_EQ(is.m_rssiHandler(), nullptr);
    EXPECT_EQ(is.m_radio(), nullptr);
    EXPECT_EQ(is.m_radioCapability(), nullptr);
    EXPECT_EQ(is.m_propertiesProvider(), nullptr);
    EXPECT_FALSE(is.m_thread().joinable());
    EXPECT_EQ(is.m_threadName(), "");
    EXPECT_THAT(is.m_results(), IsEmpty());
    EXPECT_TRUE(is.m_mutex().try_lock());
    is.m_mutex().unlock();
}

TEST_F(ControllerObject, stateStatusAndCommandHaveTheirDefaultsAfterConstruction)
{
    const PaintedController painted;
    const ControllerInspector is = painted.inspect();
    EXPECT_EQ(is.getState(), Controller::STATE_IDLE);
    EXPECT_EQ(is.m_status(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(is.m_command(), SDC_CMD_SCAN_STOP);
    EXPECT_EQ(is.m_progress(), 0);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(is.m_properties().load()), 0U);
}

TEST_F(ControllerObject, planMembersWithADefaultAreZeroAfterConstruction)
{
    const PaintedController painted;
    const ControllerInspector is = painted.inspect();
    EXPECT_EQ(is.m_channelSpacing_kHz(), 0U);
    EXPECT_EQ(is.m_currentRxFrequency_kHz(), 0U);
    EXPECT_EQ(is.m_minRxFrequency_kHz(), 0U);
    EXPECT_EQ(is.m_maxRxFrequency_kHz(), 0U);
    EXPECT_EQ(is.m_rxBaseFrequency_kHz(), 0U);
    EXPECT_EQ(is.m_frequencyBand_GHz(), 0U);
    EXPECT_EQ(is.m_frequencyStepSize_kHz(), 0U);
    EXPECT_EQ(is.m_stepLimitLow(), 0U);
    EXPECT_EQ(is.m_scanStep_kHz(), 0U);
    EXPECT_EQ(is.m_frequencyMargin_kHz(), 0U);
    EXPECT_EQ(is.m_scanLowestRxFrequency_kHz(), 0U);
    EXPECT_EQ(is.m_setRxWait_ms(), 0U);
    EXPECT_EQ(is.m_firstSetRxWait_ms(), 0U);
    EXPECT_EQ(is.m_nrOfSamplesDone(), 0);
    EXPECT_EQ(is.m_totalNrOfSamples(), 0);
}

TEST_F(ControllerObject, channelIsKeptUnsignedForAllChannels)
{
    for (const IdentityRow& row : identities) {
        constructAlone(row.channel);
        EXPECT_EQ(inspect().m_radioChannelId(), row.channel);
        destroy();
    }
}

TEST_F(ControllerObject, membersAreDeclaredInTheListedOrder)
{
    constructAlone(7);
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

TEST_F(ControllerObject, moduleBaseIsTheFirstAndTheInterfaceTheSecond)
{
    constructAlone(7);
    const auto address = [](const void* base) { return reinterpret_cast<std::uintptr_t>(base); };
    EXPECT_EQ(address(static_cast<ModuleInterface*>(controller.get())), address(controller.get()));
    EXPECT_EQ(address(static_cast<Interface*>(controller.get())), address(controller.get()) + sizeof(ModuleInterface));
}

TEST_F(ControllerObject, constructorTakesTheChannelByValueAndDestructorIsVirtual)
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

#define CALLBACK_ROW(name)                                                                                                  \
    CallbackRow                                                                                                             \
    {                                                                                                                       \
#name, virtualSlot(&ModuleInterface::name), !std::is_same_v < decltype(&Controller::name),                          \
            decltype(&ModuleInterface::name)>                                                                               \
    }

TEST_F(ControllerObject, callbacksOfTheModuleBaseStandInTheListedOrderAndOnlyTwoAreOverridden)
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
        EXPECT_EQ(rows[index].isOverridden,
            rows[index].slot == virtualSlot(&Controller::onModuleInit)
                || rows[index].slot == virtualSlot(&Controller::onPhaseStop));
    }
    EXPECT_EQ(virtualSlot(&Controller::onModuleInit), support::slotsOfADestructor + 2);
    EXPECT_EQ(virtualSlot(&Controller::onPhaseStop), support::slotsOfADestructor + 12);
}

TEST_F(ControllerObject, interfaceOperationsFollowTheCallbacksInTheListedOrder)
{
    constexpr std::size_t afterCallbacks = support::slotsOfADestructor + 28;
    EXPECT_EQ(virtualSlot(&Controller::setCommand), afterCallbacks);
    EXPECT_EQ(virtualSlot(&Controller::getResult), afterCallbacks + 1);
    EXPECT_EQ(virtualSlot(&Controller::getStatus), afterCallbacks + 2);
    EXPECT_EQ(virtualSlot(&Controller::getProgress), afterCallbacks + 3);
    EXPECT_EQ(virtualSlot(&Controller::getSpectrumDiagnosticsProperties), afterCallbacks + 4);
    EXPECT_EQ(virtualSlot(&Controller::initialize), support::noSlot);
}

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

TEST_F(ControllerObject, noOtherMemberFunctionIsVirtual)
{
    constructAlone(7);
    constexpr std::size_t head = 2; // offset to the top, type information
    constexpr std::size_t primary = head + support::slotsOfADestructor + 28 + 5;
    constexpr std::size_t ofTheInterface = head + support::slotsOfADestructor + 5;
    EXPECT_EQ(sizeOfVirtualTable(controller.get()), (primary + ofTheInterface) * sizeof(void*));
}

TEST_F(ControllerObject, inheritedCallbacksReturnSuccessAndTouchNothing)
{
    constructAlone(7);
    log.clear();
    ModuleInterface& module = *controller;
    EXPECT_EQ(module.onPhaseActivation(1, CALLBACK_PRIORITY_NORMAL), 0U);
    EXPECT_EQ(module.onModuleRegisterStorageObjects(), 0U);
    EXPECT_EQ(module.onPhaseStart(), 0U);
    EXPECT_EQ(module.onPhaseEnableAlarmThread(), 0U);
    EXPECT_THAT(log.calls(), IsEmpty());
    EXPECT_EQ(inspect().getState(), Controller::STATE_IDLE);
}

TEST_F(ControllerObject, stateIsA32BitEnumerationWithTheListedValues)
{
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<Controller::State>, std::uint32_t>));
    EXPECT_EQ(Controller::STATE_EXIT, 0U);
    EXPECT_EQ(Controller::STATE_IDLE, 1U);
    EXPECT_EQ(Controller::STATE_SCAN, 2U);
    EXPECT_EQ(Controller::STATE_STOP, 3U);
}

TEST_F(ControllerObject, setStateStoresWhatGetStateReturnsWithoutALock)
{
    constructAlone(7);
    log.clear();
    const std::lock_guard<std::mutex> sweepRuns(inspect().m_mutex());
    for (const Controller::State state :
        {Controller::STATE_SCAN, Controller::STATE_STOP, Controller::STATE_EXIT, Controller::STATE_IDLE}) {
        inspect().setState(state);
        EXPECT_EQ(inspect().getState(), state);
        EXPECT_EQ(inspect().m_state(), state);
    }
    EXPECT_THAT(log.calls(), IsEmpty());
}

/// Threads that wait on the controller's condition as its worker does.
class Waiters {
public:
    Waiters(const ControllerInspector& inspector, int number)
    {
        for (int i = 0; i < number; ++i) {
            m_threads.emplace_back([this, inspector] {
                std::unique_lock<std::mutex> lock(inspector.m_mutex());
                ++m_waiting;
                if (inspector.m_condition().wait_for(lock, support::hangLimit) == std::cv_status::no_timeout) {
                    ++m_woken;
                }
            });
        }
        // Whoever has counted itself holds the lock until it waits.
        EXPECT_TRUE(support::eventually([this, number] { return m_waiting == number; }));
        const std::lock_guard<std::mutex> allWait(inspector.m_mutex());
    }

    int join()
    {
        for (std::thread& thread : m_threads) {
            thread.join();
        }
        return m_woken;
    }

private:
    std::atomic<int> m_waiting{0};
    std::atomic<int> m_woken{0};
    std::vector<std::thread> m_threads;
};

TEST_F(ControllerObject, everySetStateWakesAllWaiters)
{
    constructAlone(7);
    for (const Controller::State state : {Controller::STATE_SCAN, Controller::STATE_SCAN, Controller::STATE_IDLE}) {
        Waiters waiters(inspect(), 3);
        inspect().setState(state);
        EXPECT_EQ(waiters.join(), 3);
    }
}

TEST_F(ControllerObject, initializeTracesItsEntryAndStartsNothing)
{
    constructAlone(4294967295);
    log.clear();
    EXPECT_EQ(controller->initialize(), 0);
    EXPECT_THAT(log.calls(), ElementsAre("enter 6 initialize: m_radioChannelId=4294967295"));
    EXPECT_FALSE(inspect().m_thread().joinable());
}

TEST_F(ControllerObject, callsBeforeInitialisationAreAnsweredWithoutPeers)
{
    constructAlone(7);
    log.clear();
    std::int32_t count = 5;
    SDCResult sample{1, 2};
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(controller->getProgress(), 0);
    EXPECT_EQ(controller->getResult(&count, &sample), SDC_RC_OK);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(controller->getSpectrumDiagnosticsProperties()), 0U);
    EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), SDC_RC_OK);
    EXPECT_THAT(log.callsWithout({"enter 6 ", "trace 5 Scan is not running"}), IsEmpty());
}

TEST_F(ControllerObject, onPhaseStopSetsIdleFromEveryStateAndReturnsSuccess)
{
    constructAlone(7);
    for (const Controller::State state :
        {Controller::STATE_EXIT, Controller::STATE_IDLE, Controller::STATE_SCAN, Controller::STATE_STOP}) {
        log.clear();
        inspect().setState(state);
        EXPECT_EQ(controller->onPhaseStop(), 0U);
        EXPECT_EQ(inspect().getState(), Controller::STATE_IDLE);
        EXPECT_THAT(log.calls(), ElementsAre("enter 6 onPhaseStop"));
        EXPECT_TRUE(inspect().m_mutex().try_lock());
        inspect().m_mutex().unlock();
    }
}

TEST_F(ControllerObject, exitThreadTracesSetsExitAndGivesTheLockBack)
{
    constructAlone(7);
    inspect().m_threadName() = "W";
    log.clear();
    inspect().exitThread();
    EXPECT_EQ(inspect().getState(), Controller::STATE_EXIT);
    EXPECT_THAT(log.calls(), ElementsAre("enter 6 exitThread: m_threadName=W"));
    EXPECT_TRUE(inspect().m_mutex().try_lock());
    inspect().m_mutex().unlock();
}

TEST_F(ControllerObject, stopPhaseAndExitWaitForTheLockBeforeTheyChangeTheState)
{
    constructAlone(7);
    const ControllerInspector is = inspect();
    using Step = std::function<void()>;
    for (const Step& step : {Step([this] { controller->onPhaseStop(); }), Step([is] { is.exitThread(); })}) {
        is.setState(Controller::STATE_SCAN);
        log.clear();
        std::unique_lock<std::mutex> sweepRuns(is.m_mutex());
        std::thread host(step);
        EXPECT_TRUE(support::eventually([this] { return !log.calls().empty(); }));
        for (int i = 0; i < 1000; ++i) {
            std::this_thread::yield();
        }
        EXPECT_EQ(is.getState(), Controller::STATE_SCAN);
        sweepRuns.unlock();
        host.join();
        EXPECT_NE(is.getState(), Controller::STATE_SCAN);
    }
}

TEST_F(ControllerObject, destructionWithoutAWorkerUnpublishesAndLeavesTheModuleListLast)
{
    constructAlone(7);
    inspect().m_propertiesProvider() = peers.radio.createPropertiesProvider();
    log.clear();
    destroy();
    EXPECT_THAT(log.calls(),
        ElementsAre("enter 6 ~SpectrumDiagnosticsController", "broker.getInstance",
            "broker.unregister ISpectrumDiagnosticsController_7", "provider.destroyed", "module.unregister"));
}

TEST_F(ControllerObject, destructionEndsTheWorkerBeforeItUnpublishes)
{
    for (const std::uint32_t channel : {0U, 7U, 4294967295U}) {
        start(channel);
        ASSERT_TRUE(waitForWaits(1));
        const std::string threadName = inspect().m_threadName();
        log.clear();
        destroy();
        EXPECT_THAT(log.calls(),
            ElementsAre("enter 6 ~SpectrumDiagnosticsController", "enter 6 exitThread: m_threadName=" + threadName,
                "trace 5 Thread exited with m_status scan-not-started", "broker.getInstance",
                "broker.unregister ISpectrumDiagnosticsController_" + std::to_string(channel), "provider.destroyed",
                "module.unregister"));
        peers.unregister();
    }
}

TEST_F(ControllerObject, deletingItThroughEitherBaseRunsItsDestructor)
{
    ModuleInterface* const module = new Controller(RadioChannel{1});
    Interface* const interface = new Controller(RadioChannel{2});
    IInterface* const root = static_cast<Interface*>(new Controller(RadioChannel{3}));
    log.clear();
    delete module;
    delete interface;
    delete root;
    EXPECT_THAT(log.callsStartingWith("broker.unregister"),
        ElementsAre("broker.unregister ISpectrumDiagnosticsController_1",
            "broker.unregister ISpectrumDiagnosticsController_2", "broker.unregister ISpectrumDiagnosticsController_3"));
    EXPECT_EQ(log.count("enter 6 ~SpectrumDiagnosticsController"), 3U);
}

} // namespace

// The controller object: construction, registration, defaults.

#include "tests/support/ControllerFixture.h"

#include "Platform/Host/InterfaceBroker.h"
#include "host/ModuleManager.h"

#include <gmock/gmock.h>

#include <bit>
#include <cstring>
#include <new>
#include <stdexcept>

namespace {

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
    std::vector<host::TraceComponentInfo> own = host::trace::components();
    std::erase_if(own, [](const host::TraceComponentInfo& info) { return !info.name.starts_with("ZRP"); });
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
        EXPECT_THAT(host::ModuleManager::instance().modules(), ElementsAre(controller.get()));
        destroy();
        EXPECT_THAT(broker(), IsEmpty());
        EXPECT_THAT(host::ModuleManager::instance().modules(), IsEmpty());
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
    EXPECT_THAT(host::ModuleManager::instance().modules(), IsEmpty());
}

TEST_F(ControllerObject, exceptionOutOfTheEntryRecordLeavesNothingBehind)
{
    traceIntoLog.onWrite = [](const host::TraceRecord&) { throw std::runtime_error("no room"); };
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
    EXPECT_EQ(std::bit_cast<std::uint32_t>(static_cast<SDCProperties>(is.m_properties())), 0U);
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

} // namespace

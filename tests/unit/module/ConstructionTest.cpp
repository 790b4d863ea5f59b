// The controller object: construction, registration, defaults, and what can be asked of it before it is initialised.

#include "tests/support/Callbacks.h"
#include "tests/support/ControllerFixture.h"

#include "Platform/Host/InterfaceBroker.h"
#include "host/ModuleManager.h"

#include <gmock/gmock.h>

#include <cstring>
#include <new>
#include <stdexcept>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Controller = SpectrumDiagnosticsController;
using Interface = ISpectrumDiagnosticsController;

class Construction : public tests::ControllerFixture {
protected:
    static const std::map<std::string, IInterface*>& broker() { return InterfaceBroker::getInstance().interfaces(); }
    static const auto& modules() { return host::ModuleManager::instance().modules(); }

    /// A controller without any peers.
    void constructAlone(std::uint32_t channel) { controller = std::make_unique<Controller>(RadioChannel{channel}); }

    void throwAt(const std::string& call)
    {
        at(call, [] { throw std::runtime_error("no"); });
    }
};

struct IdentityRow {
    std::uint32_t channel;
    std::uint32_t moduleId;
    const char* name;
};

constexpr IdentityRow identities[] = {
    {0, 126000, "ISpectrumDiagnosticsController_0"},
    {7, 126007, "ISpectrumDiagnosticsController_7"},
    {2147483648, 2147609648, "ISpectrumDiagnosticsController_2147483648"},
    {4294841296, 0, "ISpectrumDiagnosticsController_4294841296"},
    {4294967295, 125999, "ISpectrumDiagnosticsController_4294967295"},
};

TEST_F(Construction, givesTheModuleBaseItsIdentity)
{
    const std::uint32_t* values = nullptr;
    for (const IdentityRow& row : identities) {
        SCOPED_TRACE(row.channel);
        constructAlone(row.channel);
        EXPECT_EQ(inspect().m_radioChannelId(), row.channel);
        EXPECT_EQ(controller->moduleId(), row.moduleId);
        EXPECT_EQ(controller->moduleName(), row.name);
        EXPECT_EQ(controller->radioChannel(), row.channel);
        EXPECT_EQ(controller->options(), 0U);
        ASSERT_EQ(controller->nrOfValues(), 2U);
        EXPECT_EQ(controller->values()[0], 11U);
        EXPECT_EQ(controller->values()[1], 16U);
        EXPECT_TRUE(values == nullptr || controller->values() == values) << "the array is one for all controllers";
        values = controller->values();
        destroy();
    }
}

TEST_F(Construction, registersTheModuleThenTracesThenPublishesTheInterfaceUnderTheModuleName)
{
    for (const IdentityRow& row : identities) {
        SCOPED_TRACE(row.channel);
        log.clear();
        constructAlone(row.channel);
        EXPECT_THAT(log.calls(),
            ElementsAre("module.register",
                "enter 6 SpectrumDiagnosticsController: m_radioChannelId=" + std::to_string(row.channel),
                "broker.getInstance", std::string("broker.register ") + row.name));
        ASSERT_THAT(broker(), ElementsAre(testing::Key(row.name)));
        EXPECT_LT(static_cast<void*>(static_cast<ModuleInterface*>(controller.get())),
            static_cast<void*>(static_cast<Interface*>(controller.get()))); // the order of the bases
        EXPECT_EQ(broker().at(row.name), static_cast<IInterface*>(static_cast<Interface*>(controller.get())));
        EXPECT_THAT(modules(), ElementsAre(controller.get()));
        destroy();
        EXPECT_THAT(broker(), IsEmpty());
        EXPECT_THAT(modules(), IsEmpty());
    }
}

TEST_F(Construction, resultOfTheRegistrationIsNotExamined)
{
    tests::FakeSystemPowerController other;
    InterfaceBroker::getInstance().registerInterface("ISpectrumDiagnosticsController_7", &other);
    EXPECT_NO_THROW(constructAlone(7));
    EXPECT_EQ(broker().at("ISpectrumDiagnosticsController_7"), &other);
    destroy();
    EXPECT_THAT(broker(), IsEmpty());
}

TEST_F(Construction, exceptionReachesTheHostAndLeavesNothingBehind)
{
    const tests::Calls steps{"module.register", "enter 6 SpectrumDiagnosticsController: m_radioChannelId=7",
        "broker.getInstance", "broker.register ISpectrumDiagnosticsController_7"};
    for (auto failing = steps.begin(); failing != steps.end(); ++failing) {
        SCOPED_TRACE(*failing);
        log.clear();
        throwAt(*failing);
        EXPECT_THROW(constructAlone(7), std::runtime_error);
        tests::Calls expected(steps.begin(), failing + 1);
        if (failing != steps.begin()) {
            expected.emplace_back("module.unregister");
        }
        EXPECT_EQ(log.calls(), expected);
        EXPECT_THAT(broker(), IsEmpty());
        EXPECT_THAT(modules(), IsEmpty());
    }
}

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

    Controller* object() const { return m_controller; }

private:
    alignas(Controller) unsigned char m_memory[sizeof(Controller)];
    Controller* m_controller;
};

constexpr std::uint32_t unset = 0xA5A5A5A5;

TEST_F(Construction, givesEveryMemberButTwoItsDefaultAndStartsNoThread)
{
    const PaintedController painted;
    controller.reset(painted.object());
    const Members found = members();
    const ControllerInspector is = inspect();
    static_cast<void>(controller.release());
    const Members others{
        {"m_state", 1}, {"m_command", 2}, {"m_stepLimitHigh", unset}, {"m_scanHighestRxFrequency_kHz", unset}};
    for (const auto& [name, value] : found) {
        EXPECT_EQ(value, others.contains(name) ? others.at(name) : 0) << name;
    }
    const std::vector<const void*> peersBound{is.m_systemPowerController(), is.m_frameFormat(), is.m_frequencyController(),
        is.m_rssiHandler(), is.m_radio(), is.m_radioCapability(), is.m_propertiesProvider().get()};
    EXPECT_THAT(peersBound, testing::Each(nullptr));
    EXPECT_EQ(is.m_radioChannelId(), 7U);
    EXPECT_EQ(is.m_threadName(), "");
    EXPECT_THAT(is.m_results(), IsEmpty());
    EXPECT_FALSE(is.m_thread().joinable());
    EXPECT_TRUE(isFree(is.m_mutex()));
}

TEST_F(Construction, callsBeforeInitialisationAreAnsweredWithoutPeers)
{
    peers.radio.properties = {1, 1, 1, 1};
    construct();
    log.clear();
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
    EXPECT_EQ(controller->getProgress(), 0);
    EXPECT_THAT(samples(), IsEmpty());
    EXPECT_EQ(controller->setCommand(SDC_CMD_SCAN_STOP, 0), SDC_RC_OK);
    EXPECT_EQ(controller->getSpectrumDiagnosticsProperties().longHaul, 0);
    inspect().m_properties() = SDCProperties{1, 2, 3, 4};
    const SDCProperties properties = controller->getSpectrumDiagnosticsProperties();
    EXPECT_EQ(std::memcmp(&properties, "\1\2\3\4", sizeof properties), 0);
    EXPECT_THAT(log.callsWithout({"enter 6 ", "trace 5 Scan is not running"}), IsEmpty());
}

TEST_F(Construction, inheritedCallbacksReturnSuccessAndTouchNothing)
{
    construct();
    const Members before = members();
    log.clear();
    ModuleInterface& module = *controller;
    EXPECT_EQ(module.onPhaseActivation(1, CALLBACK_PRIORITY_NORMAL), 0U);
    for (const auto callback : tests::inheritedCallbacks) {
        EXPECT_EQ((module.*callback)(), 0U);
    }
    EXPECT_THAT(log.calls(), IsEmpty());
    EXPECT_EQ(members(), before);
}

TEST_F(Construction, initializeTracesItsCallAndStartsNothing)
{
    for (const std::uint32_t channel : {0U, 7U, 4294967295U}) {
        construct(channel);
        fillMembers();
        const Members before = members();
        EXPECT_EQ(controller->initialize(), 0);
        EXPECT_THAT(log.calls(), ElementsAre("enter 6 initialize: m_radioChannelId=" + std::to_string(channel)));
        EXPECT_EQ(members(), before);
        EXPECT_FALSE(inspect().m_thread().joinable());
        destroy();
        peers.unregister();
    }
}

} // namespace

// onModuleInit: the six peers, the properties provider, the worker's start.

#include "tests/support/ControllerFixture.h"

#include "Platform/Host/InterfaceBroker.h"

#include <gmock/gmock.h>

#include <pthread.h>

#include <stdexcept>
#include <system_error>
#include <utility>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Controller = SpectrumDiagnosticsController;

/// The names of the six peers of a channel in the order of binding, and the failure text before each.
struct PeerRow {
    const char* failureText;
    const char* name;
};
using PeerTable = std::vector<PeerRow>;

const std::vector<std::pair<std::uint32_t, PeerTable>> peerTables = {
    {0,
        {{"Could not find interface", "ISystemPowerController_0"}, {"Could not find interface ", "IFrameFormat_0"},
            {"Could not find interface", "IFrequencyController"}, {"Could not find interface", "IRssiHandler"},
            {"Could not find interface", "IRadioCapability_0"}, {" Could not find interface", "IRadio"}}},
    {2,
        {{"Could not find interface", "ISystemPowerController_2"}, {"Could not find interface ", "IFrameFormat_2"},
            {"Could not find interface", "IFrequencyController_2"}, {"Could not find interface", "IRssiHandler_2"},
            {"Could not find interface", "IRadioCapability_2"}, {" Could not find interface", "IRadio_2"}}},
    {2147483648,
        {{"Could not find interface", "ISystemPowerController_2147483648"},
            {"Could not find interface ", "IFrameFormat_2147483648"},
            {"Could not find interface", "IFrequencyController_2147483648"},
            {"Could not find interface", "IRssiHandler_2147483648"},
            {"Could not find interface", "IRadioCapability_2147483648"},
            {" Could not find interface", "IRadio_2147483648"}}},
    {4294967295,
        {{"Could not find interface", "ISystemPowerController_4294967295"},
            {"Could not find interface ", "IFrameFormat_4294967295"},
            {"Could not find interface", "IFrequencyController_4294967295"},
            {"Could not find interface", "IRssiHandler_4294967295"},
            {"Could not find interface", "IRadioCapability_4294967295"},
            {" Could not find interface", "IRadio_4294967295"}}},
};
constexpr std::size_t nrOfPeers = 6;

/// Broker entries that go when the test ends.
class Entries {
public:
    Entries() = default;
    ~Entries() { clear(); }
    Entries(const Entries&) = delete;
    Entries& operator=(const Entries&) = delete;

    void add(const std::string& name, IInterface* interface)
    {
        InterfaceBroker::getInstance().registerInterface(name, interface);
        m_names.push_back(name);
    }

    void clear()
    {
        for (const std::string& name : m_names) {
            InterfaceBroker::getInstance().unregisterInterface(name);
        }
        m_names.clear();
    }

private:
    std::vector<std::string> m_names;
};

class PeerBinding : public support::ControllerFixture {
protected:
    /// The six fakes in the order of binding.
    std::vector<IInterface*> fakes()
    {
        return {&peers.systemPowerController, &peers.frameFormat, &peers.frequencyController, &peers.rssiHandler,
            &peers.radioCapability, &peers.radio};
    }

    void constructAlone(std::uint32_t channel)
    {
        controller = std::make_unique<Controller>(RadioChannel{channel});
        log.clear();
    }

    /// Registers the first peers of a table and constructs the controller.
    void constructWithFirst(std::size_t number, std::uint32_t channel, const PeerTable& table)
    {
        for (std::size_t i = 0; i < number; ++i) {
            entries.add(table[i].name, fakes()[i]);
        }
        constructAlone(channel);
    }

    /// The controller's peer pointers, in the order of binding.
    std::vector<const IInterface*> boundPeers() const
    {
        const ControllerInspector is = inspect();
        return {is.m_systemPowerController(), is.m_frameFormat(), is.m_frequencyController(), is.m_rssiHandler(),
            is.m_radioCapability(), is.m_radio()};
    }

    /// The first of the fakes, and null for the others.
    std::vector<const IInterface*> firstOfFakes(std::size_t number)
    {
        std::vector<const IInterface*> expected(nrOfPeers, nullptr);
        const std::vector<IInterface*> all = fakes();
        std::copy_n(all.begin(), number, expected.begin());
        return expected;
    }

    /// What the log shows of an initialisation that stops at a peer.
    static std::vector<std::string> logOfFailureAt(std::size_t missing, std::uint32_t channel, const PeerTable& table)
    {
        std::vector<std::string> expected{"enter 6 onModuleInit: m_radioChannelId=" + std::to_string(channel)};
        for (std::size_t i = 0; i <= missing; ++i) {
            expected.insert(expected.end(), {"broker.getInstance", "broker.interfaces"});
        }
        expected.push_back(std::string("trace 1 ") + table[missing].failureText + table[missing].name);
        return expected;
    }

    void expectNoWorker() const
    {
        EXPECT_FALSE(inspect().m_thread().joinable());
        EXPECT_EQ(inspect().m_threadName(), "");
        EXPECT_EQ(inspect().m_propertiesProvider(), nullptr);
        EXPECT_EQ(inspect().getState(), Controller::STATE_IDLE);
    }

    /// The log without what the worker itself wrote.
    std::vector<std::string> hostsLog() const
    {
        return log.callsWithout({"enter 6 scanThread", "trace 5 Thread SpectDiagCtrl7 wait"});
    }

    Entries entries;
};

TEST_F(PeerBinding, failsAtTheFirstMissingPeerWithItsTextAndLooksNoFurther)
{
    for (const auto& [channel, table] : peerTables) {
        for (std::size_t missing = 0; missing < nrOfPeers; ++missing) {
            SCOPED_TRACE(table[missing].name);
            constructWithFirst(missing, channel, table);
            EXPECT_EQ(controller->onModuleInit(), 32768U);
            EXPECT_EQ(log.calls(), logOfFailureAt(missing, channel, table));
            EXPECT_EQ(boundPeers(), firstOfFakes(missing));
            expectNoWorker();
            entries.clear();
        }
    }
}

TEST_F(PeerBinding, failsAtAMissingPeerThoughAllTheOthersAreThere)
{
    for (const auto& [channel, table] : peerTables) {
        for (std::size_t missing = 0; missing < nrOfPeers; ++missing) {
            SCOPED_TRACE(table[missing].name);
            peers.registerFor(channel, fakes()[missing]);
            constructAlone(channel);
            EXPECT_EQ(controller->onModuleInit(), 32768U);
            EXPECT_EQ(log.calls(), logOfFailureAt(missing, channel, table));
            EXPECT_EQ(boundPeers(), firstOfFakes(missing));
            expectNoWorker();
            peers.unregister();
        }
    }
}

TEST_F(PeerBinding, anEntryThatHoldsNothingCountsAsMissing)
{
    for (const auto& [channel, table] : peerTables) {
        for (std::size_t missing = 0; missing < nrOfPeers; ++missing) {
            SCOPED_TRACE(table[missing].name);
            peers.registerFor(channel, fakes()[missing]);
            entries.add(table[missing].name, nullptr);
            constructAlone(channel);
            EXPECT_EQ(controller->onModuleInit(), 32768U);
            EXPECT_EQ(log.calls(), logOfFailureAt(missing, channel, table));
            EXPECT_EQ(boundPeers(), firstOfFakes(missing));
            entries.clear();
            peers.unregister();
        }
    }
}

TEST_F(PeerBinding, anEntryOfAnotherTypeCountsAsMissing)
{
    for (const auto& [channel, table] : peerTables) {
        for (std::size_t missing = 0; missing < nrOfPeers; ++missing) {
            SCOPED_TRACE(table[missing].name);
            peers.registerFor(channel, fakes()[missing]);
            entries.add(table[missing].name, fakes()[(missing + nrOfPeers - 1) % nrOfPeers]);
            constructAlone(channel);
            EXPECT_EQ(controller->onModuleInit(), 32768U);
            EXPECT_EQ(log.calls(), logOfFailureAt(missing, channel, table));
            EXPECT_EQ(boundPeers(), firstOfFakes(missing));
            entries.clear();
            peers.unregister();
        }
    }
}

TEST_F(PeerBinding, aRadioWhereAnRssiHandlerIsExpectedIsNotTaken)
{
    peers.registerFor(2, &peers.rssiHandler);
    entries.add("IRssiHandler_2", &peers.radio);
    constructAlone(2);
    EXPECT_EQ(controller->onModuleInit(), 32768U);
    EXPECT_THAT(traceTexts(1), ElementsAre("Could not find interfaceIRssiHandler_2"));
    EXPECT_EQ(inspect().m_rssiHandler(), nullptr);
}

TEST_F(PeerBinding, ofChannelZeroWantsTheBareOrTheSuffixedNameAndNotTheOther)
{
    const char* const otherNames[] = {"ISystemPowerController", "IFrameFormat", "IFrequencyController_0", "IRssiHandler_0",
        "IRadioCapability", "IRadio_0"};
    for (std::size_t missing = 0; missing < nrOfPeers; ++missing) {
        SCOPED_TRACE(otherNames[missing]);
        peers.registerFor(0, fakes()[missing]);
        entries.add(otherNames[missing], fakes()[missing]);
        constructAlone(0);
        EXPECT_EQ(controller->onModuleInit(), 32768U);
        EXPECT_EQ(log.calls(), logOfFailureAt(missing, 0, peerTables[0].second));
        EXPECT_EQ(boundPeers(), firstOfFakes(missing));
        entries.clear();
        peers.unregister();
    }
}

TEST_F(PeerBinding, peersOfAnotherChannelAreNotTaken)
{
    peers.registerFor(8);
    constructAlone(7);
    EXPECT_EQ(controller->onModuleInit(), 32768U);
    EXPECT_THAT(traceTexts(1), ElementsAre("Could not find interfaceISystemPowerController_7"));
}

TEST_F(PeerBinding, resultDoesNotDependOnTracing)
{
    for (std::uint32_t level = 0; level <= 7; ++level) {
        SCOPED_TRACE(level);
        setTraceLevel(level);
        trace.clear();
        peers.registerFor(7, &peers.frameFormat);
        constructAlone(7);
        EXPECT_EQ(controller->onModuleInit(), 32768U);
        EXPECT_EQ(boundPeers(), firstOfFakes(1));
        EXPECT_EQ(traceTexts(1).size(), level == 0 ? 0U : 1U);
        entries.add("IFrameFormat_7", &peers.frameFormat);
        EXPECT_EQ(controller->onModuleInit(), 0U);
        EXPECT_EQ(boundPeers(), firstOfFakes(nrOfPeers));
        EXPECT_EQ(log.count("trace 5 Thread SpectDiagCtrl7 successfully created."), level < 5 ? 0U : 1U);
        destroy();
        entries.clear();
        peers.unregister();
    }
}

TEST_F(PeerBinding, aPeerThatHasGoneIsForgottenByTheNextAttempt)
{
    const PeerTable& table = peerTables[1].second;
    constructWithFirst(5, 2, table);
    EXPECT_EQ(controller->onModuleInit(), 32768U);
    InterfaceBroker::getInstance().unregisterInterface("IFrameFormat_2");
    log.clear();
    EXPECT_EQ(controller->onModuleInit(), 32768U);
    EXPECT_EQ(log.calls(), logOfFailureAt(1, 2, table));
    std::vector<const IInterface*> expected = firstOfFakes(5);
    expected[1] = nullptr;
    EXPECT_EQ(boundPeers(), expected);
}

TEST_F(PeerBinding, stopPhaseAndDestructionWorkAfterAFailure)
{
    constructWithFirst(3, 2, peerTables[1].second);
    EXPECT_EQ(controller->onModuleInit(), 32768U);
    log.clear();
    EXPECT_EQ(controller->onPhaseStop(), 0U);
    destroy();
    EXPECT_THAT(log.calls(),
        ElementsAre("enter 6 onPhaseStop", "enter 6 ~SpectrumDiagnosticsController", "broker.getInstance",
            "broker.unregister ISpectrumDiagnosticsController_2", "module.unregister"));
}

TEST_F(PeerBinding, successBindsAllSixTakesTheProviderOverAndStartsTheNamedWorker)
{
    construct(7);
    log.clear();
    EXPECT_EQ(controller->onModuleInit(), 0U);
    EXPECT_THAT(hostsLog(),
        ElementsAre("enter 6 onModuleInit: m_radioChannelId=7", "broker.getInstance", "broker.interfaces",
            "broker.getInstance", "broker.interfaces", "broker.getInstance", "broker.interfaces", "broker.getInstance",
            "broker.interfaces", "broker.getInstance", "broker.interfaces", "broker.getInstance", "broker.interfaces",
            "IRadio.createPropertiesProvider", "thread.name SpectDiagCtrl7",
            "trace 5 Thread SpectDiagCtrl7 successfully created."));
    EXPECT_EQ(boundPeers(), firstOfFakes(nrOfPeers));
    EXPECT_NE(inspect().m_propertiesProvider(), nullptr);
    EXPECT_TRUE(inspect().m_thread().joinable());
    EXPECT_TRUE(waitForWaits(1));
    EXPECT_EQ(log.count("enter 6 scanThread: m_threadName=SpectDiagCtrl7"), 1U);
    EXPECT_EQ(inspect().getState(), Controller::STATE_IDLE);
}

TEST_F(PeerBinding, allSixAreBoundForAllChannels)
{
    for (const auto& [channel, table] : peerTables) {
        SCOPED_TRACE(channel);
        constructWithFirst(nrOfPeers, channel, table);
        EXPECT_EQ(controller->onModuleInit(), 0U);
        EXPECT_EQ(boundPeers(), firstOfFakes(nrOfPeers));
        destroy();
        entries.clear();
    }
}

TEST_F(PeerBinding, threadNameCarriesTheChannelInSignedDecimal)
{
    const std::pair<std::uint32_t, const char*> rows[] = {{0, "SpectDiagCtrl0"}, {3, "SpectDiagCtrl3"},
        {100, "SpectDiagCtrl100"}, {2147483647, "SpectDiagCtrl2147483647"}, {2147483648, "SpectDiagCtrl-2147483648"},
        {4294967295, "SpectDiagCtrl-1"}};
    for (const auto& [channel, name] : rows) {
        SCOPED_TRACE(name);
        log.clear();
        start(channel);
        EXPECT_EQ(inspect().m_threadName(), name);
        EXPECT_THAT(log.callsStartingWith("thread.name"), ElementsAre(std::string("thread.name ") + name));
        EXPECT_EQ(log.count(std::string("trace 5 Thread ") + name + " successfully created."), 1U);
        destroy();
        peers.unregister();
    }
}

TEST_F(PeerBinding, operatingSystemThreadOfTheWorkerGetsTheName)
{
    start(7);
    char name[16] = "";
    ASSERT_EQ(pthread_getname_np(inspect().m_thread().native_handle(), name, sizeof name), 0);
    EXPECT_STREQ(name, "SpectDiagCtrl7");
}

/// A provider that tells when it goes.
class EarlierProvider : public IRadioPropertiesProvider {
public:
    explicit EarlierProvider(support::CallLog& log)
        : m_log(log)
    {
    }
    ~EarlierProvider() override { m_log.add("earlier provider destroyed"); }
    std::int32_t getProperties(SDCProperties&) override { return 0; }
    void getUnitInfo(UnitInfo&) override {}

private:
    support::CallLog& m_log;
};

TEST_F(PeerBinding, providerIsAskedForOnceAndIsTheOneThatThenAnswers)
{
    peers.radio.properties = {1, 2, 3, 4};
    start(7);
    EXPECT_EQ(log.count("IRadio.createPropertiesProvider"), 1U);
    EXPECT_EQ(log.count("provider.destroyed"), 0U);
    EXPECT_EQ(log.count("provider.getProperties"), 0U);
    EXPECT_EQ(int{inspect().m_properties().load().longHaul}, 0);
    EXPECT_EQ(int{controller->getSpectrumDiagnosticsProperties().spareFlag}, 4);
    EXPECT_EQ(log.count("provider.getProperties"), 1U);
}

TEST_F(PeerBinding, aProviderHeldBeforeIsDestroyedWhenTheNewOneIsTakenOver)
{
    construct(7);
    inspect().m_propertiesProvider() = std::make_unique<EarlierProvider>(log);
    log.clear();
    EXPECT_EQ(controller->onModuleInit(), 0U);
    EXPECT_THAT(log.callsWithout({"enter", "broker", "trace", "thread"}),
        ElementsAre("IRadio.createPropertiesProvider", "earlier provider destroyed"));
    controller->getSpectrumDiagnosticsProperties();
    EXPECT_EQ(log.count("provider.getProperties"), 1U);
}

TEST_F(PeerBinding, anExceptionOfTheRadioReachesTheHostAndNoWorkerIsStarted)
{
    construct(7);
    inspect().m_propertiesProvider() = std::make_unique<EarlierProvider>(log);
    const IRadioPropertiesProvider* const earlier = inspect().m_propertiesProvider().get();
    peers.radio.onCreatePropertiesProvider = [] { throw std::runtime_error("no provider"); };
    EXPECT_THROW(controller->onModuleInit(), std::runtime_error);
    EXPECT_EQ(boundPeers(), firstOfFakes(nrOfPeers));
    EXPECT_EQ(inspect().m_propertiesProvider().get(), earlier);
    EXPECT_FALSE(inspect().m_thread().joinable());
    EXPECT_EQ(inspect().m_threadName(), "");
    EXPECT_THAT(traceTexts(1), IsEmpty());
    EXPECT_THAT(log.callsStartingWith("thread."), IsEmpty());
}

TEST_F(PeerBinding, anExceptionOfTheBrokerReachesTheHost)
{
    construct(7);
    int lookups = 0;
    onHostEvent = [&lookups](const std::string& event) {
        if (event == "broker.interfaces" && ++lookups == 3) {
            throw std::runtime_error("no lookup");
        }
    };
    EXPECT_THROW(controller->onModuleInit(), std::runtime_error);
    onHostEvent = nullptr;
    EXPECT_EQ(boundPeers(), firstOfFakes(2));
    expectNoWorker();
}

/// Makes the start of every thread fail: the default stack does not fit into any address space.
class NoMoreThreads {
public:
    NoMoreThreads()
    {
        pthread_getattr_default_np(&m_before);
        pthread_attr_t huge;
        pthread_attr_init(&huge);
        EXPECT_EQ(pthread_attr_setstacksize(&huge, std::size_t{1} << 60), 0);
        EXPECT_EQ(pthread_setattr_default_np(&huge), 0);
        pthread_attr_destroy(&huge);
    }
    ~NoMoreThreads()
    {
        pthread_setattr_default_np(&m_before);
        pthread_attr_destroy(&m_before);
    }
    NoMoreThreads(const NoMoreThreads&) = delete;
    NoMoreThreads& operator=(const NoMoreThreads&) = delete;

private:
    pthread_attr_t m_before{};
};

TEST_F(PeerBinding, aThreadThatCannotBeStartedIsTracedAndInitialisationSucceeds)
{
    construct(5);
    log.clear();
    {
        const NoMoreThreads noMoreThreads;
        EXPECT_EQ(controller->onModuleInit(), 0U);
    }
    const std::system_error failure(std::make_error_code(std::errc::resource_unavailable_try_again));
    EXPECT_THAT(log.callsWithout({"broker."}),
        ElementsAre("enter 6 onModuleInit: m_radioChannelId=5", "IRadio.createPropertiesProvider",
            std::string("trace 1 Thread SpectDiagCtrl5 caught exception [") + failure.what() + "]."));
    EXPECT_EQ(boundPeers(), firstOfFakes(nrOfPeers));
    EXPECT_EQ(inspect().m_threadName(), "SpectDiagCtrl5");
    EXPECT_FALSE(inspect().m_thread().joinable());
    log.clear();
    destroy();
    EXPECT_THAT(log.calls(),
        ElementsAre("enter 6 ~SpectrumDiagnosticsController", "broker.getInstance",
            "broker.unregister ISpectrumDiagnosticsController_5", "provider.destroyed", "module.unregister"));
}

/// Initialises a controller whose worker's naming throws, and returns the trace of levels 1 and 5 that the host's thread
/// wrote.
class WorkerNaming : public PeerBinding {
protected:
    std::vector<std::string> traceOfInitWhen(const std::function<void()>& throwing)
    {
        construct(7);
        onHostEvent = [throwing](const std::string& event) {
            if (event == "thread.name SpectDiagCtrl7") {
                throwing();
            }
        };
        EXPECT_EQ(controller->onModuleInit(), 0U);
        EXPECT_TRUE(waitForWaits(1));
        std::vector<std::string> texts = hostsLog();
        std::erase_if(texts, [](const std::string& call) { return !call.starts_with("trace"); });
        return texts;
    }
};

TEST_F(WorkerNaming, standardExceptionIsTracedWithItsTextAndInitialisationSucceeds)
{
    EXPECT_THAT(traceOfInitWhen([] { throw std::runtime_error("name: too long"); }),
        ElementsAre("trace 1 Thread SpectDiagCtrl7 caught exception [name: too long]."));
}

TEST_F(WorkerNaming, exceptionOfAnyOtherTypeIsTracedAsUnknownAndInitialisationSucceeds)
{
    EXPECT_THAT(traceOfInitWhen([] { throw 42; }),
        ElementsAre("trace 1 Unknown exception when trying to create the thread SpectDiagCtrl7"));
}

TEST_F(WorkerNaming, aWorkerWithoutANameStillRunsAndIsJoined)
{
    traceOfInitWhen([] { throw std::runtime_error("no name"); });
    EXPECT_TRUE(inspect().m_thread().joinable());
    EXPECT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START));
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    destroy();
    EXPECT_EQ(log.count("trace 5 Thread exited with m_status channel-scan-finished"), 1U);
}

TEST_F(WorkerNaming, failureOfTheSuccessTextIsCaughtLikeAFailureOfTheStart)
{
    construct(7);
    traceIntoLog.onWrite = [](const simulator::TraceRecord& record) {
        if (record.text.ends_with(" successfully created.")) {
            throw std::runtime_error("trace is full");
        }
    };
    EXPECT_EQ(controller->onModuleInit(), 0U);
    EXPECT_THAT(traceTexts(1), ElementsAre("Thread SpectDiagCtrl7 caught exception [trace is full]."));
    EXPECT_TRUE(waitForWaits(1));
}

TEST_F(WorkerNaming, failuresAreTracedAtLevel1Only)
{
    setTraceLevel(0);
    construct(7);
    onHostEvent = [](const std::string& event) {
        if (event == "thread.name SpectDiagCtrl7") {
            throw std::runtime_error("no name");
        }
    };
    EXPECT_EQ(controller->onModuleInit(), 0U);
    EXPECT_THAT(trace.records(), IsEmpty());
}

} // namespace

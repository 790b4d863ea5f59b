// onModuleInit: the six peers, the properties provider, the worker's start.

#include "tests/support/ControllerFixture.h"

#include "Platform/Host/InterfaceBroker.h"

#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Controller = SpectrumDiagnosticsController;

constexpr std::size_t nrOfPeers = 6;
constexpr std::uint32_t channels[] = {0, 2, 2147483648, 4294967295};

/// The name of one peer, and the failure text before it.
struct PeerRow {
    const char* failureText;
    std::string name;
};
using PeerTable = std::vector<PeerRow>;

/// The six peers of a channel in the order of binding.
PeerTable peersOf(std::uint32_t channel)
{
    const std::string suffix = "_" + std::to_string(channel);
    const std::string suffixButForZero = channel == 0 ? "" : suffix;
    return {{"Could not find interface", "ISystemPowerController" + suffix},
        {"Could not find interface ", "IFrameFormat" + suffix},
        {"Could not find interface", "IFrequencyController" + suffixButForZero},
        {"Could not find interface", "IRssiHandler" + suffixButForZero},
        {"Could not find interface", "IRadioCapability" + suffix},
        {" Could not find interface", "IRadio" + suffixButForZero}};
}

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

    /// For every channel and every peer of it: leaves that one out, puts something else in its place, and expects the
    /// failure.
    void expectFailureAtEachPeer(const std::function<void(const PeerTable& table, std::size_t missing)>& putInPlace)
    {
        for (const std::uint32_t channel : channels) {
            const PeerTable table = peersOf(channel);
            for (std::size_t missing = 0; missing < nrOfPeers; ++missing) {
                SCOPED_TRACE(table[missing].name);
                peers.registerFor(channel, fakes()[missing]);
                putInPlace(table, missing);
                constructAlone(channel);
                EXPECT_EQ(controller->onModuleInit(), 32768U);
                EXPECT_EQ(log.calls(), logOfFailureAt(missing, channel, table));
                EXPECT_EQ(boundPeers(), firstOfFakes(missing));
                expectNoWorker();
                entries.clear();
                peers.unregister();
            }
        }
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
    for (const std::uint32_t channel : channels) {
        const PeerTable table = peersOf(channel);
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
    expectFailureAtEachPeer([](const PeerTable&, std::size_t) {});
}

TEST_F(PeerBinding, anEntryThatHoldsNothingCountsAsMissing)
{
    expectFailureAtEachPeer(
        [this](const PeerTable& table, std::size_t missing) { entries.add(table[missing].name, nullptr); });
}

TEST_F(PeerBinding, anEntryOfAnotherTypeCountsAsMissing)
{
    expectFailureAtEachPeer([this](const PeerTable& table, std::size_t missing) {
        entries.add(table[missing].name, fakes()[(missing + nrOfPeers - 1) % nrOfPeers]);
    });
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
        EXPECT_EQ(log.calls(), logOfFailureAt(missing, 0, peersOf(0)));
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

TEST_F(PeerBinding, anyMissingPeerFailsWithoutATextWhenTheTraceIsOff)
{
    setTraceLevel(0);
    const PeerTable table = peersOf(2);
    for (std::size_t missing = 0; missing < nrOfPeers; ++missing) {
        SCOPED_TRACE(table[missing].name);
        constructWithFirst(missing, 2, table);
        EXPECT_EQ(controller->onModuleInit(), 32768U);
        EXPECT_EQ(boundPeers(), firstOfFakes(missing));
        EXPECT_EQ(trace.records().size(), 0U);
        entries.clear();
    }
}

TEST_F(PeerBinding, aPeerThatHasGoneIsForgottenByTheNextAttempt)
{
    const PeerTable table = peersOf(2);
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
    constructWithFirst(3, 2, peersOf(2));
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
    for (const std::uint32_t channel : channels) {
        const PeerTable table = peersOf(channel);
        SCOPED_TRACE(channel);
        constructWithFirst(nrOfPeers, channel, table);
        EXPECT_EQ(controller->onModuleInit(), 0U);
        EXPECT_EQ(boundPeers(), firstOfFakes(nrOfPeers));
        destroy();
        entries.clear();
    }
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
    EXPECT_EQ(int{inspect().m_properties().longHaul}, 0);
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
    for (const std::string service : {"broker.getInstance", "broker.interfaces"}) {
        for (std::size_t nth = 1; nth <= nrOfPeers; ++nth) {
            SCOPED_TRACE(service + " no. " + std::to_string(nth));
            construct(7);
            onHostEvent = [&service, nth, calls = std::size_t{0}](const std::string& event) mutable {
                if (event == service && ++calls == nth) {
                    throw std::runtime_error("no lookup");
                }
            };
            EXPECT_THROW(controller->onModuleInit(), std::runtime_error);
            onHostEvent = nullptr;
            EXPECT_EQ(boundPeers(), firstOfFakes(nth - 1));
            expectNoWorker();
            destroy();
            peers.unregister();
        }
    }
}

} // namespace

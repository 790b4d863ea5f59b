// onModuleInit: the six peers and the properties provider. What becomes of the worker: WorkerStartTest.

#include "tests/support/ControllerFixture.h"

#include "Platform/Host/InterfaceBroker.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tests::Calls;
using Controller = SpectrumDiagnosticsController;

constexpr std::size_t nrOfPeers = 6;
constexpr std::uint32_t channels[] = {0, 2, 2147483648, 4294967295};

/// The failure texts before the names of the peers, in the order of binding.
const Calls failureTexts{"Could not find interface", "Could not find interface ", "Could not find interface",
    "Could not find interface", "Could not find interface", " Could not find interface"};

/// One broker entry, for as long as it lives.
class Entry {
public:
    Entry(std::string name, IInterface* interface)
        : m_name(std::move(name))
    {
        InterfaceBroker::getInstance().registerInterface(m_name, interface);
    }
    ~Entry() { InterfaceBroker::getInstance().unregisterInterface(m_name); }
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

private:
    std::string m_name;
};

class Initialisation : public tests::ControllerFixture {
protected:
    void constructAlone(std::uint32_t channel)
    {
        controller = std::make_unique<Controller>(RadioChannel{channel});
        log.clear();
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
        const std::vector<IInterface*> all = peers.all();
        std::vector<const IInterface*> expected(nrOfPeers, nullptr);
        std::copy_n(all.begin(), number, expected.begin());
        return expected;
    }

    /// Initialises and expects that to stop at a peer: its text, those before it bound, no look further, no worker.
    void expectFailureAt(std::size_t missing, std::uint32_t channel)
    {
        SCOPED_TRACE(tests::peerNames(channel)[missing]);
        constructAlone(channel);
        EXPECT_EQ(controller->onModuleInit(), 32768U);
        Calls expected{"enter 6 onModuleInit: m_radioChannelId=" + std::to_string(channel)};
        for (std::size_t i = 0; i <= missing; ++i) {
            expected.insert(expected.end(), {"broker.getInstance", "broker.interfaces"});
        }
        expected.push_back("trace 1 " + failureTexts[missing] + tests::peerNames(channel)[missing]);
        EXPECT_EQ(log.calls(), expected);
        EXPECT_EQ(boundPeers(), firstOfFakes(missing));
        expectNoWorker();
    }

    void expectNoWorker() const
    {
        EXPECT_FALSE(inspect().m_thread().joinable());
        EXPECT_EQ(inspect().m_threadName(), "");
        EXPECT_EQ(inspect().m_propertiesProvider(), nullptr);
        EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    }

    /// For every channel and every peer of it: the others are there, and in its place an entry that is made of its name.
    template <typename Make>
    void expectFailureAtEachPeer(const Make& entryFor)
    {
        for (const std::uint32_t channel : channels) {
            for (std::size_t missing = 0; missing < nrOfPeers; ++missing) {
                peers.registerFor(channel, peers.all()[missing]);
                [[maybe_unused]] const auto entry = entryFor(channel, missing);
                expectFailureAt(missing, channel);
                peers.unregister();
            }
        }
    }

    static const IRadioPropertiesProvider* provider(const ControllerInspector& is)
    {
        return is.m_propertiesProvider().get();
    }
};

TEST_F(Initialisation, failsAtAMissingPeerThoughAllTheOthersAreThere)
{
    expectFailureAtEachPeer([](std::uint32_t, std::size_t) { return 0; });
}

TEST_F(Initialisation, failsAtTheFirstPeerWhenNoneIsThere)
{
    expectFailureAt(0, 7);
}

TEST_F(Initialisation, anEntryThatHoldsNothingCountsAsMissing)
{
    expectFailureAtEachPeer([](std::uint32_t channel, std::size_t missing) {
        return std::make_unique<Entry>(tests::peerNames(channel)[missing], nullptr);
    });
}

TEST_F(Initialisation, anEntryOfAnotherTypeCountsAsMissing)
{
    expectFailureAtEachPeer([this](std::uint32_t channel, std::size_t missing) {
        IInterface* const other = peers.all()[(missing + nrOfPeers - 1) % nrOfPeers];
        return std::make_unique<Entry>(tests::peerNames(channel)[missing], other);
    });
}

TEST_F(Initialisation, aRadioWhereAnRssiHandlerIsExpectedIsNotTaken)
{
    peers.registerFor(2, &peers.rssiHandler);
    const Entry radio("IRssiHandler_2", &peers.radio);
    expectFailureAt(3, 2);
}

TEST_F(Initialisation, ofChannelZeroWantsTheBareOrTheSuffixedNameAndNotTheOther)
{
    const char* const otherNames[] = {"ISystemPowerController", "IFrameFormat", "IFrequencyController_0", "IRssiHandler_0",
        "IRadioCapability", "IRadio_0"};
    for (std::size_t missing = 0; missing < nrOfPeers; ++missing) {
        peers.registerFor(0, peers.all()[missing]);
        const Entry other(otherNames[missing], peers.all()[missing]);
        expectFailureAt(missing, 0);
        peers.unregister();
    }
}

TEST_F(Initialisation, peersOfAnotherChannelAreNotTaken)
{
    peers.registerFor(8);
    expectFailureAt(0, 7);
}

TEST_F(Initialisation, aPeerThatHasGoneIsForgottenByTheNextAttempt)
{
    peers.registerFor(2, &peers.radio);
    expectFailureAt(5, 2);
    peers.unregister();
    peers.registerFor(2, &peers.frameFormat);
    EXPECT_EQ(controller->onModuleInit(), 32768U);
    std::vector<const IInterface*> expected = firstOfFakes(5);
    expected[1] = nullptr;
    EXPECT_EQ(boundPeers(), expected);
}

TEST_F(Initialisation, resultDoesNotDependOnTracing)
{
    for (std::uint32_t level = 0; level <= 7; ++level) {
        SCOPED_TRACE(level);
        setTraceLevel(level);
        trace.clear();
        peers.registerFor(7, &peers.frameFormat);
        constructAlone(7);
        EXPECT_EQ(controller->onModuleInit(), 32768U);
        EXPECT_EQ(traceTexts(1).size(), level == 0 ? 0U : 1U);
        const Entry frameFormat("IFrameFormat_7", &peers.frameFormat);
        EXPECT_EQ(controller->onModuleInit(), 0U);
        EXPECT_EQ(boundPeers(), firstOfFakes(nrOfPeers));
        EXPECT_EQ(log.count("trace 5 Thread SpectDiagCtrl7 successfully created."), level < 5 ? 0U : 1U);
        destroy();
        peers.unregister();
    }
}

TEST_F(Initialisation, successBindsAllSixTakesTheProviderOverAndStartsTheNamedWorker)
{
    peers.radio.properties = {1, 2, 3, 4};
    construct();
    log.clear();
    EXPECT_EQ(controller->onModuleInit(), 0U);
    Calls expected{"enter 6 onModuleInit: m_radioChannelId=7"};
    for (std::size_t peer = 0; peer < nrOfPeers; ++peer) {
        expected.insert(expected.end(), {"broker.getInstance", "broker.interfaces"});
    }
    expected.insert(expected.end(),
        {"IRadio.createPropertiesProvider", "thread.name SpectDiagCtrl7",
            "trace 5 Thread SpectDiagCtrl7 successfully created."});
    EXPECT_EQ(log.callsWithout({workerEntry, waiting}), expected);
    EXPECT_EQ(boundPeers(), firstOfFakes(nrOfPeers));
    EXPECT_TRUE(inspect().m_thread().joinable());
    EXPECT_TRUE(waitForWaits(1));
    EXPECT_EQ(log.count(workerEntry), 1U);
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
    EXPECT_EQ(controller->getSpectrumDiagnosticsProperties().spareFlag, 4);
}

TEST_F(Initialisation, bindsAndNamesForEveryChannel)
{
    const std::pair<std::uint32_t, const char*> rows[] = {{0, "SpectDiagCtrl0"}, {3, "SpectDiagCtrl3"},
        {100, "SpectDiagCtrl100"}, {2147483647, "SpectDiagCtrl2147483647"}, {2147483648, "SpectDiagCtrl-2147483648"},
        {4294967295, "SpectDiagCtrl-1"}};
    for (const auto& [channel, name] : rows) {
        SCOPED_TRACE(name);
        log.clear();
        start(channel);
        EXPECT_EQ(boundPeers(), firstOfFakes(nrOfPeers));
        EXPECT_EQ(inspect().m_threadName(), name);
        EXPECT_THAT(log.callsStartingWith("thread.name"), ElementsAre(std::string("thread.name ") + name));
        EXPECT_EQ(log.count(std::string("trace 5 Thread ") + name + " successfully created."), 1U);
        destroy();
        peers.unregister();
    }
}

/// A provider that tells when it goes.
struct EarlierProvider : IRadioPropertiesProvider {
    explicit EarlierProvider(tests::CallLog& callLog)
        : log(callLog)
    {
    }
    ~EarlierProvider() override { log.add("earlier provider destroyed"); }
    std::int32_t getProperties(SDCProperties&) override { return 0; }
    void getUnitInfo(UnitInfo&) override {}

    tests::CallLog& log;
};

TEST_F(Initialisation, aProviderHeldBeforeIsDestroyedWhenTheNewOneIsTakenOver)
{
    construct();
    inspect().m_propertiesProvider() = std::make_unique<EarlierProvider>(log);
    log.clear();
    EXPECT_EQ(controller->onModuleInit(), 0U);
    EXPECT_THAT(log.callsWithout({"enter", "broker", "trace", "thread"}),
        ElementsAre("IRadio.createPropertiesProvider", "earlier provider destroyed"));
}

TEST_F(Initialisation, anExceptionOfTheRadioReachesTheHostAndNoWorkerIsStarted)
{
    construct();
    inspect().m_propertiesProvider() = std::make_unique<EarlierProvider>(log);
    const IRadioPropertiesProvider* const earlier = provider(inspect());
    at("IRadio.createPropertiesProvider", [] { throw std::runtime_error("no provider"); });
    EXPECT_THROW(controller->onModuleInit(), std::runtime_error);
    EXPECT_EQ(boundPeers(), firstOfFakes(nrOfPeers));
    EXPECT_EQ(provider(inspect()), earlier);
    EXPECT_FALSE(inspect().m_thread().joinable());
    EXPECT_EQ(inspect().m_threadName(), "");
    EXPECT_THAT(traceTexts(1), IsEmpty());
}

TEST_F(Initialisation, anExceptionOfTheBrokerReachesTheHost)
{
    for (const std::string service : {"broker.getInstance", "broker.interfaces"}) {
        for (std::size_t nth = 1; nth <= nrOfPeers; ++nth) {
            SCOPED_TRACE(service + " no. " + std::to_string(nth));
            construct();
            at(
                service, [] { throw std::runtime_error("no lookup"); }, static_cast<int>(nth));
            EXPECT_THROW(controller->onModuleInit(), std::runtime_error);
            log.onAdd(nullptr);
            EXPECT_EQ(boundPeers(), firstOfFakes(nth - 1));
            expectNoWorker();
            destroy();
            peers.unregister();
        }
    }
}

} // namespace

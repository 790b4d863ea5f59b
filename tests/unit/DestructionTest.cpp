// The end of a controller: what it waits for and in which order it lets everything go.

#include "tests/support/WorkerFixture.h"

#include "Platform/Host/InterfaceBroker.h"
#include "host/ModuleManager.h"

#include <gmock/gmock.h>

namespace {

using support::AtScopeEnd;
using support::BackgroundCall;
using support::Calls;
using support::eventually;
using support::operator+;
using testing::ElementsAre;
using testing::ElementsAreArray;
using State = SpectrumDiagnosticsController::State;

class Destruction : public support::WorkerFixture {
protected:
    const std::string ownEntry = "enter 6 ~SpectrumDiagnosticsController";
    const Calls release{"broker.getInstance", "broker.unregister ISpectrumDiagnosticsController_7", "provider.destroyed",
        "module.unregister"};
};

TEST_F(Destruction, endsAndJoinsTheIdleWorkerThenReleasesEverythingInOrder)
{
    const std::pair<std::uint32_t, std::pair<std::string, std::string>> rows[] = {
        {0, {"SpectDiagCtrl0", "ISpectrumDiagnosticsController_0"}},
        {7, {"SpectDiagCtrl7", "ISpectrumDiagnosticsController_7"}},
        {2147483648, {"SpectDiagCtrl-2147483648", "ISpectrumDiagnosticsController_2147483648"}},
        {4294967295, {"SpectDiagCtrl-1", "ISpectrumDiagnosticsController_4294967295"}},
    };
    for (const auto& [channel, names] : rows) {
        SCOPED_TRACE(channel);
        startAndWait(channel);
        destroy();
        EXPECT_THAT(log.calls(),
            ElementsAre(ownEntry, "enter 6 exitThread: m_threadName=" + names.first, exited + "scan-not-started",
                "broker.getInstance", "broker.unregister " + names.second, "provider.destroyed", "module.unregister"));
        EXPECT_EQ(InterfaceBroker::getInstance().interfaces().count(names.second), 0U);
        peers.unregister();
        log.clear();
    }
}

TEST_F(Destruction, traceOfTheWorkersEndCarriesTheStatusOfTheLastScan)
{
    startAndWait();
    launch(SDC_STATUS_SUB_BAND_ONGOING);
    ASSERT_TRUE(waitForWaits(1));
    log.clear();
    destroy();
    EXPECT_THAT(log.calls(), ElementsAreArray(Calls{ownEntry, exitEntry, exited + "sub-band-scan-finished"} + release));
}

TEST_F(Destruction, waitsForRunningSweepUntilTheReceiverIsRestored)
{
    startAndWait();
    launchAndHold();
    {
        BackgroundCall destruction([this] { destroy(); });
        const AtScopeEnd openSleep([this] { sleep.open(); });
        ASSERT_TRUE(eventually([this] { return log.count(exitEntry) == 1; }));
        EXPECT_TRUE(destruction.isStuck());
    }
    EXPECT_THAT(log.calls(),
        ElementsAreArray(
            Calls{ownEntry, exitEntry} + restOfTheSweep + Calls{waiting, exited + "channel-scan-finished"} + release));
}

TEST_F(Destruction, waitsForTheWorkersLastText)
{
    startAndWait();
    std::atomic<bool> mayEnd{false};
    at(exited + "scan-not-started", [&] { eventually([&] { return mayEnd.load(); }); });
    {
        BackgroundCall destruction([this] { destroy(); });
        const AtScopeEnd end([&] { mayEnd = true; });
        ASSERT_TRUE(eventually([this] { return log.count(exited + "scan-not-started") == 1; }));
        EXPECT_TRUE(destruction.isStuck());
        EXPECT_THAT(log.calls(), ElementsAre(ownEntry, exitEntry, exited + "scan-not-started"));
    }
    EXPECT_THAT(log.calls(), ElementsAreArray(Calls{ownEntry, exitEntry, exited + "scan-not-started"} + release));
}

TEST_F(Destruction, runsThroughEveryBase)
{
    const std::function<void(SpectrumDiagnosticsController*)> deletions[] = {
        [](ModuleInterface* base) { delete base; },
        [](ISpectrumDiagnosticsController* base) { delete base; },
        [](IInterface* base) { delete base; },
        [](SpectrumDiagnosticsController* whole) { delete whole; },
    };
    for (const auto& deletion : deletions) {
        startAndWait();
        deletion(controller.release());
        EXPECT_THAT(log.calls(), ElementsAreArray(Calls{ownEntry, exitEntry, exited + "scan-not-started"} + release));
        peers.unregister();
    }
}

TEST_F(Destruction, withoutInitialisationEndsNoWorker)
{
    construct();
    log.clear();
    destroy();
    EXPECT_THAT(log.calls(),
        ElementsAre(
            ownEntry, "broker.getInstance", "broker.unregister ISpectrumDiagnosticsController_7", "module.unregister"));
}

TEST_F(Destruction, afterFailedInitialisationEndsNoWorker)
{
    IInterface* const missing[] = {&peers.systemPowerController, &peers.rssiHandler, &peers.radio};
    for (const IInterface* const peer : missing) {
        construct();
        peers.unregister();
        peers.registerFor(7, peer);
        ASSERT_EQ(controller->onModuleInit(), 32768U);
        EXPECT_EQ(controller->onPhaseStop(), 0U);
        log.clear();
        destroy();
        EXPECT_THAT(log.calls(),
            ElementsAre(
                ownEntry, "broker.getInstance", "broker.unregister ISpectrumDiagnosticsController_7", "module.unregister"));
        peers.unregister();
    }
}

TEST_F(Destruction, takesOutItsOwnEntriesAndNoOther)
{
    startAndWait();
    const std::size_t interfaces = InterfaceBroker::getInstance().interfaces().size();
    const std::size_t modules = host::ModuleManager::instance().modules().size();
    destroy();
    EXPECT_EQ(InterfaceBroker::getInstance().interfaces().size(), interfaces - 1);
    EXPECT_EQ(InterfaceBroker::getInstance().interfaces().count("IRadio_7"), 1U);
    EXPECT_EQ(host::ModuleManager::instance().modules().size(), modules - 1);
}

TEST_F(Destruction, entryIsAskedForAtLevelSixAndTraceChangesNothing)
{
    startAndWait();
    setTraceLevel(PLX_TRACE_LEVEL_OFF);
    logQuestions();
    destroy();
    EXPECT_THAT(
        log.calls(), ElementsAreArray(Calls{"trace.isEnabled 6", "trace.isEnabled 6", "trace.isEnabled 5"} + release));
}

} // namespace

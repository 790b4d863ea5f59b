// The end of a controller: what it waits for and in which order it lets everything go.

#include "tests/support/ControllerFixture.h"

#include "Platform/Host/InterfaceBroker.h"

#include <gmock/gmock.h>

namespace {

using tests::AtScopeEnd;
using tests::BackgroundCall;
using tests::Calls;
using tests::eventually;
using tests::operator+;
using testing::ElementsAre;
using testing::ElementsAreArray;

class Destruction : public tests::ControllerFixture {
protected:
    const std::string ownEntry = "enter 6 ~SpectrumDiagnosticsController";
    const Calls release{"broker.getInstance", "broker.unregister ISpectrumDiagnosticsController_7", "provider.destroyed",
        "module.unregister"};
};

TEST_F(Destruction, endsAndJoinsTheIdleWorkerThenReleasesEverythingInOrder)
{
    const struct {
        std::uint32_t channel;
        std::string threadName;
        std::string interfaceName;
    } rows[] = {
        {0, "SpectDiagCtrl0", "ISpectrumDiagnosticsController_0"},
        {7, "SpectDiagCtrl7", "ISpectrumDiagnosticsController_7"},
        {2147483648, "SpectDiagCtrl-2147483648", "ISpectrumDiagnosticsController_2147483648"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.channel);
        startAndWait(row.channel);
        destroy();
        EXPECT_THAT(log.calls(),
            ElementsAre(ownEntry, "enter 6 exitThread: m_threadName=" + row.threadName, exited + "scan-not-started",
                "broker.getInstance", "broker.unregister " + row.interfaceName, "provider.destroyed", "module.unregister"));
        EXPECT_EQ(InterfaceBroker::getInstance().interfaces().size(), 6U) << "it takes out its own entry and no other";
        peers.unregister();
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
        ASSERT_TRUE(waitFor(exitEntry));
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
        ASSERT_TRUE(waitFor(exited + "scan-not-started"));
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

TEST_F(Destruction, withoutAWorkerEndsNone)
{
    prepare();
    destroy();
    EXPECT_THAT(log.calls(), ElementsAreArray(Calls{ownEntry} + release));
}

TEST_F(Destruction, afterFailedInitialisationEndsNoWorkerNorDoesTheStopPhaseNeedOne)
{
    for (const IInterface* const peer : peers.all()) {
        construct();
        peers.unregister();
        peers.registerFor(7, peer);
        ASSERT_EQ(controller->onModuleInit(), 32768U);
        log.clear();
        EXPECT_EQ(controller->onPhaseStop(), 0U);
        destroy();
        EXPECT_THAT(log.calls(),
            ElementsAre("enter 6 onPhaseStop", ownEntry, "broker.getInstance",
                "broker.unregister ISpectrumDiagnosticsController_7", "module.unregister"));
        peers.unregister();
    }
}

} // namespace

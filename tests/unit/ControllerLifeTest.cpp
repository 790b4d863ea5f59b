// The controller's life on the host's thread: the state's accessors, calls before initialisation, stop phase, destruction.

#include "tests/support/BackgroundCall.h"
#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <atomic>
#include <bit>
#include <functional>
#include <mutex>
#include <thread>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Controller = SpectrumDiagnosticsController;
using Interface = ISpectrumDiagnosticsController;

class ControllerLife : public support::ControllerFixture {};

TEST_F(ControllerLife, inheritedCallbacksReturnSuccessAndTouchNothing)
{
    construct(7);
    log.clear();
    ModuleInterface& module = *controller;
    EXPECT_EQ(module.onPhaseActivation(1, CALLBACK_PRIORITY_NORMAL), 0U);
    EXPECT_EQ(module.onModuleRegisterStorageObjects(), 0U);
    EXPECT_EQ(module.onPhaseStart(), 0U);
    EXPECT_EQ(module.onPhaseEnableAlarmThread(), 0U);
    EXPECT_THAT(log.calls(), IsEmpty());
    EXPECT_EQ(inspect().getState(), Controller::STATE_IDLE);
}

TEST_F(ControllerLife, setStateStoresWhatGetStateReturnsWithoutALock)
{
    construct(7);
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

TEST_F(ControllerLife, everySetStateWakesAllWaiters)
{
    construct(7);
    for (const Controller::State state : {Controller::STATE_SCAN, Controller::STATE_SCAN, Controller::STATE_IDLE}) {
        Waiters waiters(inspect(), 3);
        inspect().setState(state);
        EXPECT_EQ(waiters.join(), 3);
    }
}

TEST_F(ControllerLife, initializeTracesItsEntryAndStartsNothing)
{
    construct(4294967295);
    log.clear();
    EXPECT_EQ(controller->initialize(), 0);
    EXPECT_THAT(log.calls(), ElementsAre("enter 6 initialize: m_radioChannelId=4294967295"));
    EXPECT_FALSE(inspect().m_thread().joinable());
}

TEST_F(ControllerLife, callsBeforeInitialisationAreAnsweredWithoutPeers)
{
    construct(7);
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

TEST_F(ControllerLife, onPhaseStopSetsIdleFromEveryStateAndReturnsSuccess)
{
    construct(7);
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

TEST_F(ControllerLife, exitThreadTracesSetsExitAndGivesTheLockBack)
{
    construct(7);
    inspect().m_threadName() = "W";
    log.clear();
    inspect().exitThread();
    EXPECT_EQ(inspect().getState(), Controller::STATE_EXIT);
    EXPECT_THAT(log.calls(), ElementsAre("enter 6 exitThread: m_threadName=W"));
    EXPECT_TRUE(inspect().m_mutex().try_lock());
    inspect().m_mutex().unlock();
}

TEST_F(ControllerLife, stopPhaseAndExitWaitForTheLockBeforeTheyChangeTheState)
{
    construct(7);
    const ControllerInspector is = inspect();
    using Step = std::function<void()>;
    for (const Step& step : {Step([this] { controller->onPhaseStop(); }), Step([is] { is.exitThread(); })}) {
        is.setState(Controller::STATE_SCAN);
        log.clear();
        {
            std::unique_lock<std::mutex> sweepRuns(is.m_mutex());
            const support::BackgroundCall host(step);
            const support::AtScopeEnd letGo([&sweepRuns] { sweepRuns.unlock(); });
            EXPECT_TRUE(host.isStuck());
            EXPECT_EQ(is.getState(), Controller::STATE_SCAN);
        }
        EXPECT_NE(is.getState(), Controller::STATE_SCAN);
    }
}

TEST_F(ControllerLife, destructionWithoutAWorkerUnpublishesAndLeavesTheModuleListLast)
{
    construct(7);
    inspect().m_propertiesProvider() = peers.radio.createPropertiesProvider();
    log.clear();
    destroy();
    EXPECT_THAT(log.calls(),
        ElementsAre("enter 6 ~SpectrumDiagnosticsController", "broker.getInstance",
            "broker.unregister ISpectrumDiagnosticsController_7", "provider.destroyed", "module.unregister"));
}

TEST_F(ControllerLife, destructionEndsTheWorkerBeforeItUnpublishes)
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

TEST_F(ControllerLife, deletingItThroughEitherBaseRunsItsDestructor)
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

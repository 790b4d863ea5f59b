// onModuleInit's last steps: the worker thread, its name, and what happens when they fail.

#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <system_error>

#include <pthread.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WorkerStart : public tests::ControllerFixture {};

TEST_F(WorkerStart, givesTheOperatingSystemThreadItsName)
{
    start();
    char name[16] = "";
    ASSERT_EQ(pthread_getname_np(inspect().m_thread().native_handle(), name, sizeof name), 0);
    EXPECT_STREQ(name, "SpectDiagCtrl7");
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

TEST_F(WorkerStart, thatFailsIsTracedAndInitialisationSucceeds)
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
    EXPECT_EQ(inspect().m_threadName(), "SpectDiagCtrl5");
    EXPECT_FALSE(inspect().m_thread().joinable());
    log.clear();
    destroy();
    EXPECT_THAT(log.calls(),
        ElementsAre("enter 6 ~SpectrumDiagnosticsController", "broker.getInstance",
            "broker.unregister ISpectrumDiagnosticsController_5", "provider.destroyed", "module.unregister"));
}

TEST_F(WorkerStart, thatFailedIsMadeUpForByASecondInitialisation)
{
    construct(5);
    {
        const NoMoreThreads noMoreThreads;
        EXPECT_EQ(controller->onModuleInit(), 0U);
    }
    EXPECT_EQ(controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 0), SDC_RC_OK); // planned, and swept by nobody
    EXPECT_EQ(controller->onModuleInit(), 0U);
    EXPECT_EQ(log.count("provider.destroyed"), 1U); // the first one
    EXPECT_TRUE(waitForWaits(1));
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    EXPECT_TRUE(scan(SDC_CMD_SUB_BAND_SCAN_START));
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_SUB_BAND_SCAN_FINISHED);
}

TEST_F(WorkerStart, exceptionOnceTheWorkerRunsIsTracedAndInitialisationSucceeds)
{
    const struct {
        std::string place;
        std::function<void()> raise;
        std::string text;
    } rows[] = {
        {"thread.name SpectDiagCtrl7", [] { throw std::runtime_error("name: too long"); },
            "Thread SpectDiagCtrl7 caught exception [name: too long]."},
        {"thread.name SpectDiagCtrl7", [] { throw 42; },
            "Unknown exception when trying to create the thread SpectDiagCtrl7"},
        {"trace 5 Thread SpectDiagCtrl7 successfully created.", [] { throw std::runtime_error("trace is full"); },
            "Thread SpectDiagCtrl7 caught exception [trace is full]."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        construct();
        at(row.place, row.raise);
        trace.clear();
        log.clear();
        EXPECT_EQ(controller->onModuleInit(), 0U);
        EXPECT_THAT(traceTexts(1), ElementsAre(row.text));
        EXPECT_TRUE(waitForWaits(1));
        EXPECT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START)) << "the worker runs all the same";
        EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
        destroy();
        EXPECT_EQ(log.count(exited + "channel-scan-finished"), 1U);
        peers.unregister();
        setTraceLevel(PLX_TRACE_LEVEL_OFF);
        construct();
        at(row.place, row.raise);
        trace.clear();
        EXPECT_EQ(controller->onModuleInit(), 0U);
        destroy();
        EXPECT_THAT(trace.records(), IsEmpty());
        peers.unregister();
        setTraceLevel(PLX_TRACE_LEVEL_DETAIL);
    }
}

TEST_F(WorkerStart, exceptionOutOfTheReportOfAFailurePassesAndTheWorkerRuns)
{
    construct();
    log.onAdd([](const std::string& call) {
        if (call.starts_with("thread.name") || call.starts_with("trace 1 ")) {
            throw std::runtime_error("trace is full");
        }
    });
    EXPECT_THROW(controller->onModuleInit(), std::runtime_error);
    EXPECT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START));
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    destroy();
    EXPECT_EQ(log.count(exited + "channel-scan-finished"), 1U);
}

} // namespace

// onModuleInit's last steps: the worker thread, its name, and what happens when they fail.

#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <pthread.h>

#include <functional>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WorkerStart : public support::ControllerFixture {
protected:
    /// Initialises a controller whose worker's naming throws, and returns the messages that the host's thread traced.
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
        std::vector<std::string> messages = log.callsStartingWith("trace ");
        std::erase(messages, "trace 5 Thread SpectDiagCtrl7 waiting for none idle state");
        return messages;
    }
};

TEST_F(WorkerStart, threadNameCarriesTheChannelInSignedDecimal)
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

TEST_F(WorkerStart, operatingSystemThreadOfTheWorkerGetsTheName)
{
    start(7);
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

TEST_F(WorkerStart, aThreadThatCannotBeStartedIsTracedAndInitialisationSucceeds)
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
    EXPECT_EQ(inspect().m_radio(), &peers.radio);
    EXPECT_EQ(inspect().m_threadName(), "SpectDiagCtrl5");
    EXPECT_FALSE(inspect().m_thread().joinable());
    log.clear();
    destroy();
    EXPECT_THAT(log.calls(),
        ElementsAre("enter 6 ~SpectrumDiagnosticsController", "broker.getInstance",
            "broker.unregister ISpectrumDiagnosticsController_5", "provider.destroyed", "module.unregister"));
}

TEST_F(WorkerStart, secondInitialisationMakesUpForAThreadThatCouldNotBeStarted)
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

TEST_F(WorkerStart, standardExceptionIsTracedWithItsTextAndInitialisationSucceeds)
{
    EXPECT_THAT(traceOfInitWhen([] { throw std::runtime_error("name: too long"); }),
        ElementsAre("trace 1 Thread SpectDiagCtrl7 caught exception [name: too long]."));
}

TEST_F(WorkerStart, exceptionOfAnyOtherTypeIsTracedAsUnknownAndInitialisationSucceeds)
{
    EXPECT_THAT(traceOfInitWhen([] { throw 42; }),
        ElementsAre("trace 1 Unknown exception when trying to create the thread SpectDiagCtrl7"));
}

TEST_F(WorkerStart, aWorkerWithoutANameStillRunsAndIsJoined)
{
    traceOfInitWhen([] { throw std::runtime_error("no name"); });
    EXPECT_TRUE(inspect().m_thread().joinable());
    EXPECT_TRUE(scan(SDC_CMD_CHANNEL_SCAN_START));
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    destroy();
    EXPECT_EQ(log.count("trace 5 Thread exited with m_status channel-scan-finished"), 1U);
}

TEST_F(WorkerStart, failureOfTheSuccessTextIsCaughtLikeAFailureOfTheStart)
{
    construct(7);
    traceIntoLog.onWrite = [](const host::TraceRecord& record) {
        if (record.text.ends_with(" successfully created.")) {
            throw std::runtime_error("trace is full");
        }
    };
    EXPECT_EQ(controller->onModuleInit(), 0U);
    EXPECT_THAT(traceTexts(1), ElementsAre("Thread SpectDiagCtrl7 caught exception [trace is full]."));
    EXPECT_TRUE(waitForWaits(1));
}

TEST_F(WorkerStart, failuresAreTracedAtLevel1Only)
{
    const std::function<void()> failures[] = {[] { throw std::runtime_error("no name"); }, [] { throw 42; }};
    for (const auto& fail : failures) {
        setTraceLevel(0);
        construct(7);
        onHostEvent = [&fail](const std::string& event) {
            if (event == "thread.name SpectDiagCtrl7") {
                fail();
            }
        };
        EXPECT_EQ(controller->onModuleInit(), 0U);
        EXPECT_THAT(trace.records(), IsEmpty());
        destroy();
        onHostEvent = nullptr;
        peers.unregister();
    }
}

} // namespace

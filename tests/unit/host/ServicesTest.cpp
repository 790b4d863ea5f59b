#include "Platform/Host/DefaultSleepApi.h"
#include "Platform/Host/InterfaceBroker.h"
#include "Platform/Host/ModuleInterface.h"
#include "Platform/Host/PlxTrace.h"
#include "Platform/Host/thread_utilities.h"
#include "host/HostObserver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <pthread.h>

#include <future>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace {

using host::isHostObserved;
using host::setHostObserver;
using os_extension::thread_utilities::setName;
using testing::ElementsAre;
using testing::IsEmpty;

/// A thread that lives as long as this does.
struct WaitingThread {
    WaitingThread()
        : thread([this] { end.get_future().wait(); })
    {
    }
    ~WaitingThread()
    {
        end.set_value();
        thread.join();
    }
    WaitingThread(const WaitingThread&) = delete;
    WaitingThread& operator=(const WaitingThread&) = delete;

    std::string name()
    {
        char text[64] = {};
        pthread_getname_np(thread.native_handle(), text, sizeof text);
        return text;
    }

    std::promise<void> end;
    std::thread thread;
};

TEST(ThreadName, isGivenToTheThreadAndCutTo15Characters)
{
    WaitingThread waiting;
    setName(waiting.thread, "SpectDiagCtrl7");
    EXPECT_EQ(waiting.name(), "SpectDiagCtrl7");
    setName(waiting.thread, "fifteen letters");
    EXPECT_EQ(waiting.name(), "fifteen letters");
    setName(waiting.thread, "SpectDiagCtrl-2147483648");
    EXPECT_EQ(waiting.name(), "SpectDiagCtrl-2");
    setName(waiting.thread, "0123456789abcdef");
    EXPECT_EQ(waiting.name(), "0123456789abcde");
    setName(waiting.thread, "");
    EXPECT_EQ(waiting.name(), "");
}

TEST(ThreadName, cannotBeGivenToAThreadThatDoesNotRun)
{
    std::thread none;
    try {
        setName(none, "name");
        FAIL() << "named";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::invalid_argument);
    }
}

class Observer : public testing::Test {
protected:
    void TearDown() override { setHostObserver({}); }

    void observe()
    {
        setHostObserver([this](const std::string& event) { events.push_back(event); });
    }

    std::vector<std::string> events;
};

class SomeModule : public ModuleInterface {
public:
    SomeModule()
        : ModuleInterface(1, "name", 0, 0, nullptr, 0)
    {
    }
};

TEST_F(Observer, seesEveryUseOfTheHostInOrder)
{
    const PlxTrace trace("TEST.observer", PLX_TRACE_LEVEL_DEFAULT, PLX_TRACE_HDR_STANDARD);
    WaitingThread waiting;
    IInterface interface;
    observe();
    {
        const SomeModule module;
        InterfaceBroker& broker = InterfaceBroker::getInstance();
        broker.registerInterface("IRadio_7", &interface);
        broker.interfaces();
        broker.unregisterInterface("IRadio_7");
    }
    setName(waiting.thread, "a name longer than it may be");
    Util::DefaultSleepApi::get();
    trace.isEnabled(PLX_TRACE_LEVEL_ENTER);
    EXPECT_THAT(events,
        ElementsAre("module.register", "broker.getInstance", "broker.register IRadio_7", "broker.interfaces",
            "broker.unregister IRadio_7", "module.unregister", "thread.name a name longer than it may be", "sleep.get",
            "trace.isEnabled 6"));
}

TEST_F(Observer, seesNothingWhenItIsTakenAway)
{
    EXPECT_FALSE(isHostObserved());
    observe();
    EXPECT_TRUE(isHostObserved());
    setHostObserver({});
    EXPECT_FALSE(isHostObserved());
    Util::DefaultSleepApi::get();
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(Observer, isReplacedByTheNextOne)
{
    observe();
    int seenByOther = 0;
    setHostObserver([&](const std::string&) { ++seenByOther; });
    Util::DefaultSleepApi::get();
    EXPECT_EQ(seenByOther, 1);
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(Observer, makesAServiceFailByThrowingBeforeItActs)
{
    InterfaceBroker& broker = InterfaceBroker::getInstance();
    IInterface interface;
    ASSERT_EQ(broker.registerInterface("here", &interface), 0);
    WaitingThread waiting;
    const std::string nameBefore = waiting.name();
    setHostObserver([](const std::string& event) { throw std::runtime_error(event); });
    EXPECT_THROW(broker.registerInterface("new", &interface), std::runtime_error);
    EXPECT_THROW(broker.unregisterInterface("here"), std::runtime_error);
    EXPECT_THROW(setName(waiting.thread, "other"), std::runtime_error);
    EXPECT_THROW(Util::DefaultSleepApi::get(), std::runtime_error);
    EXPECT_THROW(InterfaceBroker::getInstance(), std::runtime_error);
    EXPECT_THROW(SomeModule{}, std::runtime_error);
    setHostObserver({});
    EXPECT_THAT(broker.interfaces(), ElementsAre(testing::Pair("here", &interface)));
    EXPECT_EQ(waiting.name(), nameBefore);
    broker.unregisterInterface("here");
}

} // namespace

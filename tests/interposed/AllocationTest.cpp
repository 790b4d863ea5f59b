// What a controller allocates, and what it does when memory runs out. This program takes the place of the global operator
// new and delete; its peers allocate nothing themselves.

#include "tests/support/BackgroundCall.h"
#include "tests/support/ControllerInspector.h"
#include "tests/support/FakePeers.h"
#include "tests/support/Waiting.h"

#include "Platform/Host/InterfaceBroker.h"
#include "host/Clock.h"
#include "host/ModuleManager.h"
#include "host/Trace.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <new>
#include <thread>

namespace {

std::atomic<std::size_t> nrOfAllocations{0};
std::atomic<std::int64_t> nrOfBlocks{0};   ///< allocated and not yet freed
std::atomic<std::int64_t> lettingPass{-1}; ///< so many allocations more succeed, then one fails; below 0: all do
thread_local bool isExempt = false;        ///< this thread's allocations neither fail nor count down

/// @return whether this allocation is the one to fail
bool isTurn()
{
    return !isExempt && lettingPass.load() >= 0 && lettingPass.fetch_sub(1) == 0;
}

} // namespace

// Not inlined: the compiler would take the pairs apart and find them mismatched.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    ++nrOfAllocations;
    void* const block = isTurn() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    ++nrOfBlocks;
    return block;
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

[[gnu::noinline]] void operator delete(void* block) noexcept
{
    if (block != nullptr) {
        --nrOfBlocks;
        std::free(block);
    }
}

[[gnu::noinline]] void operator delete[](void* block) noexcept
{
    operator delete(block);
}

[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}

[[gnu::noinline]] void operator delete[](void* block, std::size_t) noexcept
{
    operator delete(block);
}

namespace {

using Controller = SpectrumDiagnosticsController;

constexpr std::int32_t samplesOfAChannelScan = 14;

/// What this thread does on behalf of the test, not of the controller.
class Exempt {
public:
    Exempt() { isExempt = true; }
    ~Exempt() { isExempt = false; }
    Exempt(const Exempt&) = delete;
    Exempt& operator=(const Exempt&) = delete;
};

class NoSleep : public Util::SleepApi {
public:
    void sleepMs(std::uint32_t) override {}
};

std::ptrdiff_t nrOfThreads()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

/// The threads of a process that has had others: some sanitizers keep one from then on.
std::ptrdiff_t nrOfLastingThreads()
{
    tests::KernelThread gone;
    std::thread([&gone] { gone = tests::KernelThread::current(); }).join();
    EXPECT_TRUE(tests::eventually([&gone] { return !gone.exists(); }));
    return nrOfThreads();
}

ESDCStatus ongoingBefore(ESDCStatus finished)
{
    return finished == SDC_STATUS_CHANNEL_SCAN_FINISHED ? SDC_STATUS_CHANNEL_SCAN_ONGOING : SDC_STATUS_SUB_BAND_ONGOING;
}

/// One allocation of a controller's life fails, the n-th, for every n until a life needs no more. Only the controller's end
/// is left out: it forms a name, and a destructor that throws ends the process.
class AllocationCampaign : public testing::TestWithParam<PlxTraceLevel> {
protected:
    AllocationCampaign()
    {
        host::trace::setLevel("ZRP.SDC", GetParam());
        peers.radioCapability.parameters.stepLimitHigh = 2860; // seven samples in the sub-band
        peers.registerFor(7);
    }

    /// A life in which the allocation after so many fails. @return whether there was one
    bool live(std::int64_t nrOfPasses)
    {
        lettingPass = nrOfPasses;
        construct();
        if (controller != nullptr) {
            initialise();
            scan(SDC_CMD_CHANNEL_SCAN_START, SDC_STATUS_CHANNEL_SCAN_FINISHED);
            scan(SDC_CMD_SUB_BAND_SCAN_START, SDC_STATUS_SUB_BAND_SCAN_FINISHED);
            query();
            stop();
        }
        const bool hasFailed = lettingPass < 0;
        lettingPass = -1;
        controller.reset();
        return hasFailed;
    }

    void construct()
    {
        try {
            controller = std::make_unique<Controller>(RadioChannel{7});
        } catch (const std::bad_alloc&) {
            const Exempt test;
            EXPECT_TRUE(host::ModuleManager::instance().modules().empty());
            EXPECT_FALSE(InterfaceBroker::getInstance().interfaces().contains("ISpectrumDiagnosticsController_7"));
        }
    }

    /// A controller whose peers were not all bound, or that got no provider, was refused by its host: it gets no commands.
    void initialise()
    {
        try {
            hasInitialised = controller->onModuleInit() == SDC_RC_OK;
            EXPECT_TRUE(hasInitialised);
        } catch (const std::bad_alloc&) {
            hasInitialised = false;
        }
    }

    void scan(ESDCCommand command, ESDCStatus finished)
    {
        if (!hasInitialised) {
            return;
        }
        const ControllerInspector members(*controller);
        const auto before = members.getState();
        try {
            const std::lock_guard<std::mutex> workerWaits(members.m_mutex());
            errno = 77;
            EXPECT_EQ(controller->setCommand(command, 0), SDC_RC_OK);
            EXPECT_EQ(errno, 77);
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(members.getState(), before); // refused as a whole
            return;
        }
        waitForTheEnd();
        if (members.getState() == Controller::STATE_IDLE) {
            EXPECT_EQ(members.m_status(), finished);
            EXPECT_EQ(peers.frequencyController.receiver_kHz, 18000000U);
            EXPECT_EQ(members.m_results().size(), static_cast<std::size_t>(members.m_totalNrOfSamples()));
        } else { // as the worker left it when memory ran out
            EXPECT_EQ(members.getState(), Controller::STATE_SCAN);
            EXPECT_TRUE(before != Controller::STATE_IDLE || members.m_status() == ongoingBefore(finished));
            EXPECT_LE(
                members.m_results().size(), static_cast<std::size_t>(samplesOfAChannelScan)); // the last sweep's, perhaps
        }
    }

    void waitForTheEnd() const
    {
        const Exempt test;
        EXPECT_TRUE(tests::eventually([this] {
            return ControllerInspector(*controller).getState() == Controller::STATE_IDLE || nrOfThreads() == threadsBefore;
        }));
    }

    /// A thread that has been joined may be listed for a moment longer.
    bool areThreadsGone() const
    {
        return tests::eventually([this] { return nrOfThreads() == threadsBefore; });
    }

    void query()
    {
        try {
            std::array<SDCResult, 2 * samplesOfAChannelScan> samples{};
            std::int32_t count = samples.size();
            controller->getStatus();
            controller->getProgress();
            EXPECT_EQ(controller->getResult(&count, samples.data()), SDC_RC_OK);
            EXPECT_LE(count, samplesOfAChannelScan);
        } catch (const std::bad_alloc&) {
            EXPECT_NE(GetParam(), PLX_TRACE_LEVEL_OFF); // a query needs memory for its trace alone
        }
    }

    void stop()
    {
        try {
            controller->setCommand(SDC_CMD_SCAN_STOP, 0);
            EXPECT_EQ(controller->getStatus(), SDC_STATUS_SCAN_NOT_STARTED);
            controller->onPhaseStop();
            EXPECT_EQ(ControllerInspector(*controller).getState(), Controller::STATE_IDLE);
        } catch (const std::bad_alloc&) {
            EXPECT_NE(GetParam(), PLX_TRACE_LEVEL_OFF);
        }
    }

    tests::FakePeers peers;
    NoSleep sleep;
    host::SleepServiceInForce sleepInForce{sleep};
    std::unique_ptr<Controller> controller;
    bool hasInitialised = false;
    std::ptrdiff_t threadsBefore = nrOfLastingThreads();
};

TEST_P(AllocationCampaign, theNthAllocationFailsForEveryN)
{
    live(1000000); // whatever the libraries allocate once for good
    std::int64_t nth = 0;
    bool hasFailed = true;
    for (; hasFailed; ++nth) {
        const std::int64_t blocksBefore = nrOfBlocks;
        hasFailed = live(nth);
        ASSERT_EQ(nrOfBlocks, blocksBefore) << "leaked, when allocation " << nth << " failed";
        ASSERT_TRUE(areThreadsGone()) << "a thread is left, when allocation " << nth << " failed";
        ASSERT_FALSE(InterfaceBroker::getInstance().interfaces().contains("ISpectrumDiagnosticsController_7")) << nth;
        ASSERT_FALSE(HasFailure()) << "when allocation " << nth << " failed";
    }
    EXPECT_GT(nth, 15) << "a life needs more memory than that";
}

INSTANTIATE_TEST_SUITE_P(TraceOff, AllocationCampaign, testing::Values(PLX_TRACE_LEVEL_OFF));
INSTANTIATE_TEST_SUITE_P(TraceOn, AllocationCampaign, testing::Values(PLX_TRACE_LEVEL_DETAIL));

/// A sweep on the test's thread.
class SweepAllocation : public testing::Test {
protected:
    static constexpr std::int32_t nrOfSamples = 70;

    SweepAllocation()
    {
        host::trace::setLevel("ZRP.SDC", PLX_TRACE_LEVEL_DEFAULT);
        peers.frequencyController.onSetRxFrequency = [this](std::uint32_t) {
            allocationsBefore.at(nrOfTunings++) = nrOfAllocations;
            return 0;
        };
        inspect.m_frequencyController() = &peers.frequencyController;
        inspect.m_rssiHandler() = &peers.rssiHandler;
        inspect.m_propertiesProvider() = peers.radio.createPropertiesProvider();
        inspect.m_threadName() = "SpectDiagCtrl7";
        inspect.m_scanLowestRxFrequency_kHz() = 100000;
        inspect.m_scanHighestRxFrequency_kHz() = 200000;
        inspect.m_scanStep_kHz() = 50;
        inspect.m_totalNrOfSamples() = nrOfSamples;
        request();
    }

    void request()
    {
        nrOfTunings = 0;
        inspect.m_status() = SDC_STATUS_CHANNEL_SCAN_ONGOING;
        inspect.m_state() = Controller::STATE_SCAN;
    }

    /// Does something, and expects a trace of one error of this text.
    static void expectError(const std::function<void()>& action, const std::string& text)
    {
        host::RecordingTraceSink trace;
        host::trace::addSink(trace);
        action();
        lettingPass = -1;
        host::trace::removeSink(trace);
        const std::vector<host::TraceRecord> records = trace.records();
        ASSERT_EQ(records.size(), 1U);
        EXPECT_EQ(records[0].level, PLX_TRACE_LEVEL_ERROR);
        EXPECT_EQ(records[0].text, text);
    }

    NoSleep sleep;
    host::SleepServiceInForce sleepInForce{sleep};
    tests::FakePeers peers;
    std::array<std::size_t, nrOfSamples + 1> allocationsBefore{}; ///< each tuning, the restore included
    std::size_t nrOfTunings = 0;
    Controller controller{RadioChannel{7}};
    ControllerInspector inspect{controller};
};

TEST_F(SweepAllocation, onlyTheGrowthOfTheSamplesAllocatesAndASecondSweepNothing)
{
    std::array<std::size_t, nrOfSamples + 1> expected{};
    std::vector<SDCResult> grown;
    for (std::size_t step = 1; step < expected.size(); ++step) {
        const std::size_t before = grown.capacity();
        grown.push_back({});
        expected.at(step) = expected.at(step - 1) + (grown.capacity() == before ? 0 : 1);
    }
    const std::size_t atStart = nrOfAllocations;
    inspect.runScan();
    const std::size_t atEnd = nrOfAllocations;
    for (std::size_t& count : allocationsBefore) {
        count -= atStart;
    }
    EXPECT_EQ(allocationsBefore, expected);
    EXPECT_EQ(atEnd - atStart, expected.back());
    for (const std::uint32_t level : {0U, 1U, 3U, 4U}) { // of the trace: what is off builds no text
        host::trace::setLevel("ZRP.SDC", static_cast<PlxTraceLevel>(level));
        request();
        const std::size_t before = nrOfAllocations;
        inspect.runScan();
        EXPECT_EQ(nrOfAllocations, before);
        EXPECT_EQ(inspect.m_results().size(), std::size_t{nrOfSamples});
    }
}

TEST_F(SweepAllocation, memoryThatRunsOutEndsTheWorkerAndKeepsTheSamplesTakenBefore)
{
    inspect.m_progress() = 42;
    peers.rssiHandler.onReadRssi = [reading = 0](std::int32_t& rssi) mutable {
        rssi = -4500;
        lettingPass = ++reading == 3 ? 0 : -1; // the third sample needs more room
        return 0;
    };
    expectError([this] { inspect.scanThread(); }, "Exception timerThread SpectDiagCtrl7: std::bad_alloc");
    EXPECT_EQ(inspect.m_results().size(), 2U);
    EXPECT_EQ(inspect.m_nrOfSamplesDone(), 2);
    EXPECT_EQ(inspect.m_progress(), 1);
    EXPECT_EQ(nrOfTunings, 3U);
    EXPECT_EQ(inspect.getState(), Controller::STATE_SCAN);
    EXPECT_EQ(inspect.m_status(), SDC_STATUS_CHANNEL_SCAN_ONGOING);
    std::array<SDCResult, 2> samples{};
    std::int32_t count = 2;
    EXPECT_EQ(controller.getResult(&count, samples.data()), SDC_RC_OK); // nobody holds the samples' guard
    EXPECT_EQ(samples[1].frequency_kHz, 100050U);
}

/// Lets memory run out when it goes: the next thing that allocates is whatever follows its replacement.
struct FailingWhenGone : IRadioPropertiesProvider {
    ~FailingWhenGone() override { lettingPass = 0; }
    std::int32_t getProperties(SDCProperties&) override { return 0; }
    void getUnitInfo(UnitInfo&) override {}
};

TEST_F(SweepAllocation, memoryThatRunsOutForTheThreadsNameIsTracedAndInitialisationSucceeds)
{
    constexpr std::uint32_t channel = 2147483647; // too long a name for a string without memory of its own
    peers.registerFor(channel);
    Controller other{RadioChannel{channel}};
    const ControllerInspector inspectOther{other};
    inspectOther.m_propertiesProvider() = std::make_unique<FailingWhenGone>();
    expectError([&other] { EXPECT_EQ(other.onModuleInit(), 0U); }, "Thread  caught exception [std::bad_alloc].");
    EXPECT_EQ(inspectOther.m_threadName(), "");
    EXPECT_FALSE(inspectOther.m_thread().joinable());
}

TEST_F(SweepAllocation, memoryThatRunsOutForANameReachesTheCaller)
{
    const std::string prefix(100, 'x'); // no string has room of its own for it
    const std::function<std::string()> names[] = {[&prefix] { return IInterface::interfaceName(prefix, 0U); },
        [&prefix] { return IInterface::interfaceName(prefix, 7U); },
        [&prefix] { return IInterface::interfaceName(prefix, RadioChannel{0}); }};
    for (const std::function<std::string()>& name : names) {
        lettingPass = 0;
        EXPECT_THROW(name(), std::bad_alloc);
        lettingPass = -1;
    }
}

} // namespace

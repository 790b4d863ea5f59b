// One allocation of a controller's life fails, the n-th, for every n until a life needs no more. Only the controller's end
// is left out: it forms a name, and a destructor that throws ends the process.

#include "tests/support/BackgroundCall.h"
#include "tests/support/ControllerInspector.h"
#include "tests/support/PlainPeers.h"
#include "tests/support/ReplacedAllocation.h"
#include "tests/support/Waiting.h"

#include "Platform/Host/InterfaceBroker.h"
#include "host/Clock.h"
#include "host/ModuleManager.h"
#include "host/Trace.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <memory>
#include <mutex>
#include <new>

namespace {

using State = SpectrumDiagnosticsController;
using support::memory::isExempt;
using support::memory::lettingPass;
using support::memory::nrOfBlocks;

constexpr std::uint32_t configured_kHz = support::PlainPeers::configured_kHz;
constexpr std::int32_t samplesOfAChannelScan = support::PlainPeers::samplesOfAChannelScan;

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
    support::KernelThread gone;
    std::thread([&gone] { gone = support::KernelThread::current(); }).join();
    EXPECT_TRUE(support::eventually([&gone] { return !gone.exists(); }));
    return nrOfThreads();
}

ESDCStatus ongoingBefore(ESDCStatus finished)
{
    return finished == SDC_STATUS_CHANNEL_SCAN_FINISHED ? SDC_STATUS_CHANNEL_SCAN_ONGOING : SDC_STATUS_SUB_BAND_ONGOING;
}

class AllocationCampaign : public testing::TestWithParam<PlxTraceLevel> {
protected:
    AllocationCampaign() { host::trace::setLevel("ZRP.SDC", GetParam()); }

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
            controller = std::make_unique<SpectrumDiagnosticsController>(RadioChannel{7});
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
        if (members.getState() == State::STATE_IDLE) {
            EXPECT_EQ(members.m_status(), finished);
            EXPECT_EQ(peers.receiver_kHz(), configured_kHz);
            EXPECT_EQ(members.m_results().size(), static_cast<std::size_t>(members.m_totalNrOfSamples()));
        } else { // as the worker left it when memory ran out
            EXPECT_EQ(members.getState(), State::STATE_SCAN);
            EXPECT_TRUE(before != State::STATE_IDLE || members.m_status() == ongoingBefore(finished));
            EXPECT_LE(
                members.m_results().size(), static_cast<std::size_t>(samplesOfAChannelScan)); // the last sweep's, perhaps
        }
    }

    void waitForTheEnd() const
    {
        const Exempt test;
        EXPECT_TRUE(support::eventually([this] {
            return ControllerInspector(*controller).getState() == State::STATE_IDLE || nrOfThreads() == threadsBefore;
        }));
    }

    /// A thread that has been joined may be listed for a moment longer.
    bool areThreadsGone() const
    {
        return support::eventually([this] { return nrOfThreads() == threadsBefore; });
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
            EXPECT_EQ(ControllerInspector(*controller).getState(), State::STATE_IDLE);
        } catch (const std::bad_alloc&) {
            EXPECT_NE(GetParam(), PLX_TRACE_LEVEL_OFF);
        }
    }

    support::PlainPeers peers{7};
    NoSleep sleep;
    host::SleepServiceInForce sleepInForce{sleep};
    std::unique_ptr<SpectrumDiagnosticsController> controller;
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

} // namespace

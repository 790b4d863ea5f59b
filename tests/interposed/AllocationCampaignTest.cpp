// Memory runs out at the n-th allocation of a controller's life, for every n until a life needs no more. Only the
// controller's end is left out: it forms a name, and a destructor that throws ends the process.

#include "tests/support/ControllerInspector.h"
#include "tests/support/FakePeers.h"
#include "tests/support/ReplacedAllocation.h"
#include "tests/support/Waiting.h"

#include "Platform/Host/InterfaceBroker.h"
#include "simulator/host/Clock.h"
#include "simulator/host/ModuleManager.h"
#include "simulator/host/Trace.h"

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

constexpr std::uint32_t configured_kHz = 18000000;
constexpr std::int32_t samplesOfAChannelScan = 14;

/// What this thread does on behalf of the test, not of the controller.
class Exempt {
public:
    Exempt() { isExempt = true; }
    ~Exempt() { isExempt = false; }
    Exempt(const Exempt&) = delete;
    Exempt& operator=(const Exempt&) = delete;
};

class Provider : public IRadioPropertiesProvider {
public:
    std::int32_t getProperties(SDCProperties& properties) override
    {
        properties = {};
        return 0;
    }
    void getUnitInfo(UnitInfo& unitInfo) override { unitInfo.typeText = "KLM6"; }
};

/// The peers of a channel, which need no memory themselves.
struct Peers : IFrameFormat, IFrequencyController, IRssiHandler, IRadioCapability, IRadio, ISystemPowerController {
    std::uint32_t getChannelSpacing() override { return 28000; }
    std::uint32_t getRxFrequency() override { return configured_kHz; }
    std::int32_t setRxFrequency(std::uint32_t frequency_kHz, bool) override
    {
        receiver_kHz = frequency_kHz;
        return 0;
    }
    std::int32_t readRssi(std::int32_t& rssi) override
    {
        rssi = -4500;
        return 0;
    }
    RadioFrequencyParameters getFrequencyParameters() override
    {
        return {18, {}, 17700000, 19700000, 250, 0, 17000000, {}, 2800, 2860};
    }
    std::unique_ptr<IRadioPropertiesProvider> createPropertiesProvider() override { return std::make_unique<Provider>(); }

    std::atomic<std::uint32_t> receiver_kHz{configured_kHz};
};

class NoSleep : public Util::SleepApi {
public:
    void sleepMs(std::uint32_t) override {}
};

std::ptrdiff_t nrOfThreads()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

class AllocationCampaign : public testing::TestWithParam<PlxTraceLevel> {
protected:
    AllocationCampaign()
    {
        simulator::trace::setLevel("ZRP.SDC", GetParam());
        auto& broker = InterfaceBroker::getInstance();
        broker.registerInterface("ISystemPowerController_7", static_cast<ISystemPowerController*>(&peers));
        broker.registerInterface("IFrameFormat_7", static_cast<IFrameFormat*>(&peers));
        broker.registerInterface("IFrequencyController_7", static_cast<IFrequencyController*>(&peers));
        broker.registerInterface("IRssiHandler_7", static_cast<IRssiHandler*>(&peers));
        broker.registerInterface("IRadioCapability_7", static_cast<IRadioCapability*>(&peers));
        broker.registerInterface("IRadio_7", static_cast<IRadio*>(&peers));
    }
    ~AllocationCampaign() override
    {
        for (const char* const name : {"ISystemPowerController_7", "IFrameFormat_7", "IFrequencyController_7",
                 "IRssiHandler_7", "IRadioCapability_7", "IRadio_7"}) {
            InterfaceBroker::getInstance().unregisterInterface(name);
        }
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
            controller = std::make_unique<SpectrumDiagnosticsController>(RadioChannel{7});
        } catch (const std::bad_alloc&) {
            const Exempt test;
            EXPECT_TRUE(simulator::ModuleManager::instance().modules().empty());
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
            EXPECT_EQ(peers.receiver_kHz, configured_kHz);
        } else {
            EXPECT_EQ(members.getState(), State::STATE_SCAN); // as the worker left it when memory ran out
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

    Peers peers;
    NoSleep sleep;
    simulator::SleepServiceInForce sleepInForce{sleep};
    std::unique_ptr<SpectrumDiagnosticsController> controller;
    bool hasInitialised = false;
    std::ptrdiff_t threadsBefore = nrOfThreads();
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

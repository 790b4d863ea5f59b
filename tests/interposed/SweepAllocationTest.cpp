// What a sweep allocates: counted in the place of the global operator new, with peers that allocate nothing themselves.

#include "tests/support/ControllerInspector.h"
#include "tests/support/FakePeers.h"
#include "tests/support/ReplacedAllocation.h"

#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRadio.h"
#include "Platform/Radio/IRssiHandler.h"
#include "host/Clock.h"
#include "host/Trace.h"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <string>

namespace {

using support::memory::lettingPass;
using support::memory::nrOfAllocations;
using testing::ElementsAre;

constexpr std::int32_t nrOfSamples = 70;

/// Notes how often was allocated before each tuning, the restore included.
class CountingFrequencyController : public IFrequencyController {
public:
    std::uint32_t getRxFrequency() override { return 0; }
    std::int32_t setRxFrequency(std::uint32_t, bool) override
    {
        allocationsBefore.at(nrOfTunings++) = nrOfAllocations;
        return 0;
    }

    std::array<std::size_t, nrOfSamples + 1> allocationsBefore{};
    std::size_t nrOfTunings = 0;
};

/// Lets memory run out after a reading.
class QuietRssiHandler : public IRssiHandler {
public:
    std::int32_t readRssi(std::int32_t& rssi) override
    {
        rssi = -4500;
        lettingPass = ++nrOfReadings == failingReading ? 0 : -1;
        return 0;
    }

    int nrOfReadings = 0;
    int failingReading = 0;
};

class QuietProvider : public IRadioPropertiesProvider {
public:
    std::int32_t getProperties(SDCProperties&) override { return 0; }
    void getUnitInfo(UnitInfo&) override {}
};

/// Lets memory run out when it goes: the next thing that allocates is whatever follows its replacement.
class FailingWhenGone : public QuietProvider {
public:
    ~FailingWhenGone() override { lettingPass = 0; }
};

class QuietSleep : public Util::SleepApi {
public:
    void sleepMs(std::uint32_t) override {}
};

class SweepAllocation : public testing::Test {
protected:
    SweepAllocation()
    {
        host::trace::setLevel("ZRP.SDC", PLX_TRACE_LEVEL_DEFAULT);
        inspect.m_frequencyController() = &frequencyController;
        inspect.m_rssiHandler() = &rssiHandler;
        inspect.m_propertiesProvider() = std::make_unique<QuietProvider>();
        inspect.m_threadName() = "SpectDiagCtrl7";
        inspect.m_scanLowestRxFrequency_kHz() = 100000;
        inspect.m_scanHighestRxFrequency_kHz() = 200000;
        inspect.m_scanStep_kHz() = 50;
        inspect.m_totalNrOfSamples() = nrOfSamples;
        request();
    }

    void request()
    {
        frequencyController.nrOfTunings = 0;
        inspect.m_status() = SDC_STATUS_CHANNEL_SCAN_ONGOING;
        inspect.m_state() = SpectrumDiagnosticsController::STATE_SCAN;
    }

    QuietSleep sleep;
    host::SleepServiceInForce sleepInForce{sleep};
    CountingFrequencyController frequencyController;
    QuietRssiHandler rssiHandler;
    SpectrumDiagnosticsController controller{RadioChannel{7}};
    ControllerInspector inspect{controller};
};

TEST_F(SweepAllocation, onlyTheGrowthOfTheSamplesAllocates)
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
    for (std::size_t& count : frequencyController.allocationsBefore) {
        count -= atStart;
    }
    EXPECT_EQ(frequencyController.allocationsBefore, expected);
    EXPECT_EQ(atEnd - atStart, expected.back());
    EXPECT_EQ(inspect.m_results().size(), std::size_t{nrOfSamples});
}

TEST_F(SweepAllocation, sweepThatFindsRoomAllocatesNothing)
{
    inspect.runScan();
    request();
    const std::size_t atStart = nrOfAllocations;
    inspect.runScan();
    EXPECT_EQ(nrOfAllocations, atStart);
    EXPECT_EQ(inspect.m_results().size(), std::size_t{nrOfSamples});
}

TEST_F(SweepAllocation, levelsThatAreOffBuildNoText)
{
    for (const std::uint32_t level : {0U, 1U, 4U}) {
        host::trace::setLevel("ZRP.SDC", static_cast<PlxTraceLevel>(level));
        inspect.m_results().reserve(nrOfSamples);
        request();
        const std::size_t atStart = nrOfAllocations;
        inspect.runScan();
        EXPECT_EQ(nrOfAllocations, atStart) << level;
    }
}

TEST_F(SweepAllocation, memoryThatRunsOutEndsTheWorkerAndKeepsTheSamplesTakenBefore)
{
    host::RecordingTraceSink trace;
    host::trace::addSink(trace);
    inspect.m_progress() = 42;
    rssiHandler.failingReading = 3; // the third sample needs more room
    inspect.scanThread();
    host::trace::removeSink(trace);
    const std::vector<host::TraceRecord> records = trace.records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].level, PLX_TRACE_LEVEL_ERROR);
    EXPECT_EQ(records[0].text, "Exception timerThread SpectDiagCtrl7: std::bad_alloc");
    EXPECT_EQ(inspect.m_results().size(), 2U);
    EXPECT_EQ(inspect.m_nrOfSamplesDone(), 2);
    EXPECT_EQ(inspect.m_progress(), 1);
    EXPECT_EQ(frequencyController.nrOfTunings, 3U);
    EXPECT_EQ(inspect.getState(), SpectrumDiagnosticsController::STATE_SCAN);
    EXPECT_EQ(inspect.m_status(), SDC_STATUS_CHANNEL_SCAN_ONGOING);
    std::array<SDCResult, 2> samples{};
    std::int32_t count = 2;
    EXPECT_EQ(controller.getResult(&count, samples.data()), SDC_RC_OK); // nobody holds the samples' guard
    EXPECT_EQ(samples[1].frequency_kHz, 100050U);
}

TEST_F(SweepAllocation, memoryThatRunsOutForTheThreadsNameIsTracedAndInitialisationSucceeds)
{
    constexpr std::uint32_t channel = 2147483647; // too long a name for a string without memory of its own
    support::CallLog log;
    support::FakePeers peers(log);
    peers.registerFor(channel);
    SpectrumDiagnosticsController other{RadioChannel{channel}};
    const ControllerInspector inspectOther{other};
    inspectOther.m_propertiesProvider() = std::make_unique<FailingWhenGone>();
    host::RecordingTraceSink trace;
    host::trace::addSink(trace);
    EXPECT_EQ(other.onModuleInit(), 0U);
    lettingPass = -1;
    host::trace::removeSink(trace);
    const std::vector<host::TraceRecord> records = trace.records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].level, PLX_TRACE_LEVEL_ERROR);
    EXPECT_EQ(records[0].text, "Thread  caught exception [std::bad_alloc].");
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
        bool isOut = false;
        lettingPass = 0;
        try {
            name();
        } catch (const std::bad_alloc&) {
            isOut = true;
        }
        lettingPass = -1;
        EXPECT_TRUE(isOut);
    }
}

} // namespace

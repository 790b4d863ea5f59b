// The samples and the properties of a sweep, and who may look at them meanwhile.

#include "tests/support/SweepFixture.h"

#include <gmock/gmock.h>

#include <future>
#include <tuple>
#include <utility>

namespace {

using testing::ElementsAre;

std::tuple<int, int, int, int> bytesOf(const SDCProperties& properties)
{
    return {properties.longHaul, properties.extendedRxWait, properties.slowRxWait, properties.spareFlag};
}

class SweepSamples : public support::SweepFixture {
protected:
    SweepSamples() { prepare(); }
};

TEST_F(SweepSamples, secondSweepClearsThoseOfTheFirstOnlyAfterItsParameterDump)
{
    inspect().runScan();
    setPlan({200000, 200000, 50, 9});
    using SamplesAndCount = std::pair<std::size_t, std::int32_t>;
    std::vector<SamplesAndCount> atEachCall;
    log.onAdd = [&](const std::string&) {
        atEachCall.emplace_back(inspect().m_results().size(), inspect().m_nrOfSamplesDone());
    };
    inspect().runScan();
    log.onAdd = nullptr;
    std::vector<SamplesAndCount> expected(11, {3, 3});         // entry, properties, nine lines of the dump
    expected.insert(expected.end(), 7, SamplesAndCount{0, 0}); // the only step
    expected.emplace_back(1, 1);                               // restore
    EXPECT_EQ(atEachCall, expected);
    EXPECT_THAT(samples(), ElementsAre(SDCResult{200000, -4500}));
}

TEST_F(SweepSamples, clearKeepsTheStorage)
{
    setPlan({100000, 200000, 1, 40});
    inspect().runScan();
    const SDCResult* const storage = inspect().m_results().data();
    const std::size_t capacity = inspect().m_results().capacity();
    setPlan({});
    inspect().runScan();
    EXPECT_EQ(inspect().m_results().size(), 3U);
    EXPECT_EQ(inspect().m_results().data(), storage);
    EXPECT_EQ(inspect().m_results().capacity(), capacity);
}

TEST_F(SweepSamples, nothingIsReservedInAdvance)
{
    setPlan({100000, 200000, 1, 70});
    std::vector<std::size_t> capacities;
    peers.frequencyController.onSetRxFrequency = [&](std::uint32_t) {
        capacities.push_back(inspect().m_results().capacity());
        return 0;
    };
    inspect().runScan();
    std::vector<std::size_t> ordinary{0};
    std::vector<SDCResult> grown;
    for (int sample = 0; sample < 70; ++sample) {
        grown.push_back({});
        ordinary.push_back(grown.capacity());
    }
    EXPECT_EQ(capacities, ordinary);
}

TEST_F(SweepSamples, samplesTakenSoFarAreVisibleAtEveryStep)
{
    std::vector<std::size_t> visible;
    peers.rssiHandler.onReadRssi = [&](std::int32_t& rssi) {
        visible.push_back(samples().size());
        rssi = -5000;
        return 0;
    };
    inspect().runScan();
    EXPECT_THAT(visible, ElementsAre(0, 1, 2));
}

TEST_F(SweepSamples, readingThatWritesNothingIsZeroWhateverWasReadBefore)
{
    peers.rssiHandler.onReadRssi = [reading = 0](std::int32_t& rssi) mutable {
        if (++reading == 2) {
            rssi = -4500;
        }
        return 0;
    };
    inspect().runScan();
    EXPECT_THAT(samples(), ElementsAre(SDCResult{100000, 0}, SDCResult{100050, -4500}, SDCResult{100100, 0}));
}

TEST_F(SweepSamples, othersReadTheSamplesWhileThePeersAndTheHostAreCalled)
{
    std::vector<std::future<std::size_t>> reads; // outlives the calls: a read that must wait for one ends after it
    setTraceLevel(PLX_TRACE_LEVEL_OFF);
    log.onAdd = [&](const std::string& call) {
        reads.push_back(std::async(std::launch::async, [this] { return samples().size(); }));
        EXPECT_EQ(reads.back().wait_for(support::hangLimit), std::future_status::ready) << "during " << call;
    };
    inspect().runScan();
    log.onAdd = nullptr;
    std::vector<std::size_t> sizes;
    for (std::future<std::size_t>& read : reads) {
        sizes.push_back(read.get());
    }
    EXPECT_THAT(sizes, ElementsAre(0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3));
}

TEST_F(SweepSamples, sweepIsCalledAndReturnsWithTheWorkersLockHeld)
{
    std::vector<bool> isFree;
    log.onAdd = [&](const std::string&) { isFree.push_back(isMutexFree()); };
    const std::lock_guard<std::mutex> held(inspect().m_mutex());
    inspect().runScan();
    log.onAdd = nullptr;
    EXPECT_THAT(isFree, testing::Each(false));
    EXPECT_FALSE(isMutexFree());
}

TEST_F(SweepSamples, sampleIsStoredAfterItsTraceAndBeforeTheNextTuning)
{
    std::vector<std::size_t> held;
    log.onAdd = [&](const std::string& call) {
        if (call.starts_with("trace 7 Read RSSI") || call.starts_with("IFrequencyController")) {
            held.push_back(inspect().m_results().size());
        }
    };
    inspect().runScan();
    log.onAdd = nullptr;
    EXPECT_THAT(held, ElementsAre(0, 0, 1, 1, 2, 2, 3));
}

TEST_F(SweepSamples, propertiesAreRefreshedBeforeTheParameterDumpWhateverTheResult)
{
    for (const std::int32_t result : {0, 32767, 32768, -1}) {
        SCOPED_TRACE(result);
        prepare();
        peers.radio.properties = {1, 2, 3, 255};
        peers.radio.propertiesResult = result;
        SDCProperties atDump{};
        at("trace 5              m_radioChannelId = 7", [&] { atDump = inspect().m_properties(); });
        inspect().runScan();
        EXPECT_EQ(bytesOf(atDump), std::make_tuple(1, 2, 3, 255));
        EXPECT_EQ(bytesOf(inspect().m_properties()), std::make_tuple(1, 2, 3, 255));
        EXPECT_EQ(log.count("provider.getProperties"), 1U);
        EXPECT_EQ(samples().size(), 3U);
    }
}

TEST_F(SweepSamples, refreshOverwritesAQueryOfThatMoment)
{
    peers.radio.onGetProperties = [this, isInSweep = false]() mutable {
        if (!std::exchange(isInSweep, true)) { // the sweep's call; the query's falls into it
            peers.radio.properties = {1, 2, 3, 4};
            EXPECT_EQ(bytesOf(controller->getSpectrumDiagnosticsProperties()), std::make_tuple(1, 2, 3, 4));
            peers.radio.properties = {5, 6, 7, 8};
        }
    };
    inspect().runScan();
    EXPECT_EQ(bytesOf(inspect().m_properties()), std::make_tuple(5, 6, 7, 8));
}

TEST_F(SweepSamples, refreshedPropertiesDoNotChangeTheDelaysOfThisSweep)
{
    peers.radio.properties = {1, 1, 1, 1};
    inspect().runScan();
    EXPECT_THAT(log.callsStartingWith("sleepMs"), ElementsAre("sleepMs 3000", "sleepMs 300", "sleepMs 300"));
}

TEST_F(SweepSamples, providerSeesTheRecordAsItStands)
{
    class SparingProvider : public IRadioPropertiesProvider {
    public:
        std::int32_t getProperties(SDCProperties& properties) override
        {
            properties.spareFlag = 9;
            return 0;
        }
        void getUnitInfo(UnitInfo&) override {}
    };
    inspect().m_propertiesProvider() = std::make_unique<SparingProvider>();
    inspect().m_properties() = SDCProperties{5, 6, 7, 8};
    inspect().runScan();
    EXPECT_EQ(bytesOf(inspect().m_properties()), std::make_tuple(5, 6, 7, 9));
}

TEST_F(SweepSamples, withoutProviderTheRecordStaysAndTheSweepRuns)
{
    inspect().m_propertiesProvider().reset();
    inspect().m_properties() = SDCProperties{5, 6, 7, 8};
    inspect().runScan();
    EXPECT_EQ(bytesOf(inspect().m_properties()), std::make_tuple(5, 6, 7, 8));
    EXPECT_EQ(samples().size(), 3U);
}

TEST_F(SweepSamples, sweepOnTheWorkerIsHeldAndShowsItsSamplesAndProgress)
{
    destroy();
    start();
    ASSERT_TRUE(waitForWaits(1));
    sleep.close();
    ASSERT_EQ(command(SDC_CMD_CHANNEL_SCAN_START), SDC_RC_OK);
    const std::pair<std::size_t, std::int32_t> rows[] = {{0, 0}, {1, 0}, {2, 7}, {3, 14}}; // 14 samples in all
    for (const auto& [held, progress] : rows) {
        ASSERT_TRUE(support::eventually([&, count = held + 1] { return log.callsStartingWith("sleepMs").size() == count; }));
        EXPECT_EQ(samples().size(), held);
        EXPECT_EQ(controller->getProgress(), progress);
        EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_ONGOING);
        sleep.letOnePass();
    }
    sleep.open();
    ASSERT_TRUE(waitForIdle());
    EXPECT_EQ(samples().size(), 14U);
    EXPECT_EQ(controller->getProgress(), 92);
    EXPECT_EQ(controller->getStatus(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
}

} // namespace

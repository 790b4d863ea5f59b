// One sweep, called on the test's own thread: its steps, its delays, its readings and its progress.

#include "tests/support/SweepFixture.h"

#include <gmock/gmock.h>

#include <limits>
#include <optional>
#include <string>

namespace {

using support::Calls;
using support::operator+;
using support::SweepPlan;
using testing::ElementsAre;
using testing::ElementsAreArray;
using State = SpectrumDiagnosticsController::State;

constexpr std::uint32_t unsignedMax = std::numeric_limits<std::uint32_t>::max();
constexpr std::int32_t signedMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t signedMin = std::numeric_limits<std::int32_t>::min();

/// Trace is down to errors here, so that the log holds the peers' calls.
class Sweep : public support::SweepFixture {
protected:
    Sweep()
    {
        setTraceLevel(PLX_TRACE_LEVEL_ERROR);
        prepare();
    }
};

TEST_F(Sweep, stepsFromTheLowestToTheHighestFrequencyAndRestoresTheReceiver)
{
    peers.rssiHandler.onReadRssi = [next = -4500](std::int32_t& rssi) mutable {
        rssi = next++;
        return 0;
    };
    inspect().runScan();
    EXPECT_THAT(log.calls(),
        ElementsAre("provider.getProperties",                                   //
            tune(100000), "sleep.get", "sleepMs 3000", "IRssiHandler.readRssi", //
            tune(100050), "sleep.get", "sleepMs 300", "IRssiHandler.readRssi",  //
            tune(100100), "sleep.get", "sleepMs 300", "IRssiHandler.readRssi", tune(18000000)));
    EXPECT_THAT(samples(), ElementsAre(SDCResult{100000, -4500}, SDCResult{100050, -4499}, SDCResult{100100, -4498}));
    EXPECT_EQ(inspect().m_progress(), 66);
    EXPECT_EQ(inspect().m_nrOfSamplesDone(), 3);
    EXPECT_EQ(inspect().m_status(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
}

TEST_F(Sweep, leavesThePlanAndTheConfiguredFrequencyAsTheyAre)
{
    inspect().runScan();
    EXPECT_EQ(inspect().m_scanLowestRxFrequency_kHz(), 100000U);
    EXPECT_EQ(inspect().m_scanHighestRxFrequency_kHz(), 100100U);
    EXPECT_EQ(inspect().m_scanStep_kHz(), 50U);
    EXPECT_EQ(inspect().m_totalNrOfSamples(), 3);
    EXPECT_EQ(inspect().m_currentRxFrequency_kHz(), configured_kHz);
    EXPECT_EQ(inspect().m_firstSetRxWait_ms(), firstWait_ms);
    EXPECT_EQ(inspect().m_setRxWait_ms(), wait_ms);
}

TEST_F(Sweep, everyEndingByRangeOrCountIsFinished)
{
    const struct {
        const char* name;
        SweepPlan plan;
        std::vector<std::uint32_t> frequencies_kHz;
        std::int32_t progress;
    } rows[] = {
        {"total larger than the range", {100000, 100100, 50, 10}, {100000, 100050, 100100}, 20},
        {"total smaller than the range", {100000, 100100, 50, 2}, {100000, 100050}, 50},
        {"highest above the last step", {100000, 100149, 50, 10}, {100000, 100050, 100100}, 20},
        {"highest below the last step", {100000, 100099, 50, 3}, {100000, 100050}, 33},
        {"lowest is highest", {100000, 100000, 50, 3}, {100000}, 0},
        {"lowest above highest", {100001, 100000, 50, 3}, {}, 42},
        {"total 0", {100000, 100100, 50, 0}, {}, 42},
        {"step 0", {100000, 100100, 0, 4}, {100000, 100000, 100000, 100000}, 75},
        {"step 0 at the highest", {100000, 100000, 0, 2}, {100000, 100000}, 50},
        {"negative total", {100000, 100100, 50, -3}, {100000, 100050, 100100}, -66},
        {"total -1", {100000, 100100, 50, -1}, {100000, 100050, 100100}, -200},
        {"the smallest total", {100000, 100100, 50, signedMin}, {100000, 100050, 100100}, 0},
        {"the largest total", {100000, 100100, 50, signedMax}, {100000, 100050, 100100}, 0},
        {"bounds compare unsigned", {0x7FFFFFFF, 0x80000001, 1, 9}, {0x7FFFFFFF, 0x80000000, 0x80000001}, 22},
        {"lowest above highest, unsigned", {0x80000000, 5, 1, 9}, {}, 42},
        {"step wraps around", {unsignedMax - 10, unsignedMax, 8, 3}, {unsignedMax - 10, unsignedMax - 2, 5}, 66},
        {"step is a way down", {100000, 100000, unsignedMax, 3}, {100000, 99999, 99998}, 66},
        {"highest is the last there is", {unsignedMax, unsignedMax, 1, 3}, {unsignedMax, 0, 1}, 66},
    };
    for (const auto& row : rows) {
        for (const bool isChannelScan : {true, false}) {
            SCOPED_TRACE(row.name);
            prepare();
            setPlan(row.plan, isChannelScan ? SDC_STATUS_CHANNEL_SCAN_ONGOING : SDC_STATUS_SUB_BAND_ONGOING);
            inspect().m_progress() = 42;
            inspect().runScan();
            EXPECT_THAT(log.calls(), ElementsAreArray(sweepOver(row.frequencies_kHz)));
            EXPECT_THAT(sampledFrequencies(), ElementsAreArray(row.frequencies_kHz));
            EXPECT_EQ(inspect().m_nrOfSamplesDone(), static_cast<std::int32_t>(row.frequencies_kHz.size()));
            EXPECT_EQ(inspect().m_progress(), row.progress);
            EXPECT_EQ(
                inspect().m_status(), isChannelScan ? SDC_STATUS_CHANNEL_SCAN_FINISHED : SDC_STATUS_SUB_BAND_SCAN_FINISHED);
            EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
        }
    }
}

TEST_F(Sweep, completeSweepOfHundredSamplesEndsAtNinetyNine)
{
    prepare({100000, 200000, 1, 100});
    inspect().runScan();
    EXPECT_EQ(samples().size(), 100U);
    EXPECT_EQ(inspect().m_progress(), 99);
}

TEST_F(Sweep, singleMeasurementWaitsFiveSecondsWhateverTheSettleDelays)
{
    for (const ESDCStatus ongoing : {SDC_STATUS_SUB_BAND_ONGOING, SDC_STATUS_CHANNEL_SCAN_ONGOING}) {
        prepare();
        setPlan({100000, 100000, 50, 1}, ongoing);
        inspect().m_progress() = 42;
        inspect().runScan();
        EXPECT_THAT(log.calls(),
            ElementsAreArray(Calls{"provider.getProperties"} + step(100000, 5000) + Calls{tune(configured_kHz)}));
        EXPECT_THAT(samples(), ElementsAre(SDCResult{100000, -4500}));
        EXPECT_EQ(inspect().m_progress(), 0);
        EXPECT_EQ(inspect().m_status(),
            ongoing == SDC_STATUS_SUB_BAND_ONGOING ? SDC_STATUS_SUB_BAND_SCAN_FINISHED : SDC_STATUS_CHANNEL_SCAN_FINISHED);
    }
}

TEST_F(Sweep, singleMeasurementLeavesTheFirstReadingFlagAlone)
{
    prepare({100000, 100100, 50, 1});
    sleep.onSleep = [this](std::uint32_t) { inspect().m_totalNrOfSamples() = 3; };
    inspect().runScan();
    EXPECT_THAT(log.callsStartingWith("sleepMs"), ElementsAre("sleepMs 5000", "sleepMs 3000", "sleepMs 300"));
}

TEST_F(Sweep, totalOfOneComesBeforeTheFirstReadingAtEveryStep)
{
    prepare({100000, 100100, 50, 9});
    at("IRssiHandler.readRssi", [this] {
        inspect().m_nrOfSamplesDone() = 5;
        inspect().m_totalNrOfSamples() = 1;
    });
    inspect().runScan();
    EXPECT_THAT(log.callsStartingWith("sleepMs"), ElementsAre("sleepMs 3000", "sleepMs 5000", "sleepMs 5000"));
}

TEST_F(Sweep, everySweepWaitsTheFirstDelayAnew)
{
    inspect().runScan();
    log.clear();
    setPlan({});
    inspect().runScan();
    EXPECT_THAT(log.callsStartingWith("sleepMs"), ElementsAre("sleepMs 3000", "sleepMs 300", "sleepMs 300"));
}

TEST_F(Sweep, settleDelaysAreUnsigned)
{
    inspect().m_firstSetRxWait_ms() = unsignedMax;
    inspect().m_setRxWait_ms() = 0;
    inspect().runScan();
    EXPECT_THAT(log.callsStartingWith("sleepMs"), ElementsAre("sleepMs 4294967295", "sleepMs 0", "sleepMs 0"));
}

TEST_F(Sweep, sleepServiceIsFetchedAnewForEveryDelay)
{
    class OtherSleep : public Util::SleepApi {
    public:
        explicit OtherSleep(support::CallLog& log)
            : m_log(log)
        {
        }
        void sleepMs(std::uint32_t milliseconds) override { m_log.add("other sleepMs " + std::to_string(milliseconds)); }

    private:
        support::CallLog& m_log;
    };
    OtherSleep other(log);
    std::optional<host::SleepServiceInForce> otherInForce;
    at("IRssiHandler.readRssi", [&] { otherInForce.emplace(other); });
    inspect().runScan();
    EXPECT_THAT(log.callsWithout({"IFrequencyController", "IRssiHandler", "provider"}),
        ElementsAre("sleep.get", "sleepMs 3000", "sleep.get", "other sleepMs 300", "sleep.get", "other sleepMs 300"));
}

TEST_F(Sweep, progressLagsOneSampleBehindAndIsNotResetBySweep)
{
    std::vector<std::int32_t> progress;
    peers.frequencyController.onSetRxFrequency = [&](std::uint32_t) {
        progress.push_back(inspect().m_progress());
        return 0;
    };
    inspect().m_progress() = 42;
    inspect().runScan();
    EXPECT_THAT(progress, ElementsAre(42, 0, 33, 66));
}

TEST_F(Sweep, progressWrapsAndTruncatesForEveryCountAndTotal)
{
    const struct {
        std::int32_t samplesBefore;
        std::int32_t total;
        std::int32_t progress;
        std::int32_t samplesAfter;
    } rows[] = {
        {1, 3, 33, 2},
        {2, -3, -66, 3},
        {-2, 3, -66, -1},
        {21474836, 100, 21474836, 21474837},
        {21474837, 100, -21474835, 21474838}, // 2147483700 wraps to -2147483596
        {42949673, 3, 1, 42949674},           // 4294967300 wraps to 4
        {536870912, 2, -1073741824, 536870913},
        {536870912, -1, signedMin, 536870913}, // -2^31 / -1
        {signedMax, -7, 14, signedMin},        // -100 / -7
        {signedMin, 5, 0, signedMin + 1},
        {signedMax, signedMin, 0, signedMin},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.samplesBefore);
        prepare();
        at("IRssiHandler.readRssi", [&] {
            inspect().m_nrOfSamplesDone() = row.samplesBefore;
            inspect().m_totalNrOfSamples() = row.total;
            setState(State::STATE_STOP);
        });
        inspect().runScan();
        EXPECT_EQ(inspect().m_progress(), row.progress);
        EXPECT_EQ(inspect().m_nrOfSamplesDone(), row.samplesAfter);
    }
}

TEST_F(Sweep, countBeyondTheTotalDoesNotEndTheSweep)
{
    at("IRssiHandler.readRssi", [this] { inspect().m_nrOfSamplesDone() = 5; });
    inspect().runScan();
    EXPECT_THAT(sampledFrequencies(), ElementsAre(100000, 100050, 100100));
}

TEST_F(Sweep, readingsBelowTheFloorAreStoredAsTheFloor)
{
    const std::pair<std::int32_t, std::int32_t> rows[] = {
        {-10000, -9970},
        {-9971, -9970},
        {-9970, -9970},
        {-9969, -9969},
        {0, 0},
        {9971, 9971},
        {signedMin, -9970},
        {signedMax, signedMax},
    };
    for (const auto& [reading, stored] : rows) {
        SCOPED_TRACE(reading);
        prepare({100000, 100000, 50, 1});
        peers.rssiHandler.answer = reading;
        inspect().runScan();
        EXPECT_THAT(samples(), ElementsAre(SDCResult{100000, stored}));
    }
}

TEST_F(Sweep, resultOfReadingIsNotLookedAt)
{
    for (const std::int32_t result : {1, 32767, 32768, -1, signedMin, signedMax}) {
        SCOPED_TRACE(result);
        prepare();
        peers.rssiHandler.onReadRssi = [result](std::int32_t& rssi) {
            rssi = -777;
            return result;
        };
        inspect().runScan();
        EXPECT_THAT(samples(), ElementsAre(SDCResult{100000, -777}, SDCResult{100050, -777}, SDCResult{100100, -777}));
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    }
}

} // namespace

// One sweep, called on the test's own thread: its steps, delays, readings, samples, progress and trace.

#include "tests/support/ControllerFixture.h"

#include <gmock/gmock.h>

#include <cstring>
#include <limits>
#include <optional>

namespace {

using tests::Calls;
using tests::operator+;
using testing::ElementsAre;
using testing::ElementsAreArray;
using tests::SweepPlan;

constexpr std::uint32_t unsignedMax = std::numeric_limits<std::uint32_t>::max();
constexpr std::int32_t signedMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t signedMin = std::numeric_limits<std::int32_t>::min();

class Sweep : public tests::ControllerFixture {
protected:
    Sweep() { prepare(); }

    /// The calls without their trace.
    Calls callsOfPeers() const { return log.callsWithout({"trace ", "enter "}); }
};

TEST_F(Sweep, stepsFromTheLowestToTheHighestFrequencyAndRestoresTheReceiver)
{
    peers.rssiHandler.onReadRssi = [next = -9972](std::int32_t& rssi) mutable {
        rssi = ++next;
        return 0;
    };
    Members expected = members();
    expected["m_state"] = State::STATE_IDLE;
    expected["m_status"] = SDC_STATUS_CHANNEL_SCAN_FINISHED;
    expected["m_progress"] = 66;
    expected["m_nrOfSamplesDone"] = 3;
    expected["m_results 100000"] = -9970;
    expected["m_results 100050"] = -9970;
    expected["m_results 100100"] = -9969;
    inspect().runScan();
    EXPECT_THAT(log.calls(),
        ElementsAre("enter 6 runScan: m_threadName=SpectDiagCtrl7", "provider.getProperties",
            "trace 5              m_radioChannelId = 7",         //
            "trace 5      m_currentRxFrequency_kHz = 18000000",  //
            "trace 5          m_channelSpacing_kHz = 28000",     //
            "trace 5   m_scanLowestRxFrequency_kHz = 100000",    //
            "trace 5  m_scanHighestRxFrequency_kHz = 100100",    //
            "trace 5            m_totalNrOfSamples = 3",         //
            "trace 5                m_scanStep_kHz = 50",        //
            "trace 5                m_setRxWait_ms = 300",       //
            "trace 5           m_firstSetRxWait_ms = 3000",      //
            "trace 7 Set RX frequency kHz 100000", tune(100000), //
            "trace 7 Reading the first RSSI value after delay of (ms): 3000", "sleep.get", "sleepMs 3000",
            "IRssiHandler.readRssi", "trace 7 Read RSSI -9970",  //
            "trace 7 Set RX frequency kHz 100050", tune(100050), //
            "sleep.get", "sleepMs 300", "IRssiHandler.readRssi", "trace 7 Read RSSI -9970",
            "trace 7 Set RX frequency kHz 100100", tune(100100), //
            "sleep.get", "sleepMs 300", "IRssiHandler.readRssi", "trace 7 Read RSSI -9969", tune(18000000)));
    EXPECT_EQ(members(), expected);
    EXPECT_THAT(sampledFrequencies(), ElementsAre(100000, 100050, 100100));
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
            EXPECT_THAT(callsOfPeers(), ElementsAreArray(sweepOver(row.frequencies_kHz)));
            EXPECT_THAT(sampledFrequencies(), ElementsAreArray(row.frequencies_kHz));
            EXPECT_EQ(inspect().m_nrOfSamplesDone(), static_cast<std::int32_t>(row.frequencies_kHz.size()));
            EXPECT_EQ(inspect().m_progress(), row.progress);
            EXPECT_EQ(
                inspect().m_status(), isChannelScan ? SDC_STATUS_CHANNEL_SCAN_FINISHED : SDC_STATUS_SUB_BAND_SCAN_FINISHED);
            EXPECT_EQ(inspect().getState(), State::STATE_IDLE);
        }
    }
}

TEST_F(Sweep, singleMeasurementWaitsFiveSecondsWhateverTheSettleDelays)
{
    for (const ESDCStatus ongoing : {SDC_STATUS_SUB_BAND_ONGOING, SDC_STATUS_CHANNEL_SCAN_ONGOING}) {
        prepare();
        setPlan({100000, 100000, 50, 1}, ongoing);
        inspect().m_progress() = 42;
        inspect().runScan();
        EXPECT_THAT(log.callsWithout({"trace 5", "enter"}),
            ElementsAre("provider.getProperties", "trace 7 Set RX frequency kHz 100000", tune(100000),
                "trace 7 Single RSSI measurement at configured frequency after delay of (ms): 5000", "sleep.get",
                "sleepMs 5000", "IRssiHandler.readRssi", "trace 7 Read RSSI -4500", restore));
        EXPECT_THAT(samples(), ElementsAre(SDCResult{100000, -4500}));
        EXPECT_EQ(inspect().m_progress(), 0);
        EXPECT_EQ(inspect().m_status(),
            ongoing == SDC_STATUS_SUB_BAND_ONGOING ? SDC_STATUS_SUB_BAND_SCAN_FINISHED : SDC_STATUS_CHANNEL_SCAN_FINISHED);
    }
}

TEST_F(Sweep, everySweepWaitsTheFirstDelayAnewAndClearsTheSamplesAfterItsParameterDump)
{
    inspect().runScan();
    setPlan({200000, 200000, 50, 9});
    log.clear();
    using SamplesAndCount = std::pair<std::size_t, std::int32_t>;
    std::vector<SamplesAndCount> atEachCall;
    log.onAdd(
        [&](const std::string&) { atEachCall.emplace_back(inspect().m_results().size(), inspect().m_nrOfSamplesDone()); });
    inspect().runScan();
    log.onAdd(nullptr);
    std::vector<SamplesAndCount> expected(11, {3, 3});         // entry, properties, nine lines of the dump
    expected.insert(expected.end(), 7, SamplesAndCount{0, 0}); // the only step: stored after its trace
    expected.emplace_back(1, 1);                               // restore
    EXPECT_EQ(atEachCall, expected);
    EXPECT_THAT(samples(), ElementsAre(SDCResult{200000, -4500}));
    EXPECT_THAT(log.callsStartingWith("sleepMs"), ElementsAre("sleepMs 3000"));
}

TEST_F(Sweep, tracesUnsignedFieldsUnsignedAndTotalAndReadingsSigned)
{
    prepare({4294967295, 4294967295, 4294967293, -5}, 4294967295);
    inspect().m_currentRxFrequency_kHz() = 4294967292;
    inspect().m_channelSpacing_kHz() = 4294967291;
    inspect().m_setRxWait_ms() = 4294967290;
    inspect().m_firstSetRxWait_ms() = 4294967289;
    peers.rssiHandler.answer = 2147483647;
    at("IRssiHandler.readRssi", [this] { setState(State::STATE_STOP); });
    inspect().runScan();
    EXPECT_THAT(traceTexts(5),
        ElementsAre("             m_radioChannelId = 4294967295", //
            "     m_currentRxFrequency_kHz = 4294967292",         //
            "         m_channelSpacing_kHz = 4294967291",         //
            "  m_scanLowestRxFrequency_kHz = 4294967295",         //
            " m_scanHighestRxFrequency_kHz = 4294967295",         //
            "           m_totalNrOfSamples = -5",                 //
            "               m_scanStep_kHz = 4294967293",         //
            "               m_setRxWait_ms = 4294967290",         //
            "          m_firstSetRxWait_ms = 4294967289"));
    EXPECT_THAT(traceTexts(7),
        ElementsAre("Set RX frequency kHz 4294967295", "Reading the first RSSI value after delay of (ms): 4294967289",
            "Read RSSI 2147483647"));
    EXPECT_THAT(log.callsStartingWith("sleepMs"), ElementsAre("sleepMs 4294967289"));
}

TEST_F(Sweep, sleepServiceIsFetchedAnewForEveryDelay)
{
    struct OtherSleep : Util::SleepApi {
        explicit OtherSleep(tests::CallLog& callLog)
            : log(callLog)
        {
        }
        void sleepMs(std::uint32_t milliseconds) override { log.add("other sleepMs " + std::to_string(milliseconds)); }

        tests::CallLog& log;
    };
    OtherSleep other(log);
    std::optional<host::SleepServiceInForce> otherInForce;
    at("IRssiHandler.readRssi", [&] { otherInForce.emplace(other); });
    inspect().runScan();
    EXPECT_THAT(log.callsWithout({"IFrequencyController", "IRssiHandler", "provider", "trace", "enter"}),
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
    prepare({100000, 200000, 1, 100});
    inspect().runScan();
    EXPECT_EQ(inspect().m_progress(), 99);
}

TEST_F(Sweep, progressWrapsAndTruncatesForEveryCountAndTotal)
{
    const struct {
        std::int32_t samplesBefore;
        std::int32_t total;
        std::int32_t progress;
        std::int32_t samplesAfter;
    } rows[] = {
        {1, 3, 33, 2}, {2, -3, -66, 3}, {21474836, 100, 21474836, 21474837},
        {21474837, 100, -21474835, 21474838},                                          // 2147483700 wraps to -2147483596
        {42949673, 3, 1, 42949674},                                                    // 4294967300 wraps to 4
        {536870912, 2, -1073741824, 536870913}, {536870912, -1, signedMin, 536870913}, // -2^31 / -1
        {signedMax, -7, 14, signedMin},                                                // -100 / -7
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.samplesBefore);
        inspect().m_nrOfSamplesDone() = row.samplesBefore;
        inspect().m_totalNrOfSamples() = row.total;
        inspect().storeSample(100000, -4500);
        EXPECT_EQ(inspect().m_progress(), row.progress);
        EXPECT_EQ(inspect().m_nrOfSamplesDone(), row.samplesAfter);
    }
}

TEST_F(Sweep, readingsBelowTheFloorAreStoredAsTheFloorAndTheResultIsNotLookedAt)
{
    const std::pair<std::int32_t, std::int32_t> readings[] = {{-10000, -9970}, {-9971, -9970}, {-9970, -9970},
        {-9969, -9969}, {0, 0}, {9971, 9971}, {signedMin, -9970}, {signedMax, signedMax}};
    for (const auto& [reading, stored] : readings) {
        for (const std::int32_t result : {0, 1, 32767, 32768, -1, signedMin, signedMax}) {
            SCOPED_TRACE(testing::Message() << reading << ", result " << result);
            prepare({100000, 100000, 50, 1});
            peers.rssiHandler.onReadRssi = [answer = reading, result](std::int32_t& rssi) {
                rssi = answer;
                return result;
            };
            inspect().runScan();
            EXPECT_THAT(samples(), ElementsAre(SDCResult{100000, stored}));
            EXPECT_EQ(inspect().m_status(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
        }
    }
}

TEST_F(Sweep, readingThatWritesNothingIsZeroWhateverWasReadBefore)
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

TEST_F(Sweep, propertiesAreRefreshedBeforeTheParameterDumpWhateverTheResult)
{
    for (const std::int32_t result : {0, 32767, 32768, -1}) {
        SCOPED_TRACE(result);
        prepare();
        peers.radio.properties = {1, 2, 3, 255};
        peers.radio.propertiesResult = result;
        SDCProperties atDump{};
        at("trace 5              m_radioChannelId = 7", [&] { atDump = inspect().m_properties(); });
        inspect().runScan();
        EXPECT_EQ(std::memcmp(&atDump, "\1\2\3\377", sizeof atDump), 0);
        EXPECT_EQ(samples().size(), 3U);
    }
}

TEST_F(Sweep, refreshOverwritesAQueryOfThatMoment)
{
    at("provider.getProperties", [this] { // the sweep's call; the query's falls into it
        peers.radio.properties = {1, 2, 3, 4};
        EXPECT_EQ(controller->getSpectrumDiagnosticsProperties().longHaul, 1);
        peers.radio.properties = {5, 6, 7, 8};
    });
    inspect().runScan();
    const SDCProperties properties = inspect().m_properties();
    EXPECT_EQ(std::memcmp(&properties, "\5\6\7\10", sizeof properties), 0);
}

TEST_F(Sweep, withoutProviderTheRecordStaysAndTheSweepRuns)
{
    inspect().m_propertiesProvider().reset();
    inspect().m_properties() = SDCProperties{5, 6, 7, 8};
    inspect().runScan();
    const SDCProperties properties = inspect().m_properties();
    EXPECT_EQ(std::memcmp(&properties, "\5\6\7\10", sizeof properties), 0);
    EXPECT_EQ(samples().size(), 3U);
}

} // namespace

// The trace of a sweep: its texts, its levels, its place among the peers' calls.

#include "tests/support/GroupingLocale.h"
#include "tests/support/SweepFixture.h"

#include <gmock/gmock.h>

#include <map>
#include <set>

namespace {

using support::Calls;
using support::operator+;
using testing::ElementsAre;
using testing::ElementsAreArray;
using State = SpectrumDiagnosticsController::State;

class SweepTrace : public support::SweepFixture {
protected:
    SweepTrace() { prepare(); }

    static const Calls entryAndDump;
};

const Calls SweepTrace::entryAndDump{
    "enter 6 runScan: m_threadName=SpectDiagCtrl7",
    "provider.getProperties",
    "trace 5              m_radioChannelId = 7",
    "trace 5      m_currentRxFrequency_kHz = 18000000",
    "trace 5          m_channelSpacing_kHz = 28000",
    "trace 5   m_scanLowestRxFrequency_kHz = 100000",
    "trace 5  m_scanHighestRxFrequency_kHz = 100100",
    "trace 5            m_totalNrOfSamples = 3",
    "trace 5                m_scanStep_kHz = 50",
    "trace 5                m_setRxWait_ms = 300",
    "trace 5           m_firstSetRxWait_ms = 3000",
};

TEST_F(SweepTrace, wholeSweepInOrder)
{
    peers.rssiHandler.answer = -9971;
    inspect().runScan();
    EXPECT_THAT(log.calls(),
        ElementsAreArray(entryAndDump
            + Calls{
                "trace 7 Set RX frequency kHz 100000",
                "IFrequencyController.setRxFrequency 100000 true",
                "trace 7 Reading the first RSSI value after delay of (ms): 3000",
                "sleep.get",
                "sleepMs 3000",
                "IRssiHandler.readRssi",
                "trace 7 Read RSSI -9970",
                "trace 7 Set RX frequency kHz 100050",
                "IFrequencyController.setRxFrequency 100050 true",
                "sleep.get",
                "sleepMs 300",
                "IRssiHandler.readRssi",
                "trace 7 Read RSSI -9970",
                "trace 7 Set RX frequency kHz 100100",
                "IFrequencyController.setRxFrequency 100100 true",
                "sleep.get",
                "sleepMs 300",
                "IRssiHandler.readRssi",
                "trace 7 Read RSSI -9970",
                "IFrequencyController.setRxFrequency 18000000 true",
            }));
}

TEST_F(SweepTrace, singleMeasurementIsAnnouncedAfterTuningAndBeforeItsDelay)
{
    inspect().m_totalNrOfSamples() = 1;
    inspect().runScan();
    const std::vector<std::string> calls = log.calls();
    EXPECT_THAT(std::vector<std::string>(calls.begin() + 11, calls.end()),
        ElementsAre("trace 7 Set RX frequency kHz 100000", tune(100000),
            "trace 7 Single RSSI measurement at configured frequency after delay of (ms): 5000", "sleep.get", "sleepMs 5000",
            "IRssiHandler.readRssi", "trace 7 Read RSSI -4500", tune(configured_kHz)));
}

TEST_F(SweepTrace, failuresAreTracedWithTheFrequencyRightAfterTheyHappen)
{
    peers.frequencyController.onSetRxFrequency = [](std::uint32_t) { return 32768; };
    inspect().runScan();
    EXPECT_THAT(log.calls(),
        ElementsAreArray(entryAndDump
            + Calls{
                "trace 7 Set RX frequency kHz 100000",
                "IFrequencyController.setRxFrequency 100000 true",
                "trace 1 Failed to set RX frequency 100000",
                "IFrequencyController.setRxFrequency 18000000 true",
                "trace 1 Failed to restore RX frequency 18000000",
            }));
}

TEST_F(SweepTrace, dumpPrintsUnsignedFieldsUnsignedAndTheTotalSigned)
{
    prepare({4294967295, 4294967294, 4294967293, -5}, 4294967295);
    inspect().m_currentRxFrequency_kHz() = 4294967292;
    inspect().m_channelSpacing_kHz() = 4294967291;
    inspect().m_setRxWait_ms() = 4294967290;
    inspect().m_firstSetRxWait_ms() = 4294967289;
    inspect().runScan();
    EXPECT_THAT(traceTexts(5),
        ElementsAre("             m_radioChannelId = 4294967295", //
            "     m_currentRxFrequency_kHz = 4294967292",         //
            "         m_channelSpacing_kHz = 4294967291",         //
            "  m_scanLowestRxFrequency_kHz = 4294967295",         //
            " m_scanHighestRxFrequency_kHz = 4294967294",         //
            "           m_totalNrOfSamples = -5",                 //
            "               m_scanStep_kHz = 4294967293",         //
            "               m_setRxWait_ms = 4294967290",         //
            "          m_firstSetRxWait_ms = 4294967289"));
}

TEST_F(SweepTrace, stepsPrintFrequenciesAndDelaysUnsignedAndReadingsSigned)
{
    prepare({4294967295, 4294967295, 1, 2});
    inspect().m_firstSetRxWait_ms() = 4294967294;
    at("IRssiHandler.readRssi", [this] { setState(State::STATE_STOP); });
    peers.rssiHandler.answer = 2147483647;
    inspect().runScan();
    EXPECT_THAT(traceTexts(7),
        ElementsAre("Set RX frequency kHz 4294967295", "Reading the first RSSI value after delay of (ms): 4294967294",
            "Read RSSI 2147483647"));
}

TEST_F(SweepTrace, eachTraceAsksForItsLevelFirstAndLevelThatIsOffChangesNothingElse)
{
    setTraceLevel(PLX_TRACE_LEVEL_OFF);
    logQuestions();
    peers.frequencyController.onSetRxFrequency = [](std::uint32_t frequency_kHz) {
        return frequency_kHz < 100100 ? 0 : 32768;
    };
    inspect().runScan();
    EXPECT_THAT(log.calls(),
        ElementsAreArray(Calls{"trace.isEnabled 6", "provider.getProperties"} + Calls(9, "trace.isEnabled 5")
            + Calls{"trace.isEnabled 7", tune(100000), "trace.isEnabled 7", "sleep.get", "sleepMs 3000",
                "IRssiHandler.readRssi", "trace.isEnabled 7"}
            + Calls{"trace.isEnabled 7", tune(100050), "sleep.get", "sleepMs 300", "IRssiHandler.readRssi",
                "trace.isEnabled 7"}
            + Calls{"trace.isEnabled 7", tune(100100), "trace.isEnabled 1", tune(configured_kHz), "trace.isEnabled 1"}));
    EXPECT_EQ(samples().size(), 2U);
}

TEST_F(SweepTrace, singleMeasurementAsksForItsLevel)
{
    setTraceLevel(PLX_TRACE_LEVEL_OFF);
    logQuestions();
    inspect().m_totalNrOfSamples() = 1;
    inspect().runScan();
    EXPECT_EQ(log.count("trace.isEnabled 7"), 3U);
    EXPECT_EQ(log.count("trace.isEnabled 5"), 9U);
}

TEST_F(SweepTrace, levelsBelowWriteTheSameButForTheLevelsAbove)
{
    for (std::uint32_t level = 0; level <= 7; ++level) {
        for (const std::int32_t total : {1, 3}) {
            SCOPED_TRACE(testing::Message() << "level " << level << ", total " << total);
            const auto callsAt = [&](std::uint32_t traceLevel) {
                prepare({100000, 100100, 50, total});
                peers.frequencyController.onSetRxFrequency = [](std::uint32_t frequency_kHz) {
                    return frequency_kHz < 100100 ? 0 : 32768;
                };
                setTraceLevel(traceLevel);
                inspect().runScan();
                setTraceLevel(PLX_TRACE_LEVEL_OFF);
                return log.calls();
            };
            std::vector<std::string> expected = callsAt(7);
            std::erase_if(expected, [level](const std::string& call) {
                return (call.starts_with("trace ") || call.starts_with("enter "))
                    && call[6] > '0' + static_cast<char>(level);
            });
            EXPECT_THAT(callsAt(level), ElementsAreArray(expected));
        }
    }
}

TEST_F(SweepTrace, eachLineOfTheDumpAsksForItsLevelItself)
{
    onHostEvent = [asked = 0](const std::string& event) mutable {
        if (event == "trace.isEnabled 5") {
            ++asked;
            setTraceLevel(asked % 2 == 0 ? PLX_TRACE_LEVEL_INFO : PLX_TRACE_LEVEL_ERROR);
        }
    };
    inspect().runScan();
    EXPECT_THAT(traceTexts(5),
        ElementsAre("     m_currentRxFrequency_kHz = 18000000", "  m_scanLowestRxFrequency_kHz = 100000",
            "           m_totalNrOfSamples = 3", "               m_setRxWait_ms = 300"));
}

TEST_F(SweepTrace, eachSiteHasOneStaticHeaderOfItsOwn)
{
    peers.frequencyController.onSetRxFrequency = [](std::uint32_t frequency_kHz) {
        return frequency_kHz < 100100 ? 0 : 32768;
    };
    inspect().runScan();
    std::map<std::string, std::set<const PlxTraceHeader*>> headersOfSites;
    std::set<std::uint32_t> lines;
    for (const host::TraceRecord& record : trace.records()) {
        const std::string site = record.isEntry ? "entry" : record.text.substr(0, record.text.find_last_of(' '));
        headersOfSites[site].insert(record.header);
        lines.insert(record.header->line);
        EXPECT_THAT(record.header->file, testing::EndsWith("SpectrumDiagnosticsControllerExecution.cpp"));
    }
    EXPECT_EQ(headersOfSites.size(), 15U); // entry, nine of the dump, three of a step, two failures
    EXPECT_EQ(lines.size(), headersOfSites.size());
    for (const auto& [site, headers] : headersOfSites) {
        EXPECT_EQ(headers.size(), 1U) << site;
    }
}

TEST_F(SweepTrace, numbersAreFormedIndependentlyOfTheGlobalLocale)
{
    inspect().runScan();
    const std::vector<std::string> plain = log.calls();
    prepare();
    const support::GroupingLocale grouping;
    inspect().runScan();
    EXPECT_THAT(log.calls(), ElementsAreArray(plain));
}

} // namespace

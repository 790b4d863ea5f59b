/// Reading the radio's frequency parameters.

#include "tests/support/GroupingLocale.h"
#include "tests/unit/PlanningFixture.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <set>
#include <stdexcept>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Words = std::vector<std::uint32_t>;

/// Each of the thirteen words is the number of its place plus an offset.
RadioFrequencyParameters numbered(std::uint32_t offset)
{
    const auto word = [offset](std::uint32_t place) { return offset + place; };
    return {word(0), {word(1), word(2), word(3)}, word(4), word(5), word(6), word(7), word(8), {word(9), word(10)}, word(11),
        word(12)};
}

class GeneralParams : public planning::PlanningFixture {
protected:
    /// The seven members that the parameters go to, in the order of their trace messages.
    Words members() const
    {
        return {inspect().m_rxBaseFrequency_kHz(), inspect().m_frequencyBand_GHz(), inspect().m_minRxFrequency_kHz(),
            inspect().m_maxRxFrequency_kHz(), inspect().m_frequencyStepSize_kHz(), inspect().m_stepLimitLow(),
            inspect().m_stepLimitHigh()};
    }
};

TEST_F(GeneralParams, areTheSevenWordsUnchangedAndTheResultIsZero)
{
    peers.radioCapability.parameters = numbered(100);
    EXPECT_EQ(inspect().setGeneralParams(), 0);
    EXPECT_THAT(members(), ElementsAre(108, 100, 104, 105, 106, 111, 112));
}

TEST_F(GeneralParams, ofASecondCallOverwriteAllSevenMembers)
{
    peers.radioCapability.parameters = numbered(100);
    inspect().setGeneralParams();
    peers.radioCapability.parameters = numbered(4294967000);
    EXPECT_EQ(inspect().setGeneralParams(), 0);
    EXPECT_THAT(members(), ElementsAre(4294967008, 4294967000, 4294967004, 4294967005, 4294967006, 4294967011, 4294967012));
    EXPECT_EQ(log.count("IRadioCapability.getFrequencyParameters"), 2U);
}

TEST_F(GeneralParams, areNeitherCheckedNorConverted)
{
    peers.radioCapability.parameters = RadioFrequencyParameters{0, {}, 4294967295, 0, 0, 0, 4294967295, {}, 4294967295, 0};
    EXPECT_EQ(inspect().setGeneralParams(), 0);
    EXPECT_THAT(members(), ElementsAre(4294967295, 0, 4294967295, 0, 0, 4294967295, 0));
}

TEST_F(GeneralParams, areReadBeforeAnyTextAndTracedInTheirOrderWithLabelsOfOneWidth)
{
    peers.radioCapability.parameters =
        RadioFrequencyParameters{18, {1, 2, 3}, 17700000, 19700000, 250, 7, 17000000, {9, 10}, 0, 4294967295};
    inspect().setGeneralParams();
    EXPECT_THAT(log.calls(),
        ElementsAre("enter 6 setGeneralParams", "IRadioCapability.getFrequencyParameters",
            "trace 5   m_rxBaseFrequency_kHz = 17000000", "trace 5     m_frequencyBand_GHz = 18",
            "trace 5    m_minRxFrequency_kHz = 17700000", "trace 5    m_maxRxFrequency_kHz = 19700000",
            "trace 5 m_frequencyStepSize_kHz = 250", "trace 5          m_stepLimitLow = 0",
            "trace 5         m_stepLimitHigh = 4294967295"));
    for (const std::string& text : traceTexts(5)) {
        EXPECT_EQ(text.find(" = ") + 3, 26U) << text;
    }
}

TEST_F(GeneralParams, doNotDependOnTheWordsThatAreNotRead)
{
    peers.radioCapability.parameters = RadioFrequencyParameters{1, {0, 0, 0}, 5, 6, 7, 0, 9, {0, 0}, 12, 13};
    inspect().setGeneralParams();
    const Words before = members();
    const std::vector<std::string> logBefore = log.calls();
    log.clear();
    peers.radioCapability.parameters = RadioFrequencyParameters{1, {77, 78, 79}, 5, 6, 7, 80, 9, {81, 82}, 12, 13};
    inspect().setGeneralParams();
    EXPECT_EQ(members(), before);
    EXPECT_EQ(log.calls(), logBefore);
}

TEST_F(GeneralParams, leaveSpacingFrequencyAndPlanAlone)
{
    const auto others = [this] {
        return Words{inspect().m_channelSpacing_kHz(), inspect().m_currentRxFrequency_kHz(), inspect().m_scanStep_kHz(),
            inspect().m_frequencyMargin_kHz(), inspect().m_scanLowestRxFrequency_kHz(),
            inspect().m_scanHighestRxFrequency_kHz(), inspect().m_setRxWait_ms(), inspect().m_firstSetRxWait_ms()};
    };
    inspect().m_scanHighestRxFrequency_kHz() = 4711;
    const Words before = others();
    inspect().setGeneralParams();
    EXPECT_EQ(others(), before);
}

TEST_F(GeneralParams, askForTheirTraceLevelAnewForEachMessage)
{
    logTraceQuestions();
    setTraceLevel(4);
    inspect().setGeneralParams();
    EXPECT_THAT(log.calls(),
        ElementsAre("trace.isEnabled 6", "IRadioCapability.getFrequencyParameters", "trace.isEnabled 5", "trace.isEnabled 5",
            "trace.isEnabled 5", "trace.isEnabled 5", "trace.isEnabled 5", "trace.isEnabled 5", "trace.isEnabled 5"));
}

TEST_F(GeneralParams, areTracedOnlyWhileTheLevelIsOn)
{
    int questions = 0;
    onHostEvent = [&questions](const std::string& event) {
        if (event == "trace.isEnabled 5") {
            setTraceLevel(questions++ % 2 == 0 ? 5 : 4);
        }
    };
    peers.radioCapability.parameters = numbered(0);
    inspect().setGeneralParams();
    EXPECT_THAT(traceTexts(5),
        ElementsAre("  m_rxBaseFrequency_kHz = 8", "   m_minRxFrequency_kHz = 4", "m_frequencyStepSize_kHz = 6",
            "        m_stepLimitHigh = 12"));
}

TEST_F(GeneralParams, needLevelFiveForTheirMessagesAndSixForTheEntry)
{
    setTraceLevel(5);
    inspect().setGeneralParams();
    EXPECT_EQ(traceTexts(5).size(), 7U);
    EXPECT_THAT(log.callsStartingWith("enter"), IsEmpty());
    log.clear();
    setTraceLevel(6);
    inspect().setGeneralParams();
    EXPECT_THAT(log.callsStartingWith("enter"), ElementsAre("enter 6 setGeneralParams"));
}

TEST_F(GeneralParams, areTracedWithOneHeaderPerMessageAndTheFunctionsName)
{
    inspect().setGeneralParams();
    std::set<const PlxTraceHeader*> headers;
    for (const host::TraceRecord& record : trace.records()) {
        headers.insert(record.header);
        EXPECT_STREQ(record.header->function, "setGeneralParams");
    }
    EXPECT_EQ(headers.size(), 8U);
}

TEST_F(GeneralParams, stayAsTheyWereWhenThePeerThrows)
{
    inspect().setGeneralParams();
    const Words before = members();
    log.clear();
    peers.radioCapability.parameters = numbered(100);
    peers.radioCapability.onGetFrequencyParameters = [] { throw std::runtime_error("no answer"); };
    EXPECT_THROW(inspect().setGeneralParams(), std::runtime_error);
    EXPECT_EQ(members(), before);
    EXPECT_THAT(log.calls(), ElementsAre("enter 6 setGeneralParams", "IRadioCapability.getFrequencyParameters"));
}

TEST_F(GeneralParams, areAllSetWhenATraceMessageThrows)
{
    peers.radioCapability.parameters = numbered(100);
    traceIntoLog.onWrite = [](const host::TraceRecord& record) {
        if (record.level == 5) {
            throw std::runtime_error("no room");
        }
    };
    EXPECT_THROW(inspect().setGeneralParams(), std::runtime_error);
    EXPECT_THAT(members(), ElementsAre(108, 100, 104, 105, 106, 111, 112));
    EXPECT_EQ(traceTexts(5).size(), 1U);
}

TEST_F(GeneralParams, leaveErrnoAlone)
{
    traceIntoLog.onWrite = [](const host::TraceRecord&) { errno = EIO; };
    for (std::uint32_t level = 0; level <= 7; ++level) {
        setTraceLevel(level);
        errno = ERANGE;
        inspect().setGeneralParams();
        EXPECT_EQ(errno, ERANGE) << level;
    }
}

TEST_F(GeneralParams, areTracedWithoutTheGlobalLocalesGrouping)
{
    peers.radioCapability.parameters = numbered(17700000);
    {
        const support::GroupingLocale grouping;
        inspect().setGeneralParams();
    }
    EXPECT_THAT(traceTexts(5),
        ElementsAre("  m_rxBaseFrequency_kHz = 17700008", "    m_frequencyBand_GHz = 17700000",
            "   m_minRxFrequency_kHz = 17700004", "   m_maxRxFrequency_kHz = 17700005", "m_frequencyStepSize_kHz = 17700006",
            "         m_stepLimitLow = 17700011", "        m_stepLimitHigh = 17700012"));
}

} // namespace

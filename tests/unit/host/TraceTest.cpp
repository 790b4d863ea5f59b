#include "host/Trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <locale>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace {

using host::RecordingTraceSink;
using host::StreamTraceSink;
using host::TraceComponentInfo;
using host::TraceRecord;
using host::TraceSink;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr PlxTraceHeader header{"some/File.cpp", 42, "someFunction"};
constexpr PlxTraceHdrOption otherOption = static_cast<PlxTraceHdrOption>(7);

/// A sink that gets records for as long as this lives.
class Attached {
public:
    explicit Attached(TraceSink& sink)
        : m_sink(sink)
    {
        host::trace::addSink(m_sink);
    }
    ~Attached() { host::trace::removeSink(m_sink); }
    Attached(const Attached&) = delete;
    Attached& operator=(const Attached&) = delete;

private:
    TraceSink& m_sink;
};

/// The host knows a component until the process ends: every test has a name of its own.
std::string uniqueName()
{
    return std::string("TEST.") + testing::UnitTest::GetInstance()->current_test_info()->name();
}

std::optional<TraceComponentInfo> infoOf(const std::string& name)
{
    const std::vector<TraceComponentInfo> infos = host::trace::components();
    const auto info = std::find_if(infos.begin(), infos.end(), [&](const auto& one) { return one.name == name; });
    return info == infos.end() ? std::nullopt : std::optional(*info);
}

class TraceFacility : public testing::Test {
protected:
    const std::string name = uniqueName();
};

TEST_F(TraceFacility, startsAComponentAtTheLevelOfItsConstructor)
{
    EXPECT_FALSE(infoOf(name));
    const PlxTrace trace(name.c_str(), PLX_TRACE_LEVEL_DEFAULT, otherOption);
    const std::optional<TraceComponentInfo> info = infoOf(name);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->level, 3U);
    EXPECT_EQ(info->defaultLevel, 3U);
    EXPECT_EQ(info->hdrOption, 7U);
    EXPECT_TRUE(trace.isEnabled(PLX_TRACE_LEVEL_ERROR));
    EXPECT_TRUE(trace.isEnabled(PLX_TRACE_LEVEL_DEFAULT));
    EXPECT_FALSE(trace.isEnabled(PLX_TRACE_LEVEL_INFO));
}

TEST_F(TraceFacility, setsALevelAfterConstruction)
{
    const PlxTrace trace(name.c_str(), PLX_TRACE_LEVEL_DEFAULT, PLX_TRACE_HDR_STANDARD);
    host::trace::setLevel(name, PLX_TRACE_LEVEL_ENTER);
    EXPECT_TRUE(trace.isEnabled(PLX_TRACE_LEVEL_ENTER));
    EXPECT_FALSE(trace.isEnabled(PLX_TRACE_LEVEL_DETAIL));
    host::trace::setLevel(name, PLX_TRACE_LEVEL_OFF);
    EXPECT_FALSE(trace.isEnabled(PLX_TRACE_LEVEL_ERROR));
    EXPECT_EQ(infoOf(name)->level, 0U);
    EXPECT_EQ(infoOf(name)->defaultLevel, 3U);
}

TEST_F(TraceFacility, letsALevelSetBeforeConstructionTakeThePlaceOfTheConstructors)
{
    host::trace::setLevel(name, PLX_TRACE_LEVEL_DETAIL);
    EXPECT_FALSE(infoOf(name)) << "not constructed yet";
    const PlxTrace trace(name.c_str(), PLX_TRACE_LEVEL_DEFAULT, PLX_TRACE_HDR_STANDARD);
    EXPECT_TRUE(trace.isEnabled(PLX_TRACE_LEVEL_DETAIL));
    EXPECT_EQ(infoOf(name)->level, 7U);
    EXPECT_EQ(infoOf(name)->defaultLevel, 3U);
    EXPECT_EQ(infoOf(name)->hdrOption, 256U);
}

TEST_F(TraceFacility, givesAComponentConstructedAnewItsNewLevelUnlessOneWasSet)
{
    const PlxTrace first(name.c_str(), PLX_TRACE_LEVEL_DEFAULT, PLX_TRACE_HDR_STANDARD);
    const PlxTrace second(name.c_str(), PLX_TRACE_LEVEL_INFO, otherOption);
    EXPECT_EQ(infoOf(name)->level, 5U);
    EXPECT_EQ(infoOf(name)->defaultLevel, 5U);
    EXPECT_EQ(infoOf(name)->hdrOption, 7U);
    host::trace::setLevel(name, PLX_TRACE_LEVEL_ERROR);
    const PlxTrace third(name.c_str(), PLX_TRACE_LEVEL_INFO, PLX_TRACE_HDR_STANDARD);
    EXPECT_EQ(infoOf(name)->level, 1U);
    EXPECT_FALSE(third.isEnabled(PLX_TRACE_LEVEL_INFO));
}

TEST_F(TraceFacility, listsComponentsByName)
{
    const std::string names[] = {name + "B", name + "A"};
    const PlxTrace later(names[0].c_str(), PLX_TRACE_LEVEL_DEFAULT, PLX_TRACE_HDR_STANDARD);
    const PlxTrace earlier(names[1].c_str(), PLX_TRACE_LEVEL_DEFAULT, PLX_TRACE_HDR_STANDARD);
    std::vector<std::string> listed;
    for (const TraceComponentInfo& info : host::trace::components()) {
        if (info.name.starts_with(name)) {
            listed.push_back(info.name);
        }
    }
    EXPECT_THAT(listed, ElementsAre(names[1], names[0]));
}

TEST_F(TraceFacility, handsEveryRecordToTheSinksAsItWasWritten)
{
    const PlxTrace trace(name.c_str(), PLX_TRACE_LEVEL_OFF, PLX_TRACE_HDR_STANDARD);
    RecordingTraceSink sink;
    const Attached attached(sink);
    trace.logMsg(PLX_TRACE_LEVEL_INFO, header, "text");
    trace.logEnterMsg(PLX_TRACE_LEVEL_ENTER, header);
    trace.logEnterMsg(PLX_TRACE_LEVEL_DETAIL, header, "");
    const std::vector<TraceRecord> records = sink.records();
    ASSERT_EQ(records.size(), 3U);
    const struct {
        PlxTraceLevel level;
        bool isEntry;
        bool hasText;
        std::string text;
    } expected[] = {{PLX_TRACE_LEVEL_INFO, false, true, "text"}, {PLX_TRACE_LEVEL_ENTER, true, false, ""},
        {PLX_TRACE_LEVEL_DETAIL, true, true, ""}};
    for (std::size_t i = 0; i < records.size(); ++i) {
        EXPECT_EQ(records[i].component, name);
        EXPECT_EQ(records[i].level, expected[i].level);
        EXPECT_EQ(records[i].header, &header);
        EXPECT_EQ(records[i].isEntry, expected[i].isEntry) << i;
        EXPECT_EQ(records[i].hasText, expected[i].hasText) << i;
        EXPECT_EQ(records[i].text, expected[i].text);
    }
    sink.clear();
    EXPECT_THAT(sink.records(), IsEmpty());
}

TEST_F(TraceFacility, servesASinkFromItsAdditionToItsRemoval)
{
    const PlxTrace trace(name.c_str(), PLX_TRACE_LEVEL_DETAIL, PLX_TRACE_HDR_STANDARD);
    RecordingTraceSink whole;
    RecordingTraceSink middle;
    const Attached attached(whole);
    trace.logMsg(PLX_TRACE_LEVEL_INFO, header, "before");
    {
        const Attached attachedToo(middle);
        trace.logMsg(PLX_TRACE_LEVEL_INFO, header, "during");
    }
    trace.logMsg(PLX_TRACE_LEVEL_INFO, header, "after");
    ASSERT_EQ(middle.records().size(), 1U);
    EXPECT_EQ(middle.records()[0].text, "during");
    EXPECT_EQ(whole.records().size(), 3U);
}

class ThrowingSink : public TraceSink {
public:
    void write(const TraceRecord&) override { throw std::runtime_error("disk full"); }
};

TEST_F(TraceFacility, letsWhatASinkThrowsReachTheTracerAndGoesOnAfterwards)
{
    const PlxTrace trace(name.c_str(), PLX_TRACE_LEVEL_DETAIL, PLX_TRACE_HDR_STANDARD);
    {
        ThrowingSink sink;
        const Attached attached(sink);
        EXPECT_THROW(trace.logMsg(PLX_TRACE_LEVEL_INFO, header, "text"), std::runtime_error);
    }
    RecordingTraceSink sink;
    const Attached attached(sink);
    trace.logMsg(PLX_TRACE_LEVEL_INFO, header, "text");
    EXPECT_EQ(sink.records().size(), 1U);
}

/// Of use under a thread sanitizer.
TEST_F(TraceFacility, letsTheOperatorSetALevelWhileModulesTrace)
{
    constexpr std::size_t rounds = 1000;
    RecordingTraceSink sink;
    const Attached attached(sink);
    const PlxTrace component("HOST.BUSY", PLX_TRACE_LEVEL_DEFAULT, PLX_TRACE_HDR_STANDARD);
    std::thread operatorsThread([] {
        for (std::size_t i = 0; i < rounds; ++i) {
            host::trace::setLevel("HOST.BUSY", i % 2 == 0 ? PLX_TRACE_LEVEL_INFO : PLX_TRACE_LEVEL_ERROR);
        }
    });
    for (std::size_t i = 0; i < rounds; ++i) {
        component.logMsg(PLX_TRACE_LEVEL_ERROR, header, "text");
        EXPECT_TRUE(component.isEnabled(PLX_TRACE_LEVEL_ERROR));
    }
    operatorsThread.join();
    EXPECT_EQ(sink.records().size(), rounds);
}

TEST_F(TraceFacility, writesReadableLinesToAStream)
{
    const PlxTrace trace(name.c_str(), PLX_TRACE_LEVEL_DETAIL, PLX_TRACE_HDR_STANDARD);
    std::ostringstream stream;
    StreamTraceSink sink(stream);
    const Attached attached(sink);
    trace.logMsg(PLX_TRACE_LEVEL_ERROR, header, "failed");
    trace.logEnterMsg(PLX_TRACE_LEVEL_ENTER, header);
    trace.logEnterMsg(PLX_TRACE_LEVEL_ENTER, header, "channel=7");
    EXPECT_EQ(stream.str(),
        name + " 1   someFunction: failed\n" + name + " 6 > someFunction\n" + name + " 6 > someFunction: channel=7\n");
}

TEST_F(TraceFacility, leavesRecordsAboveTheSinksOwnLevelOutOfAStream)
{
    const PlxTrace trace(name.c_str(), PLX_TRACE_LEVEL_DETAIL, PLX_TRACE_HDR_STANDARD);
    for (const PlxTraceLevel highest : {PLX_TRACE_LEVEL_ERROR, PLX_TRACE_LEVEL_INFO, PLX_TRACE_LEVEL_DETAIL}) {
        std::ostringstream stream;
        StreamTraceSink sink(stream, highest);
        const Attached attached(sink);
        std::string expected;
        for (const PlxTraceLevel level : {PLX_TRACE_LEVEL_ERROR, PLX_TRACE_LEVEL_INFO, PLX_TRACE_LEVEL_DETAIL}) {
            trace.logMsg(level, header, "");
            expected += level <= highest ? name + " " + std::to_string(level) + "   someFunction: \n" : "";
        }
        EXPECT_EQ(stream.str(), expected) << highest;
    }
}

/// Groups digits one by one, as no real locale does.
class GroupingDigits : public std::numpunct<char> {
    char do_thousands_sep() const override { return '\''; }
    std::string do_grouping() const override { return "\1"; }
};

TEST_F(TraceFacility, writesLevelsAlikeWhateverTheStreamIsSetTo)
{
    const PlxTrace trace(name.c_str(), PLX_TRACE_LEVEL_DETAIL, PLX_TRACE_HDR_STANDARD);
    std::ostringstream stream;
    stream.imbue(std::locale(std::locale::classic(), new GroupingDigits));
    StreamTraceSink sink(stream, static_cast<PlxTraceLevel>(1234));
    const Attached attached(sink);
    trace.logMsg(static_cast<PlxTraceLevel>(1234), header, "text");
    EXPECT_EQ(stream.str(), name + " 1234   someFunction: text\n");
}

} // namespace

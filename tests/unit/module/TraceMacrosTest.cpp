// The trace macros by themselves, apart from the module: with a component of this program, of the same name.

#include "tests/support/HostFixture.h"

#include "Control/SpectrumDiagnosticsController/private/Trace.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <stdexcept>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kept = 4711;

class TraceMacros : public tests::HostFixture {
protected:
    int evaluated()
    {
        errno = EIO;
        return ++m_evaluations;
    }

    int m_evaluations = 0;
};

TEST_F(TraceMacros, aLevelThatIsOffBuildsNoTextAndEvaluatesNoArgument)
{
    setTraceLevel(4);
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "x" << evaluated());
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER, "x" << evaluated());
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    EXPECT_EQ(m_evaluations, 0);
    EXPECT_THAT(trace.records(), IsEmpty());
}

TEST_F(TraceMacros, aLevelThatIsOnEvaluatesOnceAndWritesOneRecord)
{
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "x" << evaluated() << '.');
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER, "y" << evaluated());
    EXPECT_EQ(m_evaluations, 2);
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    const std::vector<host::TraceRecord> records = trace.records();
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0].text, "x1.");
    EXPECT_FALSE(records[0].isEntry);
    EXPECT_EQ(records[1].text, "y2");
    EXPECT_TRUE(records[1].isEntry && records[1].hasText);
    EXPECT_TRUE(records[2].isEntry && !records[2].hasText);
}

TEST_F(TraceMacros, eachUseAsksOnceForItsLevel)
{
    logQuestions();
    SDC_TRACE(PLX_TRACE_LEVEL_ERROR, "x");
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_DETAIL, "x");
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_INFO);
    EXPECT_THAT(log.calls(),
        ElementsAre("trace.isEnabled 1", "trace 1 x", "trace.isEnabled 7", "enter 7 TestBody: x", "trace.isEnabled 5",
            "enter 5 TestBody"));
}

TEST_F(TraceMacros, headerIsStaticAndTellsFileLineAndFunctionOfTheSite)
{
    for (int pass = 0; pass < 2; ++pass) {
        // clang-format off
        SDC_TRACE(PLX_TRACE_LEVEL_INFO, "x"); const std::uint32_t firstLine = __LINE__;
        SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER, "x"); SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
        // clang-format on
        const std::vector<host::TraceRecord> records = trace.records();
        for (std::size_t site = 0; site < 3; ++site) {
            const PlxTraceHeader* const header = records.at(records.size() - 3 + site).header;
            EXPECT_EQ(header, records[site].header);
            EXPECT_STREQ(header->file, __FILE__);
            EXPECT_EQ(header->line, site == 0 ? firstLine : firstLine + 1);
            EXPECT_STREQ(header->function, __func__);
        }
        EXPECT_NE(records[1].header, records[2].header);
    }
}

TEST_F(TraceMacros, eachIsOneStatementEvenBetweenIfAndElse)
{
    for (const bool condition : {true, false}) {
        bool wentElse = false;
        if (condition)
            SDC_TRACE(PLX_TRACE_LEVEL_INFO, "if");
        else
            wentElse = true;
        EXPECT_NE(wentElse, condition);
        if (condition)
            SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
        else
            SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER, "else");
    }
    const std::vector<host::TraceRecord> records = trace.records();
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0].text, "if");
    EXPECT_FALSE(records[1].hasText);
    EXPECT_EQ(records[2].text, "else");
}

TEST_F(TraceMacros, anElseBehindALevelThatIsOffBelongsToTheUsersIf)
{
    setTraceLevel(0);
    bool wentElse = false;
    if (true)
        SDC_TRACE(PLX_TRACE_LEVEL_INFO, "if");
    else
        wentElse = true;
    EXPECT_FALSE(wentElse);
}

TEST_F(TraceMacros, errnoIsSavedBeforeTheTextIsBuiltAndRestoredAfterTheCall)
{
    log.onAdd([](const std::string&) { errno = ENOSPC; });
    errno = kept;
    SDC_TRACE(PLX_TRACE_LEVEL_INFO, "x" << evaluated());
    const int afterMessage = errno;
    EXPECT_EQ(afterMessage, kept);
    errno = kept;
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER, "x" << evaluated());
    const int afterEntry = errno;
    EXPECT_EQ(afterEntry, kept);
    errno = kept;
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER);
    const int afterPlainEntry = errno;
    EXPECT_EQ(afterPlainEntry, kept);
}

TEST_F(TraceMacros, errnoIsRestoredWhenTheTextOrTheCallThrows)
{
    const auto failing = []() -> int {
        errno = EIO;
        throw std::runtime_error("no text");
    };
    errno = kept;
    const auto traceText = [&] { SDC_TRACE(PLX_TRACE_LEVEL_INFO, failing()); };
    EXPECT_THROW(traceText(), std::runtime_error);
    const int afterText = errno;
    EXPECT_EQ(afterText, kept);
    log.onAdd([failing](const std::string&) { failing(); });
    errno = kept;
    const auto traceEntry = [] { SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER); };
    EXPECT_THROW(traceEntry(), std::runtime_error);
    const int afterCall = errno;
    EXPECT_EQ(afterCall, kept);
}

} // namespace

// What holds for every trace site: it asks for its level, costs nothing when off, has its own header and writes
// numbers plainly.

#include "tests/support/GroupingLocale.h"
#include "tests/support/OperationsFixture.h"

#include <gmock/gmock.h>

#include <map>
#include <set>
#include <utility>

namespace {

using support::Operation;
using testing::ElementsAre;
using testing::IsEmpty;
using Controller = SpectrumDiagnosticsController;

class TraceConventions : public support::OperationsFixture {
protected:
    /// Runs an operation; returns the levels that were asked for, and how each record stands among them.
    std::vector<std::string> asksAndRecordsOf(const Operation& operation)
    {
        reset();
        std::vector<std::string> events;
        onHostEvent = [&events](const std::string& event) {
            if (event.starts_with("trace.isEnabled ")) {
                events.push_back("ask " + event.substr(event.find(' ') + 1));
            }
        };
        traceIntoLog.onWrite = [&events](const host::TraceRecord& record) {
            events.push_back("record " + std::to_string(record.level));
        };
        operation.run();
        onHostEvent = nullptr;
        traceIntoLog.onWrite = nullptr;
        return events;
    }
};

TEST_F(TraceConventions, everySiteAsksForItsOwnLevelRightBeforeItsRecord)
{
    for (const Operation& operation : operations()) {
        const std::vector<std::string> events = asksAndRecordsOf(operation);
        ASSERT_EQ(events.size() % 2, 0U) << operation.name;
        for (std::size_t i = 0; i < events.size(); i += 2) {
            EXPECT_EQ(events[i].substr(0, 4), "ask ") << operation.name;
            EXPECT_EQ(events[i + 1], "record " + events[i].substr(4)) << operation.name;
        }
    }
}

TEST_F(TraceConventions, everySiteAsksAgainThoughEverythingIsOff)
{
    for (const Operation& operation : operations()) {
        std::vector<std::string> asks = asksAndRecordsOf(operation);
        std::erase_if(asks, [](const std::string& event) { return event.starts_with("record"); });
        setTraceLevel(0);
        EXPECT_EQ(asksAndRecordsOf(operation), asks) << operation.name;
        setTraceLevel(7);
    }
}

TEST_F(TraceConventions, onlyTheFourLevelsAreUsed)
{
    std::set<std::string> levels;
    for (const Operation& operation : operations()) {
        const std::vector<std::string> events = asksAndRecordsOf(operation);
        levels.insert(events.begin(), events.end());
    }
    EXPECT_THAT(levels, ElementsAre("ask 1", "ask 5", "ask 6", "ask 7", "record 1", "record 5", "record 6", "record 7"));
}

TEST_F(TraceConventions, aLowerLevelLeavesOutExactlyTheRecordsAboveIt)
{
    for (const Operation& operation : operations()) {
        SCOPED_TRACE(operation.name);
        reset();
        operation.run();
        const std::vector<host::TraceRecord> all = trace.records();
        const std::vector<std::string> calls = log.callsWithout({"trace ", "enter "});
        for (std::uint32_t level = 0; level < 7; ++level) {
            setTraceLevel(level);
            reset();
            operation.run();
            std::vector<std::string> expected;
            for (const host::TraceRecord& record : all) {
                if (record.level <= level) {
                    expected.push_back(record.text);
                }
            }
            std::vector<std::string> texts;
            for (const host::TraceRecord& record : trace.records()) {
                texts.push_back(record.text);
            }
            EXPECT_EQ(texts, expected) << level;
            EXPECT_EQ(log.callsWithout({"trace ", "enter "}), calls) << level;
        }
        setTraceLevel(7);
    }
}

TEST_F(TraceConventions, everyLineOfADumpIsSwitchedByItself)
{
    const std::pair<Operation, std::size_t> dumps[] = {
        {{"setGeneralParams", [this] { inspect().setGeneralParams(); }}, 7}, {{"sweep", [this] { runScan(); }}, 9}};
    for (const auto& [operation, lines] : dumps) {
        for (std::size_t on = 0; on <= lines; ++on) {
            setTraceLevel(5);
            reset();
            std::size_t asks = 0;
            onHostEvent = [&asks, on](const std::string& event) {
                if (event == "trace.isEnabled 5" && ++asks > on) {
                    setTraceLevel(4);
                }
            };
            operation.run();
            onHostEvent = nullptr;
            EXPECT_EQ(traceTexts(5).size(), on) << operation.name;
            EXPECT_EQ(asks, lines) << operation.name;
        }
    }
}

TEST_F(TraceConventions, entryRecordsAreWrittenAtLevel6AndOnlyThere)
{
    for (const Operation& operation : operations()) {
        reset();
        operation.run();
        for (const host::TraceRecord& record : trace.records()) {
            EXPECT_EQ(record.isEntry, record.level == 6) << operation.name << ": " << record.text;
            EXPECT_TRUE(record.isEntry || record.hasText) << operation.name;
            EXPECT_EQ(record.component, "ZRP.SDC") << operation.name;
        }
    }
}

TEST_F(TraceConventions, entryRecordsHaveAHeaderOnlyOrATextAsListed)
{
    const std::map<std::string, bool> hasText = {{"SpectrumDiagnosticsController", true},
        {"~SpectrumDiagnosticsController", false}, {"onModuleInit", true}, {"initialize", true}, {"onPhaseStop", false},
        {"exitThread", true}, {"setCommand", true}, {"getStatus", true}, {"getProgress", true}, {"getResult", true},
        {"scanThread", true}, {"runScan", true}};
    std::set<std::string> seen;
    for (const Operation& operation : operations()) {
        reset();
        operation.run();
        for (const host::TraceRecord& record : trace.records()) {
            const auto row = hasText.find(record.header->function);
            if (record.isEntry && row != hasText.end()) {
                EXPECT_EQ(record.hasText, row->second) << record.header->function;
                seen.insert(row->first);
            }
        }
    }
    EXPECT_EQ(seen.size(), hasText.size());
}

TEST_F(TraceConventions, propertiesQueryNeitherAsksNorWrites)
{
    EXPECT_THAT(
        asksAndRecordsOf({"properties query", [this] { controller->getSpectrumDiagnosticsProperties(); }}), IsEmpty());
}

TEST_F(TraceConventions, headersNameTheSourceFileOfTheirThreadRelativeToTheTree)
{
    const std::string base = "src/Control/SpectrumDiagnosticsController/private/SpectrumDiagnosticsController";
    const std::set<std::string> files = {
        base + ".cpp", base + "Commands.cpp", base + "Planning.cpp", base + "Execution.cpp"};
    std::set<std::string> seen;
    for (const Operation& operation : operations()) {
        reset();
        operation.run();
        for (const host::TraceRecord& record : trace.records()) {
            seen.insert(record.header->file);
        }
    }
    EXPECT_EQ(seen, files);
}

/// "function text" of a record, the text without what follows a number's place.
std::string siteOf(const host::TraceRecord& record)
{
    return std::string(record.header->function) + (record.isEntry ? ">" : ":")
        + record.text.substr(0, record.text.find_first_of("0123456789("));
}

TEST_F(TraceConventions, everySiteHasItsOwnStaticHeaderWithItsLineAndFunction)
{
    std::map<std::string, const PlxTraceHeader*> headers;
    std::set<std::pair<std::string, std::uint32_t>> lines;
    for (const Operation& operation : operations()) {
        reset();
        operation.run();
        for (const host::TraceRecord& record : trace.records()) {
            const auto [entry, isNew] = headers.emplace(siteOf(record), record.header);
            EXPECT_EQ(entry->second, record.header) << entry->first;
            if (isNew) {
                EXPECT_TRUE(lines.emplace(record.header->file, record.header->line).second) << entry->first;
                EXPECT_GT(record.header->line, 10U) << entry->first;
            }
        }
    }
    EXPECT_GT(headers.size(), 50U);
}

TEST_F(TraceConventions, headersNameTheFunctionThatTraces)
{
    const std::pair<Operation, std::vector<std::string>> rows[] = {
        {{"life", [] { const Controller other(RadioChannel{9}); }},
            {"SpectrumDiagnosticsController", "~SpectrumDiagnosticsController"}},
        {{"initialize", [this] { controller->initialize(); }}, {"initialize"}},
        {{"onPhaseStop", [this] { controller->onPhaseStop(); }}, {"onPhaseStop"}},
        {{"exitThread", [this] { inspect().exitThread(); }}, {"exitThread"}},
        {{"getStatus", [this] { controller->getStatus(); }}, {"getStatus"}},
        {{"getProgress", [this] { controller->getProgress(); }}, {"getProgress"}},
        {{"getResult", [this] { controller->getResult(nullptr, nullptr); }}, {"getResult", "getResult"}},
        {{"unknown command", [this] { controller->setCommand(SDC_CMD_GET_STATUS, 0); }}, {"setCommand", "setCommand"}},
    };
    for (const auto& [operation, functions] : rows) {
        reset();
        operation.run();
        std::vector<std::string> seen;
        for (const host::TraceRecord& record : trace.records()) {
            seen.emplace_back(record.header->function);
        }
        EXPECT_EQ(seen, functions) << operation.name;
    }
}

TEST_F(TraceConventions, digitGroupingOfTheGlobalLocaleChangesNoName)
{
    const support::GroupingLocale grouping;
    for (const std::uint32_t channel : {1234567U, 2147483648U, 4294967295U}) {
        log.clear();
        trace.clear();
        const std::string digits = std::to_string(channel);
        start(channel);
        EXPECT_EQ(controller->moduleName(), "ISpectrumDiagnosticsController_" + digits);
        EXPECT_EQ(inspect().m_threadName(), "SpectDiagCtrl" + std::to_string(static_cast<std::int32_t>(channel)));
        EXPECT_EQ(log.count("broker.register ISpectrumDiagnosticsController_" + digits), 1U);
        EXPECT_EQ(log.count("enter 6 onModuleInit: m_radioChannelId=" + digits), 1U);
        destroy();
        EXPECT_EQ(log.count("broker.unregister ISpectrumDiagnosticsController_" + digits), 1U);
        peers.unregister();
    }
}

TEST_F(TraceConventions, digitGroupingOfTheGlobalLocaleChangesNoTraceText)
{
    inspect().m_radioChannelId() = 4294967295;
    for (const Operation& operation : operations()) {
        reset();
        operation.run();
        const std::vector<std::string> plain = log.calls();
        const support::GroupingLocale grouping;
        reset();
        operation.run();
        EXPECT_EQ(log.calls(), plain) << operation.name;
    }
    inspect().m_radioChannelId() = 7;
}

TEST_F(TraceConventions, aTraceTextIsBuiltByTheLocaleThatNoProgramCanChange)
{
    const support::GroupingLocale grouping;
    reset();
    controller->setCommand(static_cast<ESDCCommand>(4294967295U), 1234567);
    EXPECT_THAT(log.calls(),
        ElementsAre("enter 6 setCommand: m_radioChannelId=7, SDCStatus::toString(m_status)=scan-not-started, "
                    "SDCCommand::toString(command)=unknown, setRxWait_ms=1234567",
            "trace 1 Unknown command -1"));
}

} // namespace

// What holds for every trace site, whatever is done with a controller: it asks for its level right before its record, costs
// nothing when off, has a header of its own, writes numbers plainly and leaves errno alone.

#include "tests/support/ControllerFixture.h"
#include "tests/support/GroupingLocale.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <utility>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using tests::Calls;
using Controller = SpectrumDiagnosticsController;

bool isRecord(const std::string& call)
{
    return call.starts_with("trace ") || call.starts_with("enter ");
}

bool isQuestion(const std::string& call)
{
    return call.starts_with("trace.isEnabled ");
}

/// The level of a record or of a question.
std::uint32_t levelOf(const std::string& call)
{
    return static_cast<std::uint32_t>(call[call.find(' ') + 1] - '0');
}

/// What can be done with a controller on one thread, from a state of its own.
struct Operation {
    const char* name;
    std::function<void()> run;
    bool maySeeTraceThrow = true; ///< false where an exception of the trace would end the process
};

class Trace : public tests::ControllerFixture {
protected:
    Trace() { prepare(); }

    /// Puts controller and peers into the same state, whatever ran before.
    void reset()
    {
        peers.radio.typeText = "KLM6";
        peers.frequencyController.onSetRxFrequency = nullptr;
        setPlan({});
        inspect().setGeneralParams();
        inspect().prepChannelScanStd();
        setState(State::STATE_IDLE);
        inspect().m_progress() = 0;
        trace.clear();
        log.clear();
    }

    void runScan()
    {
        setState(State::STATE_SCAN);
        inspect().runScan();
    }

    void runWorkerWith(std::function<std::int32_t(std::uint32_t)> tuning)
    {
        peers.frequencyController.onSetRxFrequency = std::move(tuning);
        setState(State::STATE_SCAN);
        inspect().scanThread();
    }

    void getResult()
    {
        std::int32_t count = 0;
        SDCResult sample{};
        controller->getResult(&count, &sample);
    }

    const std::vector<Operation> operations{
        {"construction and destruction", [] { const Controller other(RadioChannel{9}); }, false},
        {"onModuleInit without peers", [] { Controller(RadioChannel{9}).onModuleInit(); }, false},
        {"initialize", [this] { controller->initialize(); }},
        {"onPhaseStop", [this] { controller->onPhaseStop(); }},
        {"exitThread", [this] { inspect().exitThread(); }},
        {"channel scan start", [this] { controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 1000000); }},
        {"sub-band scan start", [this] { controller->setCommand(SDC_CMD_SUB_BAND_SCAN_START, 1000000); }},
        {"start of an unsupported unit",
            [this] {
                peers.radio.typeText = "none";
                controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 0);
            }},
        {"refused start",
            [this] {
                setState(State::STATE_SCAN);
                controller->setCommand(SDC_CMD_CHANNEL_SCAN_START, 0);
            }},
        {"stop while idle", [this] { controller->setCommand(SDC_CMD_SCAN_STOP, 0); }},
        {"unknown command", [this] { controller->setCommand(ESDCCommand{1000000}, 0); }},
        {"getStatus", [this] { controller->getStatus(); }},
        {"getProgress", [this] { controller->getProgress(); }},
        {"getResult without a count", [this] { controller->getResult(nullptr, nullptr); }},
        {"getResult", [this] { getResult(); }},
        {"properties query", [this] { controller->getSpectrumDiagnosticsProperties(); }},
        {"prepChannelScan4742_4743", [this] { inspect().prepChannelScan4742_4743(); }},
        {"prepSubBandScan4743", [this] { inspect().prepSubBandScan4743(); }},
        {"prepSubBandScan4742", [this] { inspect().prepSubBandScan4742(); }},
        {"sweep", [this] { runScan(); }},
        {"sweep of one sample",
            [this] {
                inspect().prepChannelScan4742_4743();
                runScan();
            }},
        {"sweep that fails to tune and to restore",
            [this] {
                peers.frequencyController.onSetRxFrequency = [](std::uint32_t) { return SDC_RC_FAILED; };
                runScan();
            }},
        {"worker that is told to end",
            [this] {
                setState(State::STATE_EXIT);
                inspect().scanThread();
            },
            false},
        {"worker that ends by a standard exception",
            [this] { runWorkerWith([](std::uint32_t) -> std::int32_t { throw std::runtime_error("x"); }); }, false},
        {"worker that ends by another exception", [this] { runWorkerWith([](std::uint32_t) -> std::int32_t { throw 42; }); },
            false},
    };
};

TEST_F(Trace, everySiteAsksForItsOwnLevelRightBeforeItsRecord)
{
    logQuestions();
    std::set<std::uint32_t> levels;
    for (const Operation& operation : operations) {
        reset();
        operation.run();
        std::string before;
        for (const std::string& call : log.calls()) {
            SCOPED_TRACE(std::string(operation.name) + ": " + call);
            EXPECT_EQ(isRecord(call), isQuestion(before)) << "after " << before;
            if (isRecord(call)) {
                EXPECT_EQ(levelOf(call), levelOf(before));
                EXPECT_EQ(call.starts_with("enter "), levelOf(call) == 6);
                levels.insert(levelOf(call));
            }
            before = call;
        }
        EXPECT_FALSE(isQuestion(before)) << operation.name;
        for (const host::TraceRecord& record : trace.records()) {
            EXPECT_EQ(record.component, "ZRP.SDC");
            EXPECT_TRUE(record.isEntry || record.hasText);
        }
    }
    EXPECT_THAT(levels, ElementsAre(1, 5, 6, 7));
}

TEST_F(Trace, aLowerLevelLeavesOutExactlyTheRecordsAboveItAndNoQuestion)
{
    logQuestions();
    for (const Operation& operation : operations) {
        SCOPED_TRACE(operation.name);
        reset();
        operation.run();
        const Calls all = log.calls();
        for (std::uint32_t level = 0; level < 7; ++level) {
            setTraceLevel(level);
            reset();
            operation.run();
            Calls expected = all;
            std::erase_if(expected, [level](const std::string& call) { return isRecord(call) && levelOf(call) > level; });
            EXPECT_THAT(log.calls(), ElementsAreArray(expected)) << level;
        }
        setTraceLevel(7);
    }
}

/// From its start to its end, whether it has got a name or not. The worker asks for level 5 before it waits, with its lock
/// held until it does.
TEST_F(Trace, aLivingWorkerWritesNothingWithTheTraceOff)
{
    logQuestions();
    setTraceLevel(PLX_TRACE_LEVEL_OFF);
    const std::pair<std::function<void()>, std::size_t> namings[] = {
        {[] {}, 2}, {[] { throw std::runtime_error("no name"); }, 1}, {[] { throw 42; }, 1}};
    for (const auto& [naming, questions] : namings) {
        destroy();
        peers.unregister();
        log.clear();
        at("thread.name SpectDiagCtrl7", naming);
        start();
        EXPECT_TRUE(waitFor("trace.isEnabled 5", questions));
        const std::lock_guard<std::mutex> workerWaits(inspect().m_mutex());
        EXPECT_EQ(log.count("trace.isEnabled 1"), 2 - questions);
    }
    destroy();
    EXPECT_THAT(trace.records(), testing::IsEmpty());
}

TEST_F(Trace, everySiteHasItsOwnStaticHeaderWithItsSourceRelativeToTheTree)
{
    const std::string base = "src/Control/SpectrumDiagnosticsController/private/SpectrumDiagnosticsController";
    std::map<std::string, const PlxTraceHeader*> headers;
    std::set<std::pair<std::string, std::uint32_t>> lines;
    std::set<std::string> files;
    for (int round = 0; round < 2; ++round) {
        for (const Operation& operation : operations) {
            reset();
            operation.run();
            for (const host::TraceRecord& record : trace.records()) {
                const std::string site = std::string(record.header->function) + (record.isEntry ? ">" : ":")
                    + record.text.substr(0, record.text.find_first_of("0123456789("));
                EXPECT_EQ(headers.emplace(site, record.header).first->second, record.header) << site;
                lines.emplace(record.header->file, record.header->line);
                files.insert(record.header->file);
            }
        }
    }
    EXPECT_EQ(lines.size(), headers.size());
    EXPECT_GT(headers.size(), 50U);
    EXPECT_THAT(files, ElementsAre(base + ".cpp", base + "Commands.cpp", base + "Execution.cpp", base + "Planning.cpp"));
}

TEST_F(Trace, digitGroupingOfTheGlobalLocaleChangesNoText)
{
    inspect().m_radioChannelId() = 4294967295;
    for (const Operation& operation : operations) {
        reset();
        operation.run();
        const Calls plain = log.calls();
        const tests::GroupingLocale grouping;
        reset();
        operation.run();
        EXPECT_EQ(log.calls(), plain) << operation.name;
    }
    inspect().m_radioChannelId() = 7;
}

TEST_F(Trace, digitGroupingOfTheGlobalLocaleChangesNoName)
{
    const tests::GroupingLocale grouping;
    destroy();
    log.clear();
    startAndWait(2147483648);
    EXPECT_EQ(controller->moduleName(), "ISpectrumDiagnosticsController_2147483648");
    EXPECT_EQ(inspect().m_threadName(), "SpectDiagCtrl-2147483648");
    destroy();
    EXPECT_EQ(log.count("broker.unregister ISpectrumDiagnosticsController_2147483648"), 1U);
}

/// Errno is what a thread that traces finds afterwards; the host's trace changes it.
class TraceErrno : public Trace {
protected:
    static constexpr int kept = 4711;

    /// From now on the host's trace changes errno, and throws where it is told to.
    void disturb(bool isThrowing)
    {
        log.onAdd([isThrowing](const std::string& call) {
            if (isRecord(call)) {
                errno = EIO;
                if (isThrowing) {
                    throw std::runtime_error("disk is full");
                }
            }
        });
    }

    /// Runs an operation at every level.
    void expectErrnoIsKept(const Operation& operation, bool isThrowing)
    {
        for (std::uint32_t level = 0; level <= 7; ++level) {
            log.onAdd(nullptr);
            reset();
            setTraceLevel(level);
            disturb(isThrowing);
            errno = kept;
            try {
                operation.run();
            } catch (const std::runtime_error&) {
                EXPECT_TRUE(isThrowing);
            }
            const int after = errno;
            EXPECT_EQ(after, kept) << operation.name << " at level " << level;
        }
    }
};

TEST_F(TraceErrno, survivesEveryOperationAtEveryLevel)
{
    for (const Operation& operation : operations) {
        expectErrnoIsKept(operation, false);
    }
}

TEST_F(TraceErrno, survivesATraceThatThrows)
{
    for (const Operation& operation : operations) {
        if (operation.maySeeTraceThrow) {
            expectErrnoIsKept(operation, true);
        }
    }
}

TEST_F(TraceErrno, survivesTheInitialisationAndTheEndOfAWorkerWithAndWithoutAName)
{
    peers.registerFor(9);
    const std::function<void()> namings[] = {[] {}, [] { throw std::runtime_error("no name"); }, [] { throw 42; }};
    for (const auto& naming : namings) {
        log.onAdd([&naming](const std::string& call) {
            if (isRecord(call)) {
                errno = EIO;
            } else if (call.starts_with("thread.name")) {
                naming();
            }
        });
        auto other = std::make_unique<Controller>(RadioChannel{9});
        errno = kept;
        EXPECT_EQ(other->onModuleInit(), 0U);
        const int afterInit = errno;
        EXPECT_EQ(afterInit, kept);
        errno = kept;
        other.reset();
        const int afterEnd = errno;
        EXPECT_EQ(afterEnd, kept);
    }
}

} // namespace

// Tracing never changes errno, whatever the host's trace does.

#include "tests/support/OperationsFixture.h"

#include <cerrno>
#include <memory>
#include <stdexcept>

namespace {

using support::Operation;
using Controller = SpectrumDiagnosticsController;

constexpr int kept = 4711;

class TraceErrno : public support::OperationsFixture {
protected:
    /// Runs every operation at every level and expects errno to be as before.
    void expectErrnoIsKept(bool onlyWhereTraceMayThrow = false)
    {
        for (const Operation& operation : operations()) {
            if (onlyWhereTraceMayThrow && !operation.maySeeTraceThrow) {
                continue;
            }
            for (std::uint32_t level = 0; level <= 7; ++level) {
                setTraceLevel(0);
                reset();
                setTraceLevel(level);
                errno = kept;
                try {
                    operation.run();
                } catch (const std::runtime_error&) {
                    EXPECT_TRUE(onlyWhereTraceMayThrow);
                }
                const int after = errno;
                EXPECT_EQ(after, kept) << operation.name << " at level " << level;
            }
        }
    }
};

TEST_F(TraceErrno, errnoSurvivesEveryOperationAtEveryLevel)
{
    expectErrnoIsKept();
}

TEST_F(TraceErrno, errnoSurvivesASinkThatChangesIt)
{
    traceIntoLog.onWrite = [](const host::TraceRecord&) { errno = EIO; };
    expectErrnoIsKept();
}

TEST_F(TraceErrno, errnoSurvivesASinkThatChangesItAndThrows)
{
    traceIntoLog.onWrite = [](const host::TraceRecord&) {
        errno = EIO;
        throw std::runtime_error("disk is full");
    };
    expectErrnoIsKept(true);
}

TEST_F(TraceErrno, errnoSurvivesTheInitialisationAndTheEndOfAWorker)
{
    traceIntoLog.onWrite = [](const host::TraceRecord&) { errno = EIO; };
    peers.registerFor(9);
    for (std::uint32_t level = 0; level <= 7; ++level) {
        setTraceLevel(level);
        auto other = std::make_unique<Controller>(RadioChannel{9});
        errno = kept;
        EXPECT_EQ(other->onModuleInit(), 0U);
        const int afterInit = errno;
        EXPECT_EQ(afterInit, kept) << level;
        errno = kept;
        other.reset();
        const int afterEnd = errno;
        EXPECT_EQ(afterEnd, kept) << level;
    }
}

TEST_F(TraceErrno, errnoSurvivesAThreadThatCannotBeNamed)
{
    traceIntoLog.onWrite = [](const host::TraceRecord&) { errno = EIO; };
    peers.registerFor(9);
    for (const bool standard : {true, false}) {
        onHostEvent = [standard](const std::string& event) {
            if (event.starts_with("thread.name")) {
                standard ? throw std::runtime_error("no name") : throw 42;
            }
        };
        Controller other(RadioChannel{9});
        errno = kept;
        EXPECT_EQ(other.onModuleInit(), 0U);
        const int after = errno;
        EXPECT_EQ(after, kept);
    }
}

} // namespace

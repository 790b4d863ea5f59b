#pragma once

#include "tests/support/CallLog.h"
#include "tests/support/ScriptedSleep.h"

#include "host/Clock.h"
#include "host/Trace.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

namespace tests {

/// The host with everything logged, trace on at every level, and sleeps that take no time. What a test does at a moment, it
/// does at a call of the log.
class HostFixture : public testing::Test {
protected:
    HostFixture();
    ~HostFixture() override;

    static void setTraceLevel(std::uint32_t level);

    /// All trace texts of a level, entries not included.
    Calls traceTexts(std::uint32_t level) const;

    /// Logs, from now on, also every question whether a level is enabled: "trace.isEnabled LEVEL".
    void logQuestions() { m_logsQuestions = true; }

    /// Runs an action at the n-th occurrence (from 1) of a call in the log, in place of any hook set before.
    void at(const std::string& call, const std::function<void()>& action, int nth = 1);

    CallLog log; ///< of the trace: "trace LEVEL TEXT", "enter LEVEL FUNCTION" and "enter LEVEL FUNCTION: TEXT"
    host::RecordingTraceSink trace; ///< the same records in full, with their headers
    ScriptedSleep sleep{log};

private:
    struct TraceIntoLog : host::TraceSink {
        explicit TraceIntoLog(CallLog& callLog)
            : log(callLog)
        {
        }
        void write(const host::TraceRecord& record) override;

        CallLog& log;
    };

    TraceIntoLog m_traceIntoLog{log};
    bool m_logsQuestions = false;
    host::SleepServiceInForce m_sleepInForce{sleep};
};

} // namespace tests

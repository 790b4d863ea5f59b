#pragma once

#include "tests/support/CallLog.h"
#include "tests/support/ControllerInspector.h"
#include "tests/support/FakePeers.h"
#include "tests/support/ScriptedSleep.h"

#include "host/Clock.h"
#include "host/Trace.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace support {

/// The component name of the module.
inline const std::string component = "ZRP.SDC";

/// Writes trace records into the log: "trace LEVEL TEXT", "enter LEVEL FUNCTION" or "enter LEVEL FUNCTION: TEXT".
class TraceIntoLog : public host::TraceSink {
public:
    explicit TraceIntoLog(CallLog& log)
        : m_log(log)
    {
    }
    void write(const host::TraceRecord& record) override;

    std::function<void(const host::TraceRecord& record)> onWrite; ///< runs after the record is logged

private:
    CallLog& m_log;
};

/// The simulated host with everything logged, trace on at every level, and sleeps that take no time.
class HostFixture : public testing::Test {
protected:
    HostFixture();
    ~HostFixture() override;

    static void setTraceLevel(std::uint32_t level);

    /// All trace texts of a level, entries not included.
    std::vector<std::string> traceTexts(std::uint32_t level) const;

    CallLog log;
    host::RecordingTraceSink trace; ///< the same records in full, with their headers
    TraceIntoLog traceIntoLog{log};
    ScriptedSleep sleep{log};

    /// Runs at every use of a host service, after it is logged ("broker.register NAME", "thread.name NAME", ...; the event
    /// "trace.isEnabled LEVEL" comes here too and is not logged). May throw. Set while no worker runs.
    std::function<void(const std::string& event)> onHostEvent;

private:
    host::SleepServiceInForce m_sleepInForce{sleep};
};

/// A host with six fake peers, and one controller that a test constructs and initialises when it wants to.
class ControllerFixture : public HostFixture {
protected:
    ~ControllerFixture() override;

    /// Constructs the controller; peers are registered for the channel first.
    SpectrumDiagnosticsController& construct(std::uint32_t channel = 7);

    /// Constructs and initialises: the worker runs, and waits.
    SpectrumDiagnosticsController& start(std::uint32_t channel = 7);

    /// Destroys the controller.
    void destroy();

    ControllerInspector inspect() const { return ControllerInspector(*controller); }

    /// Waits, bounded, until the worker has come back to STATE_IDLE.
    bool waitForIdle() const;

    /// Waits, bounded, until the worker has gone to wait that often (needs trace level 5, from the controller's start on).
    bool waitForWaits(std::size_t times) const;

    /// Gives a command at a moment when the worker waits or has not begun, so that its wake-up cannot be lost. (A start that
    /// falls between the worker's test of the state and its wait is lost; tests must not depend on that.)
    std::int32_t command(ESDCCommand command, std::int32_t setRxWait_ms = 0) const;

    /// Starts a scan so and waits, bounded, until it has ended.
    bool scan(ESDCCommand start);

    /// All samples of the controller.
    std::vector<SDCResult> samples() const;

    FakePeers peers{log};
    std::unique_ptr<SpectrumDiagnosticsController> controller;
};

} // namespace support

/// For comparison and printing in tests.
bool operator==(const SDCResult& left, const SDCResult& right);
std::ostream& operator<<(std::ostream& stream, const SDCResult& sample);

#pragma once

#include "tests/support/BackgroundCall.h"
#include "tests/support/ControllerInspector.h"
#include "tests/support/FakePeers.h"
#include "tests/support/HostFixture.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tests {

/// What a sweep is planned to do.
struct SweepPlan {
    std::uint32_t lowest_kHz = 100000;
    std::uint32_t highest_kHz = 100100;
    std::uint32_t step_kHz = 50;
    std::int32_t total = 3;
};

/// A host with six fake peers, and one controller: with a worker once it is started, or without one, when everything happens
/// on the test's thread and a state stays as it is set.
class ControllerFixture : public HostFixture {
protected:
    using State = SpectrumDiagnosticsController::State;

    static constexpr std::uint32_t configured_kHz = 18000000;
    static constexpr std::uint32_t firstWait_ms = 3000;
    static constexpr std::uint32_t wait_ms = 300;

    ~ControllerFixture() override;

    /// Constructs the controller; peers are registered for the channel first.
    SpectrumDiagnosticsController& construct(std::uint32_t channel = 7);

    /// Constructs and initialises: the worker runs, and waits.
    SpectrumDiagnosticsController& start(std::uint32_t channel = 7);

    /// Destroys the controller.
    void destroy();

    ControllerInspector inspect() const { return ControllerInspector(*controller); }
    void setState(State state) const { inspect().setState(state); }

    // Without a worker.

    /// A fresh controller as onModuleInit leaves it, but for the worker, and with a plan; the log is empty.
    void prepare(const SweepPlan& plan = {}, std::uint32_t channel = 7);

    /// As a start command leaves it: a scan is requested.
    void setPlan(const SweepPlan& plan, ESDCStatus status = SDC_STATUS_CHANNEL_SCAN_ONGOING) const;

    /// All members that commands, planning and sweeps write, by name.
    using Members = std::map<std::string, std::int64_t>;
    Members members() const;

    /// Gives every member a value of its own, so that whatever a call writes shows: idle, finished, two samples; the command
    /// is none at all, and only the properties' last byte is set. The log is empty.
    void fillMembers();

    // With a worker.

    /// Constructs, initialises and waits until the worker stands in its wait; the log is empty afterwards.
    /// @param onWorker  runs on the worker's thread
    void startAndWait(
        std::uint32_t channel = 7, const std::function<void()>& onWorker = [] {});

    /// Starts a sweep of three samples as a start command does, at a moment when the worker waits.
    void launch(ESDCStatus status = SDC_STATUS_CHANNEL_SCAN_ONGOING) const;

    /// Starts a sweep that stands in its first delay until the sleep opens; the log is empty.
    void launchAndHold();

    /// Gives a command at a moment when the worker waits or has not begun, so that its wake-up cannot be lost. (A start that
    /// falls between the worker's test of the state and its wait is lost; tests must not depend on that.)
    std::int32_t command(ESDCCommand command, std::int32_t setRxWait_ms = 0) const;

    /// Starts a scan so and waits, bounded, until it has ended.
    bool scan(ESDCCommand start);

    /// Waits, bounded, until the worker has come back to STATE_IDLE.
    bool waitForIdle() const;

    /// Waits, bounded, until the log holds a call so often.
    bool waitFor(const std::string& call, std::size_t times = 1) const;

    /// Waits, bounded, until the worker has gone to wait that often (needs trace level 5, from the controller's start on).
    bool waitForWaits(std::size_t times) const;

    // What it has done.

    std::vector<SDCResult> samples() const;
    std::vector<std::uint32_t> sampledFrequencies() const;

    /// Tries a mutex from a thread of its own: the calling one may hold it.
    static bool isFree(std::mutex& mutex);
    bool isMutexFree() const { return isFree(inspect().m_mutex()); }

    /// Makes a mutex one that fails when its own thread locks it again.
    static void makeCheckErrors(std::mutex& mutex);

    /// The log without what a sweep itself does between its entry and its restore.
    Calls lifeOfTheWorker() const;

    static std::string tune(std::uint32_t frequency_kHz);

    /// The calls of one step of a sweep, trace left out.
    static Calls step(std::uint32_t frequency_kHz, std::uint32_t delay_ms);

    /// The calls of a whole sweep over these frequencies with the ordinary delays, trace left out.
    static Calls sweepOver(const std::vector<std::uint32_t>& frequencies_kHz);

    const std::string workerEntry = "enter 6 scanThread: m_threadName=SpectDiagCtrl7";
    const std::string waiting = "trace 5 Thread SpectDiagCtrl7 waiting for none idle state";
    const std::string sweepEntry = "enter 6 runScan: m_threadName=SpectDiagCtrl7";
    const std::string restore = tune(configured_kHz);
    const std::string exitEntry = "enter 6 exitThread: m_threadName=SpectDiagCtrl7";
    const std::string exited = "trace 5 Thread exited with m_status ";

    /// What is left of a sweep that stands in its first delay, trace included.
    const Calls restOfTheSweep{"IRssiHandler.readRssi", "trace 7 Read RSSI -4500", "trace 7 Set RX frequency kHz 100050",
        tune(100050), "sleep.get", "sleepMs 300", "IRssiHandler.readRssi", "trace 7 Read RSSI -4500",
        "trace 7 Set RX frequency kHz 100100", tune(100100), "sleep.get", "sleepMs 300", "IRssiHandler.readRssi",
        "trace 7 Read RSSI -4500", restore};

    FakePeers peers{&log};
    KernelThread worker; ///< the worker's thread, once startAndWait has seen it
    std::unique_ptr<SpectrumDiagnosticsController> controller;
};

} // namespace tests

/// For comparison and printing in tests.
bool operator==(const SDCResult& left, const SDCResult& right);
std::ostream& operator<<(std::ostream& stream, const SDCResult& sample);

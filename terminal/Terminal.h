#pragma once

#include "host/Clock.h"
#include "host/Trace.h"
#include "terminal/ControllerTrace.h"
#include "terminal/Peers.h"
#include "terminal/ScanPlan.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "Platform/Host/RadioChannel.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace terminal {

/// How a start ended.
enum class ScanStart {
    underWay, ///< the sweep runs, or has run already
    failed,   ///< the controller could not plan: unsupported unit type
    busy,     ///< refused: a scan runs, or for as long as was tried the worker was still leaving one
    noWorker, ///< an exception has ended the worker; workerFailure tells which
};

/// A terminal does not come up: a module fails a phase of the start, or a channel gets no worker. what() tells which.
class NotUp : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Whether what this thread asks of a controller at the moment is asked by a terminal that only waits: again and again,
/// until something has happened. Sinks of the trace may leave it out.
bool isWaiting() noexcept;

/// A whole terminal: the host, the peers of each channel's radio, and one spectrum diagnostics controller per channel out of
/// the module library, brought up as a host does it. For programs and for tests of modules that use the controller's
/// interface. One at a time per process, because a host is one; its operations belong to the thread that made it.
class Terminal {
public:
    /// Brings the terminal up. Throws NotUp, std::runtime_error when two channels have one number, and what a peer throws
    /// while a module binds it.
    /// @param channels  their radios must outlive the terminal
    /// @param clock  the terminal's time; must outlive it
    Terminal(const std::vector<Channel>& channels, host::Clock& clock);

    /// Lets running scans run to their end, without taking wall time for it even where the clock is held, so that the
    /// receivers are put back; then takes the terminal down.
    ~Terminal();

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// The controller's interface, found as any other module finds it. Throws std::out_of_range for an unknown channel.
    ISpectrumDiagnosticsController& controller(RadioChannel channel) const;

    /// Where the receiver is tuned to at the moment, in kHz, as its radio tells.
    std::uint32_t rxFrequency_kHz(RadioChannel channel) const;

    /// Starts a scan, and starts it again while the worker is still leaving the one before (a hundred times, 10 ms apart).
    /// Returns once the sweep has begun. What a peer throws while the start reads it comes out of here.
    /// @throws TraceNotUnderstood when the sweep has begun and the trace tells no plan of it
    ScanStart startScan(RadioChannel channel, ESDCCommand start);

    /// Whether the channel's status says that a scan runs, and it has a worker that can run it.
    bool isOngoing(RadioChannel channel) const;

    /// Whether the channel's worker is in a sweep: of a scan that is ongoing, or that was stopped and has a step in hand.
    bool isSweeping(RadioChannel channel) const;

    /// Polls until the channel's scan has ended, or an exception has ended its worker: then the status stays ongoing. Runs
    /// @p onPoll between polls. Returns the status at the end.
    ESDCStatus waitForEnd(RadioChannel channel, const std::function<void()>& onPoll = {}) const;

    /// Stops the channel's scan at a moment when that is safe: while its worker is in a settle delay. Returns false, without
    /// a stop, when the scan has ended by itself, or @p isGivenUp before that moment came.
    bool stopScan(RadioChannel channel, const std::function<bool()>& isGivenUp = {}) const;

    /// Waits until the channel's worker has left its sweep and put the receiver back, as after a stop, or an exception has
    /// ended it. The host's stop phase does that.
    void waitForIdle(RadioChannel channel) const;

    /// The samples of the channel's current or last scan.
    std::vector<SDCResult> samples(RadioChannel channel) const;

    /// The plan of the channel's current or last scan; nothing before the first. It is read from the controller's trace:
    /// the constructor raises the level of the component to 5 (information) where it is lower.
    std::optional<ScanPlan> plan(RadioChannel channel) const;

    /// What ended the channel's worker, in the controller's own words, such as "Exception timerThread SpectDiagCtrl1: ...";
    /// nothing while the worker lives. There is no scan any more on that channel.
    std::optional<std::string> workerFailure(RadioChannel channel) const;

private:
    struct Served;
    enum class Answer { accepted, refused, failed };

    void requireWorkers() const;
    Served& find(RadioChannel channel) const;
    Answer command(Served& channel, ESDCCommand start) const;
    bool waitForBegin(Served& channel, std::uint64_t tuningsBefore) const;
    void requirePlan(RadioChannel channel, std::uint64_t plansBefore) const;
    int sweepsUnderWay() const;

    host::Clock& m_clock;
    host::SleepServiceInForce m_sleepInForce;
    ControllerTrace m_trace;
    host::trace::SinkInForce m_traceInForce;
    std::vector<std::unique_ptr<Served>> m_channels;
};

} // namespace terminal

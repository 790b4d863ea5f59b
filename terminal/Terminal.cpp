#include "terminal/Terminal.h"

#include "host/ModuleManager.h"
#include "terminal/ControllerConstruction.h"
#include "terminal/PublishedPeers.h"

#include "Platform/Host/IInterface.h"
#include "Platform/Host/InterfaceBroker.h"
#include "Platform/Host/ModuleInterface.h"
#include "Platform/Host/PlxTrace.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <thread>

namespace terminal {

namespace {

using std::chrono::milliseconds;

void traceAtLeast(const std::string& component, PlxTraceLevel level)
{
    for (const host::TraceComponentInfo& info : host::trace::components()) {
        if (info.name == component && info.level < level) {
            host::trace::setLevel(component, level);
        }
    }
}

/// Holds a clock for as long as it lives.
class ClockHold {
public:
    explicit ClockHold(host::Clock& clock)
        : m_clock(clock)
    {
        m_clock.hold();
    }
    ~ClockHold() { m_clock.release(); }
    ClockHold(const ClockHold&) = delete;
    ClockHold& operator=(const ClockHold&) = delete;

private:
    host::Clock& m_clock;
};

/// Of this thread, one within the other.
thread_local int waits = 0;

/// What its thread asks of controllers while it lives it asks because it waits.
class Waiting {
public:
    Waiting() { ++waits; }
    ~Waiting() { --waits; }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;
};

} // namespace

bool isWaiting() noexcept
{
    return waits > 0;
}

/// In the order of construction: the controller goes before the peers that it uses.
struct Terminal::Served {
    explicit Served(const Channel& channel)
        : number(channel.number)
        , tunedTo_kHz(channel.tunedTo_kHz)
        , peers(channel)
        , controller(constructController(channel.number))
    {
    }

    RadioChannel number;
    std::function<std::uint32_t()> tunedTo_kHz;
    PublishedPeers peers;
    std::unique_ptr<ModuleInterface> controller;
};

Terminal::Terminal(const std::vector<Channel>& channels, host::Clock& clock)
    : m_clock(clock)
    , m_sleepInForce(clock)
    , m_traceInForce(m_trace)
{
    traceAtLeast(ControllerTrace::component, PLX_TRACE_LEVEL_INFO);
    for (const Channel& channel : channels) {
        m_channels.push_back(std::make_unique<Served>(channel));
    }
    const std::vector<host::PhaseFailure> failures = host::ModuleManager::instance().start();
    if (!failures.empty()) {
        const host::PhaseFailure& failure = failures.front();
        throw NotUp(failure.module + " did not come up: " + failure.phase + " returned " + std::to_string(failure.result));
    }
    requireWorkers();
}

/// A module counts as initialised without its worker, too.
void Terminal::requireWorkers() const
{
    for (const auto& channel : m_channels) {
        if (const auto failure = workerFailure(channel->number)) {
            throw NotUp(
                "channel " + std::to_string(static_cast<std::uint32_t>(channel->number)) + " has no worker: " + *failure);
        }
    }
}

/// No stop is sent: one that crosses the end of a sweep would leave its worker spinning.
Terminal::~Terminal()
{
    m_clock.hurry();
    host::ModuleManager::instance().stop();
    m_channels.clear();
    m_clock.endHurry();
}

Terminal::Served& Terminal::find(RadioChannel channel) const
{
    const auto found = std::ranges::find(m_channels, channel, [](const auto& candidate) { return candidate->number; });
    if (found == m_channels.end()) {
        throw std::out_of_range("the terminal has no radio channel " + std::to_string(static_cast<std::uint32_t>(channel)));
    }
    return **found;
}

ISpectrumDiagnosticsController& Terminal::controller(RadioChannel channel) const
{
    const auto& interfaces = InterfaceBroker::getInstance().interfaces();
    const std::string name = IInterface::interfaceName("ISpectrumDiagnosticsController", find(channel).number);
    return dynamic_cast<ISpectrumDiagnosticsController&>(*interfaces.at(name));
}

std::uint32_t Terminal::rxFrequency_kHz(RadioChannel channel) const
{
    return find(channel).tunedTo_kHz();
}

/// A start that is accepted reads the configured frequency; one that is refused reads nothing.
Terminal::Answer Terminal::command(Served& channel, ESDCCommand start) const
{
    const std::uint64_t readBefore = channel.peers.getRxFrequencyCalls();
    if (controller(channel.number).setCommand(start, 0) >= SDC_RC_FAILED) {
        return Answer::failed;
    }
    return channel.peers.getRxFrequencyCalls() > readBefore ? Answer::accepted : Answer::refused;
}

ScanStart Terminal::startScan(RadioChannel channel, ESDCCommand start)
{
    constexpr int attempts = 100;
    constexpr milliseconds pause{10};
    Served& scanned = find(channel);
    if (workerFailure(channel)) {
        return ScanStart::noWorker;
    }
    if (isOngoing(channel)) { // later it may be what a lost start has left
        return ScanStart::busy;
    }
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const std::uint64_t plansBefore = m_trace.plansReadOf(channel);
        const std::uint64_t tuningsBefore = scanned.peers.setRxFrequencyCalls();
        const Answer answer = command(scanned, start);
        if (answer == Answer::failed) {
            return ScanStart::failed;
        }
        if (answer == Answer::accepted && waitForBegin(scanned, tuningsBefore)) {
            requirePlan(channel, plansBefore);
            return ScanStart::underWay;
        }
        std::this_thread::sleep_for(pause);
    }
    return ScanStart::busy;
}

/// A sweep tells its plan before its first tuning. One that an exception ends before that may not have come to it.
void Terminal::requirePlan(RadioChannel channel, std::uint64_t plansBefore) const
{
    if (m_trace.plansReadOf(channel) == plansBefore && !workerFailure(channel)) {
        throw TraceNotUnderstood("internal error: the controllers' trace could not be understood: it tells no plan of the "
                                 "sweep on channel "
            + std::to_string(static_cast<std::uint32_t>(channel)));
    }
}

/// A start that falls between the worker's test of its state and its wait is lost until the next notification, and only the
/// host can give that one: its stop phase puts the worker back to idle.
bool Terminal::waitForBegin(Served& channel, std::uint64_t tuningsBefore) const
{
    constexpr std::chrono::seconds patience{10}; // far more than a worker needs to wake on a busy machine
    constexpr std::chrono::microseconds pause{50};
    const auto hasBegun = [&] {
        return channel.peers.setRxFrequencyCalls() > tuningsBefore || workerFailure(channel.number).has_value();
    };
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!hasBegun() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(pause);
    }
    if (!hasBegun()) {
        channel.controller->onPhaseStop();
    }
    return hasBegun();
}

ESDCStatus Terminal::waitForEnd(RadioChannel channel, const std::function<void()>& onPoll) const
{
    constexpr std::chrono::microseconds longestPause{10000}; // small against a scan, whose end is seen that much later
    std::chrono::microseconds pause{100};
    while (isOngoing(channel)) {
        const Waiting waiting;
        if (onPoll) {
            onPoll();
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(2 * pause, longestPause);
    }
    return controller(channel).getStatus();
}

bool Terminal::isOngoing(RadioChannel channel) const
{
    const Waiting waiting;
    const ESDCStatus status = controller(channel).getStatus();
    const bool isScan = status == SDC_STATUS_CHANNEL_SCAN_ONGOING || status == SDC_STATUS_SUB_BAND_ONGOING;
    return isScan && !workerFailure(channel);
}

bool Terminal::isSweeping(RadioChannel channel) const
{
    return isOngoing(channel) || m_trace.isSweeping(channel);
}

/// Of all channels. A sweep that has been stopped goes on until its worker is back in its wait.
int Terminal::sweepsUnderWay() const
{
    return static_cast<int>(
        std::ranges::count_if(m_channels, [this](const auto& channel) { return isSweeping(channel->number); }));
}

/// Held by the clock, each sweep comes to stand in a settle delay or ends. A stop given then cannot cross its end. The
/// sweeps are counted before the sleepers, and the scan is looked at once more: one that ends in between is not stopped.
bool Terminal::stopScan(RadioChannel channel, const std::function<bool()>& isGivenUp) const
{
    constexpr milliseconds pause{1};
    const ClockHold hold(m_clock);
    while (isOngoing(channel) && !(isGivenUp && isGivenUp())) {
        const int sweeps = sweepsUnderWay();
        if (m_clock.sleepers() >= sweeps && isOngoing(channel)) {
            controller(channel).setCommand(SDC_CMD_SCAN_STOP, 0);
            return true;
        }
        std::this_thread::sleep_for(pause);
    }
    return false;
}

/// The stop phase returns a little early where an exception ends the worker: before the worker has told.
void Terminal::waitForIdle(RadioChannel channel) const
{
    constexpr std::chrono::seconds patience{10};
    constexpr std::chrono::microseconds pause{50};
    const Waiting waiting;
    find(channel).controller->onPhaseStop();
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (m_trace.isSweeping(channel) && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(pause);
    }
}

std::vector<SDCResult> Terminal::samples(RadioChannel channel) const
{
    std::vector<SDCResult> copy(1000);
    for (;;) {
        auto count = static_cast<std::int32_t>(copy.size());
        controller(channel).getResult(&count, copy.data());
        if (static_cast<std::size_t>(count) < copy.size()) {
            copy.resize(static_cast<std::size_t>(count));
            return copy;
        }
        copy.resize(2 * copy.size());
    }
}

std::optional<ScanPlan> Terminal::plan(RadioChannel channel) const
{
    return m_trace.planOf(channel);
}

std::optional<std::string> Terminal::workerFailure(RadioChannel channel) const
{
    return m_trace.failureOf(channel);
}

} // namespace terminal

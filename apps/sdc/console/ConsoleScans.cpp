// A console's scans: starting, stopping, looking at them, waiting for them.

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/console/Console.h"
#include "apps/sdc/console/Numbers.h"
#include "apps/sdc/console/WaitProgress.h"
#include "apps/sdc/console/Words.h"
#include "apps/sdc/options/CommandLine.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Channels.h"
#include "apps/sdc/scan/Lane.h"
#include "support/Text.h"
#include "terminal/Terminal.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace sdc {

namespace {

using support::shown;
using terminal::ScanStart;

/// Whoever waits is to come back.
struct Interrupted {};

constexpr std::size_t longestText = 300; ///< of what ended a worker

std::string resultText(std::int32_t code)
{
    switch (code) {
    case SDC_RC_OK: return "0 SDC_RC_OK";
    case SDC_RC_FAILED: return "32768 SDC_RC_FAILED";
    case SDC_RC_UNKNOWN_COMMAND: return "32770 SDC_RC_UNKNOWN_COMMAND";
    default: return std::to_string(code);
    }
}

/// The result code of a start that is refused is that of one that is not.
ConsoleError refusal(const std::string& reason)
{
    return {"the scan was not started: " + reason, EXIT_FAILED};
}

} // namespace

/// Whether the channel's worker may stand in a settle delay that does not end while the clock is held. Where no worker
/// sleeps, it has left its sweep.
bool Console::isHeldAfterStop() const
{
    return m_isHeld && m_stopped.contains(m_channel) && m_clock->sleepers() > 0;
}

/// A start beside a scan is given as it is: the controller refuses it without harm. Any other goes through the terminal,
/// which gives it anew while the worker is still leaving the scan before.
void Console::start(const Words& words)
{
    const bool isChannelScan = words[0] == SDCCommand::toString(startCommand(ScanKind::channel));
    const ScanKind kind = isChannelScan ? ScanKind::channel : ScanKind::subBand;
    const ESDCCommand command = startCommand(kind);
    const bool isOngoing = m_terminal.isOngoing(m_channel);
    if (isOngoing || isHeldAfterStop()) {
        m_output << resultText(controller().setCommand(command, 0)) << '\n';
        throw refusal(isOngoing ? "one is under way; 'wait' waits for its end, 'scan-stop' stops it"
                                : "the one before is still in its settle delay, and the clock is held; 'release' first");
    }
    const std::uint32_t rxBefore_kHz = m_terminal.rxFrequency_kHz(m_channel);
    const TimePoint now = std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    const ScanStart start = m_terminal.startScan(m_channel, command);
    if (start != ScanStart::noWorker) {
        m_output << resultText(start == ScanStart::failed ? SDC_RC_FAILED : SDC_RC_OK) << '\n';
    }
    switch (start) {
    case ScanStart::underWay: keepScan(kind, now, rxBefore_kHz); break;
    case ScanStart::failed: throw refusal("the controller does not support the unit type that the radio tells");
    case ScanStart::busy: throw refusal("the worker is still leaving the one before; 'wait' waits for it");
    case ScanStart::noWorker: showFailure(); throw refusal("an exception has ended the worker; start the console anew");
    }
}

void Console::keepScan(ScanKind kind, TimePoint start, std::uint32_t rxBefore_kHz)
{
    const auto info = std::ranges::find(m_site.channels(), m_channel, &ChannelInfo::number);
    Scan scan{kind, Lane({*info, std::nullopt}, start)};
    scan.lane.adopt(m_terminal, rxBefore_kHz);
    m_scans.insert_or_assign(m_channel, std::move(scan));
}

/// A stop that crosses the end of a sweep would leave the worker spinning. The terminal gives it to a sweep that stands in a
/// settle delay; where none runs, it is given once the worker is idle.
void Console::stop(const Words&)
{
    if (m_terminal.isOngoing(m_channel) && m_scans.at(m_channel).lane.stop(m_terminal)) {
        m_stopped.insert(m_channel);
        m_output << resultText(SDC_RC_OK) << '\n';
        return;
    }
    if (isHeldAfterStop() || reachIdle()) {
        m_output << resultText(controller().setCommand(SDC_CMD_SCAN_STOP, 0)) << '\n';
    }
}

void Console::status(const Words&)
{
    showStatus();
    requireWorker();
}

void Console::showStatus()
{
    m_output << SDCStatus::toString(controller().getStatus()) << ", progress " << controller().getProgress() << " %\n";
    showFailure();
}

/// In the controller's words, where it has failed.
void Console::showFailure()
{
    if (const auto failure = m_terminal.workerFailure(m_channel)) {
        m_output << shown(*failure, longestText) << '\n';
    }
}

/// Of each channel it is an error once that its worker is gone: what comes later is no other.
void Console::requireWorker()
{
    if (m_terminal.workerFailure(m_channel) && m_dead.insert(m_channel).second) {
        throw ConsoleError(
            fmt::format(
                "an exception has ended the worker of channel {}: no more scans there until the console is started anew",
                static_cast<std::uint32_t>(m_channel)),
            EXIT_FAILED);
    }
}

void Console::result(const Words& words)
{
    std::vector<SDCResult> samples = m_terminal.samples(m_channel);
    if (words.size() > 1) {
        const auto wanted = parseWord<std::size_t>(words[1], "count of samples", "a number such as 10");
        samples.resize(std::min(samples.size(), wanted));
    }
    m_output << resultText(SDC_RC_OK) << ", " << support::counted(samples.size(), "sample") << '\n';
    for (const SDCResult& sample : samples) {
        m_output << fmt::format("{:>12} MHz {:>7} dBm\n", megahertz(sample.frequency_kHz), hundredths(sample.rssi));
    }
}

void Console::properties(const Words&)
{
    const SDCProperties properties = controller().getSpectrumDiagnosticsProperties();
    const auto yesNo = [](std::uint8_t flag) { return flag != 0 ? "yes" : "no"; };
    m_output << "long haul " << yesNo(properties.longHaul) << ", extended rx wait " << yesNo(properties.extendedRxWait)
             << ", slow rx wait " << yesNo(properties.slowRxWait) << ", spare flag " << yesNo(properties.spareFlag) << '\n';
}

void Console::wait(const Words&)
{
    if ((m_isHeld && m_terminal.isOngoing(m_channel)) || isHeldAfterStop()) {
        throw InvalidLine("the clock is held, so the scan cannot end: 'release' first");
    }
    if (!reachIdle()) {
        return;
    }
    m_stopped.erase(m_channel);
    showStatus();
    m_output << "receiver at " << megahertz(m_terminal.rxFrequency_kHz(m_channel)) << " MHz\n";
    requireWorker();
}

/// Waits until the channel's worker has left its sweep and put the receiver back. Returns false when it was interrupted.
bool Console::reachIdle()
{
    constexpr std::chrono::milliseconds pause{1};
    std::optional<WaitProgress> progress;
    const auto onPoll = [&] {
        if (m_lines->isInterrupted()) {
            throw Interrupted{};
        }
        if (m_setup.showsProgress && !progress) {
            progress.emplace(m_errors, m_setup.speed);
        }
        if (progress) {
            progress->show(m_terminal.plan(m_channel).value_or(ScanPlan{}), m_terminal.samples(m_channel));
        }
    };
    try {
        m_terminal.waitForEnd(m_channel, onPoll); // in which the trace leaves out what is asked again and again
        while (m_terminal.isSweeping(m_channel)) {
            if (m_lines->isInterrupted()) {
                throw Interrupted{};
            }
            std::this_thread::sleep_for(pause);
        }
    } catch (const Interrupted&) {
        progress.reset();
        tellInterrupted();
        return false;
    }
    m_terminal.waitForIdle(m_channel);
    return true;
}

void Console::tellInterrupted() const
{
    if (!m_lines->isEndWanted()) {
        tell(m_terminal.isOngoing(m_channel) ? "the scan goes on; 'scan-stop' stops it, 'wait' waits for its end"
                                             : "the worker is still leaving the scan; 'wait' waits for it");
    }
}

void Console::endScans()
{
    m_line = 0;
    m_clock->hurry();
    for (const auto& [channel, scan] : m_scans) {
        m_terminal.waitForIdle(channel);
        m_channel = channel;
        try {
            requireWorker();
        } catch (const ConsoleError& error) {
            tellError(error.what(), error.status());
        }
    }
    m_clock->endHurry();
}

} // namespace sdc

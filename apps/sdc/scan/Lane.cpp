#include "apps/sdc/scan/Lane.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/ScanResult.h"
#include "support/Text.h"
#include "terminal/ControllerTrace.h"

#include <cstddef>
#include <exception>
#include <iterator>
#include <utility>

namespace sdc {

namespace {

using support::shown;
using terminal::ScanStart;
using terminal::Terminal;

/// What the trace says is quoted, so that it can be found there.
std::string seenAs(const std::string& traceText)
{
    return " (trace, level 1: \"" + traceText + "\")";
}

/// What kept a sweep from its start; empty when it runs.
std::string startFailure(ScanStart start, const std::string& unitTypeText)
{
    switch (start) {
    case ScanStart::underWay: return "";
    case ScanStart::failed:
        return "the controller cannot plan a scan: it does not support the unit type that the radio tells, \""
            + shown(unitTypeText) + "\"" + seenAs("Unsupported QRU");
    case ScanStart::busy: return "the controller refused the start: its worker is busy (trace, level 5)";
    case ScanStart::noWorker: return "the controller refused the start: an exception has ended its worker (trace, level 1)";
    }
    return "";
}

std::string at(std::uint32_t frequency_kHz)
{
    return megahertz(frequency_kHz) + " MHz";
}

/// Samples are taken in order, so their number tells where the tuning failed.
std::string tuningFailure(const SweepFacts& facts)
{
    const auto steps = static_cast<std::uint32_t>(facts.taken);
    const std::uint32_t frequency_kHz = facts.plan.lowest_kHz + steps * facts.plan.step_kHz;
    return "tuning to " + at(frequency_kHz) + " failed after " + std::to_string(facts.taken) + " of "
        + std::to_string(facts.plan.samples) + " samples"
        + seenAs("Failed to set RX frequency " + std::to_string(frequency_kHz));
}

std::string restoreFailure(const SweepFacts& facts)
{
    return "the receiver was not put back: it stands at " + at(facts.rxAfter_kHz) + " instead of "
        + at(facts.configured_kHz);
}

/// What went wrong in the sweep itself; empty when nothing did.
std::string sweepFailure(const SweepFacts& facts)
{
    const bool isFinished =
        facts.status == SDC_STATUS_CHANNEL_SCAN_FINISHED || facts.status == SDC_STATUS_SUB_BAND_SCAN_FINISHED;
    if (facts.workerFailure) {
        return "an exception ended the controller's worker" + seenAs(shown(*facts.workerFailure, 300));
    }
    if (!facts.failure.empty()) {
        return "the sweep was given up: " + facts.failure;
    }
    if (facts.isStopped) {
        return "";
    }
    if (!isFinished) {
        return tuningFailure(facts);
    }
    if (facts.taken != facts.plan.samples) {
        return "the sweep ended with " + std::to_string(facts.taken) + " of " + std::to_string(facts.plan.samples)
            + " samples";
    }
    return "";
}

} // namespace

SweepEnd endOf(const SweepFacts& facts)
{
    std::string reason = facts.startFailure.empty() ? sweepFailure(facts) : facts.startFailure;
    if (facts.rxAfter_kHz != facts.configured_kHz) {
        reason += (reason.empty() ? "" : "; ") + restoreFailure(facts);
    }
    if (!reason.empty()) {
        return {Ending::failed, reason};
    }
    return {facts.isStopped ? Ending::stopped : Ending::complete, ""};
}

Lane::Lane(const PlannedChannel& channel, TimePoint start)
    : m_channel(channel.channel)
    , m_time(start)
    , m_rxBefore_kHz(m_channel.rxFrequency_kHz)
{
    m_facts.plan = channel.plan.value_or(ScanPlan{});
    m_facts.configured_kHz = m_channel.rxFrequency_kHz;
    m_facts.rxAfter_kHz = m_channel.rxFrequency_kHz;
}

/// The settle delays follow from the radio's properties as the controller knows them: it is made to ask for them first.
void Lane::begin(Terminal& terminal, ScanKind kind)
{
    const ScanPlan planBefore = plan();
    m_facts = {};
    m_facts.plan = planBefore;
    m_facts.configured_kHz = m_channel.rxFrequency_kHz;
    m_rxBefore_kHz = terminal.rxFrequency_kHz(number());
    try {
        terminal.controller(number()).getSpectrumDiagnosticsProperties();
        m_facts.startFailure = startFailure(terminal.startScan(number(), startCommand(kind)), m_channel.unitTypeText);
    } catch (const terminal::TraceNotUnderstood&) {
        throw;
    } catch (const std::exception& exception) {
        m_facts.startFailure = "the start ended with an exception of the radio: " + shown(exception.what());
    }
    m_hasBegun = m_facts.startFailure.empty();
    if (const auto plan = terminal.plan(number()); plan && m_hasBegun) {
        m_facts.plan = *plan;
    }
}

void Lane::adopt(const Terminal& terminal, std::uint32_t rxBefore_kHz)
{
    m_rxBefore_kHz = rxBefore_kHz;
    m_facts.plan = terminal.plan(number()).value_or(m_facts.plan);
    m_hasBegun = true;
}

/// Where no sweep has begun the controller still shows the samples of the one before.
void Lane::measure(Terminal& terminal)
{
    m_facts.rxAfter_kHz = terminal.rxFrequency_kHz(number());
    if (!m_hasBegun) {
        return;
    }
    m_facts.workerFailure = terminal.workerFailure(number());
    const std::vector<SDCResult> measured = terminal.samples(number());
    for (std::size_t index = m_samples.size(); index < measured.size(); ++index) {
        const auto [frequency_kHz, rssi] = measured[index];
        m_samples.push_back({frequency_kHz, rssi, m_time + plan().settleTime(static_cast<std::int64_t>(index) + 1)});
    }
}

bool Lane::stop(Terminal& terminal, const std::function<bool()>& isGivenUp)
{
    m_facts.isStopped = m_hasBegun && terminal.stopScan(number(), isGivenUp);
    return m_facts.isStopped;
}

std::chrono::milliseconds Lane::stepTime() const
{
    const std::int64_t taken = std::ssize(m_samples);
    return plan().settleTime(taken + 1) - plan().settleTime(taken);
}

Sweep Lane::finish()
{
    m_facts.taken = std::ssize(m_samples);
    const SweepEnd end = endOf(m_facts);
    const TimePoint begin = std::exchange(m_time, m_time + plan().settleTime(m_facts.taken));
    m_hasBegun = m_hasBegun && !m_facts.workerFailure;
    m_told = 0;
    return {
        .start = begin,
        .end = m_time,
        .ending = end.ending,
        .reason = end.reason,
        .statusText = SDCStatus::toString(m_facts.status),
        .rxBefore_kHz = m_rxBefore_kHz,
        .rxAfter_kHz = m_facts.rxAfter_kHz,
        .samples = std::exchange(m_samples, {}),
    };
}

} // namespace sdc

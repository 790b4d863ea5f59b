#include "apps/sdc/ScanLane.h"

#include "support/Text.h"

#include <exception>
#include <utility>

namespace sdc {

namespace {

using std::chrono::milliseconds;
using terminal::ScanStart;
using terminal::Terminal;

/// Why a start did not lead to a sweep; empty when it did.
std::string startFailure(ScanStart start, const std::string& unitTypeText)
{
    switch (start) {
    case ScanStart::underWay: return "";
    case ScanStart::failed:
        return "the controller cannot plan a scan: it does not support the unit type that the radio tells, \""
            + support::shown(unitTypeText) + "\" (trace, level 1: \"Unsupported QRU\")";
    case ScanStart::busy: return "the controller refused the start: its worker is busy (trace, level 5)";
    case ScanStart::noWorker: return "the controller refused the start: an exception has ended its worker (trace, level 1)";
    }
    return "";
}

} // namespace

ESDCCommand startCommand(ScanKind kind)
{
    return kind == ScanKind::channel ? SDC_CMD_CHANNEL_SCAN_START : SDC_CMD_SUB_BAND_SCAN_START;
}

ScanLane::ScanLane(PlannedChannel channel, TimePoint start)
    : m_channel(std::move(channel.channel))
    , m_time(start)
    , m_rxBefore_kHz(m_channel.link.rxFrequency_kHz)
{
    m_result.channel = static_cast<std::uint32_t>(m_channel.number);
    m_result.unitTypeText = m_channel.link.unitTypeText;
    m_result.filterWidth_kHz = m_channel.link.filterWidth_kHz;
    m_result.plan = channel.plan.value_or(terminal::ScanPlan{});
    m_facts.configured_kHz = m_channel.link.rxFrequency_kHz;
    m_facts.rxAfter_kHz = m_channel.link.rxFrequency_kHz;
}

/// The settle delays follow from the radio's properties as the controller knows them: it is made to ask for them first.
void ScanLane::begin(Terminal& terminal, ScanKind kind)
{
    m_facts = {};
    m_facts.configured_kHz = m_channel.link.rxFrequency_kHz;
    m_samples.clear();
    m_rxBefore_kHz = terminal.rxFrequency_kHz(number());
    try {
        terminal.controller(number()).getSpectrumDiagnosticsProperties();
        m_facts.startFailure = startFailure(terminal.startScan(number(), startCommand(kind)), m_channel.link.unitTypeText);
    } catch (const terminal::TraceNotUnderstood&) {
        throw;
    } catch (const std::exception& exception) {
        m_facts.startFailure =
            std::string("the start ended with an exception of the radio: ") + support::shown(exception.what());
    }
    m_hasBegun = m_facts.startFailure.empty();
    if (const auto plan = terminal.plan(number()); plan && m_hasBegun) {
        m_result.plan = *plan;
    }
}

/// Where no sweep has begun the controller still shows the samples of the one before.
bool ScanLane::measure(Terminal& terminal)
{
    m_facts.rxAfter_kHz = terminal.rxFrequency_kHz(number());
    if (!m_hasBegun) {
        return false;
    }
    m_facts.workerFailure = terminal.workerFailure(number());
    const std::size_t before = m_samples.size();
    m_samples = terminal.samples(number());
    return m_samples.size() > before;
}

bool ScanLane::stop(Terminal& terminal)
{
    m_facts.isStopped = m_hasBegun && terminal.stopScan(number());
    return m_facts.isStopped;
}

const Sweep& ScanLane::finish()
{
    m_facts.plan = m_result.plan;
    m_facts.taken = std::ssize(m_samples);
    const Verdict verdict = judge(m_facts);
    const TimePoint begin = std::exchange(m_time, m_time + m_result.plan.settleTime(m_facts.taken));
    m_earlier += m_facts.taken;
    m_hasBegun = m_hasBegun && !m_facts.workerFailure;
    return m_result.sweeps.emplace_back(Sweep{
        .start = begin,
        .end = m_time,
        .ending = verdict.ending,
        .reason = verdict.reason,
        .statusText = SDCStatus::toString(m_facts.status),
        .rxBefore_kHz = m_rxBefore_kHz,
        .rxAfter_kHz = m_facts.rxAfter_kHz,
        .samples = std::exchange(m_samples, {}),
    });
}

milliseconds ScanLane::radioTimeLeft() const
{
    return m_hasBegun ? plan().settleTime(plan().samples) - plan().settleTime(std::ssize(m_samples)) : milliseconds{};
}

milliseconds ScanLane::stepTime() const
{
    const std::int64_t taken = std::ssize(m_samples);
    return plan().settleTime(taken + 1) - plan().settleTime(taken);
}

} // namespace sdc

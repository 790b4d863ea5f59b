#include "terminal/ControllerTrace.h"

#include <cctype>
#include <charconv>
#include <cstddef>
#include <string_view>
#include <system_error>
#include <utility>

namespace terminal {

namespace {

/// Takes "   m_scanStep_kHz = 2000" apart; nothing for any other text.
std::optional<std::pair<std::string, std::int64_t>> parseAssignment(std::string_view text)
{
    const std::size_t name = text.find_first_not_of(' ');
    const std::size_t equals = text.find(" = ");
    if (equals == std::string_view::npos || text.substr(name, 2) != "m_") {
        return std::nullopt;
    }
    const std::string_view number = text.substr(equals + 3);
    std::int64_t value = 0;
    const std::from_chars_result parsed = std::from_chars(number.data(), number.data() + number.size(), value);
    if (parsed.ec != std::errc{} || parsed.ptr != number.data() + number.size()) {
        return std::nullopt;
    }
    return std::pair{std::string(text.substr(name, equals - name)), value};
}

/// The name of the worker's thread, in which the channel is a signed number.
std::string workerName(RadioChannel channel)
{
    return "SpectDiagCtrl" + std::to_string(static_cast<std::int32_t>(channel));
}

/// The thread's name in a text that tells how a worker ended or that there is none; nothing for any other text.
std::optional<std::string> parseWorkerFailure(std::string_view text)
{
    struct Failure {
        std::string_view before; ///< the name
        std::string_view after;  ///< what stands there; empty: the name is the rest
    };
    constexpr Failure failures[] = {
        {"Exception timerThread ", ": "},
        {"Unknown exception in timerThread ", ""},
        {"Thread ", " caught exception ["},
        {"Unknown exception when trying to create the thread ", ""},
    };
    for (const Failure& failure : failures) {
        const std::size_t end = failure.after.empty() ? text.size() : text.find(failure.after);
        if (text.starts_with(failure.before) && end != std::string_view::npos) {
            return std::string(text.substr(failure.before.size(), end - failure.before.size()));
        }
    }
    return std::nullopt;
}

/// The thread's name in "Thread SpectDiagCtrl1 waiting for none idle state"; nothing for any other text.
std::optional<std::string> parseWaiting(std::string_view text)
{
    constexpr std::string_view beginning = "Thread ";
    constexpr std::string_view end = " waiting for none idle state";
    if (!text.starts_with(beginning) || !text.ends_with(end)) {
        return std::nullopt;
    }
    return std::string(text.substr(beginning.size(), text.size() - beginning.size() - end.size()));
}

} // namespace

void ControllerTrace::write(const host::TraceRecord& record)
{
    if (record.component != component) {
        return;
    }
    const std::lock_guard<std::mutex> guard(m_guard);
    if (const auto name = parseWorkerFailure(record.text)) {
        m_failures.insert_or_assign(*name, record.text);
        m_sweeping.erase(*name);
    }
    if (const auto name = parseWaiting(record.text)) {
        m_sweeping.erase(*name);
    }
    if (const auto assignment = parseAssignment(record.text)) {
        collect(assignment->first, assignment->second);
    }
}

/// The channel is the first line of a dump, the first settle delay its last.
void ControllerTrace::collect(const std::string& label, std::int64_t value)
{
    Values& values = m_dumps[std::this_thread::get_id()];
    if (label == "m_radioChannelId") {
        values.clear();
    }
    values.insert_or_assign(label, value);
    if (label == "m_firstSetRxWait_ms") {
        keepPlan(values);
        m_dumps.erase(std::this_thread::get_id());
    }
}

/// A dump that lacks a label tells no plan.
void ControllerTrace::keepPlan(const Values& values)
{
    bool isWhole = true;
    const auto number = [&](const char* label) {
        const auto value = values.find(label);
        isWhole = isWhole && value != values.end();
        return value == values.end() ? 0 : value->second;
    };
    const auto word = [&number](const char* label) { return static_cast<std::uint32_t>(number(label)); };
    const std::uint32_t channel = word("m_radioChannelId");
    const ScanPlan plan{
        .rxFrequency_kHz = word("m_currentRxFrequency_kHz"),
        .channelSpacing_kHz = word("m_channelSpacing_kHz"),
        .lowest_kHz = word("m_scanLowestRxFrequency_kHz"),
        .highest_kHz = word("m_scanHighestRxFrequency_kHz"),
        .samples = static_cast<std::int32_t>(number("m_totalNrOfSamples")),
        .step_kHz = word("m_scanStep_kHz"),
        .setRxWait_ms = word("m_setRxWait_ms"),
        .firstSetRxWait_ms = word("m_firstSetRxWait_ms"),
    };
    if (isWhole) {
        m_sweeping.insert(workerName(RadioChannel{channel}));
        m_plans.insert_or_assign(channel, plan);
        ++m_plansRead[channel];
    }
}

std::optional<ScanPlan> ControllerTrace::planOf(RadioChannel channel) const
{
    const std::lock_guard<std::mutex> guard(m_guard);
    const auto plan = m_plans.find(static_cast<std::uint32_t>(channel));
    return plan == m_plans.end() ? std::nullopt : std::optional(plan->second);
}

std::uint64_t ControllerTrace::plansReadOf(RadioChannel channel) const
{
    const std::lock_guard<std::mutex> guard(m_guard);
    const auto count = m_plansRead.find(static_cast<std::uint32_t>(channel));
    return count == m_plansRead.end() ? 0 : count->second;
}

std::optional<std::string> ControllerTrace::failureOf(RadioChannel channel) const
{
    const std::lock_guard<std::mutex> guard(m_guard);
    const auto failure = m_failures.find(workerName(channel));
    return failure == m_failures.end() ? std::nullopt : std::optional(failure->second);
}

bool ControllerTrace::isSweeping(RadioChannel channel) const
{
    const std::lock_guard<std::mutex> guard(m_guard);
    return m_sweeping.contains(workerName(channel));
}

} // namespace terminal

#include "simulator/terminal/ScanPlan.h"

#include <cctype>
#include <charconv>
#include <string_view>
#include <utility>

namespace simulator {

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

std::chrono::milliseconds ScanPlan::settleTime() const
{
    return lowest_kHz > highest_kHz ? std::chrono::milliseconds{} : settleTime(samples);
}

std::chrono::milliseconds ScanPlan::settleTime(std::int64_t samplesTaken) const
{
    constexpr std::chrono::milliseconds singleMeasurement{5000};
    if (samplesTaken <= 0) {
        return {};
    }
    if (samples == 1) {
        return singleMeasurement;
    }
    return std::chrono::milliseconds(firstSetRxWait_ms) + (samplesTaken - 1) * std::chrono::milliseconds(setRxWait_ms);
}

void WorkerRecorder::write(const TraceRecord& record)
{
    const std::lock_guard<std::mutex> guard(m_guard);
    if (const auto name = parseWorkerFailure(record.text)) {
        m_failures.insert_or_assign(*name, record.text);
        m_sweeping.erase(*name);
    }
    if (const auto name = parseWaiting(record.text)) {
        m_sweeping.erase(*name);
    }
    const auto assignment = parseAssignment(record.text);
    if (!assignment) {
        return;
    }
    Values& values = m_dumps[std::this_thread::get_id()];
    values.insert_or_assign(assignment->first, assignment->second);
    if (assignment->first == "m_firstSetRxWait_ms") { // the last line of a dump
        keepPlan(values);
        m_dumps.erase(std::this_thread::get_id());
    }
}

void WorkerRecorder::keepPlan(const Values& values)
{
    const auto number = [&values](const char* name) {
        const auto value = values.find(name);
        return value == values.end() ? 0 : value->second;
    };
    const auto word = [&number](const char* name) { return static_cast<std::uint32_t>(number(name)); };
    m_sweeping.insert(workerName(RadioChannel{word("m_radioChannelId")}));
    m_plans.insert_or_assign(word("m_radioChannelId"),
        ScanPlan{
            .rxFrequency_kHz = word("m_currentRxFrequency_kHz"),
            .channelSpacing_kHz = word("m_channelSpacing_kHz"),
            .lowest_kHz = word("m_scanLowestRxFrequency_kHz"),
            .highest_kHz = word("m_scanHighestRxFrequency_kHz"),
            .samples = static_cast<std::int32_t>(number("m_totalNrOfSamples")),
            .step_kHz = word("m_scanStep_kHz"),
            .setRxWait_ms = word("m_setRxWait_ms"),
            .firstSetRxWait_ms = word("m_firstSetRxWait_ms"),
        });
}

std::optional<ScanPlan> WorkerRecorder::planOf(RadioChannel channel) const
{
    const std::lock_guard<std::mutex> guard(m_guard);
    const auto plan = m_plans.find(static_cast<std::uint32_t>(channel));
    return plan == m_plans.end() ? std::nullopt : std::optional(plan->second);
}

std::optional<std::string> WorkerRecorder::failureOf(RadioChannel channel) const
{
    const std::lock_guard<std::mutex> guard(m_guard);
    const auto failure = m_failures.find(workerName(channel));
    return failure == m_failures.end() ? std::nullopt : std::optional(failure->second);
}

bool WorkerRecorder::isSweeping(RadioChannel channel) const
{
    const std::lock_guard<std::mutex> guard(m_guard);
    return m_sweeping.contains(workerName(channel));
}

} // namespace simulator

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

} // namespace

std::chrono::milliseconds ScanPlan::settleTime() const
{
    constexpr std::chrono::milliseconds singleMeasurement{5000};
    if (samples <= 0 || lowest_kHz > highest_kHz) {
        return {};
    }
    if (samples == 1) {
        return singleMeasurement;
    }
    return std::chrono::milliseconds(firstSetRxWait_ms) + (samples - 1) * std::chrono::milliseconds(setRxWait_ms);
}

void PlanRecorder::write(const TraceRecord& record)
{
    const auto assignment = parseAssignment(record.text);
    if (!assignment) {
        return;
    }
    const std::lock_guard<std::mutex> guard(m_guard);
    Values& values = m_dumps[std::this_thread::get_id()];
    values.insert_or_assign(assignment->first, assignment->second);
    if (assignment->first != "m_firstSetRxWait_ms") { // the last line of a dump
        return;
    }
    const auto word = [&values](const char* name) { return static_cast<std::uint32_t>(values[name]); };
    m_plans.insert_or_assign(word("m_radioChannelId"),
        ScanPlan{
            .rxFrequency_kHz = word("m_currentRxFrequency_kHz"),
            .channelSpacing_kHz = word("m_channelSpacing_kHz"),
            .lowest_kHz = word("m_scanLowestRxFrequency_kHz"),
            .highest_kHz = word("m_scanHighestRxFrequency_kHz"),
            .samples = static_cast<std::int32_t>(values["m_totalNrOfSamples"]),
            .step_kHz = word("m_scanStep_kHz"),
            .setRxWait_ms = word("m_setRxWait_ms"),
            .firstSetRxWait_ms = word("m_firstSetRxWait_ms"),
        });
    m_dumps.erase(std::this_thread::get_id());
}

std::optional<ScanPlan> PlanRecorder::planOf(RadioChannel channel) const
{
    const std::lock_guard<std::mutex> guard(m_guard);
    const auto plan = m_plans.find(static_cast<std::uint32_t>(channel));
    return plan == m_plans.end() ? std::nullopt : std::optional(plan->second);
}

} // namespace simulator

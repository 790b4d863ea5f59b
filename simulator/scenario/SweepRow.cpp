#include "simulator/scenario/SweepRow.h"

#include "simulator/scenario/RecordedSweep.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <system_error>

namespace simulator {

namespace {

constexpr std::size_t fieldsBeforeLevels = 6;

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// The fields of a line, one after the other: a row may have millions.
class Fields {
public:
    explicit Fields(std::string_view line)
        : m_rest(line)
    {
    }

    /// Of those that are left.
    std::size_t count() const { return 1 + static_cast<std::size_t>(std::ranges::count(m_rest, ',')); }

    std::string_view next()
    {
        const std::size_t end = std::min(m_rest.find(','), m_rest.size());
        const std::string_view field = trimmed(m_rest.substr(0, end));
        m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
        return field;
    }

private:
    std::string_view m_rest;
};

std::string quoted(std::string_view text)
{
    constexpr std::size_t longest = 40;
    return '"' + support::shown(text, longest) + '"';
}

/// Infinite and not-a-number included; nothing for what is no number.
std::optional<double> numberIn(std::string_view text)
{
    double value = 0.0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, value);
    return parsed.ec == std::errc{} && parsed.ptr == end ? std::optional(value) : std::nullopt;
}

double frequency(std::string_view text, const char* what, double lowest_Hz)
{
    constexpr double highest_Hz = 1e13;
    const std::optional<double> value = numberIn(text);
    if (!value || !(lowest_Hz <= *value && *value <= highest_Hz)) {
        throw std::runtime_error(std::string("the ") + what + " is " + quoted(text) + "; must be a number of Hz"
            + (lowest_Hz > 0.0 ? " above 0" : ", 0 or more"));
    }
    return *value;
}

void checkDate(std::string_view text)
{
    if (text.starts_with('{')) {
        throw std::runtime_error(
            "begins with \"{\"; must be a row of a sweep; 'sdc scenarios replay' makes a scenario of a result");
    }
    if (text.empty() || std::isdigit(static_cast<unsigned char>(text.front())) == 0) {
        throw std::runtime_error(
            "begins with " + quoted(text) + "; must be a date or an epoch in seconds, without headers and comments");
    }
}

void checkSampleCount(std::string_view text)
{
    const std::optional<double> value = numberIn(text);
    if (!value || !(*value >= 0.0)) {
        throw std::runtime_error("the number of samples is " + quoted(text) + "; must be a number, 0 or more");
    }
}

double level(std::string_view text, std::size_t index)
{
    constexpr double lowest_dBm = -400.0;
    constexpr double highest_dBm = 200.0;
    const std::optional<double> value = numberIn(text);
    if (value && (std::isnan(*value) || *value == -std::numeric_limits<double>::infinity())) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    if (!value || !(lowest_dBm <= *value && *value <= highest_dBm)) {
        throw std::runtime_error(fmt::format(
            "level {} is {}; must be a number from {} to {}, or nan", index + 1, quoted(text), lowest_dBm, highest_dBm));
    }
    return *value;
}

/// By how much a number as it is printed may differ from the one that was meant.
double roundingOf(std::string_view text)
{
    const std::size_t point = text.find('.');
    const std::size_t decimals = point == std::string_view::npos ? 0 : text.size() - point - 1;
    return 0.5 * std::pow(10.0, -static_cast<double>(decimals));
}

/// How far a row's width lies from that of a number of bins.
class WidthCheck {
public:
    WidthCheck(double width_Hz, double step_Hz, double rounding_Hz)
        : m_width_Hz(width_Hz)
        , m_step_Hz(step_Hz)
        , m_rounding_Hz(rounding_Hz)
    {
    }

    double missing_Hz(std::size_t bins) const { return std::abs(m_width_Hz - static_cast<double>(bins) * m_step_Hz); }

    bool fits(std::size_t bins) const
    {
        constexpr double integerFrequencies_Hz = 2.0; // both ends cut off
        constexpr double mostOfStep = 0.25;
        return missing_Hz(bins)
            <= static_cast<double>(bins) * m_rounding_Hz + std::min(integerFrequencies_Hz, mostOfStep * m_step_Hz);
    }

private:
    double m_width_Hz;
    double m_step_Hz;
    double m_rounding_Hz;
};

bool same(double left, double right)
{
    return left == right || (std::isnan(left) && std::isnan(right));
}

/// The classic scanner writes its last level twice.
void dropRepeatedLevel(std::vector<double>& levels, const WidthCheck& width, double bins)
{
    const std::size_t count = levels.size();
    if (count > 1 && same(levels[count - 1], levels[count - 2]) && width.fits(count - 1)
        && width.missing_Hz(count - 1) < width.missing_Hz(count)) {
        levels.pop_back();
    } else if (!width.fits(count)) {
        throw std::runtime_error("has " + std::to_string(count) + " levels; (highest - lowest) / step makes "
            + std::to_string(std::llround(bins)) + ", and the last one may stand twice");
    }
}

} // namespace

TooManyBins::TooManyBins()
    : std::runtime_error(
        "makes more bins than the " + std::to_string(mostRecordedBins) + " that a scenario's recordings may have together")
{
}

std::optional<SweepRow> readSweepRow(std::string_view line, std::size_t mostBins)
{
    if (trimmed(line).empty()) {
        return std::nullopt;
    }
    Fields fields(line);
    const std::size_t count = fields.count();
    checkDate(fields.next());
    if (count <= fieldsBeforeLevels) {
        throw std::runtime_error("has " + std::to_string(count)
            + " fields; must have 7 or more: date, time, lowest Hz, highest Hz, step Hz, samples, levels");
    }
    const std::size_t levels = count - fieldsBeforeLevels;
    if (levels > mostBins + 1) {
        throw TooManyBins();
    }
    constexpr double least_Hz = 0.001;
    fields.next(); // the time
    SweepRow row{};
    row.lowest_Hz = frequency(fields.next(), "lowest frequency", 0.0);
    row.highest_Hz = frequency(fields.next(), "highest frequency", least_Hz);
    const std::string_view step = fields.next();
    row.step_Hz = frequency(step, "step", least_Hz);
    const double width_Hz = row.highest_Hz - row.lowest_Hz;
    if (width_Hz <= 0.0) {
        throw std::runtime_error("the highest frequency must lie above the lowest");
    }
    checkSampleCount(fields.next());
    row.levels_dBm.reserve(levels);
    for (std::size_t index = 0; index < levels; ++index) {
        row.levels_dBm.push_back(level(fields.next(), index));
    }
    dropRepeatedLevel(row.levels_dBm, {width_Hz, row.step_Hz, roundingOf(step)}, width_Hz / row.step_Hz);
    return row;
}

} // namespace simulator

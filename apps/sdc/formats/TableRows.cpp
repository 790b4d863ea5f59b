#include "apps/sdc/formats/TableRows.h"

#include "apps/sdc/formats/TableLooks.h"
#include "apps/sdc/result/Peaks.h"
#include "apps/sdc/result/Sanity.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/result/Sweep.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace sdc {

namespace {

// The bar begins at the lowest reading, rounded, and has a character or more for every 2 dB.
constexpr std::int32_t barBegin = -10000;
constexpr std::int32_t barEnd = -2000;
constexpr std::int32_t barStep = 200;

/// How wide columns are.
struct Widths {
    std::size_t frequency = 9;
    std::size_t level = 9;
    std::size_t hold = 8;
    std::int32_t perStep = 1; ///< characters of the bar for 2 dB
};

/// The rows of one channel, in the order taken.
class Rows {
public:
    Rows(const ChannelResult& channel, const Analysis& analysis, const WriteOptions& options, std::size_t most);
    std::string text() const;

private:
    void measure(int width);
    std::vector<TraceKind> besides() const;
    std::string columns(const std::string& frequency, const std::string& level) const;
    std::string header() const;
    std::size_t barLength(std::int32_t level) const;
    std::string bar(const Hold& row) const;
    std::string textOf(const Hold& row) const;

    const ChannelResult& m_channel;
    const Analysis& m_analysis;
    TraceKind m_trace;
    bool m_isColored;
    bool m_isFitted; ///< to the height of a terminal
    std::size_t m_perRow = 1;
    std::vector<Hold> m_rows;
    Widths m_widths;
};

/// Of one sweep each sample, one that is no level without a reading; of several sweeps each frequency.
std::vector<Hold> allOf(const ChannelResult& channel)
{
    if (channel.survey.sweeps() > 1) {
        return channel.survey.holds();
    }
    std::vector<Hold> rows;
    for (const Sample& sample : channel.sweeps.front().samples) {
        const std::size_t readings = isLevel(sample, channel.receiver) ? 1 : 0;
        rows.push_back({sample.frequency_kHz, sample.rssi, sample.rssi, sample.rssi, readings});
    }
    return rows;
}

/// Of so many neighbours the strongest.
std::vector<Hold> strongestOf(const std::vector<Hold>& all, std::size_t perRow, TraceKind trace)
{
    std::vector<Hold> rows;
    for (std::size_t first = 0; first < all.size(); first += perRow) {
        const auto neighbours = std::span(all).subspan(first, std::min(perRow, all.size() - first));
        rows.push_back(*std::ranges::max_element(
            neighbours, {}, [trace](const Hold& row) { return std::pair(row.readings > 0, levelOf(row, trace)); }));
    }
    return rows;
}

Rows::Rows(const ChannelResult& channel, const Analysis& analysis, const WriteOptions& options, std::size_t most)
    : m_channel(channel)
    , m_analysis(analysis)
    , m_trace(options.trace)
    , m_isColored(options.isColored)
    , m_isFitted(options.height > 0)
{
    const std::vector<Hold> all = allOf(channel);
    m_perRow = most == 0 ? 1 : std::max<std::size_t>(1, (all.size() + most - 1) / most);
    m_rows = strongestOf(all, m_perRow, m_trace);
    measure(std::max(options.width, leastTableWidth));
}

void Rows::measure(int width)
{
    constexpr std::size_t besideBar = 5; // with the last label
    constexpr int steps = (barEnd - barBegin) / barStep;
    const std::vector<TraceKind> others = besides();
    const auto widen = [](std::size_t& column, const std::string& text, std::size_t gap) {
        column = std::max(column, text.size() + gap);
    };
    for (const Hold& row : m_rows) {
        widen(m_widths.frequency, megahertz(row.frequency_kHz), 0);
        widen(m_widths.level, hundredths(levelOf(row, m_trace)), 2);
        for (const TraceKind kind : others) {
            widen(m_widths.hold, hundredths(levelOf(row, kind)), 2);
        }
    }
    const std::size_t beside = m_widths.frequency + m_widths.level + others.size() * m_widths.hold + besideBar;
    m_widths.perStep = std::max(1, (width - static_cast<int>(beside)) / steps);
}

/// The levels of several sweeps that do not stand for a frequency.
std::vector<TraceKind> Rows::besides() const
{
    std::vector<TraceKind> others;
    if (m_channel.survey.sweeps() > 1) {
        others = {TraceKind::max, TraceKind::average, TraceKind::min};
        std::erase(others, m_trace);
    }
    return others;
}

std::string Rows::columns(const std::string& frequency, const std::string& level) const
{
    return fmt::format("{:>{}}{:>{}}", frequency, m_widths.frequency, level, m_widths.level);
}

/// Of a column.
std::string shortName(TraceKind kind)
{
    return kind == TraceKind::average ? "avg" : std::string(toText(kind));
}

std::string Rows::header() const
{
    const std::vector<TraceKind> others = besides();
    std::string text = columns("MHz", others.empty() ? "dBm" : shortName(m_trace) + " dBm");
    for (const TraceKind kind : others) {
        text += fmt::format("{:>{}}", shortName(kind), m_widths.hold);
    }
    text += "  ";
    for (const char* const label : {"-100", "-80", "-60", "-40"}) {
        text += fmt::format("{:<{}}", label, 10 * m_widths.perStep);
    }
    return text + "-20";
}

std::size_t Rows::barLength(std::int32_t level) const
{
    const std::int32_t shown = std::clamp(level, barBegin, barEnd) - barBegin;
    return static_cast<std::size_t>((shown * m_widths.perStep + barStep / 2) / barStep);
}

/// Of the average and, of several sweeps, beyond it up to the strongest.
std::string Rows::bar(const Hold& row) const
{
    const std::size_t average = barLength(row.average);
    const std::size_t strongest = std::max(average, barLength(row.max));
    return std::string(average, '#') + std::string(strongest - average, '+');
}

std::string Rows::textOf(const Hold& row) const
{
    const bool isInChannel = isConfigured(row.frequency_kHz, m_channel.plan);
    const std::int32_t level = levelOf(row, m_trace);
    const bool isAboveFloor = m_analysis.floor && level >= *m_analysis.floor + leastProminence;
    std::string text = columns(megahertz(row.frequency_kHz), hundredths(level));
    for (const TraceKind kind : besides()) {
        text += fmt::format("{:>{}}", hundredths(levelOf(row, kind)), m_widths.hold);
    }
    text += isInChannel ? " *|" : "  |";
    if (row.readings == 0) {
        const bool isRefused = flagsOf({row.frequency_kHz, level}, nullptr, m_channel.receiver).has(SampleFlag::refused);
        return text + (isRefused ? "refused" : "no level");
    }
    const std::string levels = bar(row);
    return text + (isInChannel || isAboveFloor ? colored(levels, isInChannel ? green : yellow, m_isColored) : levels);
}

std::string Rows::text() const
{
    std::string text;
    if (m_perRow > 1) {
        text += fmt::format("each row: {}, the strongest of {}{}\n",
            m_channel.survey.sweeps() > 1 ? "a frequency" : "a sample", m_perRow, m_isFitted ? "; --rows 0 shows all" : "");
    }
    text += colored(header(), bold, m_isColored) + "\n";
    for (const Hold& row : m_rows) {
        text += textOf(row) + "\n";
    }
    return text;
}

} // namespace

std::string tableRows(const ChannelResult& channel, const Analysis& analysis, const WriteOptions& options, std::size_t most)
{
    return Rows(channel, analysis, options, most).text();
}

} // namespace sdc

#include "apps/sdc/compare/Places.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <utility>

namespace sdc {

namespace {

/// The trace of a scan, which tells levels.
class Trace {
public:
    Trace(const ChannelResult& channel, TraceKind kind)
        : m_holds(channel.survey.holds())
        , m_kind(kind)
        , m_filterWidth_kHz(channel.receiver.filterWidth_kHz)
    {
    }

    const std::vector<Hold>& holds() const { return m_holds; }

    std::optional<Level> at(std::uint32_t frequency_kHz) const
    {
        const auto hold = std::ranges::lower_bound(m_holds, frequency_kHz, {}, &Hold::frequency_kHz);
        const bool isRead = hold != m_holds.end() && hold->frequency_kHz == frequency_kHz;
        return isRead ? std::optional(levelAt(*hold)) : std::nullopt;
    }

    /// What it tells of a frequency that it may not have read.
    std::optional<Level> around(std::uint32_t frequency_kHz) const
    {
        const auto above = std::ranges::lower_bound(m_holds, frequency_kHz, {}, &Hold::frequency_kHz);
        if (above == m_holds.end() || above->frequency_kHz == frequency_kHz || above == m_holds.begin()) {
            return at(frequency_kHz);
        }
        const auto below = std::prev(above);
        const double gap_kHz = above->frequency_kHz - below->frequency_kHz;
        return gap_kHz <= m_filterWidth_kHz
            ? std::optional(between(levelAt(*below), levelAt(*above), (frequency_kHz - below->frequency_kHz) / gap_kHz))
            : std::nullopt;
    }

private:
    Level levelAt(const Hold& hold) const { return {levelOf(hold, m_kind) / 100.0, 0.0, hold.readings, hold.min / 100.0}; }

    static Level between(const Level& below, const Level& above, double part)
    {
        const double step_dB = above.level_dBm - below.level_dBm;
        return {below.level_dBm + part * step_dB, std::abs(step_dB) / 2.0, std::min(below.readings, above.readings),
            std::lerp(below.lowest_dBm, above.lowest_dBm, part)};
    }

    std::vector<Hold> m_holds;
    TraceKind m_kind;
    double m_filterWidth_kHz;
};

using Tell = std::optional<Level> (Trace::*)(std::uint32_t frequency_kHz) const;

/// At the frequencies of one of two traces.
std::vector<Place> placesAt(const std::vector<Hold>& holds, const Trace& before, const Trace& after, Tell tell)
{
    std::vector<Place> places;
    for (const Hold& hold : holds) {
        const std::optional<Level> first = (before.*tell)(hold.frequency_kHz);
        const std::optional<Level> second = (after.*tell)(hold.frequency_kHz);
        if (first && second) {
            places.push_back({hold.frequency_kHz, *first, *second});
        }
    }
    return places;
}

/// The frequencies of a trace of which the other tells nothing.
std::vector<FrequencyRange> missing(const std::vector<Hold>& holds, const Trace& other, Tell tell)
{
    std::vector<FrequencyRange> ranges;
    bool isNeighbour = false;
    for (const Hold& hold : holds) {
        const bool isMissing = !(other.*tell)(hold.frequency_kHz);
        if (isMissing && !isNeighbour) {
            ranges.push_back({hold.frequency_kHz, hold.frequency_kHz, 0});
        }
        if (isMissing) {
            ranges.back().highest_kHz = hold.frequency_kHz;
            ++ranges.back().frequencies;
        }
        isNeighbour = isMissing;
    }
    return ranges;
}

} // namespace

Places placesOf(const ChannelResult& before, const ChannelResult& after, TraceKind trace)
{
    const Trace first(before, trace);
    const Trace second(after, trace);
    Tell tell = &Trace::at;
    std::vector<Place> both = placesAt(first.holds(), first, second, tell);
    if (both.empty() || before.plan.step_kHz != after.plan.step_kHz) {
        tell = &Trace::around;
        both = placesAt(first.holds().size() < second.holds().size() ? first.holds() : second.holds(), first, second, tell);
    }
    return {std::move(both), missing(first.holds(), second, tell), missing(second.holds(), first, tell)};
}

} // namespace sdc

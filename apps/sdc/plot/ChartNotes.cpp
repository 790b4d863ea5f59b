#include "apps/sdc/plot/ChartNotes.h"

#include "apps/sdc/plot/Axes.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/verdict/Verdict.h"
#include "support/Text.h"
#include "support/Time.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace sdc {

namespace {

/// Words with a separator between them.
std::string joined(const std::vector<std::string>& words, const char* separator)
{
    return fmt::format("{}", fmt::join(words, separator));
}

/// Scenario, unit and kind: no scenario's name fills the line.
std::string whatOf(const Member& member)
{
    constexpr std::size_t most = 40;
    return fmt::format("{}, {}, {} scan", support::shown(member.result.scenario, most),
        support::shown(member.channel.unitTypeText, most), toText(member.result.kind));
}

std::string stepsOf(const ChannelResult& channel)
{
    const ScanPlan& plan = channel.plan;
    return fmt::format("{} to {} MHz in steps of {} MHz, receiving at {} MHz, channels of {} MHz",
        megahertz(plan.lowest_kHz), megahertz(plan.highest_kHz), megahertz(plan.step_kHz), megahertz(plan.rxFrequency_kHz),
        megahertz(plan.channelSpacing_kHz));
}

/// Of each of several results, where they are not the same everywhere.
template <typename Words>
void tellDifferences(std::vector<std::string>& notes, const std::vector<Member>& members, const Words& wordsOf)
{
    const auto isAsTheFirst = [&](const Member& member) { return wordsOf(member) == wordsOf(members.front()); };
    if (!std::ranges::all_of(members, isAsTheFirst)) {
        for (const Member& member : members) {
            notes.push_back(member.name + ": " + wordsOf(member));
        }
    }
}

/// What stands for a frequency: the nearest point, not further away than half a step.
const Point* readingAt(const Trace& trace, std::int64_t frequency_kHz)
{
    const auto distance = [&](const Point& point) { return std::llabs(point.frequency_kHz - frequency_kHz); };
    const auto nearest = std::ranges::min_element(trace.points, {}, distance);
    const bool isNear = nearest != trace.points.end() && distance(*nearest) * 2 <= trace.step_kHz;
    return isNear || (nearest != trace.points.end() && distance(*nearest) == 0) ? &*nearest : nullptr;
}

std::string readingsAt(const Chart& chart, std::int64_t frequency_kHz)
{
    std::vector<std::string> words;
    for (const Trace& trace : chart.traces) {
        const Point* const reading = readingAt(trace, frequency_kHz);
        const bool isBeside = reading != nullptr && reading->frequency_kHz != frequency_kHz;
        words.push_back(reading == nullptr ? trace.name + " none"
                                           : fmt::format("{} {} dBm{}", trace.name, hundredths(reading->level),
                                               isBeside ? " (at " + inMegahertz(reading->frequency_kHz) + ")" : ""));
    }
    return joined(words, ", ");
}

/// Of each mark to the first.
std::string differenceOf(const Chart& chart, std::int64_t first_kHz, std::int64_t other_kHz)
{
    std::vector<std::string> words{fmt::format("{} MHz", inMegahertz(other_kHz - first_kHz))};
    for (const Trace& trace : chart.traces) {
        const Point* const here = readingAt(trace, first_kHz);
        const Point* const there = readingAt(trace, other_kHz);
        if (here != nullptr && there != nullptr) {
            const std::int64_t rise = std::int64_t{there->level} - std::int64_t{here->level};
            words.push_back(fmt::format("{} {}{} dB", trace.name, rise > 0 ? "+" : "", hundredths(rise)));
        }
    }
    return joined(words, ", ");
}

void tellMarks(std::vector<std::string>& notes, const Chart& chart, const PlotOptions& options)
{
    for (std::size_t index = 0; index < options.marks_kHz.size(); ++index) {
        const std::int64_t frequency_kHz = options.marks_kHz[index];
        notes.push_back(fmt::format("mark {}: {} MHz, {}", index + 1, inMegahertz(frequency_kHz),
            chart.range_kHz.holds(frequency_kHz) ? readingsAt(chart, frequency_kHz) : "outside the plot"));
        if (index > 0) {
            notes.push_back(fmt::format(
                "mark {} - mark 1: {}", index + 1, differenceOf(chart, options.marks_kHz.front(), frequency_kHz)));
        }
    }
}

/// A run of points that are above the limit, one beside the other.
struct Excess {
    std::int64_t lowest_kHz;
    std::int64_t highest_kHz;
    std::int32_t strongest;
};

std::vector<Excess> excessesOf(const Trace& trace, std::int32_t limit)
{
    std::vector<Excess> excesses;
    bool goesOn = false;
    for (const Point& point : trace.points) {
        const bool isAbove = point.level > limit;
        if (isAbove && goesOn) {
            excesses.back().highest_kHz = point.frequency_kHz;
            excesses.back().strongest = std::max(excesses.back().strongest, point.level);
        } else if (isAbove) {
            excesses.push_back({point.frequency_kHz, point.frequency_kHz, point.level});
        }
        goesOn = isAbove;
    }
    return excesses;
}

std::string textOf(const Excess& excess)
{
    const std::string up = excess.lowest_kHz == excess.highest_kHz ? "" : " to " + inMegahertz(excess.highest_kHz);
    return fmt::format("{}{} MHz ({} dBm)", inMegahertz(excess.lowest_kHz), up, hundredths(excess.strongest));
}

/// @param trace  of one channel the one chosen, of several results each
void tellExcess(std::vector<std::string>& notes, const Trace& trace, std::int32_t limit, const std::string& who)
{
    constexpr std::size_t mostTold = 5;
    std::vector<std::string> words;
    const std::vector<Excess> excesses = excessesOf(trace, limit);
    for (const Excess& excess : excesses) {
        if (words.size() < mostTold) {
            words.push_back(textOf(excess));
        }
    }
    if (excesses.size() > words.size()) {
        words.push_back(fmt::format("and {} more", excesses.size() - words.size()));
    }
    notes.push_back(
        fmt::format("{}above {} dBm: {}", who, hundredths(limit), words.empty() ? "nothing" : joined(words, ", ")));
}

void tellExcesses(std::vector<std::string>& notes, const Chart& chart)
{
    if (!chart.limit) {
        return;
    }
    for (const Trace& trace : chart.traces) {
        const bool isChosen = !chart.areHolds || &trace == &chart.traces.front();
        if (isChosen) {
            tellExcess(notes, trace, *chart.limit, chart.traces.size() > 1 ? trace.name + " " : "");
        }
    }
}

void tellDuplex(std::vector<std::string>& notes, const Chart& chart, const PlotOptions& options)
{
    if (options.duplex_kHz) {
        const std::int64_t tx_kHz = chart.rx_kHz + *options.duplex_kHz;
        notes.push_back(fmt::format("receives (RX) at {} MHz, transmits (TX) at {} MHz{}", inMegahertz(chart.rx_kHz),
            inMegahertz(tx_kHz), chart.range_kHz.holds(tx_kHz) ? "" : ", outside the plot"));
    }
}

void tellWhatIsNotDrawn(std::vector<std::string>& notes, const std::vector<Member>& members)
{
    for (const Member& member : members) {
        const Survey& survey = member.channel.survey;
        std::size_t drawn = 0;
        for (const Hold& hold : survey.holds()) {
            drawn += hold.readings;
        }
        if (drawn < survey.taken()) {
            notes.push_back(fmt::format("{}{} of {} readings are no levels, and not drawn: refused, or far above saturation",
                members.size() > 1 ? member.name + ": " : "", survey.taken() - drawn, survey.taken()));
        }
    }
}

/// Levels that the scale does not reach.
void tellOutsiders(std::vector<std::string>& notes, const Chart& chart)
{
    std::vector<Point> points;
    for (const Trace& trace : chart.traces) {
        points.insert(points.end(), trace.points.begin(), trace.points.end());
    }
    const auto tell = [&](const Point& point, const char* what) {
        notes.push_back(
            fmt::format("{}: {} dBm at {} MHz", what, hundredths(point.level), inMegahertz(point.frequency_kHz)));
    };
    const auto [weakest, strongest] = std::ranges::minmax_element(points, {}, &Point::level);
    if (!points.empty() && strongest->level > highestShown) {
        tell(*strongest, "^ above the plot, the strongest level");
    }
    if (!points.empty() && weakest->level < lowestShown) {
        tell(*weakest, "v below the plot, the weakest level");
    }
}

} // namespace

std::string titleOf(const std::vector<Member>& members)
{
    const Member& first = members.front();
    const bool hasChannels = std::ranges::any_of(members, [](const Member& one) { return one.result.channels.size() > 1; });
    const std::string number = hasChannels ? fmt::format(", channel {}", first.channel.channel) : "";
    const bool isSame = std::ranges::all_of(members, [&](const Member& one) { return whatOf(one) == whatOf(first); });
    return (isSame ? whatOf(first) : "several links") + number
        + (members.size() > 1 ? fmt::format(", {} results", members.size()) : "");
}

std::string whenOf(const ChannelResult& channel)
{
    const TimePoint start = channel.survey.start();
    const std::size_t count = channel.survey.sweeps();
    return fmt::format("{} {} UTC{}", support::dateText(start), support::clockText(start),
        count > 1 ? fmt::format(", {} sweeps", count) : "");
}

std::string incompletenessOf(const ChannelResult& channel)
{
    const Survey& survey = channel.survey;
    std::string text =
        survey.missing() == 0 ? "" : fmt::format(", PARTIAL {}/{}", survey.taken(), survey.taken() + survey.missing());
    for (const Ending ending : {Ending::failed, Ending::stopped}) { // the worst
        if (survey.sweeps(ending) > 0) {
            return text + fmt::format(", {}", toText(ending));
        }
    }
    return text;
}

std::string verdictOn(const Member& member)
{
    const Verdict verdict = judge(member.channel, member.result.farEnd);
    return fmt::format("; configured channel: {}{}", toText(verdict.judgement),
        verdict.kind ? fmt::format(" ({})", toText(*verdict.kind)) : "");
}

std::vector<std::string> headLines(const Chart& chart, std::size_t width)
{
    std::vector<std::string> texts{chart.title};
    if (!chart.subtitle.empty()) {
        texts.push_back(chart.subtitle);
    }
    std::vector<std::string> lines = support::wrapped(texts, width);
    for (std::string& line : lines) {
        line = support::shown(line, width);
    }
    return lines;
}

std::vector<std::string> notesOf(const std::vector<Member>& members, const Chart& chart, const PlotOptions& options)
{
    std::vector<std::string> notes;
    tellDifferences(notes, members, whatOf);
    tellDifferences(notes, members, [](const Member& member) { return stepsOf(member.channel); });
    tellWhatIsNotDrawn(notes, members);
    tellOutsiders(notes, chart);
    tellDuplex(notes, chart, options);
    tellMarks(notes, chart, options);
    tellExcesses(notes, chart);
    return notes;
}

} // namespace sdc

#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/result/Analysis.h"
#include "apps/sdc/result/Peaks.h"
#include "apps/sdc/result/Raster.h"
#include "apps/sdc/result/Sanity.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/verdict/Verdict.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sdc {

namespace {

// The bar begins at the lowest reading, rounded, and has a character or more for every 2 dB.
constexpr std::int32_t barBegin = -10000;
constexpr std::int32_t barEnd = -2000;
constexpr std::int32_t barStep = 200;
constexpr int leastWidth = 80;
constexpr std::size_t column = 9;
constexpr std::size_t holdColumn = 8;
constexpr std::size_t mostPeaksShown = 5;
constexpr std::size_t mostChannelsShown = 3;

constexpr const char* bold = "\033[1m";
constexpr const char* red = "\033[1;31m";
constexpr const char* green = "\033[32m";
constexpr const char* yellow = "\033[33m";

/// How the rows of a channel look.
struct Layout {
    bool hasHolds;
    TraceKind trace;
    bool isColored;
    bool isFitted;        ///< to the height of a terminal
    std::int32_t perStep; ///< characters of the bar for 2 dB
};

Layout layoutOf(const ChannelResult& channel, const WriteOptions& options)
{
    const bool hasHolds = channel.survey.sweeps() > 1;
    const int besideBar = static_cast<int>(2 * column + (hasHolds ? 2 * holdColumn : 0) + 5); // with the last label
    constexpr int steps = (barEnd - barBegin) / barStep;
    return {hasHolds, options.trace, options.isColored, options.height > 0,
        std::max(1, (std::max(options.width, leastWidth) - besideBar) / steps)};
}

std::string colored(const std::string& text, const char* color, const Layout& layout)
{
    return layout.isColored && !text.empty() ? color + text + "\033[0m" : text;
}

std::size_t barLength(std::int32_t level, const Layout& layout)
{
    const std::int32_t shown = std::clamp(level, barBegin, barEnd) - barBegin;
    return static_cast<std::size_t>((shown * layout.perStep + barStep / 2) / barStep);
}

/// The bar of the average and, of several sweeps, beyond it up to the strongest.
std::string bar(const Hold& row, const Layout& layout)
{
    const std::size_t average = barLength(row.average, layout);
    const std::size_t strongest = std::max(average, barLength(row.max, layout));
    return std::string(average, '#') + std::string(strongest - average, '+');
}

std::string columns(const std::string& frequency, const std::string& level)
{
    return fmt::format("{:>{}}{:>{}}", frequency, column, level, column);
}

/// The levels of several sweeps that do not stand for a frequency.
std::vector<TraceKind> besides(TraceKind trace)
{
    std::vector<TraceKind> others{TraceKind::max, TraceKind::average, TraceKind::min};
    std::erase(others, trace);
    return others;
}

template <typename TextOf>
std::string holdColumns(const Layout& layout, TextOf textOf)
{
    std::string text;
    for (const TraceKind kind : layout.hasHolds ? besides(layout.trace) : std::vector<TraceKind>()) {
        text += fmt::format("{:>{}}", textOf(kind), holdColumn);
    }
    return text;
}

/// Of a column.
std::string shortName(TraceKind kind)
{
    return kind == TraceKind::average ? "avg" : std::string(toText(kind));
}

std::string header(const Layout& layout)
{
    const std::string level = layout.hasHolds ? shortName(layout.trace) + " dBm" : "dBm";
    std::string text = columns("MHz", level) + holdColumns(layout, shortName) + "  ";
    for (const char* const label : {"-100", "-80", "-60", "-40"}) {
        text += fmt::format("{:<{}}", label, 10 * layout.perStep);
    }
    return text + "-20";
}

void writeRow(std::ostream& stream, const Hold& row, const Analysis& analysis, const ScanPlan& plan, const Layout& layout)
{
    const bool isInChannel = isConfigured(row.frequency_kHz, plan);
    const std::int32_t level = levelOf(row, layout.trace);
    const bool isAboveFloor = analysis.floor && level >= *analysis.floor + leastProminence;
    const std::string levels = bar(row, layout);
    stream << columns(megahertz(row.frequency_kHz), hundredths(level))
           << holdColumns(layout, [&row](TraceKind kind) { return hundredths(levelOf(row, kind)); })
           << (isInChannel ? " *|" : "  |")
           << (isInChannel || isAboveFloor ? colored(levels, isInChannel ? green : yellow, layout) : levels) << '\n';
}

/// In the order taken: of one sweep each sample, of several each frequency.
std::vector<Hold> rowsOf(const ChannelResult& channel)
{
    if (channel.survey.sweeps() > 1) {
        return channel.survey.holds();
    }
    std::vector<Hold> rows;
    for (const Sample& sample : channel.sweeps.front().samples) {
        rows.push_back({sample.frequency_kHz, sample.rssi, sample.rssi, sample.rssi, 1});
    }
    return rows;
}

void writeRows(
    std::ostream& stream, const ChannelResult& channel, const Analysis& analysis, const Layout& layout, std::size_t mostRows)
{
    const std::vector<Hold> rows = rowsOf(channel);
    const std::size_t perRow = mostRows == 0 ? 1 : std::max<std::size_t>(1, (rows.size() + mostRows - 1) / mostRows);
    if (perRow > 1) {
        stream << fmt::format("each row: {}, the strongest of {}{}\n", layout.hasHolds ? "a frequency" : "a sample", perRow,
            layout.isFitted ? "; --rows 0 shows all" : "");
    }
    stream << colored(header(layout), bold, layout) << '\n';
    for (std::size_t first = 0; first < rows.size(); first += perRow) {
        const auto neighbours = std::span(rows).subspan(first, std::min(perRow, rows.size() - first));
        const auto strongest =
            std::ranges::max_element(neighbours, {}, [&layout](const Hold& row) { return levelOf(row, layout.trace); });
        writeRow(stream, *strongest, analysis, channel.plan, layout);
    }
}

/// Of sweeps whose number may have no end.
std::string statesOf(const ChannelResult& channel)
{
    const Survey& survey = channel.survey;
    const std::string last = stateOf(channel.sweeps.back(), channel.plan);
    std::string states;
    for (const Ending ending : {Ending::stopped, Ending::failed}) {
        const std::size_t count = survey.sweeps(ending);
        states += count == 0 ? "" : fmt::format("{}{} {}", states.empty() ? "" : ", ", count, toText(ending));
    }
    return states.empty() ? "" : states + (last.empty() ? "" : "; the last: " + last);
}

std::string longName(TraceKind kind)
{
    return kind == TraceKind::max ? "maximum" : kind == TraceKind::min ? "minimum" : "average power";
}

void writeState(std::ostream& stream, const ChannelResult& channel, const Layout& layout)
{
    for (const Finding& finding : channel.survey.check().findings()) {
        stream << colored(sentenceOf(finding), red, layout) << '\n';
    }
    const std::size_t count = channel.survey.sweeps();
    if (count > 1) {
        stream << fmt::format(
            "{} sweeps, by their {}: # average power, + up to the maximum\n", count, longName(layout.trace));
    }
    const std::string states = count > 1 ? statesOf(channel) : stateOf(channel.sweeps.back(), channel.plan);
    stream << (states.empty() ? "" : colored(states, red, layout) + "\n");
}

// The summary below a table: what a trace tells, one line each, at most 80 columns.

/// A name, a place that may be empty, a level and a remark, in columns.
std::string line(const std::string& name, const std::string& place, std::int32_t level, const std::string& remark)
{
    return fmt::format("{:<14}{:>13}{:>10} dBm{}{}\n", name, place, hundredths(level), remark.empty() ? "" : "  ", remark);
}

std::string inMegahertz(std::uint32_t frequency_kHz)
{
    return megahertz(frequency_kHz) + " MHz";
}

std::string widthText(const Peak& peak)
{
    return peak.width_kHz ? inMegahertz(*peak.width_kHz) + " wide" : "under " + inMegahertz(peak.widthBelow_kHz.value_or(0));
}

std::string peakLines(const std::vector<Peak>& peaks)
{
    std::string lines;
    for (const Peak& peak : std::span(peaks).first(std::min(peaks.size(), mostPeaksShown))) {
        lines += line("peak", inMegahertz(peak.frequency_kHz), peak.level, widthText(peak));
    }
    return peaks.size() <= mostPeaksShown
        ? lines
        : lines + fmt::format("              and {} weaker peaks\n", peaks.size() - mostPeaksShown);
}

/// How many channels of the raster there are in each state, as in "14 channels: 12 occupied, 2 free".
std::string rasterLine(const std::vector<RasterChannel>& raster)
{
    std::string states;
    for (const RasterState state :
        {RasterState::occupied, RasterState::intermittent, RasterState::free, RasterState::unknown}) {
        const auto count = std::ranges::count(raster, state, &RasterChannel::state);
        states += count == 0 ? "" : fmt::format("{}{} {}", states.empty() ? "" : ", ", count, toText(state));
    }
    return states.empty() ? "" : fmt::format("{:<14}  {}\n", "other channels", states);
}

std::string channelLine(const RasterChannel& channel)
{
    const std::string occupancy = channel.sweeps > 1 ? fmt::format(", on {} %", hundredths(*channel.occupancy)) : "";
    return line(std::string(toText(channel.state)), inMegahertz(channel.centre_kHz), *channel.max,
        "average " + hundredths(*channel.average) + occupancy);
}

std::string channelLines(const std::vector<RasterChannel>& channels)
{
    std::string lines;
    for (const RasterChannel& channel : std::span(channels).first(std::min(channels.size(), mostChannelsShown))) {
        lines += channelLine(channel);
    }
    return lines;
}

std::string_view colorOf(Judgement judgement)
{
    switch (judgement) {
    case Judgement::clear: return green;
    case Judgement::disturbed: return red;
    case Judgement::suspected:
    case Judgement::cannotTell: break;
    }
    return yellow;
}

/// As in "disturbed: line, co-channel, 12.30 dB over what else is read, C/I 20.10 dB".
std::string headlineOf(const Verdict& verdict)
{
    std::string text(toText(verdict.judgement));
    std::string separator = ": ";
    const auto append = [&](const std::string& part) { text += std::exchange(separator, ", ") + part; };
    if (verdict.kind) {
        append(std::string(toText(*verdict.kind)));
    }
    if (verdict.place) {
        append(std::string(toText(*verdict.place)));
    }
    if (verdict.overFloor) {
        append(hundredths(*verdict.overFloor) + " dB over what else is read");
    }
    if (verdict.carrierToInterference) {
        append("C/I " + hundredths(*verdict.carrierToInterference) + " dB");
    }
    return text;
}

void writeVerdict(std::ostream& stream, const Verdict& verdict, const Layout& layout)
{
    stream << '\n' << colored(headlineOf(verdict), colorOf(verdict.judgement).data(), layout) << '\n';
    std::vector<std::string> texts{verdict.rule};
    for (const Help help : verdict.wouldHelp) {
        texts.push_back("would help: " + std::string(toText(help)));
    }
    for (const std::string& text : support::wrapped(texts, leastWidth - 2)) {
        stream << "  " << text << '\n';
    }
}

void writeSummary(std::ostream& stream, const Analysis& analysis, const ScanPlan& plan)
{
    std::string lines;
    if (analysis.floor) {
        lines += line("noise floor", "", *analysis.floor, fmt::format("lowest tenth, {} at each end left out", edgeSamples));
    }
    if (const RasterChannel* const configured = analysis.configured()) {
        lines += line("configured *", inMegahertz(plan.rxFrequency_kHz), *configured->average,
            inMegahertz(plan.channelSpacing_kHz) + " wide");
    }
    lines += peakLines(analysis.peaks) + rasterLine(analysis.raster) + channelLines(channelsThatComeAndGo(analysis.raster))
        + channelLines(freeChannels(analysis.raster));
    stream << (lines.empty() ? "" : "\n") << lines;
}

/// As many as a terminal shows of all channels together, beside what stands around them.
std::size_t mostRows(const ScanResult& result, const WriteOptions& options)
{
    constexpr std::size_t around = 22;
    constexpr std::size_t fewest = 8;
    if (options.height == 0) {
        return options.rows;
    }
    const std::size_t each = static_cast<std::size_t>(options.height) / result.channels.size();
    return std::max(fewest, each - std::min(each, around));
}

} // namespace

void writeTable(std::ostream& stream, const ScanResult& result, const WriteOptions& options)
{
    for (const ChannelResult& channel : result.channels) {
        const Layout layout = layoutOf(channel, options);
        const Analysis analysis = analyse(channel, options.trace);
        if (result.channels.size() > 1) {
            stream << (&channel == &result.channels.front() ? "" : "\n")
                   << colored(
                          fmt::format("channel {}: {}", channel.channel, support::shown(channel.unitTypeText)), bold, layout)
                   << '\n';
        }
        writeState(stream, channel, layout);
        writeRows(stream, channel, analysis, layout, mostRows(result, options));
        writeVerdict(stream, judge(channel, result.farEnd), layout);
        writeSummary(stream, analysis, channel.plan);
    }
}

} // namespace sdc

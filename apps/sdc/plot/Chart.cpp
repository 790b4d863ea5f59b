#include "apps/sdc/plot/Chart.h"

#include "apps/sdc/plot/ChartNotes.h"
#include "apps/sdc/result/Analysis.h"
#include "apps/sdc/result/Peaks.h"
#include "apps/sdc/result/Survey.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/Sweep.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>

namespace sdc {

namespace {

std::vector<Point> pointsOf(const ChannelResult& channel, TraceKind kind)
{
    std::vector<Point> points;
    for (const SDCResult& sample : traceOf(channel, kind)) {
        points.push_back({sample.frequency_kHz, sample.rssi});
    }
    return points;
}

/// Samples further apart than the filter is wide say nothing of what lies between them.
bool isConnected(const ChannelResult& channel)
{
    return channel.plan.step_kHz != 0 && channel.plan.step_kHz <= channel.receiver.filterWidth_kHz;
}

Trace traceOf(const ChannelResult& channel, TraceKind kind, const Look& look)
{
    return {.title = "",
        .name = "",
        .kind = kind,
        .look = look,
        .points = pointsOf(channel, kind),
        .step_kHz = channel.plan.step_kHz,
        .isConnected = isConnected(channel)};
}

Trace named(Trace trace, const std::string& title, const std::string& name)
{
    trace.title = title;
    trace.name = name;
    return trace;
}

const char* titleOf(TraceKind kind)
{
    return kind == TraceKind::max ? "max hold" : kind == TraceKind::min ? "min hold" : "average power";
}

const Look& lookOf(TraceKind kind)
{
    return kind == TraceKind::max ? maxLook : kind == TraceKind::min ? minLook : levelLook;
}

/// @param chosen  comes first
std::vector<Trace> tracesOfOne(const ChannelResult& channel, TraceKind chosen)
{
    if (channel.survey.sweeps() < 2) {
        return {named(traceOf(channel, chosen, levelLook), "level", "level")};
    }
    std::vector<Trace> traces;
    for (const TraceKind kind : {TraceKind::max, TraceKind::average, TraceKind::min}) {
        const Trace trace = named(traceOf(channel, kind, lookOf(kind)), titleOf(kind), std::string(toText(kind)));
        traces.insert(kind == chosen ? traces.begin() : traces.end(), trace);
    }
    return traces;
}

const Trace& holdOf(const Chart& chart, TraceKind kind)
{
    return *std::ranges::find(chart.traces, kind, &Trace::kind);
}

std::vector<Trace> tracesOfMany(const std::vector<Member>& members, TraceKind kind)
{
    std::vector<Trace> traces;
    for (const Member& member : members) {
        const bool isHold = member.channel.survey.sweeps() > 1;
        const std::string title = member.name + ", " + whenOf(member.channel) + incompletenessOf(member.channel)
            + (isHold ? std::string(", ") + titleOf(kind) : "");
        const Look& look = overlayLooks.at(traces.size() % overlayLooks.size());
        traces.push_back(named(traceOf(member.channel, kind, look), title, member.name));
    }
    return traces;
}

/// All that was planned and all that was taken, and half a step, or at least something, at each end. Without a plan, the
/// place where the receiver belongs.
Range rangeOf(const ChannelResult& channel, const std::vector<Point>& points)
{
    constexpr std::int64_t usualMargin_kHz = 1000;
    const ScanPlan& plan = channel.plan;
    const bool isPlanned = plan.samples > 0 && plan.lowest_kHz <= plan.highest_kHz;
    Range range{isPlanned ? plan.lowest_kHz : plan.rxFrequency_kHz, isPlanned ? plan.highest_kHz : plan.rxFrequency_kHz};
    if (!points.empty()) {
        range.lowest = std::min(range.lowest, points.front().frequency_kHz);
        range.highest = std::max(range.highest, points.back().frequency_kHz);
    }
    const std::int64_t wanted_kHz = range.span() == 0 ? plan.channelSpacing_kHz : plan.step_kHz / 2;
    const std::int64_t margin_kHz = wanted_kHz == 0 ? usualMargin_kHz : wanted_kHz;
    return {range.lowest - margin_kHz, range.highest + margin_kHz};
}

Range rangeOf(const std::vector<Member>& members, const std::vector<Trace>& traces)
{
    Range range = rangeOf(members.front().channel, traces.front().points);
    for (std::size_t index = 1; index < members.size(); ++index) {
        const Range other = rangeOf(members[index].channel, traces[index].points);
        range = {std::min(range.lowest, other.lowest), std::max(range.highest, other.highest)};
    }
    return range;
}

/// Where the terminal receives and, if that is known, transmits: as far as it is in the plot.
std::vector<Band> bandsOf(const Chart& chart, const PlotOptions& options)
{
    std::vector<Band> bands;
    const auto add = [&](const char* name, std::int64_t centre_kHz) {
        const Range range{std::max(centre_kHz - chart.spacing_kHz / 2, chart.range_kHz.lowest),
            std::min(centre_kHz + chart.spacing_kHz / 2, chart.range_kHz.highest)};
        if (range.lowest < range.highest) {
            bands.push_back({name, range});
        }
    };
    add("RX", chart.rx_kHz);
    if (options.duplex_kHz) {
        add("TX", chart.rx_kHz + *options.duplex_kHz);
    }
    return bands;
}

std::vector<Mark> marksOf(const Chart& chart, const PlotOptions& options)
{
    std::vector<Mark> marks;
    for (std::size_t index = 0; index < options.marks_kHz.size(); ++index) {
        const std::int64_t frequency_kHz = options.marks_kHz[index];
        if (chart.range_kHz.holds(frequency_kHz)) {
            marks.push_back({std::to_string(index + 1), frequency_kHz});
        }
    }
    return marks;
}

std::vector<ChannelState> statesOf(const std::vector<RasterChannel>& raster, const Chart& chart)
{
    std::vector<ChannelState> states;
    const bool isOwnAlone =
        std::ranges::all_of(raster, [](const RasterChannel& one) { return one.state == RasterState::own; });
    for (const RasterChannel& channel : isOwnAlone ? std::vector<RasterChannel>() : raster) {
        const std::int64_t centre_kHz = chart.rx_kHz + channel.offset * chart.spacing_kHz;
        const Range range{std::max(centre_kHz - chart.spacing_kHz / 2, chart.range_kHz.lowest),
            std::min(centre_kHz + chart.spacing_kHz / 2, chart.range_kHz.highest)};
        if (range.lowest < range.highest) {
            states.push_back({range, channel.state});
        }
    }
    return states;
}

std::vector<Point> pointsOf(const std::vector<Peak>& found)
{
    std::vector<Point> peaks;
    for (const Peak& peak : found) {
        if (peak.level <= highestShown) {
            peaks.push_back({peak.frequency_kHz, peak.level});
        }
    }
    return peaks;
}

/// What is drawn highest in a part of the plot.
std::int32_t strongestBetween(const Chart& chart, const Range& range_kHz)
{
    std::int32_t strongest = std::numeric_limits<std::int32_t>::min();
    for (const Trace& trace : chart.traces) {
        for (const Point& point : trace.points) {
            strongest = range_kHz.holds(point.frequency_kHz) ? std::max(strongest, point.level) : strongest;
        }
    }
    return strongest;
}

} // namespace

std::int32_t LevelScale::shown(std::int32_t level) const
{
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(level, range_dBm.lowest * 100, range_dBm.highest * 100));
}

std::vector<StateLook> statesIn(const Chart& chart)
{
    std::vector<StateLook> looks;
    std::ranges::copy_if(stateLooks, std::back_inserter(looks), [&](const StateLook& look) {
        return std::ranges::find(chart.states, look.state, &ChannelState::state) != chart.states.end();
    });
    return looks;
}

Chart withoutStates(Chart chart)
{
    chart.states.clear();
    return chart;
}

Chart chartOf(const std::vector<Member>& members, const PlotOptions& options)
{
    const ChannelResult& first = members.front().channel;
    Chart chart;
    const bool isOne = members.size() == 1;
    chart.traces = isOne ? tracesOfOne(first, options.trace) : tracesOfMany(members, options.trace);
    chart.areHolds = isOne && first.survey.sweeps() > 1;
    chart.range_kHz = rangeOf(members, chart.traces);
    chart.rx_kHz = first.plan.rxFrequency_kHz;
    chart.spacing_kHz = first.plan.channelSpacing_kHz;
    chart.bands = bandsOf(chart, options);
    if (isOne) {
        const Analysis analysis = analyse(first, options.trace);
        chart.peaks = pointsOf(analysis.peaks);
        chart.states = statesOf(analysis.raster, chart);
    }
    chart.marks = marksOf(chart, options);
    chart.limit = options.limit;
    chart.title = titleOf(members);
    chart.subtitle = isOne ? whenOf(first) + incompletenessOf(first) + verdictOn(members.front()) : "";
    chart.notes = notesOf(members, chart, options);
    return chart;
}

Range levelsOf(const Chart& chart)
{
    constexpr Range usual{lowestReading, -6000};
    Range levels = usual;
    const auto include = [&](std::int32_t level) {
        if (level >= lowestShown && level <= highestShown) {
            levels = {std::min<std::int64_t>(levels.lowest, level), std::max<std::int64_t>(levels.highest, level)};
        }
    };
    for (const Trace& trace : chart.traces) {
        for (const Point& point : trace.points) {
            include(point.level);
        }
    }
    include(chart.limit.value_or(usual.lowest));
    return levels;
}

std::vector<Stem> stemsOf(const Chart& chart, const LevelScale& scale)
{
    std::vector<Stem> stems;
    if (!chart.isOverlay() && !chart.traces.front().isConnected) {
        const std::vector<Point>& tops = chart.areHolds ? holdOf(chart, TraceKind::max).points : chart.traces.front().points;
        for (std::size_t index = 0; index < tops.size(); ++index) {
            const std::int32_t foot = chart.areHolds ? scale.shown(holdOf(chart, TraceKind::min).points[index].level)
                                                     : static_cast<std::int32_t>(scale.range_dBm.lowest * 100);
            stems.push_back({tops[index].frequency_kHz, foot, scale.shown(tops[index].level)});
        }
    }
    return stems;
}

std::vector<PeakLabel> peakLabels(const Chart& chart, const LevelScale& scale, const Room& room, int lines)
{
    const double line_dB = static_cast<double>(scale.range_dBm.span()) * room.lineHeight / room.height;
    const double character_kHz = static_cast<double>(chart.range_kHz.span()) * room.characterWidth / room.width;
    std::vector<PeakLabel> labels;
    for (const Point& peak : chart.peaks) {
        const std::string frequency = inMegahertz(peak.frequency_kHz, decimalsFor(peak.frequency_kHz));
        const std::int64_t width_kHz = std::llround(static_cast<double>(frequency.size() + 1) * character_kHz);
        const bool isFree = std::ranges::none_of(labels,
            [&](const PeakLabel& other) { return std::llabs(other.peak.frequency_kHz - peak.frequency_kHz) < width_kHz; });
        if (isFree) {
            const std::int64_t lowest_kHz = chart.range_kHz.lowest + width_kHz / 2;
            const std::int64_t centre_kHz =
                std::clamp(peak.frequency_kHz, lowest_kHz, std::max(lowest_kHz, chart.range_kHz.highest - width_kHz / 2));
            const Range near_kHz{centre_kHz - width_kHz / 2, centre_kHz + width_kHz / 2};
            const std::int32_t top = scale.shown(strongestBetween(chart, near_kHz));
            const std::int64_t height = std::llround(line_dB * 100.0 * (lines + 0.3));
            labels.push_back({frequency, peak, {centre_kHz, scale.shown(static_cast<std::int32_t>(top + height))}});
        }
    }
    return labels;
}

} // namespace sdc

#include "apps/sdc/formats/TableSummary.h"

#include "apps/sdc/formats/TableLooks.h"
#include "apps/sdc/formats/TableRows.h"
#include "apps/sdc/result/Peaks.h"
#include "apps/sdc/result/Raster.h"
#include "apps/sdc/verdict/Verdict.h"
#include "support/Table.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace sdc {

namespace {

constexpr std::size_t mostPeaksShown = 5;
constexpr std::size_t mostChannelsShown = 3; ///< in each state, where the list is short

/// A name, a place that may be empty, a level and a remark.
support::Row row(const std::string& name, const std::string& place, std::int32_t level, const std::string& remark)
{
    return {name, place, hundredths(level) + " dBm", remark};
}

std::string inMegahertz(std::uint32_t frequency_kHz)
{
    return megahertz(frequency_kHz) + " MHz";
}

std::string widthText(const Peak& peak)
{
    return peak.width_kHz ? inMegahertz(*peak.width_kHz) + " wide" : "under " + inMegahertz(peak.widthBelow_kHz.value_or(0));
}

void addPeaks(std::vector<support::Row>& rows, const std::vector<Peak>& peaks)
{
    for (const Peak& peak : std::span(peaks).first(std::min(peaks.size(), mostPeaksShown))) {
        rows.push_back(row("peak", inMegahertz(peak.frequency_kHz), peak.level, widthText(peak)));
    }
    if (peaks.size() > mostPeaksShown) {
        rows.push_back({"", fmt::format("and {} weaker peaks", peaks.size() - mostPeaksShown)});
    }
}

/// How many channels of the raster there are in each state, as in "12 occupied, 2 free".
void addStates(std::vector<support::Row>& rows, const std::vector<RasterChannel>& raster)
{
    std::string states;
    for (const RasterState state :
        {RasterState::occupied, RasterState::intermittent, RasterState::free, RasterState::unknown}) {
        const auto count = std::ranges::count(raster, state, &RasterChannel::state);
        states += count == 0 ? "" : fmt::format("{}{} {}", states.empty() ? "" : ", ", count, toText(state));
    }
    if (!states.empty()) {
        rows.push_back({"other channels  " + states});
    }
}

/// Those in a state, the strongest first.
std::vector<RasterChannel> strongestFirst(RasterState state, const std::vector<RasterChannel>& raster)
{
    std::vector<RasterChannel> channels;
    std::ranges::copy_if(
        raster, std::back_inserter(channels), [state](const RasterChannel& channel) { return channel.state == state; });
    std::ranges::sort(channels, [](const RasterChannel& left, const RasterChannel& right) {
        return std::tuple(right.max, left.offset) < std::tuple(left.max, right.offset);
    });
    return channels;
}

std::string remarkOn(const RasterChannel& channel)
{
    if (channel.state == RasterState::free) {
        return "average " + hundredths(*channel.average);
    }
    return channel.sweeps > 1 ? fmt::format("on {} % of {} sweeps", hundredths(*channel.occupancy), channel.sweeps) : "";
}

support::Row rowOf(const RasterChannel& channel)
{
    const std::string remark = remarkOn(channel);
    return row(std::string(toText(channel.state)), inMegahertz(channel.centre_kHz), *channel.max,
        fmt::format("raster {:+}{}{}", channel.offset, remark.empty() ? "" : ", ", remark));
}

/// The first of them, and how to see all.
void addChannels(std::vector<support::Row>& rows, const std::vector<RasterChannel>& channels, std::size_t most)
{
    for (const RasterChannel& channel : std::span(channels).first(std::min(channels.size(), most))) {
        rows.push_back(rowOf(channel));
    }
    if (channels.size() > most) {
        rows.push_back(
            {"", fmt::format("and {} more {}; --rows 0 shows all", channels.size() - most, toText(channels.front().state))});
    }
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

std::string textOf(const Verdict& verdict, bool isColored)
{
    std::string text = "\n" + colored(headlineOf(verdict), colorOf(verdict.judgement).data(), isColored) + "\n";
    std::vector<std::string> sentences{verdict.rule};
    for (const Help help : verdict.wouldHelp) {
        sentences.push_back("would help: " + std::string(toText(help)));
    }
    for (const std::string& line : support::wrapped(sentences, leastTableWidth - 2)) {
        text += "  " + line + "\n";
    }
    return text;
}

std::vector<support::Row> rowsOf(const Analysis& analysis, const ScanPlan& plan, std::size_t mostChannels)
{
    std::vector<support::Row> rows;
    if (analysis.floor) {
        rows.push_back(
            row("noise floor", "", *analysis.floor, fmt::format("lowest tenth, {} at each end left out", edgeSamples)));
    }
    if (const RasterChannel* const configured = analysis.configured()) {
        rows.push_back(row("configured *", inMegahertz(plan.rxFrequency_kHz), *configured->max,
            fmt::format("{} wide, average {}", inMegahertz(plan.channelSpacing_kHz), hundredths(*configured->average))));
    }
    addPeaks(rows, analysis.peaks);
    addStates(rows, analysis.raster);
    addChannels(rows, strongestFirst(RasterState::occupied, analysis.raster), mostChannels);
    addChannels(rows, strongestFirst(RasterState::intermittent, analysis.raster), mostChannels);
    addChannels(rows, freeChannels(analysis.raster), mostChannels);
    return rows;
}

} // namespace

std::string tableSummary(const ChannelResult& channel, FarEnd farEnd, const Analysis& analysis, const WriteOptions& options)
{
    const bool isShort = options.rows > 0 || options.height > 0;
    const std::vector<support::Row> rows =
        rowsOf(analysis, channel.plan, isShort ? mostChannelsShown : std::numeric_limits<std::size_t>::max());
    return textOf(judge(channel, farEnd), options.isColored)
        + (rows.empty() ? "" : "\n" + support::table(rows, "lrrl", {12, 13, 12}));
}

} // namespace sdc

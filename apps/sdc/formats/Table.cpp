#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/formats/TableLooks.h"
#include "apps/sdc/formats/TableRows.h"
#include "apps/sdc/formats/TableSummary.h"
#include "apps/sdc/result/Analysis.h"
#include "apps/sdc/result/Sanity.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/result/Sweep.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>

namespace sdc {

namespace {

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

/// What stands above the rows: what is odd, what they show, and how the scan ended.
std::string stateText(const ChannelResult& channel, const WriteOptions& options)
{
    std::string text;
    for (const Finding& finding : channel.survey.check().findings()) {
        text += colored(sentenceOf(finding), red, options.isColored) + "\n";
    }
    const std::size_t count = channel.survey.sweeps();
    if (count > 1) {
        text +=
            fmt::format("{} sweeps, by their {}: # average power, + up to the maximum\n", count, longName(options.trace));
    }
    const std::string states = count > 1 ? statesOf(channel) : stateOf(channel.sweeps.back(), channel.plan);
    return text + (states.empty() ? "" : colored(states, red, options.isColored) + "\n");
}

/// As many as a terminal shows of all channels together, beside what stands around them.
std::size_t mostRows(const std::string& around, const ScanResult& result, const WriteOptions& options)
{
    constexpr std::size_t ownLines = 3; // what a row is, the columns, and the prompt
    constexpr std::size_t fewest = 8;
    if (options.height == 0) {
        return options.rows;
    }
    const auto used = static_cast<std::size_t>(std::ranges::count(around, '\n')) + ownLines;
    const std::size_t each = static_cast<std::size_t>(options.height) / result.channels.size();
    return std::max(fewest, each - std::min(each, used));
}

} // namespace

void writeTable(std::ostream& stream, const ScanResult& result, const WriteOptions& options)
{
    for (const ChannelResult& channel : result.channels) {
        const Analysis analysis = analyse(channel, options.trace);
        std::string above;
        if (result.channels.size() > 1) {
            const std::string headline =
                fmt::format("channel {}: {}", channel.channel, support::shown(channel.unitTypeText));
            above = (&channel == &result.channels.front() ? "" : "\n") + colored(headline, bold, options.isColored) + "\n";
        }
        above += stateText(channel, options);
        const std::string below = tableSummary(channel, result.farEnd, analysis, options);
        stream << above << tableRows(channel, analysis, options, mostRows(above + below, result, options)) << below;
    }
}

} // namespace sdc

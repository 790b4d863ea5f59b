#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/result/Analysis.h"
#include "apps/sdc/result/AnalysisForm.h"
#include "apps/sdc/result/Occupancy.h"
#include "apps/sdc/result/ResultForm.h"
#include "apps/sdc/result/Sanity.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sightings.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/verdict/Verdict.h"
#include "support/FieldsJson.h"
#include "support/ReadableJson.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>

namespace sdc {

namespace {

std::optional<HoldsInFile> holdsOf(const ChannelResult& channel)
{
    if (channel.sweeps.size() < 2) {
        return std::nullopt;
    }
    HoldsInFile lists;
    for (const Hold& hold : channel.survey.holds()) {
        lists.frequencies_kHz.push_back(hold.frequency_kHz);
        lists.max.push_back(hold.max);
        lists.min.push_back(hold.min);
        lists.average.push_back(hold.average);
    }
    return lists;
}

OccupancyInFile occupancyOf(const ChannelOccupancy& occupancy)
{
    OccupancyInFile written;
    static_cast<OccupancyRule&>(written) = occupancy.rule();
    if (occupancy.rule().threshold) {
        written.kind = ThresholdKind::preSet;
    } else {
        written.margin = thresholdMargin;
    }
    if (const auto share = occupancy.bandShare()) {
        written.bandOccupancy = inHundredthsOfPercent(*share);
    }
    if (const auto time = occupancy.revisitTime()) {
        written.revisit_ms = time->count();
    }
    return written;
}

/// @param before  the reading before the sweep; null where there is none
SweepInFile inFile(const Sweep& sweep, const Sample* before, const ChannelResult& channel)
{
    SweepInFile written{sweep, {}, std::nullopt, channel.plan.samples, static_cast<std::uint32_t>(sweep.samples.size())};
    if (!sweep.reason.empty()) {
        written.givenReason = sweep.reason;
    }
    for (const Sample& sample : sweep.samples) {
        written.readings.push_back({sample, flagsOf(sample, before, channel.receiver).listed()});
        before = &sample;
    }
    return written;
}

ChannelInFile inFile(const ChannelResult& channel, FarEnd farEnd, TraceKind trace)
{
    ChannelInFile written{.channel = channel.channel,
        .unitTypeText = channel.unitTypeText,
        .receiver = channel.receiver,
        .plan = channel.plan,
        .sweeps = {},
        .holds = holdsOf(channel),
        .findings = channel.survey.check().findings(),
        .analysis = {analyse(channel, trace), trace},
        .verdict = judge(channel, farEnd)};
    written.analysis.occupancy = occupancyOf(channel.survey.occupancy());
    const Sample* before = nullptr;
    for (const Sweep& sweep : channel.sweeps) {
        written.sweeps.push_back(inFile(sweep, before, channel));
        before = sweep.samples.empty() ? before : &sweep.samples.back();
    }
    return written;
}

} // namespace

void writeJson(std::ostream& stream, const ScanResult& result, const WriteOptions& options)
{
    ResultInFile written{.scenario = result.scenario,
        .description = result.description,
        .kind = result.kind,
        .farEnd = result.farEnd,
        .provenance = result.provenance,
        .channels = {}};
    std::ranges::transform(result.channels, std::back_inserter(written.channels),
        [&](const ChannelResult& channel) { return inFile(channel, result.farEnd, options.trace); });
    support::writeReadably(stream, support::jsonOf(resultRecord(), &written));
}

} // namespace sdc

#include "apps/sdc/formats/Formats.h"
#include "apps/sdc/result/Analysis.h"
#include "apps/sdc/result/ResultForm.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/result/Verdict.h"
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

ChannelInFile inFile(const ChannelResult& channel, TraceKind trace, FarEnd farEnd)
{
    ChannelInFile written{.channel = channel.channel,
        .unitTypeText = channel.unitTypeText,
        .receiver = channel.receiver,
        .plan = channel.plan,
        .sweeps = {},
        .holds = holdsOf(channel),
        .analysis = {analyse(traceOf(channel, trace), channel.plan, resolutionOf(channel)), trace},
        .verdict = judge(channel, farEnd)};
    for (const Sweep& sweep : channel.sweeps) {
        written.sweeps.push_back({sweep, sweep.reason.empty() ? std::nullopt : std::optional(sweep.reason),
            channel.plan.samples, static_cast<std::uint32_t>(sweep.samples.size())});
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
        [&](const ChannelResult& channel) { return inFile(channel, options.trace, result.farEnd); });
    support::writeReadably(stream, support::jsonOf(resultRecord(), &written));
}

} // namespace sdc

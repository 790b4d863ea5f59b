#include "apps/sdc/results/ResultJson.h"

#include "apps/sdc/results/Holds.h"
#include "apps/sdc/results/ReadableJson.h"
#include "apps/sdc/results/ResultCheck.h"
#include "apps/sdc/results/ResultForm.h"
#include "support/Text.h"

#include <algorithm>
#include <iterator>

namespace sdc {

namespace {

std::optional<HoldsInFile> holdsOf(const ChannelResult& channel)
{
    if (channel.sweeps.size() < 2) {
        return std::nullopt;
    }
    HoldsInFile lists;
    for (const Hold& hold : holds(channel.sweeps)) {
        lists.frequencies_kHz.push_back(hold.frequency_kHz);
        lists.max.push_back(hold.max);
        lists.min.push_back(hold.min);
        lists.average.push_back(hold.average);
    }
    return lists;
}

ChannelInFile inFile(const ChannelResult& channel)
{
    ChannelInFile written{.channel = channel.channel,
        .unitTypeText = channel.unitTypeText,
        .filterWidth_kHz = channel.filterWidth_kHz,
        .plan = channel.plan,
        .sweeps = {},
        .holds = holdsOf(channel),
        .analysis = {analyse(traceOf(channel), channel.plan)}};
    for (const Sweep& sweep : channel.sweeps) {
        written.sweeps.push_back({sweep, channel.plan.samples, static_cast<std::uint32_t>(sweep.samples.size())});
    }
    return written;
}

ChannelResult outOfFile(ChannelInFile&& channel)
{
    return {.channel = channel.channel,
        .unitTypeText = std::move(channel.unitTypeText),
        .filterWidth_kHz = channel.filterWidth_kHz,
        .plan = channel.plan,
        .sweeps = {std::move_iterator(channel.sweeps.begin()), std::move_iterator(channel.sweeps.end())}};
}

/// Of many errors the first are told.
void throwIfAny(std::vector<std::string> errors, const std::string& file)
{
    if (!errors.empty()) {
        const bool hasMore = errors.size() > mostErrors;
        errors.resize(std::min(errors.size(), mostErrors));
        throw ResultError(support::listed(file, errors) + (hasMore ? "\n" + file + ": and more" : ""));
    }
}

} // namespace

void writeJson(std::ostream& stream, const ScanResult& result)
{
    ResultInFile written{.schemaPlace = "",
        .programVersion = SDC_VERSION,
        .scenario = result.scenario,
        .description = result.description,
        .kind = result.kind,
        .channels = {}};
    std::ranges::transform(result.channels, std::back_inserter(written.channels), inFile);
    writeReadably(stream, resultForm().write(&written));
}

ScanResult parseResult(std::string_view text, const std::string& file)
{
    ResultInFile read;
    throwIfAny(readJson(text, resultForm(), &read), file);
    throwIfAny(contradictions(read), file);
    ScanResult result{
        .scenario = std::move(read.scenario), .description = std::move(read.description), .kind = read.kind, .channels = {}};
    for (ChannelInFile& channel : read.channels) {
        result.channels.push_back(outOfFile(std::move(channel)));
    }
    return result;
}

void writeResultSchema(std::ostream& stream)
{
    Json schema{{"$schema", "http://json-schema.org/draft-07/schema#"}, {"title", "Result of a scan"},
        {"description", "what sweeps of a receiver found, and how they went"}};
    schema.update(resultForm().schema());
    writeReadably(stream, schema);
}

} // namespace sdc

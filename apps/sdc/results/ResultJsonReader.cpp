#include "apps/sdc/results/ResultCheck.h"
#include "apps/sdc/results/ResultJson.h"
#include "apps/sdc/results/ResultWords.h"
#include "apps/sdc/results/TimeText.h"
#include "simulator/scenario/EmbeddedText.h"
#include "simulator/scenario/JsonText.h"
#include "simulator/scenario/SchemaCheck.h"
#include "support/Text.h"

#include <algorithm>

namespace embedded {

std::span<const Text> scanResultSchemas();

} // namespace embedded

namespace sdc {

namespace {

using nlohmann::json;

[[noreturn]] void refuse(const std::string& file, const std::vector<std::string>& findings)
{
    throw ResultError(support::listed(file, findings));
}

json parse(std::string_view text, const std::string& file)
{
    try {
        return simulator::parseJsonText(text);
    } catch (const simulator::JsonTextError& error) {
        refuse(file, {error.what()});
    }
}

std::uint32_t word(const json& object, const char* key)
{
    return object[key].get<std::uint32_t>();
}

std::string text(const json& object, const char* key)
{
    return object[key].get<std::string>();
}

simulator::ScanPlan readPlan(const json& plan)
{
    return {.rxFrequency_kHz = word(plan, "rx_frequency_kHz"),
        .channelSpacing_kHz = word(plan, "channel_spacing_kHz"),
        .lowest_kHz = word(plan, "lowest_kHz"),
        .highest_kHz = word(plan, "highest_kHz"),
        .samples = plan["samples"].get<std::int32_t>(),
        .step_kHz = word(plan, "step_kHz"),
        .setRxWait_ms = word(plan, "settle_ms"),
        .firstSetRxWait_ms = word(plan, "first_settle_ms")};
}

/// The schema has seen to it that the word is one of them.
template <typename Value, typename Words>
Value readWord(const json& word, const Words& words)
{
    return static_cast<Value>(std::ranges::find(words, word.get<std::string_view>()) - words.begin());
}

Sweep readSweep(const json& object)
{
    Sweep sweep{.start = parseRfc3339(text(object, "start")).value(),
        .end = parseRfc3339(text(object, "end")).value(),
        .ending = readWord<Ending>(object["ending"], endings),
        .reason = object.value("reason", ""),
        .statusText = text(object, "status"),
        .rxBefore_kHz = word(object, "rx_before_kHz"),
        .rxAfter_kHz = word(object, "rx_after_kHz"),
        .samples = {}};
    for (const auto& sample : object["samples"]) {
        sweep.samples.push_back({word(sample, "frequency_kHz"), hundredthsOf(sample["level_dBm"])});
    }
    return sweep;
}

ChannelResult readChannel(const json& object)
{
    ChannelResult channel{.channel = word(object, "channel"),
        .unitTypeText = text(object, "unit_type"),
        .filterWidth_kHz = object["filter_kHz"].get<double>(),
        .plan = readPlan(object["plan"]),
        .sweeps = {}};
    std::ranges::transform(object["sweeps"], std::back_inserter(channel.sweeps), readSweep);
    return channel;
}

} // namespace

ScanResult parseResult(std::string_view text, const std::string& file)
{
    const json object = parse(text, file);
    const json schema = simulator::parseJsonText(scanResultSchema());
    if (const auto findings = simulator::schemaFindings(object, schema); !findings.empty()) {
        refuse(file, findings);
    }
    if (const auto findings = resultFindings(object); !findings.empty()) {
        refuse(file, findings);
    }
    ScanResult result{.scenario = object["scenario"].get<std::string>(),
        .description = object["description"].get<std::string>(),
        .kind = readWord<ScanKind>(object["kind"], scanKinds),
        .channels = {}};
    std::ranges::transform(object["channels"], std::back_inserter(result.channels), readChannel);
    return result;
}

std::string_view scanResultSchema()
{
    return embedded::scanResultSchemas().front().text;
}

} // namespace sdc

#include "apps/sdc/result/ResultForm.h"

#include "support/ReadableJson.h"
#include "support/Time.h"

namespace sdc {

namespace {

/// A moment, as rfc3339 writes it.
class MomentKind : public Kind {
public:
    std::string expected() const override { return "a moment in UTC such as 2026-01-02T03:04:05.678Z"; }
    Json schema() const override { return {{"type", "string"}, {"format", "date-time"}}; }
    Json write(const void* value) const override { return support::rfc3339(*static_cast<const TimePoint*>(value)); }
    bool read(const nlohmann::json& json, void* value) const override
    {
        const auto moment = json.is_string() ? support::parseRfc3339(json.get_ref<const std::string&>()) : std::nullopt;
        *static_cast<TimePoint*>(value) = moment.value_or(TimePoint{});
        return moment.has_value();
    }
};

using Plan = ScanPlan;

constexpr double highestLevel_dBm = 21474836.0; // what a controller's reading can be
constexpr double furthestOffset = 1e15;

const IntegerKind<std::uint32_t> word;
const IntegerKind<std::int32_t> count;
const IntegerKind<std::uint32_t> version({1, 1});
const IntegerKind<std::int64_t> offset({-furthestOffset, furthestOffset});
const HundredthsKind<std::int32_t> level({-highestLevel_dBm, highestLevel_dBm});
const HundredthsKind<std::int64_t> difference({0.0, 2.0 * highestLevel_dBm});
const NumberKind width({0.0, 4294967295.0});
const TextKind text;
const TextKind reason(1);
const MomentKind moment;
const WordKind<ScanKind> scanKind(scanKinds);
const WordKind<Ending> ending(endings);
const ListKind<std::uint32_t> words(word);
const ListKind<std::int32_t> levels(level);

const ObjectKind plan({
    required<Plan>("lowest_kHz", &Plan::lowest_kHz, word, "first frequency, kHz"),
    required<Plan>("highest_kHz", &Plan::highest_kHz, word, "bound of the last frequency, kHz"),
    required<Plan>("step_kHz", &Plan::step_kHz, word, "from one sample to the next, kHz"),
    required<Plan>("samples", &Plan::samples, count, "number of samples in a sweep"),
    required<Plan>("first_settle_ms", &Plan::firstSetRxWait_ms, word, "settle delay before the first reading, ms"),
    required<Plan>("settle_ms", &Plan::setRxWait_ms, word, "settle delay before each other reading, ms"),
    required<Plan>("channel_spacing_kHz", &Plan::channelSpacing_kHz, word, "from one channel to the next, kHz"),
    required<Plan>("rx_frequency_kHz", &Plan::rxFrequency_kHz, word, "configured receive frequency, kHz"),
});

const ObjectKind sample({
    required<SDCResult>("frequency_kHz", &SDCResult::frequency_kHz, word, "frequency, kHz"),
    required<SDCResult>("level_dBm", &SDCResult::rssi, level, "level, dBm"),
});
const ListKind<SDCResult> samples(sample);

const ObjectKind sweep({
    required<SweepInFile>("start", &Sweep::start, moment, "when it began"),
    required<SweepInFile>("end", &Sweep::end, moment, "when it ended"),
    required<SweepInFile>("ending", &Sweep::ending, ending, "how it ended"),
    optional<SweepInFile>("reason", &Sweep::reason, reason, "of a failure"),
    required<SweepInFile>("status", &Sweep::statusText, text, "of the controller at the end, in its words"),
    required<SweepInFile>("planned", &SweepInFile::planned, count, "number of samples"),
    required<SweepInFile>("taken", &SweepInFile::taken, word, "number of samples"),
    required<SweepInFile>("rx_before_kHz", &Sweep::rxBefore_kHz, word, "receive frequency before the sweep, kHz"),
    required<SweepInFile>("rx_after_kHz", &Sweep::rxAfter_kHz, word, "receive frequency after the sweep, kHz"),
    required<SweepInFile>("samples", &Sweep::samples, samples, "in the order taken, the lowest frequency first"),
});
const ListKind<SweepInFile> sweeps(sweep, 1);

const ObjectKind holdLists({
    required<HoldsInFile>("frequency_kHz", &HoldsInFile::frequencies_kHz, words, "frequencies that any sweep reached, kHz"),
    required<HoldsInFile>("max_dBm", &HoldsInFile::max, levels, "strongest level at each frequency"),
    required<HoldsInFile>("min_dBm", &HoldsInFile::min, levels, "weakest level at each frequency"),
    required<HoldsInFile>("average_dBm", &HoldsInFile::average, levels, "mean power at each frequency"),
});

const ObjectKind peak({
    required<Peak>("frequency_kHz", &Peak::frequency_kHz, word, "of the top, kHz"),
    required<Peak>("level_dBm", &Peak::level, level, "level, dBm"),
    required<Peak>("prominence_dB", &Peak::prominence, difference, "above the higher of the two valleys beside it, dB"),
    required<Peak>("width_kHz", &Peak::width_kHz, word, "3 dB below the top, kHz"),
});
const ListKind<Peak> peaks(peak);

const ObjectKind rasterChannel({
    required<RasterChannel>("offset", &RasterChannel::offset, offset, "channels above the configured one; negative: below"),
    required<RasterChannel>("centre_kHz", &RasterChannel::centre_kHz, word, "centre, kHz"),
    required<RasterChannel>("level_dBm", &RasterChannel::level, level, "mean power of its samples, dBm"),
    required<RasterChannel>("strongest_dBm", &RasterChannel::strongest, level, "strongest of its samples, dBm"),
});
const ListKind<RasterChannel> rasterChannels(rasterChannel);

const ObjectKind analysis({
    optional<AnalysisInFile>(
        "floor_dBm", &Analysis::floor, level, "noise floor: median of the lowest tenth of the levels, dBm"),
    required<AnalysisInFile>(
        "samples_left_out_at_each_end", &AnalysisInFile::samplesLeftOut, word, "samples that do not count for the floor"),
    optional<AnalysisInFile>(
        "configured_channel", &Analysis::configured, rasterChannel, "the channel that the receiver belongs to"),
    required<AnalysisInFile>("peaks", &Analysis::peaks, peaks, "humps, strongest first"),
    required<AnalysisInFile>("other_channels", &Analysis::otherChannels, rasterChannels,
        "channels of the raster that were seen whole, quietest first"),
});

const ObjectKind channel({
    required<ChannelInFile>("channel", &ChannelInFile::channel, word, "number of the radio channel"),
    required<ChannelInFile>("unit_type", &ChannelInFile::unitTypeText, text, "type text of the outdoor unit"),
    required<ChannelInFile>("filter_kHz", &ChannelInFile::filterWidth_kHz, width, "width of the receive filter, kHz"),
    required<ChannelInFile>("plan", &ChannelInFile::plan, plan, "what the last sweep was going to do"),
    required<ChannelInFile>("sweeps", &ChannelInFile::sweeps, sweeps, "in the order made"),
    optional<ChannelInFile>(
        "holds", &ChannelInFile::holds, holdLists, "over several sweeps; each list has an item for each frequency"),
    required<ChannelInFile>("analysis", &ChannelInFile::analysis, analysis,
        "of the sweep or, of several sweeps, of their averages; what cannot be said is absent"),
});
const ListKind<ChannelInFile> channels(channel, 1);

const ObjectKind result({
    optional<ResultInFile>("$schema", &ResultInFile::schemaPlace, text, "where this schema is found; for editors"),
    required<ResultInFile>("schema_version", &ResultInFile::schemaVersion, version, "of this form; readers refuse others"),
    required<ResultInFile>("program_version", &ResultInFile::programVersion, text, "of the program that wrote the result"),
    required<ResultInFile>("scenario", &ResultInFile::scenario, text, "name of the scenario"),
    required<ResultInFile>("description", &ResultInFile::description, text, "of the scenario, one line"),
    required<ResultInFile>("kind", &ResultInFile::kind, scanKind, "of the scan"),
    required<ResultInFile>("channels", &ResultInFile::channels, channels, "one for each radio channel that was scanned"),
});

} // namespace

const Kind& resultForm()
{
    return result;
}

void writeResultSchema(std::ostream& stream)
{
    Json schema{{"$schema", "http://json-schema.org/draft-07/schema#"}, {"title", "Result of a scan"},
        {"description", "what sweeps of a receiver found, and how they went"}};
    schema.update(resultForm().schema());
    support::writeReadably(stream, schema);
}

} // namespace sdc

#include "apps/sdc/result/ResultForm.h"

#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/ResultFields.h"
#include "apps/sdc/result/Sweep.h"
#include "support/Errors.h"
#include "support/Time.h"
#include "terminal/Peers.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <optional>
#include <set>
#include <utility>

namespace sdc {

namespace {

using support::Record;
using support::Wrong;

constexpr std::size_t mostSweeps = 100'000; // of a channel
constexpr std::size_t mostArguments = 10'000;

const Record<SampleInFile>& sampleRecord()
{
    static const Record<SampleInFile> record{"sample", "one reading",
        {
            {"time", &SampleInFile::time, moment, "of the reading"},
            {"frequency_kHz", &SampleInFile::frequency_kHz, word, "frequency, kHz"},
            {"level_dBm", &SampleInFile::rssi, level, "level, dBm"},
            {"flags", &SampleInFile::flags, support::list(support::choice(sampleFlags), 0, sampleFlags.size(), "flag"),
                "what is odd about it; repeated: to the hundredth the reading before", support::optional},
        }};
    return record;
}

std::optional<Wrong> wrong(std::string path, const std::string& is, const std::string& right)
{
    return Wrong{std::move(path), "is " + is + "; must be " + right};
}

std::optional<Wrong> endsBeforeItsStart(const SweepInFile& sweep)
{
    return sweep.end < sweep.start ? wrong("end", support::inQuotes(support::rfc3339(sweep.end)), "not before the start")
                                   : std::nullopt;
}

std::optional<Wrong> isReadBeforeItsStart(const SweepInFile& sweep)
{
    const auto early =
        std::ranges::find_if(sweep.readings, [&sweep](const Sample& sample) { return sample.time < sweep.start; });
    return early == sweep.readings.end()
        ? std::nullopt
        : wrong(fmt::format("samples[{}].time", early - sweep.readings.begin()),
            support::inQuotes(support::rfc3339(early->time)), "not before the start of the sweep");
}

std::optional<Wrong> isMiscounted(const SweepInFile& sweep)
{
    return sweep.taken != sweep.readings.size()
        ? wrong("taken", std::to_string(sweep.taken), fmt::format("{}, the number of samples", sweep.readings.size()))
        : std::nullopt;
}

std::optional<Wrong> hasReasonWithoutFailure(const SweepInFile& sweep)
{
    return sweep.givenReason && sweep.ending != Ending::failed
        ? wrong("ending", support::inQuotes(toText(sweep.ending)), "failed, because there is a reason")
        : std::nullopt;
}

const Record<SweepInFile>& sweepRecord()
{
    static const Record<SweepInFile> record{"sweep", "one sweep",
        {
            {"start", &SweepInFile::start, moment, "when it began"},
            {"end", &SweepInFile::end, moment, "when it ended"},
            {"ending", &SweepInFile::ending, support::choice(endings), "how it ended"},
            {"reason", &SweepInFile::givenReason, text, "of a failure", support::optional},
            {"status", &SweepInFile::statusText, text, "of the controller at the end, in its words"},
            {"planned", &SweepInFile::planned, count, "number of samples"},
            {"taken", &SweepInFile::taken, word, "number of samples"},
            {"rx_before_kHz", &SweepInFile::rxBefore_kHz, word, "receive frequency before the sweep, kHz"},
            {"rx_after_kHz", &SweepInFile::rxAfter_kHz, word, "receive frequency after the sweep, kHz"},
            {"samples", &SweepInFile::readings, support::list(sampleRecord(), 0, mostItems),
                "in the order taken, the lowest frequency first"},
        },
        {endsBeforeItsStart, isReadBeforeItsStart, isMiscounted, hasReasonWithoutFailure}};
    return record;
}

std::string placeOf(std::size_t sweep, const std::string& key)
{
    return fmt::format("sweeps[{}].{}", sweep, key);
}

std::optional<Wrong> plannedOtherwise(const ChannelInFile& channel)
{
    for (std::size_t index = 0; index < channel.sweeps.size(); ++index) {
        const std::int32_t planned = channel.sweeps[index].planned;
        if (planned != channel.plan.samples) {
            return wrong(placeOf(index, "planned"), std::to_string(planned),
                fmt::format("{}, as the plan says", channel.plan.samples));
        }
    }
    return std::nullopt;
}

/// Sweeps before the last one may have had another plan.
std::optional<Wrong> isCompleteWithoutAllSamples(const ChannelInFile& channel)
{
    const SweepInFile& last = channel.sweeps.back();
    return last.ending == Ending::complete && std::cmp_not_equal(last.taken, last.planned)
        ? wrong(placeOf(channel.sweeps.size() - 1, "ending"), support::inQuotes(toText(last.ending)),
            fmt::format("stopped or failed, because {} of {} samples were taken", last.taken, last.planned))
        : std::nullopt;
}

/// Of samples that should stand so many kHz apart from a frequency on, the first one that does not, with its right place.
std::optional<Wrong> misplaced(const SweepInFile& sweep, std::size_t index, std::int64_t lowest_kHz, std::int64_t step_kHz)
{
    for (std::size_t sample = 0; sample < sweep.readings.size(); ++sample) {
        const std::int64_t is_kHz = sweep.readings[sample].frequency_kHz;
        const std::int64_t right_kHz = lowest_kHz + static_cast<std::int64_t>(sample) * step_kHz;
        if (step_kHz < 0 || is_kHz != right_kHz) {
            const std::size_t place = step_kHz < 0 ? 1 : sample;
            return wrong(placeOf(index, fmt::format("samples[{}].frequency_kHz", place)),
                std::to_string(sweep.readings[place].frequency_kHz),
                step_kHz < 0 ? "no lower than the one before" : fmt::format("{} (steps of {} kHz)", right_kHz, step_kHz));
        }
    }
    return std::nullopt;
}

/// One step from each sample to the next; of the last sweep, whose plan is known, the samples stand where the plan says.
std::optional<Wrong> hasMisplacedSamples(const ChannelInFile& channel)
{
    for (std::size_t index = 0; index + 1 < channel.sweeps.size(); ++index) {
        const std::vector<SampleInFile>& samples = channel.sweeps[index].readings;
        const std::int64_t lowest_kHz = samples.empty() ? 0 : samples[0].frequency_kHz;
        const std::int64_t step_kHz = samples.size() > 1 ? samples[1].frequency_kHz - lowest_kHz : 0;
        if (auto found = misplaced(channel.sweeps[index], index, lowest_kHz, step_kHz)) {
            return found;
        }
    }
    return misplaced(
        channel.sweeps.back(), channel.sweeps.size() - 1, channel.plan.lowest_kHz, std::int64_t{channel.plan.step_kHz});
}

const Record<ChannelInFile>& channelRecord()
{
    static const Record<ChannelInFile> record{"channel", "one radio channel",
        {
            {"channel", &ChannelInFile::channel, word, "number of the radio channel"},
            {"unit_type", &ChannelInFile::unitTypeText, text, "type text of the outdoor unit"},
            {"receiver", &ChannelInFile::receiver, receiverRecord(), receiverRecord().sentence()},
            {"plan", &ChannelInFile::plan, planRecord(), planRecord().sentence()},
            {"sweeps", &ChannelInFile::sweeps, support::list(sweepRecord(), 1, mostSweeps), "in the order made"},
            {"holds", &ChannelInFile::holds, holdsRecord(), holdsRecord().sentence(), support::optional},
            {"sanity", &ChannelInFile::findings, support::list(findingRecord(), 0, oddities.size()),
                "what is odd about the readings; nothing of a receiver that seems well"},
            {"analysis", &ChannelInFile::analysis, analysisRecord(), analysisRecord().sentence()},
            {"verdict", &ChannelInFile::verdict, verdictRecord(), verdictRecord().sentence()},
        },
        {plannedOtherwise, isCompleteWithoutAllSamples, hasMisplacedSamples}};
    return record;
}

std::optional<Wrong> hasAChannelTwice(const ResultInFile& result)
{
    std::set<std::uint32_t> numbers;
    for (std::size_t index = 0; index < result.channels.size(); ++index) {
        const std::uint32_t number = result.channels[index].channel;
        if (!numbers.insert(number).second) {
            return wrong(
                fmt::format("channels[{}].channel", index), std::to_string(number), "a number that no other channel has");
        }
    }
    return std::nullopt;
}

} // namespace

const Record<ScanPlan>& stepsRecord()
{
    static const Record<ScanPlan> record{"steps", "what a sweep is going to do",
        {
            {"lowest_kHz", &ScanPlan::lowest_kHz, word, "first frequency, kHz"},
            {"highest_kHz", &ScanPlan::highest_kHz, word, "bound of the last frequency, kHz"},
            {"step_kHz", &ScanPlan::step_kHz, word, "from one sample to the next, kHz"},
            {"samples", &ScanPlan::samples, count, "number of samples in a sweep"},
            {"first_settle_ms", &ScanPlan::firstSetRxWait_ms, word, "settle delay before the first reading, ms"},
            {"settle_ms", &ScanPlan::setRxWait_ms, word, "settle delay before each other reading, ms"},
        }};
    return record;
}

const Record<ScanPlan>& planRecord()
{
    static const Record<ScanPlan> record = [] {
        auto fields = support::fieldsWithin<ScanPlan>(
            stepsRecord(), [](auto& plan) -> auto& { return plan; });
        fields.push_back({"channel_spacing_kHz", &ScanPlan::channelSpacing_kHz, word, "from one channel to the next, kHz"});
        fields.push_back({"rx_frequency_kHz", &ScanPlan::rxFrequency_kHz, word, "configured receive frequency, kHz"});
        return Record<ScanPlan>("plan", "what the last sweep was going to do", fields);
    }();
    return record;
}

const Record<ReceiverData>& receiverRecord()
{
    static const Record<ReceiverData> record{"receiver", "what the data sheet tells of the receiver",
        {
            {"filter_kHz", &ReceiverData::filterWidth_kHz,
                support::number(0, std::numeric_limits<std::uint32_t>::max(), "kHz"), "width of the receive filter, kHz"},
            {"noise_figure_dB", &ReceiverData::noiseFigure_dB, support::number(0, 200, "dB"), "noise figure, dB"},
            {"ultimate_rejection_dB", &ReceiverData::ultimateRejection_dB, support::number(0, 200, "dB"),
                "of what lies outside the filter, dB"},
            {"saturation_dBm", &ReceiverData::saturation_dBm, support::number(-200, 200, "dBm"),
                "where readings level off, dBm"},
        }};
    return record;
}

const Record<Provenance>& provenanceRecord()
{
    static const Record<Provenance> record{"provenance", "how the result was made",
        {
            {"program_version", &Provenance::programVersion, text, "of the program that wrote it"},
            {"simulated", &Provenance::isSimulated, support::flag(), "whether the radios were"},
            {"scenario_sha256", &Provenance::scenarioDigest, text, "of the scenario's file, in hexadecimal digits"},
            {"seed", &Provenance::seed, word, "of all that is random in the scenario"},
            {"speed", &Provenance::speed, support::number(0, std::numeric_limits<double>::max(), ""),
                "of time: 1 is real, 0 no wall time at all"},
            {"arguments", &Provenance::arguments, support::list(text, 0, mostArguments, "argument"), "of the program"},
        }};
    return record;
}

const Record<ResultInFile>& resultRecord()
{
    static const Record<ResultInFile> record{"result", "what sweeps of a receiver found, and how they went",
        {
            support::ignored<ResultInFile>("$schema", text, "where this schema is found; for editors"),
            {"schema_version", &ResultInFile::schemaVersion, support::integer(2, 2), "number of this form"},
            {"scenario", &ResultInFile::scenario, text, "name of the scenario"},
            {"description", &ResultInFile::description, text, "of the scenario, one line"},
            {"kind", &ResultInFile::kind, support::choice(scanKinds), "of the scan"},
            {"far_end", &ResultInFile::farEnd, support::choice(farEnds), "whether it transmitted, as the user said"},
            {"provenance", &ResultInFile::provenance, provenanceRecord(), provenanceRecord().sentence()},
            {"channels", &ResultInFile::channels, support::list(channelRecord(), 1, terminal::mostChannels),
                "one for each radio channel that was scanned"},
        },
        {hasAChannelTwice}};
    return record;
}

} // namespace sdc

#include "apps/sdc/compare/ComparisonForm.h"

#include "apps/sdc/compare/Chance.h"
#include "apps/sdc/compare/Places.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "support/FieldsJson.h"
#include "support/ReadableJson.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <utility>

namespace sdc {

namespace {

using support::Record;

constexpr double most_dB = 42949673.0; // between levels that a controller can tell
constexpr std::size_t mostItems = 10'000'000;
constexpr std::int64_t furthestOffset = 1'000'000'000'000;

const auto word = support::integer(0, std::numeric_limits<std::uint32_t>::max());
const auto decibels = support::number(-most_dB, most_dB, "dB");
const auto level = support::number(-most_dB, most_dB, "dBm");
const auto text = support::text();
const auto flag = support::flag();
const auto moment = support::moment();

template <typename Owner>
using Fields = std::vector<support::FieldOf<Owner>>;

/// The fields of what has changed somewhere, behind those that say where.
template <typename Owner>
Fields<Owner> withLevels(Fields<Owner> where)
{
    where.push_back({"before_dBm", &Owner::before_dBm, level, "level before, dBm"});
    where.push_back({"after_dBm", &Owner::after_dBm, level, "level after, dBm"});
    where.push_back({"change_dB", &Owner::change_dB, decibels, "after less before, dB"});
    return where;
}

const Record<PeakChangeInFile> peakRecord{"peak_change", "a peak that has come or gone",
    withLevels<PeakChangeInFile>({
        {"frequency_kHz", &PeakChangeInFile::frequency_kHz, word, "of its top, kHz"},
        {"comes_and_goes", &PeakChangeInFile::comesAndGoes, flag,
            "whether it was not there all the time: the lowest of the readings shows no change"},
    })};

const Record<RasterChangeInFile> rasterRecord{"raster_change",
    "a channel of the raster; its level: the mean of its levels in dB",
    withLevels<RasterChangeInFile>({
        {"offset", &RasterChangeInFile::offset, support::integer(-furthestOffset, furthestOffset),
            "channels above the configured one; negative: below"},
        {"centre_kHz", &RasterChangeInFile::centre_kHz, word, "centre, kHz"},
        {"frequencies", &RasterChangeInFile::frequencies, word, "of those compared, how many lie in it"},
        {"is_changed", &RasterChangeInFile::isChanged, flag, "whether the difference is a change"},
    })};

Fields<FrequencyRange> rangeFields()
{
    return {
        {"lowest_kHz", &FrequencyRange::lowest_kHz, word, "lowest frequency, kHz"},
        {"highest_kHz", &FrequencyRange::highest_kHz, word, "highest frequency, kHz"},
        {"frequencies", &FrequencyRange::frequencies, support::integer(1, mostItems), "how many there are"},
    };
}

const Record<FrequencyRange> frequencyRangeRecord{"frequency_range", "neighbouring frequencies", rangeFields()};

const Record<RangeChangeInFile> rangeRecord = [] {
    Fields<RangeChangeInFile> fields = support::fieldsWithin<RangeChangeInFile>(
        frequencyRangeRecord, [](auto& change) -> auto& { return change.range; });
    fields.push_back({"frequency_kHz", &RangeChangeInFile::frequency_kHz, word, "where the change is largest, kHz"});
    return Record<RangeChangeInFile>("range_change",
        "neighbouring frequencies that changed the same way, and the largest of their changes",
        withLevels(std::move(fields)));
}();

const Record<ScanSide> scanSideRecord{"scan", "how a channel was scanned",
    {
        {"unit_type", &ScanSide::unitTypeText, text, "type text of the outdoor unit"},
        {"filter_kHz", &ScanSide::filterWidth_kHz, support::number(0, std::numeric_limits<std::uint32_t>::max(), "kHz"),
            "width of the receive filter, kHz"},
        {"rx_frequency_kHz", &ScanSide::rxFrequency_kHz, word, "configured receive frequency, kHz"},
        {"channel_spacing_kHz", &ScanSide::channelSpacing_kHz, word, "from one channel to the next, kHz"},
        {"step_kHz", &ScanSide::step_kHz, word, "from one sample to the next, kHz"},
        {"sweeps", &ScanSide::sweeps, word, "number of sweeps"},
        {"incomplete_sweeps", &ScanSide::incompleteSweeps, word, "of these, how many were stopped or failed"},
    }};

const Record<ResultSide> resultSideRecord{"result", "one of the two results",
    {
        {"file", &ResultSide::file, text, "its name"},
        {"scenario", &ResultSide::scenario, text, "name of the scenario"},
        {"kind", &ResultSide::kind, support::choice(scanKinds), "of the scan"},
        {"far_end", &ResultSide::farEnd, support::choice(farEnds), "whether it transmitted, as the user said"},
        {"start", &ResultSide::start, moment, "of its first sweep"},
        {"end", &ResultSide::end, moment, "of its last sweep"},
    }};

using Channel = ChannelComparisonInFile;

const Record<Channel> channelRecord{"channel", "one radio channel that both results have",
    {
        {"channel", &Channel::channel, word, "number of the radio channel"},
        {"is_different", &Channel::isDifferent, flag, "whether anything has changed, or nothing can be compared"},
        {"obstacle", &Channel::obstacle, text, "why nothing can be compared", support::optional},
        {"before", &Channel::before, scanSideRecord, scanSideRecord.sentence()},
        {"after", &Channel::after, scanSideRecord, scanSideRecord.sentence()},
        {"compared", &Channel::compared, word, "number of frequencies of which both tell a level"},
        {"scatter_dB", &Channel::scatter_dB, decibels, "standard deviation of one reading, dB"},
        {"lowest_change_dB", support::through(&Channel::tolerance, &Tolerance::lowest_dB), decibels,
            "at a frequency with the usual number of readings: a fall is a change below this, dB"},
        {"highest_change_dB", support::through(&Channel::tolerance, &Tolerance::highest_dB), decibels,
            "a rise is a change above this, dB"},
        {"new_peaks", &Channel::newPeaks, support::list(peakRecord, 0, mostItems), "strongest first"},
        {"vanished_peaks", &Channel::vanishedPeaks, support::list(peakRecord, 0, mostItems), "strongest first"},
        {"raster_channels", &Channel::raster, support::list(rasterRecord, 0, mostItems),
            "all that were compared, ascending"},
        {"ranges", &Channel::ranges, support::list(rangeRecord, 0, mostItems), "what has changed, ascending"},
        {"only_before", &Channel::onlyBefore, support::list(frequencyRangeRecord, 0, mostItems),
            "what the scan after does not tell"},
        {"only_after", &Channel::onlyAfter, support::list(frequencyRangeRecord, 0, mostItems),
            "what the scan before does not tell"},
    }};

template <typename Written, typename Found>
Written inFile(const Found& change)
{
    Written written;
    written.before_dBm = change.before / 100.0;
    written.after_dBm = change.after / 100.0;
    written.change_dB = static_cast<double>(change.difference()) / 100.0;
    return written;
}

PeakChangeInFile peakInFile(const PeakChange& peak)
{
    auto written = inFile<PeakChangeInFile>(peak);
    written.frequency_kHz = peak.frequency_kHz;
    written.comesAndGoes = peak.comesAndGoes;
    return written;
}

RasterChangeInFile rasterInFile(const RasterChange& channel)
{
    auto written = inFile<RasterChangeInFile>(channel);
    written.offset = channel.offset;
    written.centre_kHz = channel.centre_kHz;
    written.frequencies = channel.frequencies;
    written.isChanged = channel.isChanged;
    return written;
}

RangeChangeInFile rangeInFile(const RangeChange& change)
{
    auto written = inFile<RangeChangeInFile>(change);
    written.range = change.range;
    written.frequency_kHz = change.frequency_kHz;
    return written;
}

template <typename From, typename Make>
auto each(const From& from, Make make)
{
    std::vector<decltype(make(from.front()))> made;
    std::ranges::transform(from, std::back_inserter(made), make);
    return made;
}

double rounded(double value_dB)
{
    return std::round(value_dB * 100.0) / 100.0;
}

Channel channelInFile(const ChannelComparison& channel)
{
    return {.channel = channel.channel,
        .isDifferent = channel.isChanged(),
        .obstacle = channel.obstacle.empty() ? std::nullopt : std::optional(channel.obstacle),
        .before = channel.before,
        .after = channel.after,
        .compared = static_cast<std::uint32_t>(channel.compared),
        .scatter_dB = rounded(channel.scatter_dB),
        .tolerance = {rounded(channel.tolerance.lowest_dB), rounded(channel.tolerance.highest_dB)},
        .newPeaks = each(channel.newPeaks, peakInFile),
        .vanishedPeaks = each(channel.vanishedPeaks, peakInFile),
        .raster = each(channel.raster, rasterInFile),
        .ranges = each(channel.ranges, rangeInFile),
        .onlyBefore = channel.onlyBefore,
        .onlyAfter = channel.onlyAfter};
}

} // namespace

const Record<ComparisonInFile>& comparisonRecord()
{
    using File = ComparisonInFile;
    static const Record<File> record{"comparison", "what has changed from one result to another",
        {
            {"schema_version", &File::schemaVersion, support::integer(1, 1), "number of this form"},
            {"program_version", &File::programVersion, text, "of the program that compared"},
            {"is_different", &File::isDifferent, flag, "whether anything has changed"},
            {"trace", &File::trace, support::choice(traceKinds),
                "which of the levels of several sweeps stands for a frequency"},
            {"threshold_dB", &File::threshold_dB, support::number(0, 1000, "dB"),
                "set by hand: what is no more than that is no change; otherwise the scatter of the readings decides",
                support::optional},
            {"before", &File::before, resultSideRecord, resultSideRecord.sentence()},
            {"after", &File::after, resultSideRecord, resultSideRecord.sentence()},
            {"channels", &File::channels, support::list(channelRecord, 1, mostItems), "in the order of the result before"},
            {"channels_only_before", &File::onlyBefore, support::list(word, 0, mostItems, "number of a radio channel"),
                "radio channels that the result after does not have"},
            {"channels_only_after", &File::onlyAfter, support::list(word, 0, mostItems, "number of a radio channel"),
                "radio channels that the result before does not have"},
        }};
    return record;
}

void writeComparisonJson(std::ostream& stream, const Comparison& comparison)
{
    const ComparisonInFile written{.programVersion = SDC_VERSION,
        .isDifferent = comparison.isDifferent(),
        .trace = comparison.trace,
        .threshold_dB = comparison.threshold_dB,
        .before = comparison.before,
        .after = comparison.after,
        .channels = each(comparison.channels, channelInFile),
        .onlyBefore = comparison.onlyBefore,
        .onlyAfter = comparison.onlyAfter};
    support::writeReadably(stream, support::jsonOf(comparisonRecord(), &written));
}

} // namespace sdc

#include "apps/sdc/result/AnalysisForm.h"

#include "apps/sdc/result/Peaks.h"
#include "apps/sdc/result/Raster.h"
#include "apps/sdc/result/ResultFields.h"

#include <array>
#include <cstdint>
#include <limits>
#include <string_view>

namespace sdc {

using support::Record;

namespace {

constexpr HundredthsSpec percent{0.0, 100.0};
constexpr std::int64_t furthestOffset = 1'000'000'000'000;
constexpr std::array<std::string_view, 2> thresholdKinds{"dynamic", "pre-set"}; // in the order of ThresholdKind

const Record<Peak>& peakRecord()
{
    static const Record<Peak> record{"peak", "a hump",
        {
            {"frequency_kHz", &Peak::frequency_kHz, word, "of the top, kHz"},
            {"level_dBm", &Peak::level, level, "level, dBm"},
            {"prominence_dB", &Peak::prominence, HundredthsSpec{0.0, highestLevel_dBm - lowestLevel_dBm},
                "above the higher of the two valleys beside it, dB"},
            {"width_kHz", &Peak::width_kHz, word, "3 dB below the top, where the scan resolves it, kHz", support::optional},
            {"width_below_kHz", &Peak::widthBelow_kHz, word,
                "otherwise: narrower than this, the wider of step and receive filter, kHz", support::optional},
        }};
    return record;
}

const Record<RasterChannel>& rasterChannelRecord()
{
    static const Record<RasterChannel> record{"raster_channel", "a channel of the raster, by the samples that stand for it",
        {
            {"offset", &RasterChannel::offset, support::integer(-furthestOffset, furthestOffset),
                "channels above the configured one; negative: below"},
            {"centre_kHz", &RasterChannel::centre_kHz, word, "centre, kHz"},
            {"state", &RasterChannel::state, support::choice(rasterStates), "what is in it"},
            {"max_dBm", &RasterChannel::max, level, "strongest level, dBm", support::optional},
            {"average_dBm", &RasterChannel::average, level, "mean power, dBm", support::optional},
            {"threshold_dBm", &RasterChannel::threshold, level, "of its occupancy, dBm", support::optional},
            {"sweeps", &RasterChannel::sweeps, word64, "that saw it"},
            {"occupancy_percent", &RasterChannel::occupancy, percent,
                "frequency channel occupancy: share of these sweeps in which it exceeds the threshold", support::optional},
            {"sweeps_needed", &RasterChannel::sweepsNeeded, word64, "until the occupancy is as accurate as asked for",
                support::optional},
        }};
    return record;
}

const Record<OccupancyInFile>& occupancyRecord()
{
    static const Record<OccupancyInFile> record{"occupancy",
        "how the occupancy of channels was measured, in the terms of ITU-R SM.1880-2; of the whole scan",
        {
            {"threshold", &OccupancyInFile::kind, support::choice(thresholdKinds), "what levels are compared with"},
            {"threshold_dBm", &OccupancyInFile::threshold, level, "pre-set threshold, dBm", support::optional},
            {"margin_dB", &OccupancyInFile::margin, HundredthsSpec{0.0, highestLevel_dBm},
                "of a dynamic threshold over what is read where nobody transmits, dB", support::optional},
            {"confidence_percent", &OccupancyInFile::confidence, HundredthsSpec{leastConfidence, mostConfidence},
                "asked for, of the occupancy of a channel"},
            {"accuracy_percent", &OccupancyInFile::accuracy, HundredthsSpec{leastAccuracy, mostAccuracy},
                "asked for, in percentage points either way"},
            {"band_occupancy_percent", &OccupancyInFile::bandOccupancy, percent,
                "frequency band occupancy: share of all readings that exceed the threshold", support::optional},
            {"revisit_ms", &OccupancyInFile::revisit_ms, support::integer(0, std::numeric_limits<std::int64_t>::max()),
                "from one sweep to the next on average, ms", support::optional},
        }};
    return record;
}

} // namespace

const Record<HoldsInFile>& holdsRecord()
{
    static const Record<HoldsInFile> record{"holds", "over several sweeps; each list has an item for each frequency",
        {
            {"frequency_kHz", &HoldsInFile::frequencies_kHz, support::list(word, 0, mostItems, "frequency, kHz"),
                "frequencies at which any sweep read a level, kHz"},
            {"max_dBm", &HoldsInFile::max, support::list(level, 0, mostItems, "level, dBm"),
                "strongest level at each frequency"},
            {"min_dBm", &HoldsInFile::min, support::list(level, 0, mostItems, "level, dBm"),
                "weakest level at each frequency"},
            {"average_dBm", &HoldsInFile::average, support::list(level, 0, mostItems, "level, dBm"),
                "mean power at each frequency"},
        }};
    return record;
}

const Record<AnalysisInFile>& analysisRecord()
{
    static const Record<AnalysisInFile> record{"analysis",
        "of the sweep or, of several sweeps, of one of their traces; what cannot be said is absent",
        {
            {"trace", &AnalysisInFile::trace, support::choice(traceKinds),
                "which of the levels of several sweeps stands for a frequency"},
            {"floor_dBm", &AnalysisInFile::floor, level, "noise floor: median of the lowest tenth of the levels, dBm",
                support::optional},
            {"samples_left_out_at_each_end", &AnalysisInFile::samplesLeftOut, word,
                "samples that do not count for the noise floor"},
            {"peaks", &AnalysisInFile::peaks, support::list(peakRecord(), 0, mostItems), "humps, strongest first"},
            {"raster", &AnalysisInFile::raster, support::list(rasterChannelRecord(), 0, mostItems),
                "channels of the raster as far as they were seen, ascending"},
            {"occupancy", &AnalysisInFile::occupancy, occupancyRecord(), occupancyRecord().sentence()},
        }};
    return record;
}

const Record<Verdict>& verdictRecord()
{
    static const Record<Verdict> record{"verdict",
        "whether something else than the far end transmits in the configured channel",
        {
            {"judgement", &Verdict::judgement, support::choice(judgements), "what is said"},
            {"kind", &Verdict::kind, support::choice(interferenceKinds), "of the interferer", support::optional},
            {"place", &Verdict::place, support::choice(interferencePlaces), "of the interferer", support::optional},
            {"over_floor_dB", &Verdict::overFloor, HundredthsSpec{0.0, highestLevel_dBm},
                "by which the interferer raises what is read, dB", support::optional},
            {"carrier_to_interference_dB", &Verdict::carrierToInterference,
                HundredthsSpec{-highestLevel_dBm, highestLevel_dBm}, "own carrier over the interferer, dB",
                support::optional},
            {"rule", &Verdict::rule, text, "that decided, one sentence"},
            {"would_help", &Verdict::wouldHelp, support::list(support::choice(helps), 0, helps.size(), "what would help"),
                "to be surer, what helps most first"},
        }};
    return record;
}

const Record<Finding>& findingRecord()
{
    static const Record<Finding> record{"finding", "what is odd about readings",
        {
            {"oddity", &Finding::oddity, support::choice(oddities), "what it is"},
            {"readings", &Finding::readings, word64, "so many of them"},
            {"of", &Finding::of, word64, "so many there are"},
            {"level_dBm", &Finding::level, level,
                "the one repeated, the floor of readings, or where the receiver saturates, dBm"},
        }};
    return record;
}

} // namespace sdc

#pragma once

#include "apps/sdc/compare/Chance.h"
#include "apps/sdc/compare/Comparison.h"
#include "apps/sdc/compare/Places.h"
#include "apps/sdc/result/Survey.h"
#include "support/Fields.h"

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace sdc {

// A comparison as JSON says it.

/// Levels in dBm, the difference in dB.
struct ChangeInFile {
    double before_dBm = 0.0;
    double after_dBm = 0.0;
    double change_dB = 0.0;
};

struct PeakChangeInFile : ChangeInFile {
    std::uint32_t frequency_kHz = 0;
    bool comesAndGoes = false;
};

struct RasterChangeInFile : ChangeInFile {
    std::int64_t offset = 0;
    std::uint32_t centre_kHz = 0;
    std::uint32_t frequencies = 0;
    bool isChanged = false;
};

struct RangeChangeInFile : ChangeInFile {
    FrequencyRange range;
    std::uint32_t frequency_kHz = 0;
};

struct ChannelComparisonInFile {
    std::uint32_t channel = 0;
    bool isDifferent = false;
    std::optional<std::string> obstacle;
    ScanSide before;
    ScanSide after;
    std::uint32_t compared = 0;
    double scatter_dB = 0.0;
    Tolerance tolerance;
    std::vector<PeakChangeInFile> newPeaks;
    std::vector<PeakChangeInFile> vanishedPeaks;
    std::vector<RasterChangeInFile> raster;
    std::vector<RangeChangeInFile> ranges;
    std::vector<FrequencyRange> onlyBefore;
    std::vector<FrequencyRange> onlyAfter;
};

struct ComparisonInFile {
    std::uint32_t schemaVersion = 1;
    std::string programVersion;
    bool isDifferent = false;
    TraceKind trace{};
    std::optional<double> threshold_dB;
    ResultSide before;
    ResultSide after;
    std::vector<ChannelComparisonInFile> channels;
    std::vector<std::uint32_t> onlyBefore;
    std::vector<std::uint32_t> onlyAfter;
};

/// The keys of such a text.
const support::Record<ComparisonInFile>& comparisonRecord();

/// Writes one JSON object.
void writeComparisonJson(std::ostream& stream, const Comparison& comparison);

} // namespace sdc

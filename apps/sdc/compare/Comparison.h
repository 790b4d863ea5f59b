#pragma once

#include "apps/sdc/compare/Chance.h"
#include "apps/sdc/compare/Places.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/result/Sweep.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What has changed from one scan to another. Levels in hundredths of a dBm.

namespace sdc {

/// Levels at one place before and after.
struct Change {
    std::int32_t before = 0;
    std::int32_t after = 0;

    std::int64_t difference() const { return std::int64_t{after} - before; } ///< hundredths of a dB

    bool operator==(const Change&) const = default;
};

/// Neighbouring frequencies that changed the same way, with the largest of their changes.
struct RangeChange : Change {
    FrequencyRange range;
    std::uint32_t frequency_kHz = 0; ///< of the largest change

    bool operator==(const RangeChange&) const = default;
};

/// A peak that has come or gone.
struct PeakChange : Change {
    std::uint32_t frequency_kHz = 0;
    bool comesAndGoes = false; ///< the lowest of the readings there shows no change

    bool operator==(const PeakChange&) const = default;
};

/// A channel of the raster of the scan before. Its level is the mean of its levels in dB: a sample at its edge, to which a
/// strong neighbour reaches, counts no more than the others.
struct RasterChange : Change {
    std::int64_t offset = 0; ///< channels above the configured one; negative: below
    std::uint32_t centre_kHz = 0;
    std::uint32_t frequencies = 0; ///< of those compared, how many lie in it
    bool isChanged = false;

    bool operator==(const RasterChange&) const = default;
};

/// How one of the two scans of a channel was made.
struct ScanSide {
    std::string unitTypeText;
    double filterWidth_kHz = 0.0;
    std::uint32_t rxFrequency_kHz = 0; ///< configured
    std::uint32_t channelSpacing_kHz = 0;
    std::uint32_t step_kHz = 0;
    std::uint32_t sweeps = 0;
    std::uint32_t incompleteSweeps = 0; ///< of these
};

/// One radio channel that both results have.
struct ChannelComparison {
    std::uint32_t channel = 0;
    ScanSide before;
    ScanSide after;
    std::string obstacle; ///< why nothing can be compared; empty: something can
    std::size_t compared = 0;
    double scatter_dB = 0.0;          ///< standard deviation of one reading
    Tolerance tolerance;              ///< of a frequency that has the usual number of readings
    std::vector<PeakChange> newPeaks; ///< strongest first
    std::vector<PeakChange> vanishedPeaks;
    std::vector<RasterChange> raster; ///< all that were compared, ascending
    std::vector<RangeChange> ranges;  ///< ascending
    std::vector<FrequencyRange> onlyBefore;
    std::vector<FrequencyRange> onlyAfter;

    /// What cannot be compared counts as changed; frequencies that one of them has not read do not.
    bool isChanged() const;
};

/// One of the two results.
struct ResultSide {
    std::string file; ///< its name
    std::string scenario;
    ScanKind kind{};
    FarEnd farEnd{};
    TimePoint start; ///< of its first sweep
    TimePoint end;   ///< of its last one
};

struct Comparison {
    ResultSide before;
    ResultSide after;
    TraceKind trace{};
    std::optional<double> threshold_dB;      ///< set by hand
    std::vector<ChannelComparison> channels; ///< in the order of the result before
    std::vector<std::uint32_t> onlyBefore;   ///< numbers of channels
    std::vector<std::uint32_t> onlyAfter;

    bool isDifferent() const;
};

struct NamedResult {
    std::string file;
    const ScanResult& result;
};

struct CompareOptions {
    TraceKind trace = usualTrace;
    std::optional<double>
        threshold_dB; ///< what is no more than that is no change; otherwise what chance does not bring about
};

/// Compares the radio channels that both results have: the levels of their traces by frequency and by channel of the raster.
///
/// A peak has come where the level rose on no peak's top: beside a peak, too, and wherever else; it has gone the other way
/// round. One that only stands out less, because its neighbour rose, has not gone. Of results that do not differ, at most
/// one in a thousand is said to.
/// @throws ResultError when the results have no frequency of the same channel in common
Comparison compare(const NamedResult& before, const NamedResult& after, const CompareOptions& options);

} // namespace sdc

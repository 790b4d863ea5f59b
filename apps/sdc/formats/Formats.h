#pragma once

#include "apps/sdc/formats/LiveFormat.h"
#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace sdc {

/// What the writer of a format is told.
struct WriteOptions {
    std::string file{"-"};        ///< name of the file that is written; "-": standard output
    std::size_t rows = 0;         ///< most rows of a table, 0: one for each sample
    int width = 0;                ///< columns of the terminal that shows it; 0: none does
    int height = 0;               ///< lines of it, where all is to fit; 0: it may be of any length
    bool isColored = false;       ///< by ANSI sequences; the text says the same without
    TraceKind trace = usualTrace; ///< of several sweeps, what stands for a frequency
};

/// A way in which a scan is written: while it runs, or as a whole at its end.
struct Format {
    const char* name; ///< of the option, too, behind two dashes
    const char* help;
    void (*write)(std::ostream& stream, const ScanResult& result, const WriteOptions& options) = nullptr;
    std::unique_ptr<LiveFormat> (*makeLive)(const ScanResult& run, std::vector<Lines*> files) = nullptr;
    bool isPerChannel = false;                                   ///< a file for each channel
    Keep keep = Keep::last;                                      ///< what it needs at the end
    std::string (*nameError)(const std::string& file) = nullptr; ///< what is wrong with a file's name; empty: nothing
    std::string (*obstacle)(const std::string& file) = nullptr;  ///< why it cannot be written; empty: nothing is known
};

/// Writes a result that there is already, in whatever format. Rows of several channels are not told apart.
void writeResult(std::ostream& stream, const Format& format, const ScanResult& result, const WriteOptions& options);

// The writers of the formats: each has a source of its own.

/// For people: a table per channel with a bar for each level, then a short summary of what was found. At least 80 columns
/// are used. With several sweeps the rows show the holds; where there are more samples than rows, each row shows several
/// neighbours.
void writeTable(std::ostream& stream, const ScanResult& result, const WriteOptions& options);

/// One JSON object, as its schema describes it; the same result is the same text. Texts that are no UTF-8 are mended. What
/// can be computed from the samples (holds, analysis) is written for other readers.
void writeJson(std::ostream& stream, const ScanResult& result, const WriteOptions& options = {});

/// A header, "channel,frequency_kHz,max_dBm,average_dBm,min_dBm,readings", and for each channel a line for each frequency
/// at which any sweep read a level, as in the CSV of samples. The average is that of the powers.
void writeHolds(std::ostream& stream, const ScanResult& result, const WriteOptions& options = {});

/// A picture, of the kind that the file's name tells.
void writePicture(std::ostream& stream, const ScanResult& result, const WriteOptions& options);

/// The sweeps one below the other, as a picture of the kind that the file's name tells.
void writeWaterfallPicture(std::ostream& stream, const ScanResult& result, const WriteOptions& options);

/// All formats. The first one is for people, and goes where nothing else is asked for.
inline constexpr Format formats[] = {
    {.name = "table", .help = "Table, as on the terminal; - is standard output", .write = writeTable},
    {.name = "csv", .help = "CSV: a line for each sample, as it is taken", .makeLive = makeCsv},
    {.name = "jsonl", .help = "JSON lines: all that happens, as it happens", .makeLive = makeJsonLines},
    {.name = "json",
        .help = "JSON: all that is known of the scan; ends with the\nsweep that brings it to 64 MiB",
        .write = writeJson,
        .keep = Keep::all},
    {.name = "sweep",
        .help = "Rows as power scanners of receivers write them;\nof several channels a file each: NAME-1.csv",
        .makeLive = makeSweepRows,
        .isPerChannel = true},
    {.name = "holds",
        .help = "CSV: strongest, average and weakest level of\neach frequency, over all sweeps",
        .write = writeHolds},
    {.name = "plot",
        .help = "Picture: .svg, .png or .txt; - is text",
        .write = writePicture,
        .nameError = plotNameError,
        .obstacle = plotObstacle},
    {.name = "waterfall",
        .help = "Picture of sweeps one below the other",
        .write = writeWaterfallPicture,
        .keep = Keep::history,
        .nameError = plotNameError,
        .obstacle = plotObstacle},
};

} // namespace sdc

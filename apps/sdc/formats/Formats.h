#pragma once

#include "apps/sdc/plot/Plot.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"

#include <cstddef>
#include <ostream>
#include <string>

namespace sdc {

/// What the writer of a format is told.
struct WriteOptions {
    std::string file{"-"};        ///< name of the file that is written; "-": standard output
    std::size_t rows = 0;         ///< most rows of a table, 0: one for each sample
    int width = 0;                ///< columns of the terminal that shows it; 0: none does
    bool isColored = false;       ///< by ANSI sequences; the text says the same without
    TraceKind trace = usualTrace; ///< of several sweeps, what stands for a frequency
};

/// A way in which the samples of a scan are written.
struct Format {
    const char* name; ///< of the option, too, behind two dashes
    const char* help;
    void (*write)(std::ostream& stream, const ScanResult& result, const WriteOptions& options);
    std::string (*nameError)(const std::string& file) = nullptr; ///< what is wrong with a file's name; empty: nothing
    std::string (*obstacle)(const std::string& file) = nullptr;  ///< why it cannot be written; empty: nothing is known
};

// The writers of the formats: each has a source of its own.

/// For people: a table per channel with a bar for each level, then a short summary of what was found. At least 80 columns
/// are used. With several sweeps the rows show the holds; where there are more samples than rows, each row shows several
/// neighbours.
void writeTable(std::ostream& stream, const ScanResult& result, const WriteOptions& options);

/// RFC 4180, a header and one line per sample. One channel and one sweep: "frequency_kHz,level_dBm"; more than that:
/// "channel,sweep,frequency_kHz,level_dBm", where sweeps count from 1; where a channel has more than one sweep, the holds of
/// the line's frequency follow, "max_hold_dBm,min_hold_dBm,average_dBm". RFC 4180 has no comments, so that a result in which
/// a sweep is not complete says so in a last column, "ending", of each line: complete, stopped or failed. Readers that pick
/// the columns by name or by number from the left are not disturbed.
void writeCsv(std::ostream& stream, const ScanResult& result, const WriteOptions& options = {});

/// One JSON object, as its schema describes it; the same result is the same text. Texts that are no UTF-8 are mended. What
/// can be computed from the samples (holds, analysis) is written for other readers.
void writeJson(std::ostream& stream, const ScanResult& result, const WriteOptions& options = {});

/// The common row of spectrum tools, one per sweep and channel, ordered by time and frequency:
/// `date, time, Hz_low, Hz_high, Hz_step, samples, dB, dB, ...`. Date and time are the sweep's start in UTC; level i belongs
/// to Hz_low + i * Hz_step; Hz_high = Hz_low + number of levels * Hz_step; `samples` is the number of samples taken; those
/// that were planned and not taken are `nan`. A trace of one place has the channel spacing as its step. A sweep without any
/// sample has no row. Some readers cannot show levels that are all equal.
void writeSweepRows(std::ostream& stream, const ScanResult& result, const WriteOptions& options = {});

/// A picture, of the kind that the file's name tells.
void writePicture(std::ostream& stream, const ScanResult& result, const WriteOptions& options);

/// The sweeps one below the other, as a picture of the kind that the file's name tells.
void writeWaterfallPicture(std::ostream& stream, const ScanResult& result, const WriteOptions& options);

/// All formats. The first one is for people, and goes where nothing else is asked for.
inline constexpr Format formats[] = {
    {"table", "Table, as on the terminal; - is standard output", writeTable},
    {"csv", "CSV, RFC 4180", writeCsv},
    {"json", "JSON: all that is known of the scan", writeJson},
    {"sweep", "Rows as power scanners of receivers write them", writeSweepRows},
    {"plot", "Picture: .svg, .png or .txt; - is text", writePicture, plotNameError, plotObstacle},
    {"waterfall", "Picture of sweeps one below the other", writeWaterfallPicture, plotNameError, plotObstacle},
};

} // namespace sdc

#pragma once

#include "apps/sdc/results/OutputFile.h"
#include "apps/sdc/results/ScanResult.h"

#include <cstddef>
#include <ostream>

namespace sdc {

struct TableOptions {
    std::size_t rows = 0;   ///< where a channel has more samples, each row shows several neighbours; 0: no limit
    int width = 80;         ///< columns that there are; at least 80 are used
    bool isColored = false; ///< by ANSI sequences; the text says the same without
};

/// For people: a table per channel with a bar for each level, then a short summary of what was found. With several sweeps
/// the rows show the holds.
void writeTable(std::ostream& stream, const ScanResult& result, const TableOptions& options);

/// RFC 4180, a header and one line per sample. One channel and one sweep: "frequency_kHz,level_dBm"; more than that:
/// "channel,sweep,frequency_kHz,level_dBm", where sweeps count from 1; where a channel has more than one sweep, the holds of
/// the line's frequency follow, "max_hold_dBm,min_hold_dBm,average_dBm". RFC 4180 has no comments, so that a result in which
/// a sweep is not complete says so in a last column, "ending", of each line: complete, stopped or failed. Readers that pick
/// the columns by name or by number from the left are not disturbed.
void writeCsv(std::ostream& stream, const ScanResult& result);

/// The common row of spectrum tools, one per sweep and channel, ordered by time and frequency:
/// `date, time, Hz_low, Hz_high, Hz_step, samples, dB, dB, ...`. Date and time are the sweep's start in UTC; level i belongs
/// to Hz_low + i * Hz_step; Hz_high = Hz_low + number of levels * Hz_step; `samples` is the number of samples taken; those
/// that were planned and not taken are `nan`. A trace of one place has the channel spacing as its step. A sweep without any
/// sample has no row. Some readers cannot show levels that are all equal.
void writeSweep(std::ostream& stream, const ScanResult& result);

} // namespace sdc

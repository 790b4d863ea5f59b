#pragma once

#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Sweep.h"
#include "apps/sdc/scan/Session.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sdc {

/// Where lines go to that are made while a scan runs.
class Lines {
public:
    virtual ~Lines() = default;

    /// Whole lines that stand before all others, and are not worth replacing anything for.
    virtual void head(std::string_view lines) = 0;

    /// Whole lines that tell of a sample.
    virtual void put(std::string_view lines) = 0;
};

/// A format that is written while a scan runs: makes lines of what a session tells.
class LiveFormat : public Sink {
public:
    /// @param files  one or, where the format has a file for each channel, as many as channels; they must outlive it
    explicit LiveFormat(std::vector<Lines*> files)
        : m_files(std::move(files))
    {
    }

protected:
    Lines& file(std::size_t channel = 0) const { return *m_files.at(channel); }

private:
    std::vector<Lines*> m_files;
};

// The live formats: each has a source of its own.

/// RFC 4180 but for its line ends, which are LF alone: a header, "channel,sweep,time,frequency_kHz,level_dBm", and a line
/// for each sample as it is taken. The sweeps of a channel count from 1; times are RFC 3339 in UTC with milliseconds.
/// @param run  what is known before the scan: all but the channels
std::unique_ptr<LiveFormat> makeCsv(const ScanResult& run, std::vector<Lines*> files);

/// JSON lines: an object each, whose "type" tells what it is about. "run": what is scanned and by what, once; "sweep": one
/// begins; "sample": what the CSV has, and flags; "sweep_end": how it went; "end": how all of them went, once. Where the
/// last line is no "end", something has ended the program.
std::unique_ptr<LiveFormat> makeJsonLines(const ScanResult& run, std::vector<Lines*> files);

/// The common row of spectrum tools, one for each sweep as it ends, a file for each channel:
/// `date, time, Hz_low, Hz_high, Hz_step, samples, dB, dB, ...`. Date and time are the sweep's start in UTC; level i belongs
/// to Hz_low + i * Hz_step; Hz_high = Hz_low + number of levels * Hz_step; `samples` is the number of samples taken; those
/// that were planned and not taken, or refused by the radio, are `nan`. A trace of one place has the channel spacing as its
/// step. A sweep without any sample has no row. Some readers cannot show levels that are all equal.
std::unique_ptr<LiveFormat> makeSweepRows(const ScanResult& run, std::vector<Lines*> files);

/// Such a row, with its line feed, of a sweep that has samples.
std::string sweepRow(const Sweep& sweep, const ScanPlan& plan, const ReceiverData& receiver);

/// Tells a result as the session that made it did.
void replay(const ScanResult& result, Sink& sink);

} // namespace sdc

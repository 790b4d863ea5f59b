#pragma once

#include "apps/sdc/result/ScanResult.h"
#include "tests/judge/Answer.h"
#include "tests/judge/trial/Scan.h"
#include "tests/judge/trial/Trial.h"
#include "tests/judge/truth/RasterTruth.h"
#include "tests/judge/truth/Truth.h"

#include <cstdint>
#include <vector>

namespace judge {

/// Where a trial belongs.
enum class Case : std::uint8_t {
    dead,      ///< the receiver reads nothing
    unseen,    ///< no sample lies in the configured channel
    grazed,    ///< something grazes the channel: an alarm is as right as none
    clean,     ///< no interferer
    nextCase,  ///< none, but neighbours raise the reading, and the scan is narrow; far end not on
    raised,    ///< the same, and the scan shows the neighbours
    disturbed, ///< an interferer raises the floor
};

/// What came of one trial.
struct Outcome {
    std::uint64_t seed = 0;
    sdc::ScanKind kind{};
    std::uint32_t sweeps = 0;
    sdc::FarEnd told{};
    Case which{};
    Truth truth;
    Answer answer;
};

/// A suspicion counts as an alarm.
bool isAlarm(const Outcome& outcome);
bool isClear(const Outcome& outcome);
bool cannotTell(const Outcome& outcome);

/// "Cannot tell" was said of an interferer where it is as right as an alarm: of what neighbours could explain with the far
/// end muted, of what is shaped like the own carrier with the far end on, of all that stays when nothing is known of it.
bool isExcused(const Outcome& outcome);

/// The channels of the raster; none of a dead receiver.
std::vector<RasterTruth> rasterOf(const Outcome& outcome);

/// The scan of a trial, as a program that scans keeps it.
sdc::ChannelResult scan(const Trial& trial, const Course& course);

/// Makes the trial of a seed, scans, asks, and finds out what is so. May run on several threads.
/// @throws std::logic_error when the controller cannot plan the trial's scan
Outcome tryOne(std::uint64_t seed, Detector detector);

/// The trials of seeds in a row, in their order, on all processors.
std::vector<Outcome> tryAll(std::uint64_t firstSeed, std::uint64_t lastSeed, Detector detector, unsigned threads);

} // namespace judge

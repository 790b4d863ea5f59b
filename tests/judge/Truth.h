#pragma once

#include "tests/judge/Answer.h"
#include "tests/judge/Scan.h"
#include "tests/judge/Trial.h"

#include <cstdint>
#include <vector>

// What is so, as the simulator knows it. All levels are those that the receiver of the trial would read without jitter, at
// the frequencies and moments at which it stood there, with what a slow one still shows of the sample before; in hundredths
// of a dBm, never below the floor of readings. An emitter that was silent at those moments is not there.

namespace judge {

/// The configured channel. A sample lies in it when its tuning is not more than half a spacing from the configured
/// frequency.
///
/// An interferer is every emitter but the far end's carrier whose spectrum, without the shoulders of its mask, reaches into
/// the channel: it is co-channel. What lies elsewhere and is heard through mask, leak or the filter's edge belongs to the
/// floor, which is
/// what would be read without interferers.
struct ChannelTruth {
    std::uint32_t tunings = 0; ///< of one sweep, in the channel; where there are none, nothing below means anything

    std::int32_t over = 0; ///< hundredths of a dB by which the interferers raise the floor, in the sample where that is most
    std::int32_t level = 0;       ///< reading there
    bool isGrazed = false;        ///< something that only grazes the channel raises a sample by 1 dB or more
    bool comesAndGoes = false;    ///< in one of three or more sweeps that sample is raised by no more than 3 dB
    bool isShapedLikeOwn = false; ///< raises all tunings, five or more, alike: by no more than 3 dB from one to another

    /// What the interferers may rightly be called: those of the strongest and of all that are within 6 dB of it.
    std::vector<sdc::InterferenceKind> kinds;

    /// The scan shows nothing of the channels beside, or hardly anything: a scan of the channel, or one of fewer than five
    /// samples.
    bool isNarrow = false;

    /// Hundredths of a dB by which the floor lies over the receiver's own noise, at most: in the channel, in a scan that is
    /// not narrow within a quarter of a spacing of its centre, where no slope of a neighbour should be seen.
    std::int32_t raised = 0;

    /// Neighbours could explain the reading at `level`: those that are there, had they the poorest masks (25 and 45 dB), or
    /// in a narrow scan one of -20 dBm in the nearest channel that the scan does not show.
    bool isExplainable = false;
};

/// There is no interferer, and neighbours raise the reading by 3 dB or more.
bool isRaised(const ChannelTruth& truth);

/// The level of an interferer from which on there is one, in hundredths of a dB over the floor: what is less cannot be
/// noticed.
inline constexpr std::int32_t leastNoticed = 10;

inline bool isClean(const ChannelTruth& truth)
{
    return truth.over < leastNoticed && !truth.isGrazed;
}

/// What is so in another channel of the raster.
enum class Occupant : std::uint8_t {
    nobody,    ///< nothing reaches in; at the centre less than 0.5 dB of the reading come from masks and filter edges
    fringe,    ///< nothing reaches in, but masks and filter edges raise the reading at the centre by 5 dB or more
    somebody,  ///< the spectrum of an emitter reaches in; `over` tells how strong
    uncertain, ///< any other: grazed, or a fringe that is faint
};

struct RasterTruth {
    std::int64_t offset = 0; ///< channels above the configured one
    bool isSeen = false;     ///< a sample lies within a quarter of a spacing of the centre
    Occupant occupant{};

    /// Of what reaches in: hundredths of a dB over the floor in the sample nearest to the centre; in a channel that is not
    /// seen, at the centre itself, at the moment of that sample.
    std::int32_t over = 0;
    bool comesAndGoes = false; ///< in one of three or more sweeps that sample is raised by no more than 3 dB
};

struct Truth {
    ChannelTruth channel;
    std::vector<RasterTruth> raster; ///< of the channels whose centres lie within the scan, without the configured one
};

Truth truthOf(const Trial& trial, const Course& course);

} // namespace judge

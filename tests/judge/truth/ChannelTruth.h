#pragma once

#include "tests/judge/Answer.h"
#include "tests/judge/trial/Trial.h"
#include "tests/judge/truth/QuietAir.h"

#include <cstdint>
#include <span>
#include <vector>

namespace judge {

/// Fewer sweeps do not show that something comes and goes, fewer samples no shape.
inline constexpr std::uint32_t sweepsToComeAndGo = 3;
inline constexpr std::uint32_t samplesOfAShape = 5;

/// Whether what raises the floor so much in each of several sweeps is gone in one of them: it raises it by no more than 3
/// dB.
/// @param rises  hundredths of a dB
bool isGoneOnce(std::span<const std::int32_t> rises);

/// The configured channel. A sample lies in it when its tuning is not more than half a spacing from the configured
/// frequency.
///
/// An interferer is every emitter but the far end's carrier whose spectrum, without the shoulders of its mask, reaches into
/// the channel: it is co-channel. What lies elsewhere and is heard through mask, leak or the filter's edge belongs to the
/// floor, which is what would be read without interferers.
struct ChannelTruth {
    std::uint32_t tunings = 0; ///< of one sweep, in the channel; where there are none, nothing below means anything

    std::int32_t over = 0; ///< hundredths of a dB by which the interferers raise the floor, in the sample where that is most
    std::int32_t level = 0;       ///< reading there
    bool isGrazed = false;        ///< what only grazes the channel raises a sample by 1 dB or more
    bool comesAndGoes = false;    ///< is gone once from where it raises the floor most
    bool isShapedLikeOwn = false; ///< raises all tunings, five or more, alike: by no more than 3 dB from one to another

    /// What the interferers may rightly be called: the strongest, and all that are within 6 dB of it.
    std::vector<sdc::InterferenceKind> kinds;
    bool isFromBeside = false; ///< of those one comes from beside the channel: it may be called adjacent, too

    /// The scan shows nothing of the channels beside, or hardly anything: a scan of the channel, or one of fewer than five
    /// samples.
    bool isNarrow = false;

    /// Hundredths of a dB by which the floor lies over the receiver's own noise, at most: in the channel; in a scan that is
    /// not narrow, and shows the neighbours whose slopes are seen there, in the sample nearest to its centre.
    std::int32_t raised = 0;

    /// Neighbours could explain the reading at `level`: those that are there, had they the poorest masks (25 and 45 dB), or
    /// in a narrow scan one of -20 dBm in the nearest channel that the scan does not show.
    bool isExplainable = false;

    /// The same in a narrow scan, by what the receiver leaks of one of -20 dBm.
    bool isExplainableByLeak = false;
};

/// What raises the floor by less than 0.1 dB cannot be noticed: there is no interferer.
bool isClean(const ChannelTruth& truth);

/// There is no interferer, and neighbours raise the reading by 3 dB or more.
bool isRaised(const ChannelTruth& truth);

ChannelTruth channelTruth(const Trial& trial, const QuietAir& air);

} // namespace judge

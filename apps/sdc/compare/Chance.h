#pragma once

#include "apps/sdc/result/ScanResult.h"
#include "apps/sdc/result/Survey.h"

#include <cstddef>

// What two scans of the same air differ by.

namespace sdc {

/// Where a level of a trace lies by chance, in dB above what is on the air.
struct Reach {
    double least = 0.0;
    double likely = 0.0; ///< as often above it as below
    double most = 0.0;
};

/// Of so many readings of the same level: the maximum of many lies above what that of few does.
/// @param scatter_dB  standard deviation of one reading
/// @param risk        that a level lies above `most`; below `least`, the same
Reach reachOf(TraceKind kind, std::size_t readings, double scatter_dB, double risk);

/// Differences "after less before" that are no change, in dB.
struct Tolerance {
    double lowest_dB = 0.0; ///< 0 or below
    double highest_dB = 0.0;

    /// Whether a difference is a change; above 0 for a rise, below for a fall, 0 for none.
    int direction(double difference_dB) const
    {
        constexpr double rounding_dB = 1e-6; // levels are told in hundredths
        return difference_dB > highest_dB + rounding_dB ? 1 : difference_dB < lowest_dB - rounding_dB ? -1 : 0;
    }

    bool operator==(const Tolerance&) const = default;
};

/// What is no change whatever the scatter: receivers do not repeat their levels better from one day to the next.
inline constexpr double leastTolerance_dB = 2.0;

/// What chance brings about.
/// @param places  whose differences are averaged
Tolerance toleranceOf(const Reach& before, const Reach& after, std::size_t places);

/// The standard deviation of one reading, in dB, as both scans of a channel show it. The less they show, the nearer it is to
/// the most that receivers have.
double scatterOf(const ChannelResult& before, const ChannelResult& after);

} // namespace sdc

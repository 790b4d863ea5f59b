#pragma once

#include "apps/sdc/result/ReceiverData.h"
#include "apps/sdc/result/Sightings.h"
#include "apps/sdc/result/Sweep.h"
#include "terminal/ScanPlan.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

// Occupancy in the terms of Recommendation ITU-R SM.1880-2 and Report ITU-R SM.2256-1.

namespace sdc {

/// By what occupancy is measured. Shares in hundredths of a percent.
struct OccupancyRule {
    /// Pre-set, in hundredths of a dBm. Otherwise it is dynamic: `thresholdMargin` over what is read where nobody transmits.
    std::optional<std::int32_t> threshold;
    std::int32_t confidence = 9500; ///< in how many of all cases the occupancy measured is as accurate as asked for
    std::int32_t accuracy = 1000;   ///< percentage points that it may be off, either way

    bool operator==(const OccupancyRule&) const = default;
};

// What may be asked for, in percent.
inline constexpr double leastConfidence = 50.0;
inline constexpr double mostConfidence = 99.99;
inline constexpr double leastAccuracy = 0.1;
inline constexpr double mostAccuracy = 50.0;

std::int32_t inHundredthsOfPercent(double share);

/// Of one channel. A look at it is a sweep in which there are samples that stand for it; it is on when one of them exceeds
/// the threshold.
struct OccupancyCount {
    std::size_t looks = 0;
    std::size_t on = 0;
    std::size_t afterOn = 0; ///< looks that followed one that was on
    std::size_t begun = 0;   ///< looks that were on, after one that was not
    std::size_t ended = 0;   ///< looks that were not on, after one that was
    bool isOn = false;       ///< in the last look
    std::optional<std::int32_t>
        strongest; ///< level that nothing but an emitter in the channel explains, hundredths of a dBm

    void add(const Sighting& sighting);

    /// Frequency channel occupancy: the share of looks in which the channel was on. There must be one.
    double share() const { return static_cast<double>(on) / static_cast<double>(looks); }

    /// How much one look tells of the next, 0 to 1: what the transitions say of a source that only remembers its last state.
    /// 0 where there are too few transitions to say anything.
    double dependence() const;
};

/// How many looks it takes until the occupancy of a channel is as accurate as asked for: for a share p and an accuracy d,
/// z^2 p (1 - p) / d^2 of looks that do not depend on each other, with z from the normal distribution for the confidence.
/// In any case as many as are needed for a channel that is never on, or always: an occupancy farther off by d would have
/// shown. Looks that depend on each other tell less, by (1 + r) / (1 - r) for a dependence r.
std::size_t looksNeeded(const OccupancyCount& count, const OccupancyRule& rule);

/// What sweeps found of the occupancy of channels, in memory that does not grow with their number.
class ChannelOccupancy {
public:
    explicit ChannelOccupancy(const OccupancyRule& rule = {})
        : m_rule(rule)
    {
    }

    /// A sweep more. A dynamic threshold is that of this sweep, so that nothing depends on the sweeps that follow.
    void add(const Sweep& sweep, const terminal::ScanPlan& plan, const ReceiverData& receiver);

    const OccupancyRule& rule() const { return m_rule; }

    /// Of a channel so many above the configured one; of one that no sweep has seen, no looks.
    OccupancyCount count(std::int64_t offset) const;

    /// Frequency band occupancy: of all readings of all sweeps, the share that exceeds the threshold. Nothing without any.
    std::optional<double> bandShare() const;

    /// The most power on the air that any sweep has shown, in mW.
    double mostOnAir_mW() const { return m_mostOnAir_mW; }

    /// Revisit time: from one sweep to the next, on average. Nothing with fewer than two.
    std::optional<std::chrono::milliseconds> revisitTime() const;

private:
    OccupancyRule m_rule;
    std::map<std::int64_t, OccupancyCount> m_counts; ///< by the channel's offset from the configured one
    double m_mostOnAir_mW = 0.0;
    std::size_t m_readings = 0;
    std::size_t m_readingsOn = 0;
    std::size_t m_sweeps = 0; ///< with readings
    TimePoint m_firstSweep;
    TimePoint m_lastSweep;
};

} // namespace sdc

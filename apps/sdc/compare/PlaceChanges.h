#pragma once

#include "apps/sdc/compare/Chance.h"
#include "apps/sdc/compare/Comparison.h"
#include "apps/sdc/compare/Places.h"
#include "apps/sdc/result/ScanResult.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace sdc {

/// Says what of the differences at places is a change.
class Judge {
public:
    /// @param scatter_dB  standard deviation of one reading
    /// @param risk        of a place, that chance makes it look risen; fallen, the same
    Judge(const CompareOptions& options, double scatter_dB, double risk);

    /// What is no change at a place with the usual number of readings.
    /// @param places  ascending, as below; at least one
    Tolerance usualTolerance(const std::vector<Place>& places) const;

    std::vector<RangeChange> rangeChanges(const std::vector<Place>& places) const;

    /// Of all channels of the raster with a place in them; a place on the edge of two is in both.
    std::vector<RasterChange> rasterChanges(const std::vector<Place>& places, const ScanPlan& plan) const;

    /// @param resolution_kHz  of the scan that shows them
    std::vector<PeakChange> peaksThatCame(const std::vector<Place>& places, double resolution_kHz) const;
    std::vector<PeakChange> peaksThatWent(const std::vector<Place>& places, double resolution_kHz) const;

private:
    enum class Scan : bool { before, after };
    using PlaceIterator = std::vector<Place>::const_iterator;
    struct Range {
        PlaceIterator begin;
        PlaceIterator end;
    };

    const Reach& reachOf(std::size_t readings) const;
    Tolerance toleranceAt(const Place& place, std::size_t places = 1) const;
    int directionAt(const Place& place) const { return toleranceAt(place).direction(place.difference_dB()); }
    bool comesAndGoesAt(const Place& place) const;
    bool leans(const Place& place, int direction) const;
    Range rangeAround(PlaceIterator change, PlaceIterator first, PlaceIterator end) const;
    RasterChange describe(std::int64_t offset, const std::vector<Place>& places, const ScanPlan& plan) const;
    std::int32_t leastProminenceOf(const std::vector<Place>& places) const;
    std::vector<PeakChange> peaksOnlyIn(Scan scan, const std::vector<Place>& places, double resolution_kHz) const;

    CompareOptions m_options;
    double m_scatter_dB;
    double m_risk;
    mutable std::map<std::size_t, Reach> m_reaches; ///< by the number of readings
};

} // namespace sdc

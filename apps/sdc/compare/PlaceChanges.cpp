#include "apps/sdc/compare/PlaceChanges.h"

#include "apps/sdc/result/Peaks.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <queue>

namespace sdc {

namespace {

std::int32_t hundredthsOf(double level_dBm)
{
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::lround(std::clamp<double>(level_dBm * 100.0, Limits::min(), Limits::max())));
}

Change changeAt(const Place& place)
{
    return {hundredthsOf(place.before.level_dBm), hundredthsOf(place.after.level_dBm)};
}

/// Of a quotient, the next whole number below or at it; the divisor is above 0.
std::int64_t floorOfQuotient(std::int64_t dividend, std::int64_t divisor)
{
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}

/// The places in the channels of the raster, by the channel's offset from the configured one.
std::map<std::int64_t, std::vector<Place>> byChannel(const std::vector<Place>& places, const ScanPlan& plan)
{
    const std::int64_t spacing_kHz = plan.channelSpacing_kHz;
    std::map<std::int64_t, std::vector<Place>> channels;
    for (const Place& place : places) {
        const std::int64_t above = 2 * (std::int64_t{place.frequency_kHz} - plan.rxFrequency_kHz) + spacing_kHz;
        const std::int64_t offset = floorOfQuotient(above, 2 * spacing_kHz);
        channels[offset].push_back(place);
        if (above == offset * 2 * spacing_kHz) { // on the edge of two channels
            channels[offset - 1].push_back(place);
        }
    }
    return channels;
}

using Trace = std::vector<SDCResult>;

/// Marks what belongs to the top of a peak on the way there: from the peak on, the trace stays less than a peak's width is
/// taken below it.
/// @param isPeak, isTop  for each sample
template <typename Samples, typename Flags, typename Marks>
void markTops(Samples sample, Samples end, Flags isPeak, Marks isTop)
{
    std::priority_queue<std::int64_t> tops; // levels of the peaks that reach up to here
    for (; sample != end; ++sample, ++isPeak, ++isTop) {
        if (*isPeak) {
            tops.push(sample->rssi);
        }
        while (!tops.empty() && tops.top() - widthDrop >= sample->rssi) {
            tops.pop();
        }
        *isTop = *isTop || !tops.empty();
    }
}

/// For each sample of a trace, whether it belongs to the top of a peak.
std::vector<bool> topsOf(const Trace& trace, const std::vector<Peak>& peaks)
{
    std::vector<bool> isPeak(trace.size());
    for (const Peak& peak : peaks) {
        const auto sample = std::ranges::lower_bound(trace, peak.frequency_kHz, {}, &SDCResult::frequency_kHz);
        isPeak[static_cast<std::size_t>(sample - trace.begin())] = true;
    }
    std::vector<bool> isTop(trace.size());
    markTops(trace.begin(), trace.end(), isPeak.begin(), isTop.begin());
    markTops(trace.rbegin(), trace.rend(), isPeak.rbegin(), isTop.rbegin());
    return isTop;
}

} // namespace

Judge::Judge(const CompareOptions& options, double scatter_dB, double risk)
    : m_options(options)
    , m_scatter_dB(scatter_dB)
    , m_risk(risk)
{
}

const Reach& Judge::reachOf(std::size_t readings) const
{
    const auto known = m_reaches.find(readings);
    return known != m_reaches.end()
        ? known->second
        : m_reaches.emplace(readings, sdc::reachOf(m_options.trace, readings, m_scatter_dB, m_risk)).first->second;
}

Tolerance Judge::toleranceAt(const Place& place, std::size_t places) const
{
    if (m_options.threshold_dB) {
        return {-*m_options.threshold_dB, *m_options.threshold_dB};
    }
    const double doubt_dB = place.before.doubt_dB + place.after.doubt_dB;
    const Tolerance chance = toleranceOf(reachOf(place.before.readings), reachOf(place.after.readings), places);
    return {chance.lowest_dB - doubt_dB, chance.highest_dB + doubt_dB};
}

Tolerance Judge::usualTolerance(const std::vector<Place>& places) const
{
    std::vector<Place> byReadings = places;
    const auto middle = byReadings.begin() + static_cast<std::ptrdiff_t>(byReadings.size() / 2);
    std::ranges::nth_element(
        byReadings, middle, {}, [](const Place& place) { return std::min(place.before.readings, place.after.readings); });
    Place usual = *middle;
    usual.before.doubt_dB = usual.after.doubt_dB = 0.0;
    return toleranceAt(usual);
}

/// Whether what has changed was not there all the time: by the lowest readings the place is the same.
bool Judge::comesAndGoesAt(const Place& place) const
{
    return toleranceAt(place).direction(place.after.lowest_dBm - place.before.lowest_dBm) == 0;
}

/// Whether a place next to a change changed the same way, by half as much as would make a change of its own.
bool Judge::leans(const Place& place, int direction) const
{
    const Tolerance tolerance = toleranceAt(place);
    const double difference_dB = place.difference_dB();
    return direction > 0 ? difference_dB > tolerance.highest_dB / 2.0 : difference_dB < tolerance.lowest_dB / 2.0;
}

/// The range around a change, among places of which none before `first` is to belong to it.
Judge::Range Judge::rangeAround(PlaceIterator change, PlaceIterator first, PlaceIterator end) const
{
    const int direction = directionAt(*change);
    const auto doesNotLean = [&](const Place& place) { return !leans(place, direction); };
    const auto below = std::find_if(std::make_reverse_iterator(change), std::make_reverse_iterator(first), doesNotLean);
    return {below.base(), std::find_if(change, end, doesNotLean)};
}

std::vector<RangeChange> Judge::rangeChanges(const std::vector<Place>& places) const
{
    const auto isChange = [this](const Place& place) { return directionAt(place) != 0; };
    std::vector<RangeChange> changes;
    PlaceIterator first = places.begin();
    for (auto change = std::find_if(first, places.end(), isChange); change != places.end();
         change = std::find_if(first, places.end(), isChange)) {
        const auto [begin, end] = rangeAround(change, first, places.end());
        const auto largest = std::max_element(begin, end, [](const Place& left, const Place& right) {
            return std::abs(left.difference_dB()) < std::abs(right.difference_dB());
        });
        changes.push_back({changeAt(*largest),
            {begin->frequency_kHz, std::prev(end)->frequency_kHz, static_cast<std::size_t>(end - begin)},
            largest->frequency_kHz});
        first = end;
    }
    return changes;
}

RasterChange Judge::describe(std::int64_t offset, const std::vector<Place>& places, const ScanPlan& plan) const
{
    const auto count = static_cast<double>(places.size());
    Place mean;
    Tolerance tolerance;
    for (const Place& place : places) {
        mean.before.level_dBm += place.before.level_dBm / count;
        mean.after.level_dBm += place.after.level_dBm / count;
        const Tolerance here = toleranceAt(place, places.size());
        tolerance.lowest_dB += here.lowest_dB / count;
        tolerance.highest_dB += here.highest_dB / count;
    }
    const std::int64_t centre_kHz = std::clamp<std::int64_t>(
        plan.rxFrequency_kHz + offset * plan.channelSpacing_kHz, 0, std::numeric_limits<std::uint32_t>::max());
    return {changeAt(mean), offset, static_cast<std::uint32_t>(centre_kHz), static_cast<std::uint32_t>(places.size()),
        tolerance.direction(mean.difference_dB()) != 0};
}

std::vector<RasterChange> Judge::rasterChanges(const std::vector<Place>& places, const ScanPlan& plan) const
{
    std::vector<RasterChange> changes;
    if (plan.channelSpacing_kHz == 0) {
        return changes;
    }
    for (const auto& [offset, inChannel] : byChannel(places, plan)) {
        changes.push_back(describe(offset, inChannel, plan));
    }
    return changes;
}

std::vector<PeakChange> Judge::peaksThatCame(const std::vector<Place>& places, double resolution_kHz) const
{
    return peaksOnlyIn(Scan::after, places, resolution_kHz);
}

std::vector<PeakChange> Judge::peaksThatWent(const std::vector<Place>& places, double resolution_kHz) const
{
    return peaksOnlyIn(Scan::before, places, resolution_kHz);
}

/// What tells a peak from chance where the level has changed anyway: less than usual.
std::int32_t Judge::leastProminenceOf(const std::vector<Place>& places) const
{
    const Tolerance usual = usualTolerance(places);
    const double widest_dB = std::max(usual.highest_dB, -usual.lowest_dB);
    return static_cast<std::int32_t>(std::lround(std::clamp<double>(100.0 * widest_dB, widthDrop, leastProminence)));
}

/// A peak of one scan that the other does not show: the level there has changed, and was on the top of no peak.
std::vector<PeakChange> Judge::peaksOnlyIn(Scan scan, const std::vector<Place>& places, double resolution_kHz) const
{
    Trace shown;
    Trace other;
    for (const Place& place : places) {
        const Change change = changeAt(place);
        shown.push_back({place.frequency_kHz, scan == Scan::after ? change.after : change.before});
        other.push_back({place.frequency_kHz, scan == Scan::after ? change.before : change.after});
    }
    const std::int32_t least = leastProminenceOf(places);
    const std::vector<bool> isTop = topsOf(other, findPeaks(other, resolution_kHz, least));
    const int direction = scan == Scan::after ? 1 : -1;
    std::vector<PeakChange> changes;
    for (const Peak& peak : findPeaks(shown, resolution_kHz, least)) {
        const auto place = std::ranges::lower_bound(places, peak.frequency_kHz, {}, &Place::frequency_kHz);
        if (directionAt(*place) == direction && !isTop[static_cast<std::size_t>(place - places.begin())]) {
            changes.push_back({changeAt(*place), peak.frequency_kHz, comesAndGoesAt(*place)});
        }
    }
    return changes;
}

} // namespace sdc

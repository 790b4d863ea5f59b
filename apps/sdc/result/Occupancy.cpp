#include "apps/sdc/result/Occupancy.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/Sanity.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace sdc {

namespace {

constexpr double whole = 10000.0; // hundredths of a percent

/// So many standard deviations from the mean a normal value lies at most, in a share of all cases.
double deviations(double confidence)
{
    double low = 0.0;
    double high = 10.0;
    for (int halvings = 0; halvings < 60; ++halvings) {
        const double middle = (low + high) / 2.0;
        (std::erf(middle / std::numbers::sqrt2) < confidence ? low : high) = middle;
    }
    return low;
}

} // namespace

std::int32_t inHundredthsOfPercent(double share)
{
    return static_cast<std::int32_t>(std::lround(whole * share));
}

void OccupancyCount::add(const Sighting& sighting)
{
    if (looks > 0) {
        afterOn += isOn ? 1U : 0U;
        begun += !isOn && sighting.isOn ? 1U : 0U;
        ended += isOn && !sighting.isOn ? 1U : 0U;
    }
    isOn = sighting.isOn;
    on += isOn ? 1U : 0U;
    ++looks;
    if (sighting.strongest) {
        strongest = std::max(strongest.value_or(*sighting.strongest), *sighting.strongest);
    }
}

double OccupancyCount::dependence() const
{
    if (begun == 0 || ended == 0) {
        return 0.0;
    }
    const double afterOff = static_cast<double>(looks - 1 - afterOn);
    const double changes = static_cast<double>(begun) / afterOff + static_cast<double>(ended) / static_cast<double>(afterOn);
    return std::max(1.0 - changes, 0.0);
}

std::size_t looksNeeded(const OccupancyCount& count, const OccupancyRule& rule)
{
    const double confidence = rule.confidence / whole;
    const double accuracy = rule.accuracy / whole;
    const double z = deviations(confidence);
    const double share = count.share();
    const double independent = std::max(
        z * z * share * (1.0 - share) / (accuracy * accuracy), std::log(1.0 - confidence) / std::log(1.0 - accuracy));
    const double dependence = count.dependence();
    return static_cast<std::size_t>(std::ceil(independent * (1.0 + dependence) / (1.0 - dependence)));
}

void ChannelOccupancy::add(const Sweep& sweep, const terminal::ScanPlan& plan, const ReceiverData& receiver)
{
    const std::vector<SDCResult> trace = levelsIn(sweep, receiver);
    if (!sweep.samples.empty()) {
        m_firstSweep = m_sweeps == 0 ? sweep.samples.front().time : m_firstSweep;
        m_lastSweep = sweep.samples.front().time;
        ++m_sweeps;
    }
    const Sightings sightings(trace, plan, receiver, m_rule.threshold);
    for (const Sighting& channel : sightings.channels()) {
        m_counts[channel.offset].add(channel);
    }
    m_mostOnAir_mW = std::max(m_mostOnAir_mW, sightings.onAir_mW());
    m_readings += trace.size();
    m_readingsOn += sightings.samplesOn();
}

OccupancyCount ChannelOccupancy::count(std::int64_t offset) const
{
    const auto found = m_counts.find(offset);
    return found == m_counts.end() ? OccupancyCount{} : found->second;
}

std::optional<double> ChannelOccupancy::bandShare() const
{
    return m_readings == 0 ? std::nullopt
                           : std::optional(static_cast<double>(m_readingsOn) / static_cast<double>(m_readings));
}

std::optional<std::chrono::milliseconds> ChannelOccupancy::revisitTime() const
{
    return m_sweeps < 2 ? std::nullopt
                        : std::optional((m_lastSweep - m_firstSweep) / static_cast<std::int64_t>(m_sweeps - 1));
}

} // namespace sdc

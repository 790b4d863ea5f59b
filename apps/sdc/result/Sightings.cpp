#include "apps/sdc/result/Sightings.h"

#include "apps/sdc/result/Background.h"
#include "apps/sdc/result/ChannelSamples.h"
#include "apps/sdc/result/Floor.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace sdc {

namespace {

constexpr double alike = 2.0 * mostScatter; // hundredths of a dB between two readings of one level

/// One sweep under examination.
class Examined {
public:
    Examined(const std::vector<SDCResult>& trace, const terminal::ScanPlan& plan, const ReceiverData& receiver,
        std::optional<std::int32_t> threshold);

    bool isOn(std::size_t sample) const;
    Sighting sightingOf(const ChannelSamples& channel) const;
    double onAir_mW() const { return m_background.onAir_mW(); }

private:
    bool isCertain(std::size_t sample, const ChannelSamples& channel) const;
    bool isAfterglow(std::size_t sample) const;
    bool isInside(std::size_t sample, double centre_kHz) const;
    bool isOvershadowed(std::size_t sample, const ChannelSamples& channel) const;
    bool mayBeLeakOfUnseen(std::size_t sample) const;
    std::ptrdiff_t endOfLevel(std::ptrdiff_t sample, std::ptrdiff_t direction) const;
    bool fadesOut(std::ptrdiff_t end, std::ptrdiff_t direction) const;
    bool isInTrace(std::ptrdiff_t sample) const { return 0 <= sample && sample < std::ssize(m_trace); }
    std::int32_t levelAt(std::ptrdiff_t sample) const { return m_trace[static_cast<std::size_t>(sample)].rssi; }

    const std::vector<SDCResult>& m_trace;
    const terminal::ScanPlan& m_plan;
    const ReceiverData& m_receiver;
    const std::optional<std::int32_t> m_threshold;
    const Background m_background;
    std::int32_t m_lowest = 0;
};

Examined::Examined(const std::vector<SDCResult>& trace, const terminal::ScanPlan& plan, const ReceiverData& receiver,
    std::optional<std::int32_t> threshold)
    : m_trace(trace)
    , m_plan(plan)
    , m_receiver(receiver)
    , m_threshold(threshold)
    , m_background(trace, plan, receiver)
{
    for (const SDCResult& sample : trace) {
        m_lowest = std::min(m_lowest, sample.rssi);
    }
}

bool Examined::isOn(std::size_t sample) const
{
    const std::int32_t level = m_trace[sample].rssi;
    return m_threshold ? level > *m_threshold : level > m_background.under(level) + thresholdMargin;
}

bool Examined::isAfterglow(std::size_t sample) const
{
    const std::int32_t level = m_trace[sample].rssi;
    const double expected = m_background.under(level);
    const double before = sample == 0 ? 0.0 : std::max(m_trace[sample - 1].rssi - expected, 0.0);
    return level <= expected + thresholdMargin + m_background.lag() * before;
}

/// Where the level of a sample ends, going up or down: the first sample that is not alike, or the one past the trace.
std::ptrdiff_t Examined::endOfLevel(std::ptrdiff_t sample, std::ptrdiff_t direction) const
{
    std::ptrdiff_t end = sample;
    while (isInTrace(end) && std::abs(levelAt(end) - levelAt(sample)) <= alike) {
        end += direction;
    }
    return end;
}

/// Whether the level goes down by and by, as that of a wide emitter does where the filter leaves it. What begins or ends
/// while the receiver is under way does so from one sample to the next.
bool Examined::fadesOut(std::ptrdiff_t end, std::ptrdiff_t direction) const
{
    constexpr double fineSteps = 3.0; // in the width of the filter
    const std::ptrdiff_t inside = end - direction;
    const std::ptrdiff_t next = end + direction;
    return isInTrace(end) && isInTrace(next) && fineSteps * m_plan.step_kHz <= m_receiver.filterWidth_kHz
        && levelAt(end) < levelAt(inside) && levelAt(next) < levelAt(end) && isOn(static_cast<std::size_t>(next));
}

bool Examined::mayBeLeakOfUnseen(std::size_t sample) const
{
    constexpr double gapped = 1.5; // filter widths from one sample to the next
    const std::int32_t level = m_trace[sample].rssi;
    const bool isQuietSomewhere = m_lowest + 2.0 * alike < level;
    const bool hasGaps =
        m_plan.step_kHz > gapped * m_receiver.filterWidth_kHz && m_plan.step_kHz != m_plan.channelSpacing_kHz;
    const bool isNarrow = m_trace.size() <= 3; // those of a unit that scans its neighbours alone
    if (level > 100.0 * (m_receiver.saturation_dBm - m_receiver.ultimateRejection_dB) + alike
        || !(isQuietSomewhere || hasGaps || isNarrow)) {
        return false;
    }
    if (isNarrow) {
        return true;
    }
    const auto here = static_cast<std::ptrdiff_t>(sample);
    const std::ptrdiff_t low = endOfLevel(here, -1);
    const std::ptrdiff_t high = endOfLevel(here, 1);
    const double apart = std::max<double>(m_receiver.filterWidth_kHz, m_plan.channelSpacing_kHz) / m_plan.step_kHz;
    const auto farthest = static_cast<double>(std::max(high - 1 - here, here - low - 1));
    return farthest >= apart && !fadesOut(low, -1) && !fadesOut(high, 1);
}

/// Whether the filter takes in nothing but the channel.
bool Examined::isInside(std::size_t sample, double centre_kHz) const
{
    const double reach_kHz = std::abs(m_trace[sample].frequency_kHz - centre_kHz) + m_receiver.filterWidth_kHz / 2.0;
    return 2.0 * reach_kHz <= m_plan.channelSpacing_kHz;
}

/// Of two samples that are equally near to the centre, the one next to something much stronger.
bool Examined::isOvershadowed(std::size_t sample, const ChannelSamples& channel) const
{
    const double centre_kHz = centreOf_kHz(channel.offset, m_plan);
    const bool isBelow = m_trace[sample].frequency_kHz < centre_kHz;
    if (channel.count < 2 || isInside(sample, centre_kHz) || m_trace[sample].frequency_kHz == centre_kHz
        || (isBelow ? sample == 0 : sample + 1 == m_trace.size())) {
        return false;
    }
    return m_trace[isBelow ? sample - 1 : sample + 1].rssi > m_trace[sample].rssi + thresholdMargin;
}

bool Examined::isCertain(std::size_t sample, const ChannelSamples& channel) const
{
    const bool isSeen = 4.0 * channel.distance_kHz <= m_plan.channelSpacing_kHz;
    if (!isOn(sample) || !(isSeen || isInside(sample, centreOf_kHz(channel.offset, m_plan)))) {
        return false;
    }
    return m_threshold || !(isOvershadowed(sample, channel) || isAfterglow(sample) || mayBeLeakOfUnseen(sample));
}

Sighting Examined::sightingOf(const ChannelSamples& channel) const
{
    Sighting sighting{.offset = channel.offset};
    for (std::size_t sample = channel.first; sample < channel.first + channel.count; ++sample) {
        sighting.isOn = sighting.isOn || (isOn(sample) && (m_threshold || !isOvershadowed(sample, channel)));
        if (isCertain(sample, channel)) {
            sighting.strongest = std::max(sighting.strongest.value_or(m_trace[sample].rssi), m_trace[sample].rssi);
        }
    }
    return sighting;
}

} // namespace

Sightings::Sightings(const std::vector<SDCResult>& trace, const terminal::ScanPlan& plan, const ReceiverData& receiver,
    std::optional<std::int32_t> threshold)
{
    const Examined sweep(trace, plan, receiver, threshold);
    m_onAir_mW = sweep.onAir_mW();
    for (const ChannelSamples& channel : channelSamples(trace, plan, receiver)) {
        m_channels.push_back(sweep.sightingOf(channel));
    }
    for (std::size_t sample = 0; sample < trace.size(); ++sample) {
        m_samplesOn += sweep.isOn(sample) ? 1U : 0U;
    }
}

} // namespace sdc

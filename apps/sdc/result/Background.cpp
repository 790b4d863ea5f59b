#include "apps/sdc/result/Background.h"

#include "apps/sdc/result/Floor.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace sdc {

namespace {

constexpr double slowest_ms = 200.0; // time constant of receivers that have one
constexpr double audible = 1000.0;   // hundredths of a dB, from which on a fall tells of it

/// The lowest level that does not follow a much higher one: a receiver that lags shows no lower one than there is.
double lowestSettled(const std::vector<SDCResult>& trace)
{
    double lowest = std::numeric_limits<double>::infinity();
    for (std::size_t index = 0; index < trace.size(); ++index) {
        if (index == 0 || trace[index - 1].rssi < trace[index].rssi + audible) {
            lowest = std::min<double>(lowest, trace[index].rssi);
        }
    }
    return lowest;
}

} // namespace

Background::Background(const std::vector<SDCResult>& trace, const terminal::ScanPlan& plan, const ReceiverData& receiver)
    : m_receiver(receiver)
    , m_perSample(receiver.filterWidth_kHz > 0.0 ? plan.step_kHz / receiver.filterWidth_kHz : 0.0)
    , m_mostLeak_mW(std::numeric_limits<double>::infinity())
{
    if (!trace.empty()) {
        // The lowest of many readings lies below the level that it is a reading of.
        const auto lowest = std::min_element(trace.begin(), trace.end(),
            [](const SDCResult& left, const SDCResult& right) { return left.rssi < right.rssi; });
        m_mostLeak_mW = std::max(milliwatts(lowest->rssi + 2.0 * mostScatter) - noise_mW(receiver), 0.0);
    }
    m_onAir_mW = onAir_mW(trace);
    m_leastOnAir_mW = m_onAir_mW / std::max(m_perSample, 1.0);
    m_lag = lagIn(trace, plan);
    m_onAir_mW = onAir_mW(trace);
}

Background Background::sometimes(double onAir_mW) const
{
    Background other = *this;
    other.m_onAir_mW = onAir_mW;
    other.m_mostLeak_mW = std::numeric_limits<double>::infinity();
    return other;
}

double Background::heard_mW(double level) const
{
    return std::max(power_mW(level, m_receiver) - noise_mW(m_receiver), 0.0);
}

/// A slow receiver has not yet come up to a peak.
double Background::onAir_mW(const std::vector<SDCResult>& trace) const
{
    const double halfSaturated = 100.0 * m_receiver.saturation_dBm - 301.0;
    double sum_mW = 0.0;
    for (std::size_t index = 0; index < trace.size(); ++index) {
        const double level = trace[index].rssi;
        const double rise = index == 0 ? 0.0 : std::max(level - trace[index - 1].rssi, 0.0);
        const double mostOvertaken = std::max(level, halfSaturated);
        sum_mW += heard_mW(std::min(level + rise * m_lag / (1.0 - m_lag), mostOvertaken)) * m_perSample;
    }
    return sum_mW;
}

double Background::lagIn(const std::vector<SDCResult>& trace, const terminal::ScanPlan& plan) const
{
    constexpr double tolerance = 2.0 * mostScatter;
    double most = std::exp(-static_cast<double>(plan.setRxWait_ms) / slowest_ms);
    const double lowest = lowestSettled(trace);
    for (std::size_t index = 1; index < trace.size(); ++index) {
        const double floor = std::max(under(trace[index].rssi), lowest);
        const double before = trace[index - 1].rssi - floor;
        const double here = std::max(trace[index].rssi - floor, 0.0) + tolerance;
        if (before >= audible) {
            most = std::min(most, here / before);
        }
    }
    return most;
}

double Background::withLeakOf(double onAir_mW, std::int32_t level) const
{
    const double outside_mW = std::max(onAir_mW - heard_mW(level), 0.0);
    const double leak_mW = outside_mW * milliwatts(-100.0 * m_receiver.ultimateRejection_dB);
    return readingOf(noise_mW(m_receiver) + std::min(leak_mW, m_mostLeak_mW));
}

double Background::noise() const
{
    return readingOf(noise_mW(m_receiver));
}

} // namespace sdc

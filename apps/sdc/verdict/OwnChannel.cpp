#include "apps/sdc/verdict/OwnChannel.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"
#include "apps/sdc/result/Sanity.h"
#include "apps/sdc/result/Survey.h"
#include "apps/sdc/result/Sweep.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace sdc {

namespace {

/// Noise figures are known to some tenths of a dB, and so are rejections.
constexpr double uncertain = 50.0;

constexpr double highestReading = 0.0; ///< none is higher

constexpr double surely = 3.3; ///< standard deviations, exceeded in one case of two thousand

} // namespace

TraceKind traceOf(OwnLevel level)
{
    return level == &OwnReading::mean ? TraceKind::average : TraceKind::max;
}

OwnChannel::OwnChannel(const ChannelResult& channel)
    : m_channel(channel)
    , m_scatter(scatterOf(channel.survey))
{
    const std::vector<Spread> spreads = channel.survey.spreads();
    look(spreads);
    m_mostLag = lagSeen(spreads);
}

void OwnChannel::look(const std::vector<Spread>& spreads)
{
    constexpr std::size_t fewSamples = 5;
    for (const Spread& spread : spreads) {
        const double offset_kHz = spread.frequency_kHz - centre_kHz();
        const double away_kHz = std::abs(offset_kHz);
        const bool isOwn = away_kHz <= width_kHz() / 2.0;
        m_isSeenFromBeside = m_isSeenFromBeside || away_kHz >= 0.75 * width_kHz();
        m_tunings += isOwn ? 1 : 0;
        m_count += isOwn ? spread.readings : 0;
        m_all.push_back({offset_kHz, spread.mean, static_cast<double>(spread.max), static_cast<double>(spread.min),
            spread.readings, isOwn});
        if (away_kHz <= reach_kHz()) {
            m_readings.push_back(m_all.back());
        }
    }
    m_isSeenFromBeside = m_isSeenFromBeside && spreads.size() >= fewSamples
        && std::ranges::none_of(m_all, [this](const OwnReading& reading) { return isReachedUnseen(reading); });
}

/// Whether a reading takes in something of a channel beside, over which the scan stepped.
bool OwnChannel::isReachedUnseen(const OwnReading& reading) const
{
    constexpr double hardly = 0.05;
    constexpr double near = 0.6;
    const double beside_kHz = std::copysign(width_kHz(), reading.offset_kHz);
    const double reachesOut_kHz = std::abs(reading.offset_kHz) + (filterWidth_kHz() - width_kHz()) / 2.0;
    return reading.isOwn && reachesOut_kHz > hardly * width_kHz() && m_all.front().offset_kHz < beside_kHz
        && beside_kHz < m_all.back().offset_kHz && std::ranges::none_of(m_all, [&](const OwnReading& other) {
               return !other.isOwn && std::abs(other.offset_kHz - beside_kHz) <= near * width_kHz();
           });
}

double OwnChannel::reach_kHz() const
{
    return std::max(width_kHz(), width_kHz() / 2.0 + filterWidth_kHz() / 2.0);
}

Leakage OwnChannel::leakage(TraceKind kind) const
{
    return {receiver(), m_channel.plan, m_channel.survey.trace(kind)};
}

Leakage OwnChannel::leakageSettled(TraceKind kind) const
{
    std::vector<SDCResult> trace = m_channel.survey.trace(kind);
    for (std::size_t index = trace.size(); index-- > 1;) {
        const double settled = risenTo(trace[index].rssi, trace[index - 1].rssi);
        trace[index].rssi = static_cast<std::int32_t>(std::min(settled, highestReading));
    }
    return {receiver(), m_channel.plan, trace};
}

/// What a reading would be had a slow receiver come to rest, where it rose.
double OwnChannel::risenTo(double reading, double before) const
{
    return before < reading ? (reading - m_mostLag * before) / (1.0 - m_mostLag) : reading;
}

double OwnChannel::noise_mW() const
{
    return milliwatts(readingOf(sdc::noise_mW(receiver())));
}

std::size_t OwnChannel::sweeps() const
{
    std::size_t sweeps = 1;
    for (const OwnReading& reading : m_readings) {
        sweeps = std::max(sweeps, reading.readings);
    }
    return sweeps;
}

bool OwnChannel::isSlow() const
{
    constexpr double notSlow = 0.05;
    return m_mostLag > notSlow;
}

std::vector<double> OwnChannel::lags() const
{
    std::vector<double> lags{0.0};
    for (int quarter = 1; quarter <= 4 && isSlow() && m_readings.size() > 1; ++quarter) {
        lags.push_back(quarter / 4.0 * m_mostLag);
    }
    return lags;
}

double OwnChannel::marginOfMax() const
{
    return uncertain + extremeOf(m_count) * m_scatter;
}

double OwnChannel::marginOfMean(std::size_t readings) const
{
    return 200.0 + surely * m_scatter / std::sqrt(static_cast<double>(readings));
}

double OwnChannel::most_mW(OwnLevel level, const std::function<double(double)>& share, bool mustBeSeen) const
{
    constexpr double leastShare = 0.02;
    constexpr double wellSeen = 0.2;
    constexpr double unlike = 200.0;
    bool isSeen = false;
    double most_mW = std::numeric_limits<double>::infinity();
    for (std::size_t index = 0; index < m_all.size(); ++index) {
        const OwnReading& reading = m_all[index];
        const double part = share(reading.offset_kHz);
        if (part >= leastShare) {
            const double read = index == 0 ? reading.*level : risenTo(reading.*level, m_all[index - 1].*level);
            isSeen = isSeen || (!reading.isOwn && part > wellSeen);
            most_mW = std::min(most_mW, power_mW(std::min(read + unlike, highestReading), receiver()) / part);
        }
    }
    return isSeen || !mustBeSeen ? most_mW : 0.0;
}

/// A receiver that lags still shows a part of the reading before, in dB.
Profile OwnChannel::profileOf(OwnLevel level, double lag) const
{
    constexpr double unlike = 25.0; // what no emitter is like to the ideal
    Profile profile;
    for (std::size_t index = 0; index < m_readings.size(); ++index) {
        const OwnReading& reading = m_readings[index];
        const double settled =
            index == 0 ? reading.*level : (reading.*level - lag * (m_readings[index - 1].*level)) / (1.0 - lag);
        const double read = std::clamp(settled, static_cast<double>(lowestReading), highestReading);
        const double unsaturated = levelOf(power_mW(read, receiver()));
        const double scatter =
            level == &OwnReading::mean ? m_scatter / std::sqrt(static_cast<double>(reading.readings)) : m_scatter;
        profile.push_back({reading.offset_kHz, unsaturated, std::hypot(scatter * milliwatts(unsaturated - read), unlike)});
    }
    return profile;
}

Readings OwnChannel::fromSweepToSweep() const
{
    constexpr double withGuard = 0.6;
    double nearest_kHz = width_kHz();
    for (const OwnReading& reading : m_readings) {
        nearest_kHz = std::min(nearest_kHz, std::abs(reading.offset_kHz));
    }
    const double farthest_kHz = std::max(nearest_kHz, withGuard * width_kHz() - filterWidth_kHz() / 2.0);
    return fromSweepToSweepWithin(std::min(farthest_kHz, width_kHz() / 2.0));
}

Readings OwnChannel::aroundFromSweepToSweep() const
{
    return fromSweepToSweepWithin(reach_kHz());
}

Readings OwnChannel::fromSweepToSweepWithin(double away_kHz) const
{
    return readingsOf(m_channel.survey.recent(), [&](const Sample& sample) {
        return isLevel(sample, receiver()) && std::abs(sample.frequency_kHz - centre_kHz()) <= away_kHz;
    });
}

/// Time constants of 200 ms occur, but seldom more than this; units that wait for long have receivers that need it. After
/// each fall the trace shows how much of it may have been left.
double OwnChannel::lagSeen(const std::vector<Spread>& spreads) const
{
    constexpr double slowest_ms = 150.0;
    constexpr double leastLag = 0.007;
    constexpr double deepFall = 1500.0;
    const double quiet = readingOf(noise_mW());
    double lag = std::max(std::exp(-static_cast<double>(m_channel.plan.setRxWait_ms) / slowest_ms), leastLag);
    for (std::size_t index = 1; index < spreads.size(); ++index) {
        const double before = spreads[index - 1].mean - quiet;
        const double left = std::max(spreads[index].mean - quiet, 0.0) + m_scatter;
        const bool isOwn = std::abs(spreads[index].frequency_kHz - centre_kHz()) <= width_kHz() / 2.0;
        lag = !isOwn && before > deepFall ? std::min(lag, left / before) : lag;
    }
    return lag;
}

} // namespace sdc

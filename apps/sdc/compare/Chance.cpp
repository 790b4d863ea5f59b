#include "apps/sdc/compare/Chance.h"

#include "apps/sdc/result/Floor.h"
#include "apps/sdc/result/Sweep.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace sdc {

namespace {

/// What a normal deviate exceeds with a probability.
double deviateOf(double probability)
{
    double low = -40.0; // beyond, probabilities are no numbers any more
    double high = 40.0;
    for (int halving = 0; halving < 60; ++halving) {
        const double middle = (low + high) / 2.0;
        (std::erfc(middle / std::numbers::sqrt2) / 2.0 > probability ? low : high) = middle;
    }
    return (low + high) / 2.0;
}

/// What the maximum of so many normal deviates stays below with a probability, given as its logarithm.
double maximumBelow(double logarithm, std::size_t readings)
{
    return deviateOf(-std::expm1(logarithm / static_cast<double>(readings)));
}

/// How many readings a scan's scatter is as well known by as by the mean of their squares. A median knows less than half of
/// that. Where readings end at the lowest, what is left of them scatters less than all did: it tells nothing.
double weightOf(const ChannelResult& channel)
{
    constexpr double worthOfMedian = 0.37;
    constexpr double mostCutOff = 0.1; // of the frequencies
    const std::vector<Hold> holds = channel.survey.holds();
    double repeated = 0.0;
    double cutOff = 0.0;
    for (const Hold& hold : holds) {
        repeated += static_cast<double>(hold.readings - 1);
        cutOff += hold.min <= lowestReading ? 1.0 : 0.0;
    }
    const auto count = static_cast<double>(holds.size());
    return cutOff > mostCutOff * count ? 0.0 : worthOfMedian * (repeated > 0.0 ? repeated : count / 2.0);
}

double square(double value)
{
    return value * value;
}

} // namespace

Reach reachOf(TraceKind kind, std::size_t readings, double scatter_dB, double risk)
{
    if (kind == TraceKind::average) {
        constexpr double perDecibel = std::numbers::ln10 / 20.0; // mean power of levels that scatter lies above their mean
        const auto count = static_cast<double>(readings);
        const double likely = perDecibel * square(scatter_dB) * (1.0 - 1.0 / count);
        const double spread = deviateOf(risk) * scatter_dB / std::sqrt(count);
        return {likely - spread, likely, likely + spread};
    }
    const double least = scatter_dB * maximumBelow(std::log(risk), readings);
    const double likely = scatter_dB * maximumBelow(std::log(0.5), readings);
    const double most = scatter_dB * maximumBelow(std::log1p(-risk), readings);
    return kind == TraceKind::max ? Reach{least, likely, most} : Reach{-most, -likely, -least};
}

Tolerance toleranceOf(const Reach& before, const Reach& after, std::size_t places)
{
    const double likely = after.likely - before.likely;
    const double share = 1.0 / std::sqrt(static_cast<double>(places));
    const double down = share * std::hypot(after.likely - after.least, before.most - before.likely);
    const double up = share * std::hypot(after.most - after.likely, before.likely - before.least);
    return {std::min(likely - down, -leastTolerance_dB), std::max(likely + up, leastTolerance_dB)};
}

/// What is not known counts as so many readings of the most that receivers have.
double scatterOf(const ChannelResult& before, const ChannelResult& after)
{
    constexpr double weightOfUnknown = 10.0;
    double sum = weightOfUnknown * square(mostScatter);
    double weight = weightOfUnknown;
    for (const ChannelResult* const channel : {&before, &after}) {
        sum += weightOf(*channel) * square(scatterOf(channel->survey));
        weight += weightOf(*channel);
    }
    return std::sqrt(sum / weight) / 100.0;
}

} // namespace sdc

#include "tests/judge/trial/RandomSite.h"

#include "Platform/Radio/IRadioCapability.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace judge {

namespace {

using simulator::Link;

/// As it is written with so many parts to a whole, such as 10 for one decimal.
double rounded(double value, double parts)
{
    return std::round(value * parts) / parts;
}

/// The raster, and the slice of it that is the receive range.
void chooseChannels(Dice& dice, Site& site)
{
    site.plan = dice.pick(channelPlans());
    const std::uint32_t parts = 1U << dice.between(0, site.plan.halvings);
    const std::uint32_t spacing_kHz = site.plan.spacing_kHz / parts;
    const std::uint32_t all = site.plan.channels * parts;
    constexpr double narrowest_kHz = 40000.0;
    constexpr double widest_kHz = 500000.0;
    const double width_kHz = dice.logUniform(narrowest_kHz, widest_kHz);
    const auto wanted = static_cast<std::uint32_t>(width_kHz / spacing_kHz);
    site.channels = std::min(std::max(wanted, 4U), all);
    const auto lowest = static_cast<std::uint32_t>(dice.between(0, all - site.channels));
    const std::uint32_t lowestEdge_kHz = site.plan.first_kHz - site.plan.spacing_kHz / 2;
    site.first_kHz = lowestEdge_kHz + spacing_kHz / 2 + lowest * spacing_kHz;
    site.own = static_cast<std::uint32_t>(dice.between(0, site.channels - 1));
    site.link.channelSpacing_kHz = spacing_kHz;
    site.link.rxFrequency_kHz = site.first_kHz + site.own * spacing_kHz;
}

/// Edge to edge, and some more where the half of the band has it.
void chooseReceiveRange(Dice& dice, Site& site)
{
    constexpr std::uint32_t step_kHz = 250;
    constexpr std::uint32_t base_kHz = 1000000;
    const std::uint32_t spacing_kHz = site.spacing_kHz();
    const auto more_kHz = static_cast<std::uint32_t>(dice.between(0, spacing_kHz / 2));
    const std::uint32_t low_kHz = site.first_kHz - spacing_kHz / 2;
    const std::uint32_t high_kHz = low_kHz + site.channels * spacing_kHz;
    RadioFrequencyParameters& parameters = site.link.frequencyParameters;
    parameters.frequencyBand_GHz = site.plan.band_GHz;
    parameters.minRxFrequency_kHz = std::min(std::max(low_kHz - more_kHz, site.plan.lowest_kHz), low_kHz);
    parameters.maxRxFrequency_kHz = std::max(std::min(high_kHz + more_kHz, site.plan.highest_kHz), high_kHz);
    parameters.rxBaseFrequency_kHz = parameters.minRxFrequency_kHz / base_kHz * base_kHz;
    parameters.frequencyStepSize_kHz = step_kHz;
    parameters.stepLimitLow = (parameters.minRxFrequency_kHz - parameters.rxBaseFrequency_kHz + step_kHz - 1) / step_kHz;
    parameters.stepLimitHigh = (parameters.maxRxFrequency_kHz - parameters.rxBaseFrequency_kHz) / step_kHz;
}

void chooseUnit(Dice& dice, Site& site)
{
    constexpr std::string_view units[] = {"QRU7 K", "4741", "KLM", "KLM6", "SDC", "4742", "4743", "KLM5", "KLM6 P"};
    site.link.unitTypeText = fmt::format("{} {}G", dice.pick(units), site.plan.band_GHz);
    site.link.properties.longHaul = dice.happens(0.15) ? 1 : 0;
    site.link.properties.slowRxWait = dice.happens(0.15) ? 1 : 0;
    site.link.properties.extendedRxWait = dice.happens(0.03) ? 1 : 0;
}

double filterWidth_kHz(Dice& dice, double spacing_kHz)
{
    if (dice.happens(0.6)) {
        return spacing_kHz;
    }
    const double share = dice.happens(0.3) ? dice.uniform(1.0, 1.15)
        : dice.happens(0.6)                ? dice.uniform(0.5, 1.0)
                                           : dice.uniform(0.1, 0.5);
    return std::max(50.0 * std::round(share * spacing_kHz / 50.0), 500.0);
}

void chooseReceiver(Dice& dice, Link& link)
{
    link.filterWidth_kHz = filterWidth_kHz(dice, link.channelSpacing_kHz);
    link.noiseFigure_dB = rounded(dice.uniform(4.0, 10.0), 10.0);
    link.jitter_dB = rounded(dice.uniform(0.3, 1.0), 100.0);
    link.ultimateRejection_dB = rounded(dice.uniform(50.0, 60.0), 10.0);
    link.saturation_dBm = -20.0;
    link.settlingTime_ms = dice.happens(0.7) ? 30.0 : std::round(dice.logUniform(30.0, 200.0));
}

} // namespace

Site randomSite(Dice& dice)
{
    Site site;
    chooseChannels(dice, site);
    chooseReceiveRange(dice, site);
    chooseUnit(dice, site);
    chooseReceiver(dice, site.link);
    return site;
}

} // namespace judge

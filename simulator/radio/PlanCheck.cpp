#include "simulator/radio/LinkChecks.h"

#include "Platform/Radio/IRadioCapability.h"

#include <algorithm>

// A controller plans in unsigned words that wrap and tests nothing. Everything here is calculated wide enough not to.

namespace simulator {

namespace {

using Wide = std::int64_t;

constexpr Wide mostSamples = 1000000;

/// Margin to the ends of a range, and step within it.
struct Grain {
    Wide margin_kHz;
    Wide step_kHz;
};
constexpr Grain fine{1000, 2000};
constexpr Grain coarse{5000, 10000};

bool isUpperBand(const PlanInputs& inputs)
{
    constexpr std::uint32_t lowestUpperBand_GHz = 43;
    return inputs.parameters.frequencyBand_GHz >= lowestUpperBand_GHz;
}

/// Word of the radio as a figure of a message.
double figure(Wide value)
{
    return static_cast<double>(value);
}

/// The plans look beyond the range: down by a margin, up by a margin and a step, and to both sides by a channel.
std::optional<Complaint> checkReceive(const PlanInputs& inputs)
{
    const double lowest_kHz = inputs.parameters.minRxFrequency_kHz;
    const double highest_kHz = inputs.parameters.maxRxFrequency_kHz;
    const double least_kHz = figure(coarse.margin_kHz);
    const double most_kHz = largestWord - figure(coarse.step_kHz);
    if (lowest_kHz > highest_kHz) {
        return complaint(
            "receive_kHz.lowest", wrongWayRound("lowest receive frequency", lowest_kHz, "highest", highest_kHz, " kHz"));
    }
    if (auto why = complaint(
            "receive_kHz.lowest", outOfRange({"lowest receive frequency", lowest_kHz, least_kHz, most_kHz, " kHz"}))) {
        return why;
    }
    if (auto why = complaint(
            "receive_kHz.highest", outOfRange({"highest receive frequency", highest_kHz, least_kHz, most_kHz, " kHz"}))) {
        return why;
    }
    const double configured_kHz = inputs.configured_kHz;
    return complaint("receive_kHz.configured",
        outOfRange({"configured receive frequency", configured_kHz, lowest_kHz, highest_kHz, " kHz"}));
}

std::optional<Complaint> checkSpacing(const PlanInputs& inputs)
{
    const double lowest_kHz = inputs.parameters.minRxFrequency_kHz;
    const double roomAbove_kHz = largestWord - inputs.parameters.maxRxFrequency_kHz;
    const double spacing_kHz = inputs.spacing_kHz;
    return complaint(
        "channel_spacing_kHz", outOfRange({"channel spacing", spacing_kHz, 1, std::min(lowest_kHz, roomAbove_kHz), " kHz"}));
}

/// A sweep of the whole raster must find every step tunable.
std::optional<Complaint> checkRaster(const PlanInputs& inputs)
{
    const RadioFrequencyParameters& parameters = inputs.parameters;
    const double step_kHz = parameters.frequencyStepSize_kHz;
    const double lowest_kHz = parameters.minRxFrequency_kHz;
    const double highest_kHz = parameters.maxRxFrequency_kHz;
    const auto frequencyOf = [&](double index) { return parameters.rxBaseFrequency_kHz + step_kHz * index; };
    if (auto why = complaint("raster.step_kHz", outOfRange({"raster step", step_kHz, 1, largestWord, " kHz"}))) {
        return why;
    }
    if (parameters.stepLimitLow > parameters.stepLimitHigh) {
        return complaint("raster.lowest_step",
            wrongWayRound("lowest raster step", parameters.stepLimitLow, "highest", parameters.stepLimitHigh, ""));
    }
    const Quantity first{
        "frequency of the lowest raster step", frequencyOf(parameters.stepLimitLow), lowest_kHz, highest_kHz, " kHz"};
    if (auto why = complaint("raster.lowest_step", outOfRange(first))) {
        return why;
    }
    const Quantity last{
        "frequency of the highest raster step", frequencyOf(parameters.stepLimitHigh), lowest_kHz, highest_kHz, " kHz"};
    return complaint("raster.highest_step", outOfRange(last));
}

std::string tooManySamples(const char* sweep, Wide samples)
{
    if (samples <= mostSamples) {
        return {};
    }
    return std::string("a sweep ") + sweep + " would take " + number(figure(samples)) + " samples; it must take at most "
        + number(figure(mostSamples));
}

/// The lower margin is rounded down to the raster, the upper one is not.
std::optional<Complaint> checkSubBandSweep(const PlanInputs& inputs, const Grain& grain)
{
    const Wide raster_kHz = inputs.parameters.frequencyStepSize_kHz;
    const Wide rasterSteps = Wide{inputs.parameters.stepLimitHigh} - inputs.parameters.stepLimitLow;
    const Wide margins_kHz = grain.margin_kHz / raster_kHz * raster_kHz + grain.margin_kHz;
    const Wide span_kHz = raster_kHz * rasterSteps;
    if (span_kHz < margins_kHz) {
        return complaint("raster.highest_step",
            "the raster spans " + number(figure(span_kHz)) + " kHz; it must span at least " + number(figure(margins_kHz))
                + " kHz, the margins that a sweep keeps to its ends");
    }
    const Wide samples = (span_kHz - margins_kHz) / grain.step_kHz + 1;
    return complaint("raster.highest_step", tooManySamples("of the raster", samples));
}

/// The channels on either side of the configured one that lie within the range.
std::optional<Complaint> checkSweepOfChannels(const PlanInputs& inputs)
{
    const Wide spacing_kHz = inputs.spacing_kHz;
    const Wide below_kHz = inputs.configured_kHz - (inputs.parameters.minRxFrequency_kHz + spacing_kHz / 2);
    const Wide above_kHz = inputs.parameters.maxRxFrequency_kHz - spacing_kHz / 2 - inputs.configured_kHz;
    const Wide channels = 1 + std::max<Wide>(below_kHz, 0) / spacing_kHz + std::max<Wide>(above_kHz, 0) / spacing_kHz;
    return complaint("channel_spacing_kHz", tooManySamples("from channel to channel", channels));
}

/// Where a sweep across the configured channel ends, if above that channel's centre. A spacing of 7000 kHz has half the fine
/// step, and a step more.
Wide endOfChannelSweep(const PlanInputs& inputs, const Grain& grain)
{
    const bool isOdd = inputs.spacing_kHz == 7000;
    const Wide half_kHz = inputs.spacing_kHz / 2;
    const Wide margin_kHz = grain.margin_kHz;
    const Wide step_kHz = isOdd && grain.step_kHz == fine.step_kHz ? fine.step_kHz / 2 : grain.step_kHz;
    const Wide lowest_kHz = inputs.parameters.minRxFrequency_kHz;
    const Wide configured_kHz = inputs.configured_kHz;
    const bool hasRoomBelow = configured_kHz >= lowest_kHz + margin_kHz + half_kHz;
    const Wide begin_kHz =
        hasRoomBelow ? configured_kHz + margin_kHz - half_kHz : lowest_kHz + (isOdd ? margin_kHz / 2 : margin_kHz);
    const Wide limit_kHz =
        std::min(inputs.parameters.maxRxFrequency_kHz - margin_kHz, configured_kHz + half_kHz - margin_kHz);
    const Wide end_kHz = begin_kHz + std::max<Wide>(limit_kHz - begin_kHz, 0) / step_kHz * step_kHz;
    return isOdd && end_kHz > configured_kHz ? end_kHz + step_kHz : end_kHz;
}

/// A channel narrower than the margins is swept beside itself. How many samples there are need not be tested: as much room
/// as is left for the spacing leaves none for a million steps.
std::optional<Complaint> checkChannelSweep(const PlanInputs& inputs, const Grain& grain)
{
    const double highest_kHz = inputs.parameters.maxRxFrequency_kHz;
    const double end_kHz = figure(endOfChannelSweep(inputs, grain));
    if (end_kHz <= highest_kHz) {
        return std::nullopt;
    }
    return complaint("channel_spacing_kHz",
        "a sweep across the configured channel would end at " + number(end_kHz) + " kHz; it must not end above "
            + number(highest_kHz) + " kHz, the highest receive frequency");
}

/// A long-haul radio is swept coarsely over its raster and finely over a channel, another one as its band has it.
std::optional<Complaint> checkSweeps(const PlanInputs& inputs)
{
    const Grain& ofBand = isUpperBand(inputs) ? coarse : fine;
    const Grain& ofRaster = inputs.mayBeLongHaul ? coarse : ofBand;
    const Grain& ofChannel = inputs.mayBeLongHaul ? fine : ofBand;
    for (const Grain* grain : {&ofBand, &ofRaster}) {
        if (auto why = checkSubBandSweep(inputs, *grain)) {
            return why;
        }
    }
    for (const Grain* grain : {&ofBand, &ofChannel}) {
        if (auto why = checkChannelSweep(inputs, *grain)) {
            return why;
        }
    }
    return checkSweepOfChannels(inputs);
}

} // namespace

std::optional<Complaint> checkPlans(const PlanInputs& inputs)
{
    for (const auto check : {checkReceive, checkSpacing, checkRaster, checkSweeps}) {
        if (auto why = check(inputs)) {
            return why;
        }
    }
    return std::nullopt;
}

} // namespace simulator

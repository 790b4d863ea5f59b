#include "simulator/radio/Link.h"

#include "simulator/radio/emitters/Limits.h"
#include "simulator/radio/emitters/Recording.h"
#include "support/Errors.h"

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <utility>
#include <variant>

// A controller plans in unsigned words that wrap and tests nothing. The limits and rules here keep all that it adds and
// multiplies within a word, and all that it counts below a million, whatever it plans.

namespace simulator {

namespace {

using support::integer;
using support::number;
using support::optional;
using support::through;
using support::whole;
using support::Wrong;
using Parameters = RadioFrequencyParameters;

constexpr std::int64_t lowestRx_kHz = 1000000;
constexpr std::int64_t highestRx_kHz = 1000000000;
constexpr std::int64_t widest_kHz =
    1000000; ///< step or spacing; no more than the lowest frequency, so it can be taken from it
constexpr std::int64_t leastSpan_kHz = 10000; ///< of a raster, within which a sweep keeps a distance from both ends
constexpr std::int64_t mostChannels = 1000000;

support::IntegerSpec rxFrequency()
{
    return integer(lowestRx_kHz, highestRx_kHz, "kHz");
}

std::string fromTo(std::int64_t lowest, std::int64_t highest)
{
    return "from " + std::to_string(lowest) + " to " + std::to_string(highest) + " kHz";
}

std::optional<Wrong> configuredOutside(const Link& link, std::int64_t configured_kHz, const std::string& path)
{
    const Parameters& parameters = link.frequencyParameters;
    if (parameters.minRxFrequency_kHz <= configured_kHz && configured_kHz <= parameters.maxRxFrequency_kHz) {
        return std::nullopt;
    }
    return Wrong{path,
        "is " + std::to_string(configured_kHz) + " kHz; must be "
            + fromTo(parameters.minRxFrequency_kHz, parameters.maxRxFrequency_kHz) + ", the receive range"};
}

std::optional<Wrong> spacingUnfit(const Link& link, std::int64_t spacing_kHz, const std::string& path)
{
    const Parameters& parameters = link.frequencyParameters;
    const std::int64_t span_kHz = std::int64_t{parameters.maxRxFrequency_kHz} - parameters.minRxFrequency_kHz;
    const std::int64_t least_kHz = span_kHz / mostChannels + 1;
    if (least_kHz <= spacing_kHz && spacing_kHz <= widest_kHz) {
        return std::nullopt;
    }
    return Wrong{path,
        "is " + std::to_string(spacing_kHz) + " kHz; must be " + fromTo(least_kHz, widest_kHz)
            + ": at most a million channels in the receive range"};
}

const support::Record<Link>& receiveRecord()
{
    constexpr auto parameters = &Link::frequencyParameters;
    static const support::Record<Link> record{"receive_kHz", "receive frequencies",
        {
            {"lowest", through(parameters, &Parameters::minRxFrequency_kHz), rxFrequency(),
                "lowest receive frequency of the sub-band"},
            {"highest", through(parameters, &Parameters::maxRxFrequency_kHz), rxFrequency(),
                "highest receive frequency of the sub-band"},
            {"configured", &Link::rxFrequency_kHz, rxFrequency(), "where the receiver stands between scans"},
        },
        {
            [](const Link& link) {
                const Parameters& range = link.frequencyParameters;
                return support::notAbove("lowest", range.minRxFrequency_kHz, range.maxRxFrequency_kHz);
            },
            [](const Link& link) { return configuredOutside(link, link.rxFrequency_kHz, "configured"); },
        }};
    return record;
}

const support::Record<Parameters>& rasterRecord()
{
    static const support::Record<Parameters> record{"raster", "the synthesizer's frequencies: base_kHz + step * step_kHz",
        {
            {"base_kHz", &Parameters::rxBaseFrequency_kHz, integer(0, highestRx_kHz, "kHz"), "frequency of step 0"},
            {"step_kHz", &Parameters::frequencyStepSize_kHz, integer(1, widest_kHz, "kHz"), "from one step to the next"},
            {"lowest_step", &Parameters::stepLimitLow, integer(0, highestRx_kHz), "lowest step that can be tuned to"},
            {"highest_step", &Parameters::stepLimitHigh, integer(0, highestRx_kHz), "highest step that can be tuned to"},
        },
        {[](const Parameters& raster) {
            return support::notAbove("lowest_step", raster.stepLimitLow, raster.stepLimitHigh);
        }}};
    return record;
}

const support::Record<SDCProperties>& propertiesRecord()
{
    using support::flag;
    static const support::Record<SDCProperties> record{"properties", "spectrum diagnostics properties",
        {
            {"long_haul", &SDCProperties::longHaul, flag(), "the unit is a long-haul one: other scan ranges and steps",
                optional},
            {"extended_rx_wait", &SDCProperties::extendedRxWait, flag(), "each reading waits 60 s for the receiver",
                optional},
            {"slow_rx_wait", &SDCProperties::slowRxWait, flag(), "each reading but the first waits 2 s for the receiver",
                optional},
            {"spare_flag", &SDCProperties::spareFlag, flag(), "the unit's own, handed through", optional},
        }};
    return record;
}

const support::Record<Link>& receiverRecord()
{
    static const support::Record<Link> record{"receiver", "the receiver",
        {
            {"filter_kHz", &Link::filterWidth_kHz, width_kHz(), "width of the receive filter"},
            {"noise_figure_dB", &Link::noiseFigure_dB, number(0, 50, "dB"), "noise figure; 4 to 10 typical"},
            {"settling_ms", &Link::settlingTime_ms, number(leastSettlingTime_ms, 60000, "ms"),
                "time constant after a tuning; settled after five of them"},
            {"jitter_dB", &Link::jitter_dB, number(0, 20, "dB"), "standard deviation of one reading"},
            {"ultimate_rejection_dB", &Link::ultimateRejection_dB, depth_dB(),
                "of what lies outside the filter; 50 to 60 typical"},
            {"saturation_dBm", &Link::saturation_dBm, level_dBm(), "where readings level off; about -20 typical"},
        }};
    return record;
}

const support::Record<Link>& fadingRecord()
{
    static const support::Record<Link> record{"fading", "of all emitters that fade",
        {
            {"rain", &Link::rain, support::list(Rain::record(), 0, mostRain), "slow common drops", optional},
            {"notches", &Link::notches, support::list(Notch::record(), 0, mostNotches), "multipath notches", optional},
        }};
    return record;
}

std::optional<Wrong> rasterOutside(const Link& link)
{
    const Parameters& parameters = link.frequencyParameters;
    for (const auto& [path, step] : {std::pair("raster.lowest_step", parameters.stepLimitLow),
             std::pair("raster.highest_step", parameters.stepLimitHigh)}) {
        const std::int64_t frequency_kHz =
            parameters.rxBaseFrequency_kHz + std::int64_t{step} * parameters.frequencyStepSize_kHz;
        if (frequency_kHz < parameters.minRxFrequency_kHz || frequency_kHz > parameters.maxRxFrequency_kHz) {
            return Wrong{path,
                "is " + std::to_string(step) + ", a frequency of " + std::to_string(frequency_kHz) + " kHz; must be one "
                    + fromTo(parameters.minRxFrequency_kHz, parameters.maxRxFrequency_kHz) + ", the receive range"};
        }
    }
    return std::nullopt;
}

std::optional<Wrong> rasterTooNarrow(const Link& link)
{
    const Parameters& parameters = link.frequencyParameters;
    const std::int64_t steps = std::int64_t{parameters.stepLimitHigh} - parameters.stepLimitLow;
    const std::int64_t span_kHz = steps * parameters.frequencyStepSize_kHz;
    if (span_kHz >= leastSpan_kHz) {
        return std::nullopt;
    }
    return Wrong{"raster",
        "spans " + std::to_string(span_kHz) + " kHz; must span at least " + std::to_string(leastSpan_kHz) + " kHz"};
}

/// The controller plans with what a fault answers as it does with the radio's own figures.
std::optional<Wrong> answerUnfit(const Link& link)
{
    for (std::size_t index = 0; index < link.faults.size(); ++index) {
        const Fault& fault = link.faults[index];
        if (answersWithWord(fault)) {
            const std::string path = support::elementPath("faults", index) + ".value";
            auto wrong = fault.operation == Operation::getRxFrequency ? configuredOutside(link, fault.value, path)
                                                                      : spacingUnfit(link, fault.value, path);
            if (wrong) {
                return wrong;
            }
        }
    }
    return std::nullopt;
}

/// A reading of a wide filter is made of those of narrow ones, one after the other.
std::optional<Wrong> recordedTooNarrow(const Link& link)
{
    const double least_kHz = link.filterWidth_kHz / SeenReadings::mostFilters;
    std::size_t index = 0;
    for (const Emitter& emitter : link.emitters) {
        const auto* const recording = std::get_if<Recording>(&emitter.signal);
        if (recording != nullptr && recording->bandwidth_kHz && *recording->bandwidth_kHz < least_kHz) {
            return Wrong{support::elementPath("emitters.recordings", index) + ".bandwidth_kHz",
                "is " + support::numberText(*recording->bandwidth_kHz) + " kHz; must be at least "
                    + support::numberText(least_kHz) + " kHz, a hundredth of the receiver's filter"};
        }
        index += recording != nullptr ? 1 : 0;
    }
    return std::nullopt;
}

} // namespace

const support::Record<Link>& linkRecord()
{
    constexpr std::size_t mostFaults = 100;
    static const support::Record<Link> record{"link", "one radio channel and what is on its air",
        {
            {"unit_type", &Link::unitTypeText, support::line(0, 100), "type text of the outdoor unit"},
            {"properties", &Link::properties, propertiesRecord(), propertiesRecord().sentence(), optional},
            {"band_GHz", through(&Link::frequencyParameters, &Parameters::frequencyBand_GHz), integer(1, 200, "GHz"),
                "nominal band"},
            {"receive_kHz", whole, receiveRecord(), receiveRecord().sentence()},
            {"raster", &Link::frequencyParameters, rasterRecord(), rasterRecord().sentence()},
            {"channel_spacing_kHz", &Link::channelSpacing_kHz, integer(1, widest_kHz, "kHz"),
                "from one channel to the next"},
            {"receiver", whole, receiverRecord(), receiverRecord().sentence()},
            {"emitters", &Link::emitters, emittersRecord(), emittersRecord().sentence()},
            {"fading", whole, fadingRecord(), fadingRecord().sentence(), optional},
            {"faults", &Link::faults, support::list(Fault::record(), 0, mostFaults),
                "calls that go wrong; the first that matches a call decides it", optional},
        },
        {
            rasterOutside,
            rasterTooNarrow,
            [](const Link& link) { return spacingUnfit(link, link.channelSpacing_kHz, "channel_spacing_kHz"); },
            answerUnfit,
            recordedTooNarrow,
        }};
    return record;
}

const Link& requirePossible(const Link& link)
{
    support::Errors errors;
    linkRecord().check(link, "", errors);
    for (const Emitter& emitter : link.emitters) {
        const auto* const recording = std::get_if<Recording>(&emitter.signal);
        if (recording != nullptr && recording->bins == nullptr) {
            errors.add("emitters.recordings: the bins of a recording are not read");
        }
    }
    if (!errors.areNone()) {
        throw std::invalid_argument(errors.text());
    }
    return link;
}

} // namespace simulator

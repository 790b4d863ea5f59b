#pragma once

#include "simulator/radio/Link.h"

#include <cstdint>
#include <stdexcept>
#include <string>

/// The plans of a controller with the figures of a link, calculated in 64 bits, step by step as a controller walks. Whatever
/// would wrap there, divide by zero or take too long, throws here.
namespace plans {

using Wide = std::int64_t;

constexpr Wide mostSamples = 1000000;

struct Figures {
    explicit Figures(const simulator::Link& link)
        : rx(link.rxFrequency_kHz)
        , spacing(link.channelSpacing_kHz)
        , min(link.frequencyParameters.minRxFrequency_kHz)
        , max(link.frequencyParameters.maxRxFrequency_kHz)
        , base(link.frequencyParameters.rxBaseFrequency_kHz)
        , raster(link.frequencyParameters.frequencyStepSize_kHz)
        , low(link.frequencyParameters.stepLimitLow)
        , high(link.frequencyParameters.stepLimitHigh)
        , band(link.frequencyParameters.frequencyBand_GHz)
    {
    }

    Wide rx, spacing, min, max, base, raster, low, high, band;
    bool isLongHaul = false;
};

struct Plan {
    Wide lowest, highest, samples;
};

inline Wide word(Wide value)
{
    if (value < 0 || value >= Wide{1} << 32) {
        throw std::range_error("a frequency of " + std::to_string(value) + " kHz");
    }
    return value;
}

/// Both are words, so the product has 64 bits at most.
inline Wide product(Wide left, Wide right)
{
    const std::uint64_t value = static_cast<std::uint64_t>(left) * static_cast<std::uint64_t>(right);
    if (value >= std::uint64_t{1} << 32) {
        throw std::range_error("a product of " + std::to_string(value) + " kHz");
    }
    return static_cast<Wide>(value);
}

inline Wide quotient(Wide dividend, Wide divisor)
{
    if (divisor == 0) {
        throw std::domain_error("a division by zero");
    }
    return dividend / divisor;
}

inline void countOneMore(Wide& samples)
{
    if (++samples > mostSamples) {
        throw std::length_error("too many samples");
    }
}

inline Plan channelScanStd(const Figures& in)
{
    const bool isFine = in.isLongHaul || in.band <= 42;
    const bool isOdd = in.spacing == 7000;
    const Wide margin = isFine ? 1000 : 5000;
    const Wide step = isFine ? (isOdd ? 1000 : 2000) : 10000;
    const Wide half = in.spacing / 2;
    const bool hasRoom = in.rx >= word(in.min + margin + half);
    Plan plan{word(hasRoom ? in.rx + margin - half : in.min + (isOdd ? margin / 2 : margin)), 0, 1};
    plan.highest = plan.lowest;
    const Wide belowTheTop = word(in.max - margin);
    const Wide withinTheChannel = word(in.rx + half - margin);
    while (word(plan.highest + step) <= belowTheTop && plan.highest + step <= withinTheChannel) {
        countOneMore(plan.samples);
        plan.highest += step;
    }
    if (isOdd && (plan.highest > in.rx || in.rx - plan.highest > step)) {
        countOneMore(plan.samples);
        plan.highest = word(plan.highest + step);
    }
    return plan;
}

inline Plan subBandScanStd(const Figures& in)
{
    const bool isFine = !in.isLongHaul && in.band <= 42;
    const Wide margin = isFine ? 1000 : 5000;
    const Wide step = isFine ? 2000 : 10000;
    const Wide lowest = word(in.base + product(in.raster, word(in.low + quotient(margin, in.raster))));
    const Wide top = word(in.base + product(in.high, in.raster) - margin);
    const Wide steps = word(top - lowest) / step;
    Wide samples = steps;
    countOneMore(samples);
    return {lowest, lowest + steps * step, samples};
}

inline Plan channelScanOneSample(const Figures& in)
{
    return {in.rx, in.rx, 1};
}

inline Plan subBandScan4743(const Figures& in)
{
    const Wide lowestCentre = word(in.min + in.spacing / 2);
    const Wide highestCentre = word(in.max - in.spacing / 2);
    Plan plan{in.rx, in.rx, 1};
    while (lowestCentre <= in.rx && lowestCentre <= word(plan.lowest - in.spacing)) {
        countOneMore(plan.samples);
        plan.lowest -= in.spacing;
    }
    while (highestCentre >= in.rx && highestCentre >= word(plan.highest + in.spacing)) {
        countOneMore(plan.samples);
        plan.highest += in.spacing;
    }
    quotient(plan.highest - plan.lowest, in.spacing);
    return plan;
}

inline Plan subBandScan4742(const Figures& in)
{
    Plan plan{in.rx, in.rx, 1};
    if (word(in.min + in.spacing / 2) <= word(in.rx - in.spacing)) {
        plan.lowest -= in.spacing;
        ++plan.samples;
    }
    if (word(in.max - in.spacing / 2) >= word(in.rx + in.spacing)) {
        plan.highest += in.spacing;
        ++plan.samples;
    }
    return plan;
}

using Planning = Plan (*)(const Figures&);

struct UnitType {
    const char* text;
    Planning channel;
    Planning subBand;
};
constexpr UnitType unitTypes[] = {
    {"QRU7 K", channelScanStd, subBandScanStd},
    {"4741", channelScanStd, subBandScanStd},
    {"KLM", channelScanStd, subBandScanStd},
    {"KLM6", channelScanStd, subBandScanStd},
    {"SDC", channelScanStd, subBandScanStd},
    {"4742", channelScanOneSample, subBandScan4742},
    {"4743", channelScanOneSample, subBandScan4743},
    {"KLM5", channelScanOneSample, subBandScan4743},
    {"KLM6 P", channelScanOneSample, subBandScan4743},
};

/// Why a plan leads astray; empty when it does not.
inline std::string trouble(Planning planning, const Figures& in)
{
    try {
        const Plan plan = planning(in);
        if (in.min <= plan.lowest && plan.lowest <= plan.highest && plan.highest <= in.max) {
            return {};
        }
        return std::to_string(plan.lowest) + " to " + std::to_string(plan.highest) + " kHz leaves the range";
    } catch (const std::exception& error) {
        return error.what();
    }
}

/// The same for all unit types, both kinds of scan, and a controller that has seen the properties or not.
inline std::string troubleOfAny(Figures in, bool mayBeLongHaul)
{
    for (const UnitType& type : unitTypes) {
        for (const Planning planning : {type.channel, type.subBand}) {
            for (in.isLongHaul = false;; in.isLongHaul = true) {
                const std::string why = trouble(planning, in);
                if (!why.empty()) {
                    return std::string(type.text) + (planning == type.channel ? ", channel: " : ", sub-band: ") + why;
                }
                if (in.isLongHaul || !mayBeLongHaul) {
                    break;
                }
            }
        }
    }
    return {};
}

} // namespace plans

#pragma once

#include "tests/support/ControllerInspector.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <ostream>

/// A second calculation of all plans and predicates, to compare the controller's with.
///
/// It calculates in 64 bits, reduces modulo 2^32 where a frequency is kept or compared, and takes whole laps of a loop at
/// once where the controller walks step by step. A plan that would divide by zero, not end or run for absurdly many rounds
/// has no result here.
namespace tests {

/// Wide enough for every intermediate value of a plan.
using Wide = std::int64_t;

/// Everything that planning reads; by default a radio of the 18 GHz band.
struct PlanInputs {
    Wide spacing = 28000;
    Wide rx = 18000000;
    Wide min = 17700000;
    Wide max = 19700000;
    Wide base = 17000000;
    Wide raster = 250;
    Wide low = 2800;
    Wide high = 10800;
    Wide band = 18;
    Wide longHaul = 0;

    // What a predicate finds when it is asked alone; plans write these three themselves.
    Wide margin = 0;
    Wide step = 0;
    Wide highest = 0;
};

inline std::ostream& operator<<(std::ostream& stream, const PlanInputs& in)
{
    return stream << "spacing " << in.spacing << ", rx " << in.rx << ", min " << in.min << ", max " << in.max << ", base "
                  << in.base << ", raster " << in.raster << ", low " << in.low << ", high " << in.high << ", band "
                  << in.band << ", long haul " << in.longHaul << "; margin " << in.margin << ", step " << in.step
                  << ", highest " << in.highest;
}

/// Everything that a plan writes.
struct Plan {
    Wide step, margin, lowest, highest, samples;

    bool operator==(const Plan&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, const Plan& plan)
{
    return stream << "step " << plan.step << ", margin " << plan.margin << ", lowest " << plan.lowest << ", highest "
                  << plan.highest << ", samples " << plan.samples;
}

/// Puts the inputs into a controller.
inline void put(const PlanInputs& in, const ControllerInspector& members)
{
    const auto word = [](Wide value) { return static_cast<std::uint32_t>(value); };
    members.m_channelSpacing_kHz() = word(in.spacing);
    members.m_currentRxFrequency_kHz() = word(in.rx);
    members.m_minRxFrequency_kHz() = word(in.min);
    members.m_maxRxFrequency_kHz() = word(in.max);
    members.m_rxBaseFrequency_kHz() = word(in.base);
    members.m_frequencyStepSize_kHz() = word(in.raster);
    members.m_stepLimitLow() = word(in.low);
    members.m_stepLimitHigh() = word(in.high);
    members.m_frequencyBand_GHz() = word(in.band);
    members.m_properties() = SDCProperties{static_cast<std::uint8_t>(in.longHaul), 0, 0, 0};
    members.m_frequencyMargin_kHz() = word(in.margin);
    members.m_scanStep_kHz() = word(in.step);
    members.m_scanHighestRxFrequency_kHz() = word(in.highest);
}

/// Puts something into all five outputs, so that a plan that leaves one alone shows.
inline void spoilOutputs(Wide value, const ControllerInspector& members)
{
    const auto word = static_cast<std::uint32_t>(value);
    members.m_scanStep_kHz() = word;
    members.m_frequencyMargin_kHz() = word;
    members.m_scanLowestRxFrequency_kHz() = word;
    members.m_scanHighestRxFrequency_kHz() = word;
    members.m_totalNrOfSamples() = static_cast<std::int32_t>(word);
}

inline Plan planOf(const ControllerInspector& members)
{
    return {members.m_scanStep_kHz(), members.m_frequencyMargin_kHz(), members.m_scanLowestRxFrequency_kHz(),
        members.m_scanHighestRxFrequency_kHz(), members.m_totalNrOfSamples()};
}

constexpr Wide wordRange = Wide{1} << 32;

/// Inputs whose loops would run for more rounds than this are left out: most of them run for millions or never end.
constexpr Wide mostRounds = 2000;

inline Wide wrapped(Wide value)
{
    const Wide rest = value % wordRange;
    return rest < 0 ? rest + wordRange : rest;
}

/// The full product has up to 64 bits.
inline Wide wrappedProduct(Wide left, Wide right)
{
    return static_cast<Wide>(
        static_cast<std::uint64_t>(left) * static_cast<std::uint64_t>(right) % (std::uint64_t{1} << 32));
}

inline bool isFine(const PlanInputs& in)
{
    return in.longHaul != 0 || in.band < 43;
}

/// How often a frequency is raised by a step as long as it then does not lie above the limit. Each lap ends at the limit or
/// where the word wraps.
inline std::optional<Wide> roundsUpTo(Wide limit, Wide from, Wide step)
{
    Wide rounds = 0;
    while (wrapped(from + step) <= limit) {
        from = wrapped(from + step);
        const Wide more = (limit - from) / step;
        from += more * step;
        rounds += 1 + more;
        if (rounds > mostRounds) {
            return std::nullopt;
        }
    }
    return rounds;
}

inline Wide mirrored(Wide frequency)
{
    return wordRange - 1 - frequency;
}

inline std::optional<Wide> roundsDownTo(Wide limit, Wide from, Wide step)
{
    return roundsUpTo(mirrored(limit), mirrored(from), step);
}

inline std::optional<Plan> expectedChannelScanStd(const PlanInputs& in)
{
    const Wide half = in.spacing / 2;
    const Wide margin = isFine(in) ? 1000 : 5000;
    const Wide step = !isFine(in) ? 10000 : in.spacing == 7000 ? 1000 : 2000;
    const bool hasRoomBelow = in.rx >= wrapped(in.min + margin + half);
    const Wide lowest = wrapped(hasRoomBelow ? in.rx + margin - half : in.min + (in.spacing == 7000 ? margin / 2 : margin));
    const Wide limit = std::min(wrapped(in.max - margin), wrapped(half - margin + in.rx));
    std::optional<Wide> rounds = roundsUpTo(limit, lowest, step);
    if (!rounds) {
        return std::nullopt;
    }
    if (in.spacing == 7000 && wrapped(in.rx - (lowest + *rounds * step)) > step) {
        ++*rounds;
    }
    return Plan{step, margin, lowest, wrapped(lowest + *rounds * step), 1 + *rounds};
}

inline std::optional<Plan> expectedSubBandScanStd(const PlanInputs& in)
{
    if (in.raster == 0) {
        return std::nullopt; // divides by zero
    }
    const bool isCoarse = in.longHaul != 0 || in.band > 42;
    const Wide margin = isCoarse ? 5000 : 1000;
    const Wide step = isCoarse ? 10000 : 2000;
    const Wide lowest = wrapped(in.base + wrappedProduct(in.raster, wrapped(in.low + margin / in.raster)));
    const Wide top = wrapped(in.base + wrappedProduct(in.high, in.raster) - margin);
    const Wide whole = wrapped(top - lowest) / step;
    return Plan{step, margin, lowest, wrapped(lowest + whole * step), whole + 1};
}

inline std::optional<Plan> expectedChannelScan4742_4743(const PlanInputs& in)
{
    return Plan{0, 0, in.rx, in.rx, 1};
}

inline std::optional<Plan> expectedSubBandScan4743(const PlanInputs& in)
{
    if (in.spacing == 0) {
        return std::nullopt; // endless, or divides by zero
    }
    const Wide floor = wrapped(in.min + in.spacing / 2);
    const Wide ceiling = wrapped(in.max - in.spacing / 2);
    const std::optional<Wide> down = floor <= in.rx ? roundsDownTo(floor, in.rx, in.spacing) : 0;
    const std::optional<Wide> up = ceiling >= in.rx ? roundsUpTo(ceiling, in.rx, in.spacing) : 0;
    if (!down || !up) {
        return std::nullopt;
    }
    const Wide lowest = wrapped(in.rx - *down * in.spacing);
    const Wide highest = wrapped(in.rx + *up * in.spacing);
    return Plan{in.spacing, 0, lowest, highest, wrapped(highest - lowest) / in.spacing + 1};
}

inline std::optional<Plan> expectedSubBandScan4742(const PlanInputs& in)
{
    const Wide half = in.spacing / 2;
    const bool hasLower = wrapped(in.min + half) <= wrapped(in.rx - in.spacing);
    const bool hasUpper = wrapped(in.max - half) >= wrapped(in.rx + in.spacing);
    return Plan{in.spacing, 0, hasLower ? wrapped(in.rx - in.spacing) : in.rx,
        hasUpper ? wrapped(in.rx + in.spacing) : in.rx, 1 + Wide{hasLower} + Wide{hasUpper}};
}

/// A plan of the controller and what it must make of its inputs.
struct PlanCase {
    const char* name;
    std::int32_t (ControllerInspector::*run)() const;
    std::optional<Plan> (*expected)(const PlanInputs&);
};

inline const PlanCase planCases[] = {
    {"prepChannelScanStd", &ControllerInspector::prepChannelScanStd, expectedChannelScanStd},
    {"prepSubBandScanStd", &ControllerInspector::prepSubBandScanStd, expectedSubBandScanStd},
    {"prepChannelScan4742_4743", &ControllerInspector::prepChannelScan4742_4743, expectedChannelScan4742_4743},
    {"prepSubBandScan4743", &ControllerInspector::prepSubBandScan4743, expectedSubBandScan4743},
    {"prepSubBandScan4742", &ControllerInspector::prepSubBandScan4742, expectedSubBandScan4742},
};

/// A predicate of the controller and its right answer.
struct PredicateCase {
    const char* name;
    bool (ControllerInspector::*ask)() const;
    bool (*expected)(const PlanInputs&);
};

inline const PredicateCase predicateCases[] = {
    {"isChannelSpcaingOdd", &ControllerInspector::isChannelSpcaingOdd,
        [](const PlanInputs& in) { return in.spacing == 7000; }},
    {"isLongHaul", &ControllerInspector::isLongHaul, [](const PlanInputs& in) { return in.longHaul != 0; }},
    {"isLowerFrequencyBand", &ControllerInspector::isLowerFrequencyBand, [](const PlanInputs& in) { return in.band <= 42; }},
    {"validMinFrequencyMargin", &ControllerInspector::validMinFrequencyMargin,
        [](const PlanInputs& in) { return in.rx >= wrapped(in.min + in.margin + in.spacing / 2); }},
    {"isHighestFreqInRange", &ControllerInspector::isHighestFreqInRange,
        [](const PlanInputs& in) {
            const Wide next = wrapped(in.highest + in.step);
            return next <= wrapped(in.max - in.margin) && next <= wrapped(in.spacing / 2 - in.margin + in.rx);
        }},
};

} // namespace tests

#pragma once

#include "tests/unit/PlanningFixture.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

/// A second calculation of all plans and predicates, to compare the controller's with.
///
/// It calculates in 64 bits, reduces modulo 2^32 where a frequency is kept or compared, and takes whole laps of a loop at
/// once where the controller walks step by step. A plan that would divide by zero, not end or run for absurdly many rounds
/// has no result here.
namespace planning::reference {

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

inline bool isFine(const Inputs& in)
{
    return in.longHaul != 0 || in.band < 43;
}

/// The answers of the predicates, in the order odd, long haul, lower band, minimum margin, highest in range.
using Answers = std::array<bool, 5>;

inline Answers expectedAnswers(const Inputs& in)
{
    const Wide half = in.spacing / 2;
    const Wide next = wrapped(in.highest + in.step);
    return {in.spacing == 7000, in.longHaul != 0, in.band <= 42, in.rx >= wrapped(in.min + in.margin + half),
        next <= wrapped(in.max - in.margin) && next <= wrapped(half - in.margin + in.rx)};
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

inline std::optional<Plan> expectedChannelScanStd(const Inputs& in)
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

inline std::optional<Plan> expectedSubBandScanStd(const Inputs& in)
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

inline std::optional<Plan> expectedChannelScan4742_4743(const Inputs& in)
{
    return Plan{0, 0, in.rx, in.rx, 1};
}

inline std::optional<Plan> expectedSubBandScan4743(const Inputs& in)
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

inline std::optional<Plan> expectedSubBandScan4742(const Inputs& in)
{
    const Wide half = in.spacing / 2;
    const bool hasLower = wrapped(in.min + half) <= wrapped(in.rx - in.spacing);
    const bool hasUpper = wrapped(in.max - half) >= wrapped(in.rx + in.spacing);
    return Plan{in.spacing, 0, hasLower ? wrapped(in.rx - in.spacing) : in.rx,
        hasUpper ? wrapped(in.rx + in.spacing) : in.rx, 1 + Wide{hasLower} + Wide{hasUpper}};
}

} // namespace planning::reference

/// A second calculation of all plans and predicates, compared with the controller's over more than a million inputs each.
///
/// It calculates in 64 bits, reduces modulo 2^32 where a frequency is kept or compared, and takes whole laps of a loop at
/// once where the controller walks step by step.

#include "tests/unit/PlanningFixture.h"

#include "simulator/host/HostObserver.h"

#include <algorithm>
#include <array>
#include <optional>
#include <random>

namespace {

using namespace planning;

constexpr Wide wordRange = Wide{1} << 32;

/// Inputs whose loops would run for more rounds than this are left out: most of them run for millions or never end.
constexpr Wide mostRounds = 2000;

Wide wrapped(Wide value)
{
    const Wide rest = value % wordRange;
    return rest < 0 ? rest + wordRange : rest;
}

/// The full product has up to 64 bits.
Wide wrappedProduct(Wide left, Wide right)
{
    return static_cast<Wide>(
        static_cast<std::uint64_t>(left) * static_cast<std::uint64_t>(right) % (std::uint64_t{1} << 32));
}

bool isFine(const Inputs& in)
{
    return in.longHaul != 0 || in.band < 43;
}

/// The answers of the predicates, in the order odd, long haul, lower band, minimum margin, highest in range.
using Answers = std::array<bool, 5>;

Answers expectedAnswers(const Inputs& in)
{
    const Wide half = in.spacing / 2;
    const Wide next = wrapped(in.highest + in.step);
    return {in.spacing == 7000, in.longHaul != 0, in.band <= 42, in.rx >= wrapped(in.min + in.margin + half),
        next <= wrapped(in.max - in.margin) && next <= wrapped(half - in.margin + in.rx)};
}

/// How often a frequency is raised by a step as long as it then does not lie above the limit. Each lap ends at the limit or
/// where the word wraps.
std::optional<Wide> roundsUpTo(Wide limit, Wide from, Wide step)
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

Wide mirrored(Wide frequency)
{
    return wordRange - 1 - frequency;
}

std::optional<Wide> roundsDownTo(Wide limit, Wide from, Wide step)
{
    return roundsUpTo(mirrored(limit), mirrored(from), step);
}

std::optional<Plan> expectedChannelScanStd(const Inputs& in)
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

std::optional<Plan> expectedSubBandScanStd(const Inputs& in)
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

std::optional<Plan> expectedChannelScan4742_4743(const Inputs& in)
{
    return Plan{0, 0, in.rx, in.rx, 1};
}

std::optional<Plan> expectedSubBandScan4743(const Inputs& in)
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

std::optional<Plan> expectedSubBandScan4742(const Inputs& in)
{
    const Wide half = in.spacing / 2;
    const bool hasLower = wrapped(in.min + half) <= wrapped(in.rx - in.spacing);
    const bool hasUpper = wrapped(in.max - half) >= wrapped(in.rx + in.spacing);
    return Plan{in.spacing, 0, hasLower ? wrapped(in.rx - in.spacing) : in.rx,
        hasUpper ? wrapped(in.rx + in.spacing) : in.rx, 1 + Wide{hasLower} + Wide{hasUpper}};
}

/// Makes inputs: real radios, real radios moved onto the edge of a decision, and words of any value.
class InputSource {
public:
    Inputs next()
    {
        Inputs in = realRadio();
        const std::uint64_t kind = below(4);
        for (std::uint64_t edges = kind == 0 ? 0 : below(3) + 1; edges > 0; --edges) {
            moveOntoEdge(in);
        }
        if (kind == 1) {
            makeWild(in);
        }
        setPredicatesOwn(in);
        for (Wide* const value : all(in)) {
            *value = wrapped(*value);
        }
        return in;
    }

    Wide word() { return upTo(wordRange - 1); }

private:
    std::uint64_t below(std::uint64_t limit) { return m_random() % limit; }

    static std::array<Wide*, 12> all(Inputs& in)
    {
        return {&in.spacing, &in.rx, &in.min, &in.max, &in.base, &in.raster, &in.low, &in.high, &in.band, &in.margin,
            &in.step, &in.highest};
    }

    Wide upTo(Wide limit) { return static_cast<Wide>(below(static_cast<std::uint64_t>(limit) + 1)); }
    Wide aroundZero() { return upTo(2) - 1; }

    template <std::size_t count>
    Wide oneOf(const Wide (&values)[count])
    {
        return values[below(count)];
    }

    Inputs realRadio()
    {
        Inputs in{};
        in.spacing =
            oneOf({3500, 7000, 7000, 13750, 14000, 27500, 28000, 29650, 40000, 55000, 56000, 112000, 250000, 2000000});
        in.band = oneOf({4, 6, 11, 18, 23, 32, 38, 42, 43, 70, 80});
        in.base = in.band * 1000000 - upTo(500000);
        in.raster = oneOf({1, 5, 125, 250, 300, 500, 1000, 3500});
        in.min = in.base + upTo(1000000);
        in.max = in.min + upTo(1000000) + 50000;
        in.rx = in.min + upTo(in.max - in.min);
        in.low = (in.min - in.base) / in.raster;
        in.high = (in.max - in.base) / in.raster;
        in.longHaul = oneOf({0, 0, 0, 1, 2, 128, 255});
        return in;
    }

    void moveOntoEdge(Inputs& in)
    {
        const Wide margin = isFine(in) ? 1000 : 5000;
        const Wide step = !isFine(in) ? 10000 : in.spacing == 7000 ? 1000 : 2000;
        const Wide half = in.spacing / 2;
        const Wide lowest = in.rx + margin - half;
        const Wide times = upTo(6);
        switch (below(12)) {
        case 0: in.min = in.rx - margin - half + aroundZero(); break;
        case 1: in.max = lowest + times * step + margin + aroundZero(); break;
        case 2: in.max = in.min + margin + times * step + margin + aroundZero(); break;
        case 3: in.spacing = 2 * margin + times * step + aroundZero(); break;
        case 4: in.spacing = 7000 + aroundZero(); break;
        case 5: in.band = 42 + aroundZero(); break;
        case 6: in.min = in.rx - times * in.spacing - half + aroundZero(); break;
        case 7: in.max = in.rx + times * in.spacing + half + aroundZero(); break;
        case 8: // the extra sample of the odd spacing: the top of the range lies about one step below the channel
            in.spacing = 7000;
            in.max = in.rx + margin - 2 * step + upTo(3) * step / 2 + aroundZero();
            break;
        case 9: // a sub-band of a few whole steps, or with its top below its bottom
            in.raster = 1;
            in.high = in.low + 2 * margin + (times - 1) * step + aroundZero();
            break;
        case 10: in.raster = margin / (times + 1) + aroundZero(); break;
        default: in.spacing += aroundZero(); break;
        }
    }

    Wide anyWord()
    {
        const Wide near[] = {0, 7000, wordRange / 2, wordRange - 1};
        return below(2) == 0 ? word() : oneOf(near) + upTo(8000) - 4000;
    }

    void makeWild(Inputs& in)
    {
        for (Wide* const value : all(in)) {
            if (below(3) == 0) {
                *value = anyWord();
            }
        }
    }

    void setPredicatesOwn(Inputs& in)
    {
        in.margin = below(8) == 0 ? anyWord() : oneOf({0, 1000, 5000});
        in.step = below(8) == 0 ? anyWord() : oneOf({0, 1000, 2000, 10000});
        switch (below(4)) {
        case 0: in.highest = in.max - in.margin - in.step + aroundZero(); break;
        case 1: in.highest = in.spacing / 2 - in.margin + in.rx - in.step + aroundZero(); break;
        case 2: in.rx = in.min + in.margin + in.spacing / 2 + aroundZero(); break;
        default: in.highest = anyWord(); break;
        }
    }

    std::mt19937_64 m_random{20230418};
};

class PlanningReference : public PlanningFixture {
protected:
    PlanningReference()
    {
        setTraceLevel(PLX_TRACE_LEVEL_OFF);
        simulator::setHostObserver({}); // it would be told of every trace level asked for
    }

    Answers answers() const
    {
        return {isOdd(inspect()), isLongHaul(inspect()), isLowerBand(inspect()), isValidMin(inspect()),
            isHighestInRange(inspect())};
    }

    InputSource source;
};

TEST_F(PlanningReference, everyPredicateAgreesWithTheSecondCalculation)
{
    std::array<std::size_t, 5> timesTrue{};
    constexpr std::size_t nrOfInputs = 1000000;
    for (std::size_t input = 0; input < nrOfInputs; ++input) {
        const Inputs in = source.next();
        put(in);
        const Answers expected = expectedAnswers(in);
        ASSERT_EQ(answers(), expected) << in;
        ASSERT_EQ(found(), in);
        for (std::size_t predicate = 0; predicate < expected.size(); ++predicate) {
            timesTrue[predicate] += expected[predicate] ? 1U : 0U;
        }
    }
    for (const std::size_t times : timesTrue) { // each answer was asked for often enough to mean something
        EXPECT_GT(times, nrOfInputs / 20);
        EXPECT_LT(times, nrOfInputs - nrOfInputs / 20);
    }
}

TEST_F(PlanningReference, everyPlanAgreesWithTheSecondCalculation)
{
    struct Pair {
        const char* name;
        RunPlan run;
        std::optional<Plan> (*expected)(const Inputs&);
        std::size_t compared = 0;
    };
    Pair pairs[] = {
        {"prepChannelScanStd", channelScanStd, expectedChannelScanStd},
        {"prepSubBandScanStd", subBandScanStd, expectedSubBandScanStd},
        {"prepChannelScan4742_4743", channelScan4742_4743, expectedChannelScan4742_4743},
        {"prepSubBandScan4743", subBandScan4743, expectedSubBandScan4743},
        {"prepSubBandScan4742", subBandScan4742, expectedSubBandScan4742},
    };
    for (std::size_t input = 0; input < 1200000; ++input) {
        const Inputs in = source.next();
        put(in);
        for (Pair& pair : pairs) {
            const std::optional<Plan> expected = pair.expected(in);
            if (!expected) {
                continue;
            }
            spoilOutputs(source.word());
            ASSERT_EQ(pair.run(inspect()), 0) << pair.name << " for " << in;
            ASSERT_EQ(plan(), *expected) << pair.name << " for " << in;
            ASSERT_EQ(foundAfterPlan(in), in) << pair.name;
            ++pair.compared;
        }
    }
    for (const Pair& pair : pairs) {
        EXPECT_GE(pair.compared, 1000000U) << pair.name << ": too many inputs left out";
    }
}

} // namespace

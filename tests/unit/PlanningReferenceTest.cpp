/// All plans and predicates, compared with a second calculation over more than a million inputs each.

#include "tests/unit/PlanningReference.h"
#include "tests/unit/PlanningFixture.h"

#include "host/HostObserver.h"

#include <array>
#include <optional>
#include <random>

namespace {

using namespace planning;
using namespace planning::reference;

/// Makes inputs: real radios, real radios moved onto the edge of a decision, and words of any value.
class InputSource {
public:
    Inputs next()
    {
        Inputs in = realRadio();
        const std::uint64_t kind = below(4);
        if (kind == 0) {
            makeWild(in);
        }
        for (std::uint64_t edges = kind == 1 ? 0 : below(3) + 1; edges > 0; --edges) {
            moveOntoEdge(in);
        }
        setPredicatesOwn(in);
        wrap(in);
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

    static void wrap(Inputs& in)
    {
        for (Wide* const value : all(in)) {
            *value = wrapped(*value);
        }
    }

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
        wrap(in);
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
        host::setHostObserver({}); // it would be told of every trace level asked for
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

// Plans and predicates against a second calculation, with random inputs that shrink to the smallest counter-example.

#include "tests/support/PlanReference.h"

#include "host/Trace.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace {

using tests::PlanInputs;
using tests::Wide;
using tests::wrapped;

/// A word around one of a few anchors, or anywhere.
rc::Gen<Wide> near(std::vector<Wide> anchors)
{
    const auto close = rc::gen::mapcat(rc::gen::elementOf(std::move(anchors)), [](Wide anchor) {
        return rc::gen::map(rc::gen::inRange<int>(-3, 4), [anchor](int offset) { return wrapped(anchor + offset); });
    });
    const auto any = rc::gen::map(rc::gen::arbitrary<std::uint32_t>(), [](std::uint32_t word) { return Wide{word}; });
    return rc::gen::weightedOneOf<Wide>({{5, close}, {1, any}});
}

} // namespace

namespace rc {

template <>
struct Arbitrary<PlanInputs> {
    static Gen<PlanInputs> arbitrary()
    {
        return gen::build<PlanInputs>(gen::set(&PlanInputs::spacing, near({7000, 14000, 28000, 56000})),
            gen::set(&PlanInputs::rx, near({18000000, 17715000, 17710000, 17720000, 19680000, 19690000})),
            gen::set(&PlanInputs::min, near({17700000, 17985000, 17972000, 0})),
            gen::set(&PlanInputs::max, near({19700000, 18014000, 18028000, 18001000})),
            gen::set(&PlanInputs::base, near({17000000, 0})), gen::set(&PlanInputs::raster, near({250, 1, 3500, 1000})),
            gen::set(&PlanInputs::low, near({2800, 10})), gen::set(&PlanInputs::high, near({10800, 2812, 10})),
            gen::set(&PlanInputs::band, gen::element<Wide>(18, 42, 43, 80)),
            gen::set(&PlanInputs::longHaul, gen::element<Wide>(0, 0, 1, 255)),
            gen::set(&PlanInputs::margin, near({0, 1000, 5000})), gen::set(&PlanInputs::step, near({1000, 2000, 10000})),
            gen::set(&PlanInputs::highest, near({17998000, 18013000, 19697000})));
    }
};

} // namespace rc

namespace {

/// 40 inputs a run: 10,000 in all.
std::vector<PlanInputs> someInputs()
{
    host::trace::setLevel("ZRP.SDC", PLX_TRACE_LEVEL_OFF);
    return *rc::gen::container<std::vector<PlanInputs>>(40, rc::gen::arbitrary<PlanInputs>());
}

/// Compares one plan; false where the second calculation has none.
bool isCompared(const tests::PlanCase& plan, const PlanInputs& inputs, const ControllerInspector& members)
{
    const std::optional<tests::Plan> expected = plan.expected(inputs);
    if (expected) {
        RC_LOG() << plan.name << ": " << inputs << '\n';
        put(inputs, members);
        tests::spoilOutputs(inputs.spacing + 1, members);
        RC_ASSERT((members.*plan.run)() == 0);
        RC_ASSERT(tests::planOf(members) == *expected);
    }
    return expected.has_value();
}

TEST(PlanProperty, everyPlanIsAsCalculatedAndMostInputsAreCompared)
{
    std::map<std::string, int> compared;
    int tried = 0;
    EXPECT_TRUE(rc::check("every plan is as calculated", [&] {
        SpectrumDiagnosticsController controller(RadioChannel{7});
        for (const PlanInputs& inputs : someInputs()) {
            ++tried;
            for (const tests::PlanCase& plan : tests::planCases) {
                compared[plan.name] += isCompared(plan, inputs, ControllerInspector(controller)) ? 1 : 0;
            }
        }
    }));
    for (const tests::PlanCase& plan : tests::planCases) {
        EXPECT_GT(compared[plan.name], tried / 2) << plan.name;
    }
}

RC_GTEST_PROP(PlanProperty, everyPredicateIsAsCalculated, ())
{
    SpectrumDiagnosticsController controller(RadioChannel{7});
    const ControllerInspector members(controller);
    for (const PlanInputs& inputs : someInputs()) {
        for (const tests::PredicateCase& predicate : tests::predicateCases) {
            put(inputs, members);
            RC_ASSERT((members.*predicate.ask)() == predicate.expected(inputs));
        }
    }
}

} // namespace

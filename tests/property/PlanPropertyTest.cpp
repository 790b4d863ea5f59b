// Plans and predicates against a second calculation, with random inputs that shrink to the smallest counter-example.

#include "tests/unit/PlanningFixture.h"
#include "tests/unit/PlanningReference.h"

#include "host/HostObserver.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <cstdint>
#include <optional>
#include <sstream>
#include <vector>

namespace {

using planning::Inputs;
using planning::Plan;
using planning::Wide;
using planning::reference::wrapped;

/// A controller whose single steps run on the test's thread.
class Planner : public planning::PlanningFixture {
public:
    Planner()
    {
        setTraceLevel(PLX_TRACE_LEVEL_OFF);
        host::setHostObserver({}); // it would be told of every trace level asked for
    }
    void TestBody() override {}

    using PlanningFixture::inspect;
    using PlanningFixture::plan;
    using PlanningFixture::put;
    using PlanningFixture::spoilOutputs;
};

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
struct Arbitrary<Inputs> {
    static Gen<Inputs> arbitrary()
    {
        return gen::build<Inputs>(gen::set(&Inputs::spacing, near({7000, 14000, 28000, 56000})),
            gen::set(&Inputs::rx, near({18000000, 17715000, 17710000, 17720000, 19680000, 19690000})),
            gen::set(&Inputs::min, near({17700000, 17985000, 17972000, 0})),
            gen::set(&Inputs::max, near({19700000, 18014000, 18028000, 18001000})),
            gen::set(&Inputs::base, near({17000000, 0})), gen::set(&Inputs::raster, near({250, 1, 3500, 1000})),
            gen::set(&Inputs::low, near({2800, 10})), gen::set(&Inputs::high, near({10800, 2812, 10})),
            gen::set(&Inputs::band, gen::element<Wide>(18, 42, 43, 80)),
            gen::set(&Inputs::longHaul, gen::element<Wide>(0, 0, 1, 255)), gen::set(&Inputs::margin, near({0, 1000, 5000})),
            gen::set(&Inputs::step, near({1000, 2000, 10000})),
            gen::set(&Inputs::highest, near({17998000, 18013000, 19697000})));
    }
};

} // namespace rc

namespace {

/// 40 inputs a run: 10,000 in all.
std::vector<Inputs> someInputs()
{
    return *rc::gen::container<std::vector<Inputs>>(40, rc::gen::arbitrary<Inputs>());
}

void compare(planning::RunPlan run, std::optional<Plan> (*expected)(const Inputs&))
{
    const Planner planner;
    for (const Inputs& inputs : someInputs()) {
        const std::optional<Plan> plan = expected(inputs);
        if (plan) {
            planner.put(inputs);
            planner.spoilOutputs(inputs.spacing + 1);
            RC_ASSERT(run(planner.inspect()) == 0);
            RC_ASSERT(planner.plan() == *plan);
        }
    }
}

RC_GTEST_PROP(PlanProperty, channelScanOfStandardUnitsIsAsCalculated, ())
{
    compare(planning::channelScanStd, planning::reference::expectedChannelScanStd);
}

RC_GTEST_PROP(PlanProperty, subBandScanOfStandardUnitsIsAsCalculated, ())
{
    compare(planning::subBandScanStd, planning::reference::expectedSubBandScanStd);
}

RC_GTEST_PROP(PlanProperty, singleMeasurementIsAsCalculated, ())
{
    compare(planning::channelScan4742_4743, planning::reference::expectedChannelScan4742_4743);
}

RC_GTEST_PROP(PlanProperty, subBandScanOnTheChannelRasterIsAsCalculated, ())
{
    compare(planning::subBandScan4743, planning::reference::expectedSubBandScan4743);
}

RC_GTEST_PROP(PlanProperty, subBandScanOfThreeChannelsIsAsCalculated, ())
{
    compare(planning::subBandScan4742, planning::reference::expectedSubBandScan4742);
}

RC_GTEST_PROP(PlanProperty, everyPredicateIsAsCalculated, ())
{
    const Planner planner;
    for (const Inputs& inputs : someInputs()) {
        planner.put(inputs);
        const ControllerInspector members = planner.inspect();
        const planning::reference::Answers answers{planning::isOdd(members), planning::isLongHaul(members),
            planning::isLowerBand(members), planning::isValidMin(members), planning::isHighestInRange(members)};
        RC_ASSERT(answers == planning::reference::expectedAnswers(inputs));
    }
}

/// Whatever a standard plan is made from: its samples are those between its two ends, its ends a whole number of steps
/// apart.
RC_GTEST_PROP(PlanProperty, stepsTimesSamplesSpanTheRange, ())
{
    const Planner planner;
    for (const Inputs& inputs : someInputs()) {
        if (planning::reference::expectedSubBandScanStd(inputs)) {
            planner.put(inputs);
            planning::subBandScanStd(planner.inspect());
            const Plan plan = planner.plan();
            RC_ASSERT(wrapped(plan.lowest + plan.step * (wrapped(plan.samples) - 1)) == plan.highest);
        }
    }
}

} // namespace

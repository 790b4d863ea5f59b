// Random runs of commands, queries, delays and failures of peers, compared step by step with what the controller must do.

#include "tests/property/Steps.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <string>
#include <vector>

namespace rc {

template <>
struct Arbitrary<tests::Step> {
    static Gen<tests::Step> arbitrary()
    {
        using tests::StepKind;
        // Steps within sweeps come more often, so that most of what the others meet is a running sweep.
        const auto kind = gen::weightedElement<StepKind>({{2, StepKind::setUnit}, {2, StepKind::setFrequencies},
            {2, StepKind::setProperties}, {6, StepKind::startChannelScan}, {6, StepKind::startSubBandScan},
            {2, StepKind::stop}, {1, StepKind::unknownCommand}, {2, StepKind::queryProperties}, {12, StepKind::endSettling},
            {3, StepKind::endSweep}, {2, StepKind::phaseStop}, {1, StepKind::rebirth}, {3, StepKind::planFault}});
        return gen::build<tests::Step>(
            gen::set(&tests::Step::kind, kind), gen::set(&tests::Step::value, gen::inRange<std::uint32_t>(0, 144)));
    }
};

} // namespace rc

namespace {

using tests::Comparison;
using tests::Step;

// 250 runs of up to 200 steps, over 10,000 in all. The seed is printed; RC_PARAMS="seed=... max_success=250" takes another.
RC_GTEST_PROP(CommandSequence, everyRunIsThatOfTheSequentialMachine, ())
{
    const auto steps = *rc::gen::scale(2.0, rc::gen::arbitrary<std::vector<Step>>());
    Comparison comparison;
    for (const Step& step : steps) {
        const std::string difference = comparison.take(step);
        RC_LOG() << step << '\n';
        if (!difference.empty() || testing::Test::HasFailure()) {
            RC_FAIL(difference);
        }
    }
}

} // namespace

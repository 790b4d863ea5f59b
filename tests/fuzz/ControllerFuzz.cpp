// The command interface with peers that go wrong, step by step beside the sequential machine.
//
// Input: two bytes a step, its kind and its value.

#include "tests/property/Steps.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    GTEST_FLAG_SET(break_on_failure, true); // there is no test that could fail
    constexpr std::size_t mostSteps = 60;
    tests::Comparison comparison;
    for (std::size_t at = 0; at + 1 < size && at < 2 * mostSteps; at += 2) {
        const tests::Step step{static_cast<tests::StepKind>(data[at] % tests::nrOfStepKinds), data[at + 1]};
        const std::string difference = comparison.take(step);
        if (!difference.empty()) {
            std::ostringstream text;
            text << "step " << at / 2 << ", " << step << ":\n" << difference;
            std::fputs(text.str().c_str(), stderr);
            std::abort();
        }
    }
    return 0;
}

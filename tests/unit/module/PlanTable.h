#pragma once

#include "tests/support/ControllerFixture.h"
#include "tests/support/PlanReference.h"

namespace tests {

/// One row of a table: what a plan makes of some inputs.
struct PlanRow {
    const char* sentence;
    PlanInputs in;
    Plan expected;
};

/// A controller without a worker, whose plans run on the test's thread.
class PlanTable : public ControllerFixture {
protected:
    using RunPlan = std::int32_t (ControllerInspector::*)() const;

    PlanTable() { prepare(); }

    /// Whatever the outputs were before, a plan writes all five and nothing else.
    template <std::size_t count>
    void expectRows(RunPlan run, const PlanRow (&rows)[count])
    {
        for (const PlanRow& row : rows) {
            for (const Wide spoilt : {0, 1, 123456789, -1}) {
                SCOPED_TRACE(row.sentence);
                put(row.in, inspect());
                spoilOutputs(spoilt, inspect());
                const Members before = inputs();
                EXPECT_EQ((inspect().*run)(), 0);
                EXPECT_EQ(planOf(inspect()), row.expected);
                EXPECT_EQ(inputs(), before);
            }
        }
    }

private:
    /// All members but the outputs.
    Members inputs() const
    {
        Members all = members();
        for (const char* const output : {"m_scanStep_kHz", "m_frequencyMargin_kHz", "m_scanLowestRxFrequency_kHz",
                 "m_scanHighestRxFrequency_kHz", "m_totalNrOfSamples"}) {
            all.erase(output);
        }
        return all;
    }
};

} // namespace tests

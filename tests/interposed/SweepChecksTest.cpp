// The order of a sweep's checks before each step. This program defines getState itself; it takes the place of the library's:
// member functions are exported, and a program's definition goes before a library's.

#include "tests/support/SweepFixture.h"

#include <gmock/gmock.h>

namespace {

std::function<void()> onGetState;

} // namespace

SpectrumDiagnosticsController::State SpectrumDiagnosticsController::getState() const
{
    if (onGetState) {
        onGetState();
    }
    return m_state;
}

namespace {

using testing::ElementsAreArray;

constexpr std::uint32_t frequencies_kHz[] = {100000, 100050, 100100};

class SweepChecks : public support::SweepFixture {
protected:
    SweepChecks()
    {
        setTraceLevel(PLX_TRACE_LEVEL_ERROR);
        prepare();
    }
    ~SweepChecks() override { onGetState = {}; }

    /// Runs a sweep and does something while it asks for the state before a step, counted from 0. The state stays.
    void sweepWith(std::size_t atStep, const std::function<void()>& action)
    {
        prepare();
        onGetState = [action, atStep, asked = std::size_t{0}]() mutable {
            if (asked++ == atStep) {
                action();
            }
        };
        inspect().runScan();
        onGetState = {};
    }

    /// The steps before this one, and nothing of it.
    void expectStepsBefore(std::size_t step)
    {
        const std::vector<std::uint32_t> taken(frequencies_kHz, frequencies_kHz + step);
        EXPECT_THAT(log.calls(), ElementsAreArray(sweepOver(taken)));
        EXPECT_THAT(sampledFrequencies(), ElementsAreArray(taken));
        EXPECT_EQ(inspect().m_status(), SDC_STATUS_CHANNEL_SCAN_FINISHED);
    }
};

TEST_F(SweepChecks, stateIsAskedBeforeTheRange)
{
    for (std::size_t step = 0; step < std::size(frequencies_kHz); ++step) {
        SCOPED_TRACE(step);
        sweepWith(step, [&] { inspect().m_scanHighestRxFrequency_kHz() = frequencies_kHz[step] - 1; });
        expectStepsBefore(step);
    }
}

TEST_F(SweepChecks, stateIsAskedBeforeTheNumberOfSamples)
{
    for (std::size_t step = 1; step < std::size(frequencies_kHz); ++step) {
        SCOPED_TRACE(step);
        sweepWith(step, [&] { inspect().m_totalNrOfSamples() = static_cast<std::int32_t>(step); });
        expectStepsBefore(step);
    }
}

} // namespace

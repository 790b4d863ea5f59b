#pragma once

#include "tests/support/ControllerFixture.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

/// What the tests of planning share: a plan's inputs and outputs as records, and a controller to put them in.
namespace planning {

/// Wide enough for every intermediate value of a plan.
using Wide = std::int64_t;

/// Everything that planning reads; by default a radio of the 18 GHz band.
struct Inputs {
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

    bool operator==(const Inputs&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, const Inputs& in)
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

using RunPlan = std::int32_t (*)(const ControllerInspector&);
using AskPredicate = bool (*)(const ControllerInspector&);

// clang-format off
inline std::int32_t channelScanStd(const ControllerInspector& it) { return it.prepChannelScanStd(); }
inline std::int32_t subBandScanStd(const ControllerInspector& it) { return it.prepSubBandScanStd(); }
inline std::int32_t channelScan4742_4743(const ControllerInspector& it) { return it.prepChannelScan4742_4743(); }
inline std::int32_t subBandScan4743(const ControllerInspector& it) { return it.prepSubBandScan4743(); }
inline std::int32_t subBandScan4742(const ControllerInspector& it) { return it.prepSubBandScan4742(); }

inline bool isOdd(const ControllerInspector& it) { return it.isChannelSpcaingOdd(); }
inline bool isLongHaul(const ControllerInspector& it) { return it.isLongHaul(); }
inline bool isLowerBand(const ControllerInspector& it) { return it.isLowerFrequencyBand(); }
inline bool isValidMin(const ControllerInspector& it) { return it.validMinFrequencyMargin(); }
inline bool isHighestInRange(const ControllerInspector& it) { return it.isHighestFreqInRange(); }
// clang-format on

/// A constructed controller with the peers that planning asks but without a worker; its single steps run on the test's
/// thread.
class PlanningFixture : public support::ControllerFixture {
protected:
    PlanningFixture()
    {
        construct();
        inspect().m_radioCapability() = &peers.radioCapability;
        inspect().m_propertiesProvider() = peers.radio.createPropertiesProvider();
        log.clear();
        trace.clear();
    }

    /// The controller's end is traced too; hooks of a test must not see it.
    ~PlanningFixture() override
    {
        traceIntoLog.onWrite = nullptr;
        onHostEvent = nullptr;
    }

    void put(const Inputs& in) const
    {
        const ControllerInspector members = inspect();
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

    /// The inputs as they stand in the controller now.
    Inputs found() const
    {
        const ControllerInspector members = inspect();
        return {.spacing = members.m_channelSpacing_kHz(),
            .rx = members.m_currentRxFrequency_kHz(),
            .min = members.m_minRxFrequency_kHz(),
            .max = members.m_maxRxFrequency_kHz(),
            .base = members.m_rxBaseFrequency_kHz(),
            .raster = members.m_frequencyStepSize_kHz(),
            .low = members.m_stepLimitLow(),
            .high = members.m_stepLimitHigh(),
            .band = members.m_frequencyBand_GHz(),
            .longHaul = members.m_properties().longHaul,
            .margin = members.m_frequencyMargin_kHz(),
            .step = members.m_scanStep_kHz(),
            .highest = members.m_scanHighestRxFrequency_kHz()};
    }

    /// The same after a plan, which writes the predicates' own three.
    Inputs foundAfterPlan(const Inputs& before) const
    {
        Inputs now = found();
        now.margin = before.margin;
        now.step = before.step;
        now.highest = before.highest;
        return now;
    }

    Plan plan() const
    {
        const ControllerInspector members = inspect();
        return {members.m_scanStep_kHz(), members.m_frequencyMargin_kHz(), members.m_scanLowestRxFrequency_kHz(),
            members.m_scanHighestRxFrequency_kHz(), members.m_totalNrOfSamples()};
    }

    /// Something in all five outputs, so that a plan that leaves one alone shows.
    void spoilOutputs(Wide value) const
    {
        const ControllerInspector members = inspect();
        members.m_scanStep_kHz() = word(value);
        members.m_frequencyMargin_kHz() = word(value);
        members.m_scanLowestRxFrequency_kHz() = word(value);
        members.m_scanHighestRxFrequency_kHz() = word(value);
        members.m_totalNrOfSamples() = static_cast<std::int32_t>(word(value));
    }

    /// Logs every question for a trace level, too.
    void logTraceQuestions()
    {
        onHostEvent = [this](const std::string& event) { log.add(event); };
    }

    static std::uint32_t word(Wide value) { return static_cast<std::uint32_t>(value); }
};

/// One row of a table: what a plan makes of some inputs.
struct Row {
    const char* why;
    Inputs in;
    Plan expected;
};

/// Runs plans over tables of rows.
class PlanTable : public PlanningFixture {
protected:
    template <std::size_t count>
    void expectRows(RunPlan run, const Row (&rows)[count])
    {
        for (const Row& row : rows) {
            for (const Wide spoilt : {0, 1, 123456789, -1}) {
                put(row.in);
                spoilOutputs(spoilt);
                EXPECT_EQ(run(inspect()), 0) << row.why;
                EXPECT_EQ(plan(), row.expected) << row.why;
                EXPECT_EQ(foundAfterPlan(row.in), row.in) << row.why;
            }
        }
    }

    /// Everything that a plan logs: its entry records and nothing else.
    std::vector<std::string> entriesOf(RunPlan run, const Inputs& in)
    {
        put(in);
        spoilOutputs(77);
        log.clear();
        run(inspect());
        return log.calls();
    }
};

} // namespace planning

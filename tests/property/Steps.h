#pragma once

#include "tests/property/ObservedController.h"
#include "tests/property/SequentialController.h"

#include <array>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace tests {

enum class StepKind : std::uint8_t {
    setUnit,
    setFrequencies,
    setProperties,
    startChannelScan,
    startSubBandScan,
    stop,
    unknownCommand,
    queryProperties,
    endSettling,
    endSweep,
    phaseStop,
    rebirth,
    planFault,
};
constexpr std::size_t nrOfStepKinds = 13;

/// One step of a run; what the value means is the kind's.
struct Step {
    StepKind kind{};
    std::uint32_t value = 0;
};

inline std::ostream& operator<<(std::ostream& stream, const Step& step)
{
    constexpr std::array<const char*, nrOfStepKinds> names{"setUnit", "setFrequencies", "setProperties", "startChannelScan",
        "startSubBandScan", "stop", "unknownCommand", "queryProperties", "endSettling", "endSweep", "phaseStop", "rebirth",
        "planFault"};
    return stream << names.at(static_cast<std::size_t>(step.kind)) << '(' << step.value << ')';
}

/// A run of the real controller beside what it must do.
class Comparison {
public:
    explicit Comparison(std::optional<Fault> fault = {});

    /// Does a step on both sides.
    /// @return what differs, with both sides; empty where nothing does
    std::string take(const Step& step);

    /// Whether the fault's call has come.
    bool hasStruck() const { return m_expected.faults().hasStruck(); }

private:
    void change(const Step& step);
    void act(const Step& step);
    void command(const Step& step);
    void settle(const Step& step);

    SequentialController m_expected;
    ObservedController m_observed;
};

} // namespace tests

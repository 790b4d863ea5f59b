#include "tests/property/Steps.h"

#include <algorithm>
#include <sstream>

namespace tests {

namespace {

constexpr std::array<const char*, 12> typeTexts{
    "QRU7 K", "unit 4741", "unit 4742", "unit 4743", "KLM", "KLM5", "KLM6", "KLM6 P", "SDC", "KLM6 SDC", "klm6", ""};

/// Links whose plans have a few samples, from one to some dozens, near and away from the edges of their sub-bands.
PlanInputs frequenciesNo(std::uint32_t value)
{
    constexpr std::array<Wide, 4> spacings{7000, 14000, 28000, 56000};
    constexpr std::array<Wide, 4> places{18000000, 17961000, 18039000, 17953500};
    constexpr std::array<Wide, 3> bands{18, 42, 43};
    PlanInputs inputs;
    inputs.spacing = spacings.at(value % 4);
    inputs.rx = places.at(value / 4 % 4);
    inputs.band = bands.at(value / 16 % 3);
    inputs.min = 17950000;
    inputs.max = 18050000;
    inputs.base = 17000000;
    inputs.low = 3800;
    inputs.high = 3800 + 60 * (1 + value / 48 % 3);
    return inputs;
}

SDCProperties propertiesNo(std::uint32_t value)
{
    SDCProperties properties{};
    properties.longHaul = static_cast<std::uint8_t>(value & 1U);
    properties.slowRxWait = static_cast<std::uint8_t>(value & 2U);
    properties.extendedRxWait = static_cast<std::uint8_t>(value & 4U);
    properties.spareFlag = static_cast<std::uint8_t>(value & 8U);
    return properties;
}

Fault faultNo(std::uint32_t value)
{
    return {static_cast<Operation>(value % nrOfOperations), 1 + value / 36 % 4,
        static_cast<Misbehaviour>(value / nrOfOperations % nrOfMisbehaviours)};
}

/// Calls on the caller's thread and on the worker's come in one order, what a call returns may come before or after.
std::vector<std::string> outcomesLast(const std::vector<std::string>& lines)
{
    std::vector<std::string> calls;
    std::vector<std::string> outcomes;
    for (const std::string& line : lines) {
        const bool isOutcome = line.starts_with("returned ") || line.starts_with("threw ");
        (isOutcome ? outcomes : calls).push_back(line);
    }
    calls.insert(calls.end(), outcomes.begin(), outcomes.end());
    return calls;
}

std::string differenceOf(const std::vector<std::string>& expected, const std::vector<std::string>& observed)
{
    if (expected == observed) {
        return {};
    }
    std::ostringstream text;
    for (std::size_t index = 0; index < std::max(expected.size(), observed.size()); ++index) {
        const std::string left = index < expected.size() ? expected[index] : "(nothing)";
        const std::string right = index < observed.size() ? observed[index] : "(nothing)";
        text << (left == right ? "  " : "! ") << "must: " << left << (left == right ? "" : "   does: " + right) << '\n';
    }
    return text.str();
}

} // namespace

Comparison::Comparison(std::optional<Fault> fault)
    : m_expected(fault)
    , m_observed(fault)
{
    m_expected.radio.parameters = frequenciesNo(0);
    m_observed.setRadio(m_expected.radio);
}

std::string Comparison::take(const Step& step)
{
    change(step);
    command(step);
    act(step);
    settle(step);
    const std::string calls = differenceOf(outcomesLast(m_expected.takeLines()), m_observed.takeLines());
    return calls + differenceOf(m_expected.look(), m_observed.look());
}

void Comparison::change(const Step& step)
{
    Radio& radio = m_expected.radio;
    switch (step.kind) {
    case StepKind::setUnit: radio.typeText = typeTexts.at(step.value % typeTexts.size()); break;
    case StepKind::setFrequencies: radio.parameters = frequenciesNo(step.value); break;
    case StepKind::setProperties: radio.properties = propertiesNo(step.value); break;
    case StepKind::planFault:
        m_expected.plan(faultNo(step.value));
        m_observed.plan(faultNo(step.value));
        break;
    default: return;
    }
    m_observed.setRadio(radio);
}

void Comparison::command(const Step& step)
{
    switch (step.kind) {
    case StepKind::startChannelScan:
    case StepKind::startSubBandScan: {
        const std::int32_t number = step.kind == StepKind::startChannelScan ? 0 : 1;
        m_expected.start(number);
        m_observed.start(number);
        break;
    }
    case StepKind::stop:
        m_expected.stop();
        m_observed.stop();
        break;
    case StepKind::unknownCommand: {
        const std::int32_t number = static_cast<std::int32_t>(step.value % 5) + (step.value % 2 == 0 ? 3 : -5);
        m_expected.unknownCommand(number);
        m_observed.unknownCommand(number);
        break;
    }
    default: break;
    }
}

void Comparison::act(const Step& step)
{
    if (step.kind == StepKind::queryProperties) {
        m_expected.queryProperties();
        m_observed.queryProperties();
    } else if (step.kind == StepKind::phaseStop && m_expected.worker() != WorkerPlace::settles) {
        m_expected.phaseStop();
        m_observed.phaseStop();
    } else if (step.kind == StepKind::rebirth) {
        m_expected.rebirth();
        m_observed.rebirth();
    }
}

void Comparison::settle(const Step& step)
{
    if (step.kind == StepKind::endSettling) {
        m_expected.endSettling();
        m_observed.endSettling();
    }
    while (step.kind == StepKind::endSweep && m_expected.worker() == WorkerPlace::settles) {
        m_expected.endSettling();
        m_observed.endSettling();
    }
}

} // namespace tests

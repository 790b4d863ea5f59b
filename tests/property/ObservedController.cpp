#include "tests/property/ObservedController.h"

#include "tests/support/Waiting.h"

#include "Platform/Host/ResultCode.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <string_view>

namespace tests {

namespace {

constexpr std::int32_t mostSamples = 100; // more than any run's plans have

/// What the sequential machine tells, too: calls of peers, delays, errors and refusals.
bool isTold(const std::string& line)
{
    constexpr std::array<std::string_view, 10> told{"IFrameFormat.", "IFrequencyController.", "IRssiHandler.",
        "IRadioCapability.", "IRadio.", "provider.", "sleep", "trace 1 ", "trace 5 Scan ", "trace 5 Thread exited"};
    return std::ranges::any_of(told, [&line](std::string_view prefix) { return line.starts_with(prefix); });
}

} // namespace

ObservedController::ObservedController(std::optional<Fault> fault)
    : m_faults(fault)
{
    scriptPeers();
    log.onAdd([this](const std::string& call) { follow(call); });
    sleep.close();
    ControllerFixture::start();
    takeLines();
}

ObservedController::~ObservedController()
{
    m_faults = FaultScript();
    sleep.open();
    destroy();
}

/// What goes wrong at a call, other than what its own answer says.
void ObservedController::follow(const std::string& call)
{
    if (call == "IFrameFormat.getChannelSpacing") {
        m_faults.call(Operation::getChannelSpacing);
    } else if (call == "IFrequencyController.getRxFrequency") {
        m_faults.call(Operation::getRxFrequency);
    } else if (call == "IRadioCapability.getFrequencyParameters") {
        m_faults.call(Operation::getFrequencyParameters);
    } else if (call == "provider.getProperties") {
        peers.radio.propertiesResult = m_faults.call(Operation::getProperties) ? PLX_RC_FAILED : 0;
    } else if (call.starts_with("provider.getUnitInfo")) {
        peers.radio.typeText = m_faults.call(Operation::getUnitInfo) ? "" : m_typeText;
    } else if (call == "sleep.get") {
        m_faults.call(Operation::getSleepService);
    } else if (call.starts_with("sleepMs")) {
        m_faults.call(Operation::sleepMs);
    } else if (call.starts_with(exited)) {
        m_hasWorkerEnded = true;
    }
}

void ObservedController::scriptPeers()
{
    peers.frequencyController.onSetRxFrequency = [this](std::uint32_t) {
        const std::optional<Misbehaviour> wrong = m_faults.call(Operation::setRxFrequency);
        return wrong == Misbehaviour::refuses ? PLX_RC_FAILED : wrong ? oddCode : 0;
    };
    peers.rssiHandler.onReadRssi = [this](std::int32_t& rssi) {
        const std::optional<Misbehaviour> wrong = m_faults.call(Operation::readRssi);
        ++m_readings;
        if (wrong == Misbehaviour::refuses) {
            return PLX_RC_FAILED;
        }
        rssi = wrong ? oddReading : reading(m_readings);
        return 0;
    };
}

void ObservedController::setRadio(const Radio& radio)
{
    const PlanInputs& in = radio.parameters;
    const auto word = [](Wide value) { return static_cast<std::uint32_t>(value); };
    peers.frameFormat.channelSpacing_kHz = word(in.spacing);
    peers.frequencyController.rxFrequency_kHz = word(in.rx);
    peers.radioCapability.parameters = {word(in.band), {1, 2, 3}, word(in.min), word(in.max), word(in.raster), 7,
        word(in.base), {9, 10}, word(in.low), word(in.high)};
    peers.radio.properties = radio.properties;
    m_typeText = radio.typeText;
}

/// Quiet: the worker stands in a delay, is back in its wait, or has ended.
bool ObservedController::isQuiet() const
{
    return sleep.hasSleeper() || inspect().getState() == SpectrumDiagnosticsController::STATE_IDLE || m_hasWorkerEnded;
}

bool ObservedController::waitUntilQuiet() const
{
    if (!eventually([this] { return isQuiet(); })) {
        return false;
    }
    if (!sleep.hasSleeper()) {
        const std::lock_guard<std::mutex> workerWaits(inspect().m_mutex()); // or has ended
    }
    return true;
}

void ObservedController::guarded(const std::function<std::int32_t()>& call)
{
    m_outcomes.push_back(outcomeOf(call));
}

void ObservedController::setCommand(std::int32_t command)
{
    guarded([this, command] { return controller->setCommand(static_cast<ESDCCommand>(command), 17); });
}

/// While the worker waits it gives up its lock; a start that is given then cannot be lost.
void ObservedController::start(std::int32_t command)
{
    if (sleep.hasSleeper()) {
        setCommand(command);
    } else {
        const std::lock_guard<std::mutex> workerWaits(inspect().m_mutex());
        setCommand(command);
    }
    EXPECT_TRUE(waitUntilQuiet());
}

/// Blocks while a sweep runs, so that the sequential machine has no such step.
void ObservedController::phaseStop()
{
    EXPECT_EQ(controller->onPhaseStop(), 0U);
}

void ObservedController::endSettling()
{
    if (sleep.hasSleeper()) {
        sleep.letOnePass();
        EXPECT_TRUE(waitUntilQuiet());
    }
}

void ObservedController::queryProperties()
{
    guarded([this] { return asNumber(controller->getSpectrumDiagnosticsProperties()); });
}

void ObservedController::rebirth()
{
    sleep.open();
    destroy();
    sleep.close();
    m_hasWorkerEnded = false;
    ControllerFixture::start();
}

std::vector<std::string> ObservedController::look() const
{
    const ControllerInspector members = inspect();
    std::vector<std::string> lines{"state " + std::to_string(members.getState()),
        "status " + std::to_string(controller->getStatus()), "progress " + std::to_string(controller->getProgress()),
        "command " + std::to_string(members.m_command()),
        "receiver " + std::to_string(peers.frequencyController.receiver_kHz)};
    std::array<SDCResult, mostSamples> copies{};
    std::int32_t count = mostSamples;
    EXPECT_EQ(controller->getResult(&count, copies.data()), SDC_RC_OK);
    EXPECT_LT(count, mostSamples);
    for (std::int32_t index = 0; index < count; ++index) {
        lines.push_back(sampleLine(copies.at(static_cast<std::size_t>(index))));
    }
    return lines;
}

std::vector<std::string> ObservedController::takeLines()
{
    std::vector<std::string> lines = log.take();
    std::erase_if(lines, [](const std::string& line) { return !isTold(line); });
    trace.clear();
    lines.insert(lines.end(), m_outcomes.begin(), m_outcomes.end());
    m_outcomes.clear();
    return lines;
}

} // namespace tests

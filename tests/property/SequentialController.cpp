#include "tests/property/SequentialController.h"

#include <array>
#include <bit>
#include <exception>
#include <string_view>

namespace tests {

namespace {

constexpr std::int32_t refused = 32768;

/// How a unit is planned.
enum class Family : std::uint8_t { standard, single, raster, none };

Family familyOf(const std::string& typeText)
{
    constexpr std::array<std::pair<std::string_view, Family>, 9> rows{{{"QRU7 K", Family::standard},
        {"4741", Family::standard}, {"4742", Family::single}, {"4743", Family::raster}, {"KLM5", Family::raster},
        {"KLM6 P", Family::raster}, {"KLM6", Family::standard}, {"KLM", Family::standard}, {"SDC", Family::standard}}};
    for (const auto& [text, family] : rows) {
        if (typeText.find(text) != std::string::npos) {
            return family;
        }
    }
    return Family::none;
}

std::optional<Plan> planOf(Family family, bool isChannelScan, const PlanInputs& inputs)
{
    if (isChannelScan) {
        return family == Family::standard ? expectedChannelScanStd(inputs) : expectedChannelScan4742_4743(inputs);
    }
    switch (family) {
    case Family::standard: return expectedSubBandScanStd(inputs);
    case Family::single: return expectedSubBandScan4742(inputs);
    default: return expectedSubBandScan4743(inputs);
    }
}

} // namespace

std::string outcomeOf(const std::function<std::int32_t()>& call)
{
    try {
        return "returned " + std::to_string(call());
    } catch (const std::exception& exception) {
        return std::string("threw ") + exception.what();
    } catch (...) {
        return "threw something else";
    }
}

std::string sampleLine(const SDCResult& sample)
{
    return "sample " + std::to_string(sample.frequency_kHz) + " " + std::to_string(sample.rssi);
}

std::int32_t asNumber(const SDCProperties& properties)
{
    return std::bit_cast<std::int32_t>(properties);
}

std::vector<std::string> SequentialController::look() const
{
    std::vector<std::string> lines{"state " + std::to_string(m_state), "status " + std::to_string(m_status),
        "progress " + std::to_string(m_progress), "command " + std::to_string(m_command),
        "receiver " + std::to_string(radio.receiver_kHz)};
    for (const SDCResult& sample : m_samples) {
        lines.push_back(sampleLine(sample));
    }
    return lines;
}

/// A call of a peer or of the host; throws what that throws.
std::optional<Misbehaviour> SequentialController::call(Operation operation, const std::string& line)
{
    m_lines.push_back(line);
    return m_faults.call(operation);
}

/// A call from outside: what it returns, or what comes out of it.
void SequentialController::guarded(const std::function<std::int32_t()>& callFromOutside)
{
    m_lines.push_back(outcomeOf(callFromOutside));
}

void SequentialController::start(std::int32_t command)
{
    guarded([this, command] { return accept(command); });
    if (m_state == scan && m_worker == WorkerPlace::waits) {
        work([this] { beginSweep(); });
    }
}

std::int32_t SequentialController::accept(std::int32_t command)
{
    if (m_state != idle) {
        m_lines.push_back("trace 5 Scan already in progress " + std::to_string(m_status));
        return 0;
    }
    m_command = command;
    m_status = 0;
    m_progress = 0;
    call(Operation::getChannelSpacing, "IFrameFormat.getChannelSpacing");
    call(Operation::getRxFrequency, "IFrequencyController.getRxFrequency");
    m_configured_kHz = static_cast<std::uint32_t>(radio.parameters.rx);
    call(Operation::getFrequencyParameters, "IRadioCapability.getFrequencyParameters");
    m_firstWait_ms = m_properties.extendedRxWait != 0 ? 60000 : 3000;
    m_wait_ms = m_properties.extendedRxWait != 0 ? 60000 : m_properties.slowRxWait != 0 ? 2000 : 300;
    if (!planSweep(command)) {
        m_lines.emplace_back("trace 1 Unsupported QRU");
        return refused;
    }
    m_status = command == 0 ? 2 : 1;
    m_state = scan;
    return 0;
}

bool SequentialController::planSweep(std::int32_t command)
{
    const bool tellsNothing = call(Operation::getUnitInfo, "provider.getUnitInfo with \"\"").has_value();
    const std::string typeText = tellsNothing ? "" : radio.typeText;
    const Family family = familyOf(typeText);
    if (family == Family::none) {
        m_lines.push_back("trace 1 Unknown radio type : (" + typeText + ")");
        return false;
    }
    PlanInputs inputs = radio.parameters;
    inputs.longHaul = m_properties.longHaul;
    m_plan = planOf(family, command == 0, inputs);
    return m_plan.has_value();
}

void SequentialController::stop()
{
    guarded([this] {
        if (m_state == idle) {
            m_lines.emplace_back("trace 5 Scan is not running");
        } else {
            m_command = 2;
            m_state = abandon;
        }
        m_progress = 0;
        m_status = 0;
        return 0;
    });
}

void SequentialController::unknownCommand(std::int32_t command)
{
    guarded([this, command] {
        m_lines.push_back("trace 1 Unknown command " + std::to_string(command));
        return 32770;
    });
}

void SequentialController::phaseStop()
{
    m_state = idle;
}

void SequentialController::queryProperties()
{
    guarded([this] {
        call(Operation::getProperties, "provider.getProperties");
        m_properties = radio.properties;
        return asNumber(m_properties);
    });
}

/// A piece of the worker's life; an exception ends it where it stands.
void SequentialController::work(const std::function<void()>& piece)
{
    try {
        piece();
    } catch (const std::exception& exception) {
        m_worker = WorkerPlace::ended;
        m_lines.push_back(std::string("trace 1 Exception timerThread SpectDiagCtrl7: ") + exception.what());
        tellEnd();
    } catch (...) {
        m_worker = WorkerPlace::ended;
        m_lines.emplace_back("trace 1 Unknown exception in timerThread SpectDiagCtrl7");
        tellEnd();
    }
}

void SequentialController::tellEnd()
{
    constexpr std::array<const char*, 5> texts{
        "scan-not-started", "sub-band-ongoing", "channel-scan-ongoing", "sub-band-scan-finished", "channel-scan-finished"};
    m_lines.push_back(std::string("trace 5 Thread exited with m_status ") + texts.at(static_cast<std::size_t>(m_status)));
}

void SequentialController::beginSweep()
{
    call(Operation::getProperties, "provider.getProperties");
    m_properties = radio.properties;
    m_samples.clear();
    m_frequency_kHz = static_cast<std::uint32_t>(m_plan->lowest);
    nextStep();
}

/// Up to the next delay, or to the end of the sweep.
void SequentialController::nextStep()
{
    const auto total = static_cast<std::size_t>(m_plan->samples);
    if (m_state != scan || m_frequency_kHz > m_plan->highest || m_samples.size() == total) {
        endSweep();
        return;
    }
    if (!tune(m_frequency_kHz)) {
        m_lines.push_back("trace 1 Failed to set RX frequency " + std::to_string(m_frequency_kHz));
        m_state = abandon;
        endSweep();
        return;
    }
    call(Operation::getSleepService, "sleep.get");
    const std::uint32_t wait_ms = total == 1 ? 5000 : m_samples.empty() ? m_firstWait_ms : m_wait_ms;
    call(Operation::sleepMs, "sleepMs " + std::to_string(wait_ms));
    m_worker = WorkerPlace::settles;
}

void SequentialController::endSettling()
{
    if (m_worker != WorkerPlace::settles) {
        return;
    }
    work([this] {
        std::int32_t rssi = 0;
        const std::optional<Misbehaviour> wrong = call(Operation::readRssi, "IRssiHandler.readRssi");
        ++m_readings;
        if (wrong != Misbehaviour::refuses) {
            rssi = wrong ? -9970 : reading(m_readings);
        }
        m_progress = static_cast<std::int32_t>(100 * m_samples.size() / static_cast<std::size_t>(m_plan->samples));
        m_samples.push_back({m_frequency_kHz, rssi});
        m_frequency_kHz += static_cast<std::uint32_t>(m_plan->step);
        nextStep();
    });
}

void SequentialController::endSweep()
{
    if (!tune(m_configured_kHz)) {
        m_lines.push_back("trace 1 Failed to restore RX frequency " + std::to_string(m_configured_kHz));
    }
    const std::int32_t finished = m_status == 2 ? 4 : m_status == 1 ? 3 : 0;
    m_status = m_state == abandon ? 0 : finished;
    m_state = idle;
    m_worker = WorkerPlace::waits;
}

bool SequentialController::tune(std::uint32_t frequency_kHz)
{
    const std::string line = "IFrequencyController.setRxFrequency " + std::to_string(frequency_kHz) + " true";
    if (call(Operation::setRxFrequency, line) == Misbehaviour::refuses) {
        return false;
    }
    radio.receiver_kHz = frequency_kHz;
    return true;
}

void SequentialController::rebirth()
{
    while (m_worker == WorkerPlace::settles) {
        endSettling();
    }
    if (m_worker != WorkerPlace::ended) {
        tellEnd();
    }
    m_lines.emplace_back("provider.destroyed");
    m_lines.emplace_back("IRadio.createPropertiesProvider");
    const SequentialController before = *this;
    *this = SequentialController({});
    radio = before.radio;
    m_faults = before.m_faults;
    m_lines = before.m_lines;
    m_readings = before.m_readings;
}

} // namespace tests

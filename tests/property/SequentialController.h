#pragma once

#include "tests/property/Faults.h"
#include "tests/support/PlanReference.h"

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tests {

/// What the peers of a channel answer.
struct Radio {
    PlanInputs parameters;
    SDCProperties properties{};
    std::string typeText = "KLM6";
    std::uint32_t receiver_kHz = 18000000; ///< where the receiver stands; sweeps move it
};

enum class WorkerPlace : std::uint8_t { waits, settles, ended };

/// What the controller must do, as a machine of one thread: a sweep goes on from delay to delay when it is told to. Written
/// from the rules of the system, not from the controller; every call, refusal and error text becomes a line, spelt as the
/// fakes spell it.
class SequentialController {
public:
    explicit SequentialController(std::optional<Fault> fault)
        : m_faults(fault)
    {
    }

    void start(std::int32_t command);
    void stop();
    void unknownCommand(std::int32_t command);
    void phaseStop();
    void endSettling();
    void queryProperties();
    void rebirth(); ///< a sweep runs to its end, the controller is destroyed, another is constructed and initialised

    void plan(const Fault& fault) { m_faults.plan(fault); }
    const FaultScript& faults() const { return m_faults; }
    WorkerPlace worker() const { return m_worker; }
    bool isIdle() const { return m_state == idle; }

    /// State, status, progress, last command, samples and receiver, as lines.
    std::vector<std::string> look() const;

    /// All lines since the last time.
    std::vector<std::string> takeLines() { return std::exchange(m_lines, {}); }

    Radio radio;

private:
    static constexpr std::uint32_t idle = 1;
    static constexpr std::uint32_t scan = 2;
    static constexpr std::uint32_t abandon = 3;

    void guarded(const std::function<std::int32_t()>& call);
    std::int32_t accept(std::int32_t command);
    bool planSweep(std::int32_t command);
    void work(const std::function<void()>& piece);
    void beginSweep();
    void nextStep();
    void endSweep();
    bool tune(std::uint32_t frequency_kHz);
    std::optional<Misbehaviour> call(Operation operation, const std::string& line);
    void tellEnd();

    FaultScript m_faults;
    std::vector<std::string> m_lines;
    WorkerPlace m_worker = WorkerPlace::waits;
    std::uint32_t m_state = idle;
    std::int32_t m_status = 0;
    std::int32_t m_progress = 0;
    std::int32_t m_command = 2;
    std::uint32_t m_wait_ms = 0;
    std::uint32_t m_firstWait_ms = 0;
    std::uint32_t m_configured_kHz = 0;
    SDCProperties m_properties{};
    std::optional<Plan> m_plan;
    std::uint32_t m_frequency_kHz = 0;
    std::vector<SDCResult> m_samples;
    std::int32_t m_readings = 0;
};

/// The n-th reading of a run, so that no two samples are alike.
inline std::int32_t reading(std::int32_t nth)
{
    return -4000 - nth;
}

inline constexpr std::int32_t oddReading = -12000;
inline constexpr std::int32_t oddCode = -1;

/// What a call returned, or what came out of it, as a line.
std::string outcomeOf(const std::function<std::int32_t()>& call);

std::string sampleLine(const SDCResult& sample);

/// The four bytes of a record.
std::int32_t asNumber(const SDCProperties& properties);

} // namespace tests

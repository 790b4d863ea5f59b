#pragma once

#include "tests/property/SequentialController.h"
#include "tests/support/ControllerFixture.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tests {

/// The real controller with its worker, between fake peers that follow a fault script. Its sweeps stand at every delay until
/// they are told to go on; after every call all is quiet: the worker waits, stands in a delay, or has ended.
class ObservedController : public ControllerFixture {
public:
    explicit ObservedController(std::optional<Fault> fault);
    ~ObservedController() override;

    void start(std::int32_t command);
    void stop() { setCommand(2); }
    void unknownCommand(std::int32_t command) { setCommand(command); }
    void phaseStop();
    void endSettling();
    void queryProperties();
    void rebirth();

    void plan(const Fault& fault) { m_faults.plan(fault); }
    bool hasStruck() const { return m_faults.hasStruck(); }
    void setRadio(const Radio& radio);
    std::vector<std::string> look() const;
    std::vector<std::string> takeLines();

private:
    void TestBody() override {}
    void scriptPeers();
    void follow(const std::string& call);
    void guarded(const std::function<std::int32_t()>& call);
    void setCommand(std::int32_t command);
    bool isQuiet() const;
    bool waitUntilQuiet() const;

    FaultScript m_faults;
    std::vector<std::string> m_outcomes;
    std::string m_typeText = "KLM6";
    std::atomic<bool> m_hasWorkerEnded{false};
    std::int32_t m_readings = 0;
};

} // namespace tests

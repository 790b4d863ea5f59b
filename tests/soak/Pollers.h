#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace soak {

/// Threads that ask controllers for status, progress and samples all the time, and look whether the answers can be.
class Pollers {
public:
    Pollers(std::vector<ISpectrumDiagnosticsController*> controllers, std::size_t threads);
    ~Pollers();
    Pollers(const Pollers&) = delete;
    Pollers& operator=(const Pollers&) = delete;

    /// @throws SoakFailure when an answer could not be
    void check() const;

private:
    void poll();
    void ask(ISpectrumDiagnosticsController& controller, std::vector<SDCResult>& room);
    void reportInvalid(const std::string& text);

    const std::vector<ISpectrumDiagnosticsController*> m_controllers;
    std::atomic<bool> m_isEnding{false};
    mutable std::mutex m_guard;
    std::string m_invalidAnswer;
    std::vector<std::thread> m_threads;
};

} // namespace soak

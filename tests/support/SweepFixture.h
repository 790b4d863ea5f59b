#pragma once

#include "tests/support/ControllerFixture.h"

#include <cstdint>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <pthread.h>

namespace support {

using Calls = std::vector<std::string>;

inline Calls operator+(Calls left, const Calls& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// What a sweep was planned to do.
struct SweepPlan {
    std::uint32_t lowest_kHz = 100000;
    std::uint32_t highest_kHz = 100100;
    std::uint32_t step_kHz = 50;
    std::int32_t total = 3;
};

/// A controller that is bound to its peers and has a plan, but no worker: runScan runs on the test's own thread.
class SweepFixture : public ControllerFixture {
protected:
    static constexpr std::uint32_t firstWait_ms = 3000;
    static constexpr std::uint32_t wait_ms = 300;
    static constexpr std::uint32_t configured_kHz = 18000000;

    /// The hook goes before the controller does: it may refer to what the test had.
    ~SweepFixture() override { log.onAdd = nullptr; }

    /// A fresh controller; the log is empty afterwards.
    void prepare(const SweepPlan& plan = {}, std::uint32_t channel = 7)
    {
        log.onAdd = nullptr;
        destroy();
        construct(channel);
        const ControllerInspector members = inspect();
        members.m_frequencyController() = &peers.frequencyController;
        members.m_rssiHandler() = &peers.rssiHandler;
        members.m_propertiesProvider() = peers.radio.createPropertiesProvider();
        members.m_threadName() = "SpectDiagCtrl7";
        setPlan(plan);
        log.clear();
        trace.clear();
    }

    /// As a start command leaves it.
    void setPlan(const SweepPlan& plan, ESDCStatus status = SDC_STATUS_CHANNEL_SCAN_ONGOING) const
    {
        const ControllerInspector members = inspect();
        members.m_scanLowestRxFrequency_kHz() = plan.lowest_kHz;
        members.m_scanHighestRxFrequency_kHz() = plan.highest_kHz;
        members.m_scanStep_kHz() = plan.step_kHz;
        members.m_totalNrOfSamples() = plan.total;
        members.m_channelSpacing_kHz() = 28000;
        members.m_currentRxFrequency_kHz() = configured_kHz;
        members.m_firstSetRxWait_ms() = firstWait_ms;
        members.m_setRxWait_ms() = wait_ms;
        members.m_status() = status;
        members.m_state() = SpectrumDiagnosticsController::STATE_SCAN;
    }

    void setState(SpectrumDiagnosticsController::State state) const { inspect().setState(state); }

    std::vector<std::uint32_t> sampledFrequencies() const
    {
        std::vector<std::uint32_t> frequencies;
        for (const SDCResult& sample : samples()) {
            frequencies.push_back(sample.frequency_kHz);
        }
        return frequencies;
    }

    /// Tries m_mutex from a thread of its own: the calling one may hold it.
    bool isMutexFree() const
    {
        const auto tryLock = [this] {
            return std::unique_lock<std::mutex>(inspect().m_mutex(), std::try_to_lock).owns_lock();
        };
        return std::async(std::launch::async, tryLock).get();
    }

    /// Makes a mutex one that fails when its own thread locks it again.
    static void makeCheckErrors(std::mutex& mutex)
    {
        pthread_mutexattr_t attributes{};
        pthread_mutexattr_init(&attributes);
        pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
        pthread_mutex_destroy(mutex.native_handle());
        pthread_mutex_init(mutex.native_handle(), &attributes);
        pthread_mutexattr_destroy(&attributes);
    }

    /// Logs, from now on, also every question whether a level is enabled.
    void logQuestions()
    {
        onHostEvent = [this](const std::string& event) {
            if (event.starts_with("trace.isEnabled")) {
                log.add(event);
            }
        };
    }

    /// Runs an action at the n-th occurrence (from 1) of a call in the log, in place of any set before.
    void at(const std::string& call, const std::function<void()>& action, int nth = 1)
    {
        log.onAdd = [call, action, nth, seen = 0](const std::string& added) mutable {
            if (added == call && ++seen == nth) {
                action();
            }
        };
    }

    static std::string tune(std::uint32_t frequency_kHz)
    {
        return "IFrequencyController.setRxFrequency " + std::to_string(frequency_kHz) + " true";
    }

    /// The calls of one step of a sweep, trace left out.
    static Calls step(std::uint32_t frequency_kHz, std::uint32_t delay_ms)
    {
        return {tune(frequency_kHz), "sleep.get", "sleepMs " + std::to_string(delay_ms), "IRssiHandler.readRssi"};
    }

    /// The calls of a whole sweep over these frequencies with the ordinary delays, trace left out.
    static Calls sweepOver(const std::vector<std::uint32_t>& frequencies_kHz)
    {
        Calls calls{"provider.getProperties"};
        std::uint32_t delay_ms = firstWait_ms;
        for (const std::uint32_t frequency_kHz : frequencies_kHz) {
            calls = std::move(calls) + step(frequency_kHz, std::exchange(delay_ms, wait_ms));
        }
        return std::move(calls) + Calls{tune(configured_kHz)};
    }
};

} // namespace support

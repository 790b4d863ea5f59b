#pragma once

#include "Platform/Host/DefaultSleepApi.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>

namespace simulator {

/// Time as the simulated terminal knows it: a sleep service that also tells how late it is.
///
/// All operations may be called from any thread.
class Clock : public Util::SleepApi {
public:
    using Duration = std::chrono::nanoseconds;

    /// Waits while the clock is held, then lets the time pass for the calling thread.
    void sleepMs(std::uint32_t milliseconds) final;

    /// Simulated time since the clock was made, as the calling thread sees it.
    virtual Duration now() = 0;

    /// Holds the clock: sleeps that begin from now on wait until release. What lies between happens at one moment.
    void hold();
    void release();

private:
    virtual void pass(Duration duration) = 0;

    std::mutex m_holdGuard;
    std::condition_variable m_released;
    bool m_isHeld = false;
};

/// Wall time, or faster by a factor: a second passes in 1/factor of a second.
class RealClock : public Clock {
public:
    /// @param factor above 0; 1 is real time
    explicit RealClock(double factor = 1.0);

    Duration now() override;

private:
    void pass(Duration duration) override;

    double m_factor;
    std::chrono::steady_clock::time_point m_start;
};

/// No wall time at all: a sleep returns at once and moves the clock on. Each thread has a timeline of its own, so that
/// several sweeps at once do not see each other's delays.
class VirtualClock : public Clock {
public:
    Duration now() override;

private:
    void pass(Duration duration) override;

    std::mutex m_timelinesGuard;
    std::map<std::thread::id, Duration> m_timelines;
};

/// Puts a sleep service in force for as long as it lives; the one before it comes back afterwards. Without any, modules get
/// real time. Make and end it while no module sleeps.
class SleepServiceInForce {
public:
    explicit SleepServiceInForce(Util::SleepApi& service);
    ~SleepServiceInForce();
    SleepServiceInForce(const SleepServiceInForce&) = delete;
    SleepServiceInForce& operator=(const SleepServiceInForce&) = delete;

private:
    Util::SleepApi* m_before;
};

} // namespace simulator

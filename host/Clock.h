#pragma once

#include "Platform/Host/DefaultSleepApi.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

namespace host {

/// Time as modules get it: a sleep service that also tells how late it is.
///
/// Each thread has a timeline of its own, which its sleeps move on by exactly what they were asked for. Whatever depends on
/// simulated time is therefore the same at any speed, and several sweeps at once do not see each other's delays.
///
/// All operations may be called from any thread.
class Clock : public Util::SleepApi {
public:
    using Duration = std::chrono::nanoseconds;

    /// Lets the time pass for the calling thread. Does not return while the clock is held.
    void sleepMs(std::uint32_t milliseconds) final;

    /// Simulated time of the calling thread: the sum of its sleeps, and of what has passed for all threads.
    Duration now();

    /// Moves the timelines of all threads on at once, those too that begin later. Takes no wall time.
    void pass(Duration simulated);

    /// Holds the clock: no sleep ends until as many releases. What lies between happens at one moment.
    void hold();
    void release();

    /// From now on no sleep takes wall time, those in hand included, held or not; until as many calls of endHurry.
    void hurry();
    void endHurry();

    /// Number of threads that sleep at the moment.
    int sleepers() const;

private:
    /// The wall time that a sleep of this length takes.
    virtual Duration wallTime(Duration simulated) const = 0;

    mutable std::mutex m_guard;
    std::condition_variable m_changed;
    int m_holds = 0;
    int m_hurries = 0;
    int m_sleepers = 0;
    Duration m_passed{}; ///< for all threads
    std::map<std::thread::id, Duration> m_timelines;
};

/// Real time, or faster by a factor: a second passes in 1/factor of a second.
class RealClock : public Clock {
public:
    /// @param factor  above 0 and finite; 1 is real time
    /// @throws std::invalid_argument for any other
    explicit RealClock(double factor = 1.0);

    /// At most a hundred years: more would not fit into a duration.
    Duration wallTime(Duration simulated) const override;

private:
    double m_factor;
};

/// No wall time at all: a sleep returns at once.
class VirtualClock : public Clock {
private:
    Duration wallTime(Duration) const override { return {}; }
};

/// A clock by its speed.
/// @param factor  1 is real time, more is faster; 0: virtual time
/// @throws std::invalid_argument for a factor below 0 or not finite
std::unique_ptr<Clock> makeClock(double factor);

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

} // namespace host

#include "host/Clock.h"

#include "host/HostObserver.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <ratio>
#include <stdexcept>

namespace host {

namespace {

std::atomic<Util::SleepApi*> serviceInForce{nullptr};

} // namespace

void Clock::sleepMs(std::uint32_t milliseconds)
{
    const Duration duration = std::chrono::milliseconds(milliseconds);
    std::unique_lock<std::mutex> lock(m_guard);
    ++m_sleepers;
    if (const Duration wall = wallTime(duration); wall > Duration::zero()) {
        m_changed.wait_for(lock, wall, [this] { return m_hurries > 0; });
    }
    m_changed.wait(lock, [this] { return m_holds == 0 || m_hurries > 0; });
    --m_sleepers;
    m_timelines[std::this_thread::get_id()] += duration;
}

Clock::Duration Clock::now()
{
    const std::lock_guard<std::mutex> lock(m_guard);
    return m_passed + m_timelines[std::this_thread::get_id()];
}

void Clock::pass(Duration simulated)
{
    const std::lock_guard<std::mutex> lock(m_guard);
    m_passed += simulated;
}

void Clock::hold()
{
    const std::lock_guard<std::mutex> lock(m_guard);
    ++m_holds;
}

void Clock::release()
{
    const std::lock_guard<std::mutex> lock(m_guard);
    m_holds = std::max(m_holds - 1, 0);
    m_changed.notify_all();
}

void Clock::hurry()
{
    const std::lock_guard<std::mutex> lock(m_guard);
    ++m_hurries;
    m_changed.notify_all();
}

void Clock::endHurry()
{
    const std::lock_guard<std::mutex> lock(m_guard);
    --m_hurries;
}

int Clock::sleepers() const
{
    const std::lock_guard<std::mutex> lock(m_guard);
    return m_sleepers;
}

RealClock::RealClock(double factor)
    : m_factor(factor)
{
    if (!(factor > 0.0) || !std::isfinite(factor)) {
        throw std::invalid_argument("the factor of a clock must be above 0 and finite");
    }
}

Clock::Duration RealClock::wallTime(Duration simulated) const
{
    constexpr std::chrono::duration<double, std::nano> hundredYears = std::chrono::hours(100 * 365 * 24);
    const std::chrono::duration<double, std::nano> wallTime = simulated / m_factor;
    return std::chrono::duration_cast<Duration>(std::min(wallTime, hundredYears));
}

std::unique_ptr<Clock> makeClock(double factor)
{
    if (factor == 0.0) {
        return std::make_unique<VirtualClock>();
    }
    return std::make_unique<RealClock>(factor);
}

SleepServiceInForce::SleepServiceInForce(Util::SleepApi& service)
    : m_before(serviceInForce.exchange(&service))
{
}

SleepServiceInForce::~SleepServiceInForce()
{
    serviceInForce = m_before;
}

} // namespace host

Util::SleepApi& Util::DefaultSleepApi::get()
{
    host::tellHostObserver("sleep.get");
    static host::RealClock realTime;
    Util::SleepApi* const service = host::serviceInForce;
    return service == nullptr ? realTime : *service;
}

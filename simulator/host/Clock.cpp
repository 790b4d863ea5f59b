#include "simulator/host/Clock.h"

#include "simulator/host/HostObserver.h"

#include <atomic>
#include <stdexcept>

namespace simulator {

namespace {

std::atomic<Util::SleepApi*> serviceInForce{nullptr};

} // namespace

void Clock::sleepMs(std::uint32_t milliseconds)
{
    {
        std::unique_lock<std::mutex> lock(m_holdGuard);
        m_released.wait(lock, [this] { return !m_isHeld; });
    }
    pass(std::chrono::milliseconds(milliseconds));
}

void Clock::hold()
{
    const std::lock_guard<std::mutex> lock(m_holdGuard);
    m_isHeld = true;
}

void Clock::release()
{
    {
        const std::lock_guard<std::mutex> lock(m_holdGuard);
        m_isHeld = false;
    }
    m_released.notify_all();
}

RealClock::RealClock(double factor)
    : m_factor(factor)
    , m_start(std::chrono::steady_clock::now())
{
    if (!(factor > 0.0)) {
        throw std::invalid_argument("the factor of a clock must be above 0");
    }
}

Clock::Duration RealClock::now()
{
    return std::chrono::duration_cast<Duration>((std::chrono::steady_clock::now() - m_start) * m_factor);
}

void RealClock::pass(Duration duration)
{
    std::this_thread::sleep_for(duration / m_factor);
}

Clock::Duration VirtualClock::now()
{
    const std::lock_guard<std::mutex> guard(m_timelinesGuard);
    return m_timelines[std::this_thread::get_id()];
}

void VirtualClock::pass(Duration duration)
{
    const std::lock_guard<std::mutex> guard(m_timelinesGuard);
    m_timelines[std::this_thread::get_id()] += duration;
}

SleepServiceInForce::SleepServiceInForce(Util::SleepApi& service)
    : m_before(serviceInForce.exchange(&service))
{
}

SleepServiceInForce::~SleepServiceInForce()
{
    serviceInForce = m_before;
}

} // namespace simulator

Util::SleepApi& Util::DefaultSleepApi::get()
{
    simulator::tellHostObserver("sleep.get");
    static simulator::RealClock realTime;
    Util::SleepApi* const service = simulator::serviceInForce;
    return service == nullptr ? realTime : *service;
}

#pragma once

#include "tests/support/CallLog.h"
#include "tests/support/Waiting.h"

#include "Platform/Host/DefaultSleepApi.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>

namespace tests {

/// A sleep service that takes no time, logs every sleep, and can hold the sleeper at a gate.
class ScriptedSleep : public Util::SleepApi {
public:
    explicit ScriptedSleep(CallLog& log)
        : m_log(log)
    {
    }

    void sleepMs(std::uint32_t milliseconds) override
    {
        m_log.add("sleepMs " + std::to_string(milliseconds));
        std::unique_lock<std::mutex> lock(m_guard);
        m_sleepers++;
        m_changed.notify_all();
        m_changed.wait_for(lock, hangLimit, [this] { return !m_isClosed || m_passes > 0; });
        if (m_isClosed && m_passes > 0) {
            --m_passes;
        }
        --m_sleepers;
        m_changed.notify_all();
    }

    /// From now on every sleep waits at the gate, or everybody is let through.
    void close()
    {
        change([this] { m_isClosed = true; });
    }
    void open()
    {
        change([this] { m_isClosed = false; });
    }

    /// Lets one sleep through, the present one or the next.
    void letOnePass()
    {
        change([this] { ++m_passes; });
    }

    /// Waits, bounded, until a thread stands at the gate with no pass left for it; false when none came.
    bool waitForSleeper()
    {
        std::unique_lock<std::mutex> lock(m_guard);
        return m_changed.wait_for(lock, hangLimit, [this] { return m_sleepers > 0 && m_passes == 0; });
    }

    /// Whether a thread stands at the gate with no pass left for it.
    bool hasSleeper() const
    {
        const std::lock_guard<std::mutex> guard(m_guard);
        return m_sleepers > 0 && m_passes == 0;
    }

private:
    template <typename Action>
    void change(const Action& action)
    {
        const std::lock_guard<std::mutex> guard(m_guard);
        action();
        m_changed.notify_all();
    }

    CallLog& m_log;
    mutable std::mutex m_guard;
    std::condition_variable m_changed;
    bool m_isClosed = false;
    int m_passes = 0;
    int m_sleepers = 0;
};

} // namespace tests

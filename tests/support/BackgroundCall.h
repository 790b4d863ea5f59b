#pragma once

#include "tests/support/Waiting.h"

#include <atomic>
#include <cstdint>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <utility>

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

namespace tests {

/// A thread as the kernel sees it: lets a test know that a thread stands still, without waiting for wall time.
class KernelThread {
public:
    explicit KernelThread(pid_t id = 0)
        : m_id(id)
    {
    }

    static KernelThread current() { return KernelThread(static_cast<pid_t>(syscall(SYS_gettid))); }

    bool exists() const { return !field("State:").empty(); }
    bool isBlocked() const { return field("State:").starts_with("S"); }

    /// How often the thread has gone to sleep so far.
    std::uint64_t timesBlocked() const { return std::stoull("0" + field("voluntary_ctxt_switches:")); }

    /// Waits, bounded, until the thread stands still and has gone to sleep at least that often.
    bool blocks(std::uint64_t times = 0) const
    {
        return eventually([this, times] { return isBlocked() && timesBlocked() >= times; });
    }

private:
    /// The word behind a label in the thread's status; empty when the thread has ended.
    std::string field(const std::string& label) const
    {
        std::ifstream status("/proc/self/task/" + std::to_string(m_id) + "/status");
        std::string word;
        while (status >> word) {
            if (word == label) {
                status >> word;
                return word;
            }
        }
        return {};
    }

    pid_t m_id;
};

/// A call that may block, on a thread of its own; joined at the end of the scope.
class BackgroundCall {
public:
    explicit BackgroundCall(std::function<void()> call)
        : m_thread([this, call = std::move(call)] {
            m_kernelThread = KernelThread::current();
            m_hasBegun = true;
            call();
            m_hasReturned = true;
        })
    {
    }
    ~BackgroundCall() { m_thread.join(); }
    BackgroundCall(const BackgroundCall&) = delete;
    BackgroundCall& operator=(const BackgroundCall&) = delete;

    bool hasReturned() const { return m_hasReturned; }

    /// Waits, bounded, until the call stands still or has returned; true when it stands still and has not returned.
    bool isStuck() const
    {
        eventually([this] { return m_hasReturned || (m_hasBegun && m_kernelThread.isBlocked()); });
        return !m_hasReturned;
    }

    /// Waits, bounded, until the call has returned.
    bool returns() const
    {
        return eventually([this] { return hasReturned(); });
    }

private:
    KernelThread m_kernelThread;
    std::atomic<bool> m_hasBegun{false};
    std::atomic<bool> m_hasReturned{false};
    std::thread m_thread; // last: it uses the members above
};

/// Does something at the end of the scope: lets a thread go that the scope holds, so that a failed test ends too.
class AtScopeEnd {
public:
    explicit AtScopeEnd(std::function<void()> action)
        : m_action(std::move(action))
    {
    }
    ~AtScopeEnd() { m_action(); }
    AtScopeEnd(const AtScopeEnd&) = delete;
    AtScopeEnd& operator=(const AtScopeEnd&) = delete;

private:
    std::function<void()> m_action;
};

} // namespace tests

#pragma once

#include <algorithm>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace support {

/// One ordered log of everything that a controller does to its surroundings: host services, peers, sleeps and trace.
/// May be written and read from any thread.
class CallLog {
public:
    void add(const std::string& call)
    {
        {
            const std::lock_guard<std::mutex> guard(m_guard);
            m_calls.push_back(call);
        }
        if (onAdd) {
            onAdd(call);
        }
    }

    std::vector<std::string> calls() const
    {
        const std::lock_guard<std::mutex> guard(m_guard);
        return m_calls;
    }

    std::vector<std::string> callsStartingWith(const std::string& prefix) const
    {
        std::vector<std::string> chosen = calls();
        std::erase_if(chosen, [&prefix](const std::string& call) { return !call.starts_with(prefix); });
        return chosen;
    }

    /// All calls but those that start with one of the prefixes.
    std::vector<std::string> callsWithout(const std::vector<std::string>& prefixes) const
    {
        std::vector<std::string> chosen = calls();
        std::erase_if(chosen, [&prefixes](const std::string& call) {
            return std::ranges::any_of(prefixes, [&call](const std::string& prefix) { return call.starts_with(prefix); });
        });
        return chosen;
    }

    std::size_t count(const std::string& call) const
    {
        const std::vector<std::string> all = calls();
        return static_cast<std::size_t>(std::count(all.begin(), all.end(), call));
    }

    void clear()
    {
        const std::lock_guard<std::mutex> guard(m_guard);
        m_calls.clear();
    }

    /// Runs after a call is logged, at the very moment of the call, on its thread; may throw. What it does inside a trace
    /// must not trace. Set while no worker runs or the worker waits.
    std::function<void(const std::string& call)> onAdd;

private:
    mutable std::mutex m_guard;
    std::vector<std::string> m_calls;
};

} // namespace support

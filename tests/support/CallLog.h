#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
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
        onAdd(call);
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

    /// All calls, which the log then forgets.
    std::vector<std::string> take()
    {
        const std::lock_guard<std::mutex> guard(m_guard);
        return std::exchange(m_calls, {});
    }

    void clear()
    {
        const std::lock_guard<std::mutex> guard(m_guard);
        m_calls.clear();
    }

    /// Something to do at a moment of the log. May be set from any thread at any time; nullptr takes it away.
    class Hook {
    public:
        using Action = std::function<void(const std::string& call)>;

        void operator=(Action action)
        {
            const std::lock_guard<std::mutex> guard(m_guard);
            m_action = std::make_shared<Action>(std::move(action));
        }

        void operator()(const std::string& call)
        {
            const std::shared_ptr<Action> action = current();
            if (action != nullptr && *action) {
                (*action)(call);
            }
        }

    private:
        std::shared_ptr<Action> current()
        {
            const std::lock_guard<std::mutex> guard(m_guard);
            return m_action;
        }

        std::mutex m_guard;
        std::shared_ptr<Action> m_action;
    };

    /// Runs after a call is logged, at the very moment of the call, on its thread; may throw. What it does inside a trace
    /// must not trace.
    Hook onAdd;

private:
    mutable std::mutex m_guard;
    std::vector<std::string> m_calls;
};

} // namespace support

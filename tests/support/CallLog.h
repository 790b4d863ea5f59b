#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tests {

using Calls = std::vector<std::string>;

inline Calls operator+(Calls left, const Calls& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// One ordered log of everything that a controller does to its surroundings: host services, peers, sleeps and trace. May be
/// written and read from any thread.
class CallLog {
public:
    /// Something to do at the moment of a call, on its thread, after it is logged; may throw, wait, or change answers. What
    /// it does inside a trace must not trace.
    using Hook = std::function<void(const std::string& call)>;

    void add(const std::string& call)
    {
        std::shared_ptr<const Hook> hook;
        {
            const std::lock_guard<std::mutex> guard(m_guard);
            m_calls.push_back(call);
            hook = m_hook;
        }
        if (hook != nullptr) {
            (*hook)(call);
        }
    }

    /// From now on this runs at every call; nullptr takes it away. May be called at any time.
    void onAdd(Hook hook)
    {
        const std::lock_guard<std::mutex> guard(m_guard);
        m_hook = hook ? std::make_shared<const Hook>(std::move(hook)) : nullptr;
    }

    Calls calls() const
    {
        const std::lock_guard<std::mutex> guard(m_guard);
        return m_calls;
    }

    Calls callsStartingWith(const std::string& prefix) const
    {
        Calls chosen = calls();
        std::erase_if(chosen, [&prefix](const std::string& call) { return !call.starts_with(prefix); });
        return chosen;
    }

    /// All calls but those that start with one of the prefixes.
    Calls callsWithout(const Calls& prefixes) const
    {
        Calls chosen = calls();
        std::erase_if(chosen, [&prefixes](const std::string& call) {
            return std::ranges::any_of(prefixes, [&call](const std::string& prefix) { return call.starts_with(prefix); });
        });
        return chosen;
    }

    std::size_t count(const std::string& call) const
    {
        const Calls all = calls();
        return static_cast<std::size_t>(std::ranges::count(all, call));
    }

    /// All calls, which the log then forgets.
    Calls take()
    {
        const std::lock_guard<std::mutex> guard(m_guard);
        return std::exchange(m_calls, {});
    }

    void clear() { take(); }

private:
    mutable std::mutex m_guard;
    Calls m_calls;
    std::shared_ptr<const Hook> m_hook;
};

} // namespace tests

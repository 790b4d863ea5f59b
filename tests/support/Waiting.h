#pragma once

#include <chrono>
#include <cstdlib>
#include <functional>
#include <thread>

namespace tests {

/// How long a test waits for something that must happen before it calls it hung. Never reached where the code is right; runs
/// of code that is wrong on purpose make it shorter, with the environment's SDC_HANG_LIMIT_S.
inline const std::chrono::seconds hangLimit = [] {
    const char* const seconds = std::getenv("SDC_HANG_LIMIT_S");
    return std::chrono::seconds(seconds == nullptr ? 30 : std::atoi(seconds));
}();

/// Waits, bounded, until a condition holds; false when it never did.
inline bool eventually(const std::function<bool()>& condition)
{
    const auto deadline = std::chrono::steady_clock::now() + hangLimit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

} // namespace tests

#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace support {

/// How long a test waits for something that must happen before it calls it hung. Never reached where the code is right.
constexpr std::chrono::seconds hangLimit{30};

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

} // namespace support

#pragma once

#include <fstream>
#include <stdexcept>
#include <string>

namespace soak {

/// What the process holds in memory at the moment (VmRSS), in KiB.
inline long memory_KiB()
{
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        long memory_KiB = 0;
        if (word == "VmRSS:" && status >> memory_KiB) {
            return memory_KiB;
        }
    }
    throw std::runtime_error("/proc/self/status does not tell the memory");
}

} // namespace soak

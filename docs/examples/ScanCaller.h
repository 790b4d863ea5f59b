#pragma once

// How another module runs a scan. The tests run it.

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <thread>
#include <vector>

inline bool isOngoing(ISpectrumDiagnosticsController& controller)
{
    const ESDCStatus status = controller.getStatus();
    return status == SDC_STATUS_CHANNEL_SCAN_ONGOING || status == SDC_STATUS_SUB_BAND_ONGOING;
}

/// Returns true when the scan is under way.
inline bool startScan(ISpectrumDiagnosticsController& controller, ESDCCommand start)
{
    for (int attempt = 0; attempt < 100; ++attempt) {
        if (controller.setCommand(start, 0) >= SDC_RC_FAILED) {
            return false; // nothing was started
        }
        if (isOngoing(controller)) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10)); // the worker is still leaving the last scan
    }
    return false;
}

/// Returns the samples; none when the scan was not started, was stopped, could not tune the receiver, or took too long.
inline std::vector<SDCResult> runScan(
    ISpectrumDiagnosticsController& controller, ESDCCommand start, std::chrono::steady_clock::duration limit)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    if (!startScan(controller, start)) {
        return {};
    }
    while (isOngoing(controller)) {
        if (std::chrono::steady_clock::now() > deadline) {
            return {}; // no worker acts on the start any more
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    if (controller.getStatus() == SDC_STATUS_SCAN_NOT_STARTED) {
        return {};
    }
    std::vector<SDCResult> samples(100000);
    auto count = static_cast<std::int32_t>(samples.size());
    controller.getResult(&count, samples.data());
    samples.resize(static_cast<std::size_t>(count));
    return samples;
}

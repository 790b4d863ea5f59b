#pragma once

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include <atomic>
#include <cstdint>

/// The properties record as threads share it: its four fields, each an atomic, copied in and out together. Copies that
/// overlap on two threads may mix the fields of two records; no field is ever seen half.
struct AtomicProperties {
    std::atomic<std::uint8_t> longHaul{0};
    std::atomic<std::uint8_t> extendedRxWait{0};
    std::atomic<std::uint8_t> slowRxWait{0};
    std::atomic<std::uint8_t> spareFlag{0};

    operator SDCProperties() const { return {longHaul, extendedRxWait, slowRxWait, spareFlag}; }

    AtomicProperties& operator=(const SDCProperties& properties)
    {
        longHaul = properties.longHaul;
        extendedRxWait = properties.extendedRxWait;
        slowRxWait = properties.slowRxWait;
        spareFlag = properties.spareFlag;
        return *this;
    }
};
static_assert(sizeof(AtomicProperties) == sizeof(SDCProperties), "the controller holds four bytes");

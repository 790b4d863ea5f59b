#pragma once

#include "benchmarks/support/Limits.h"
#include "benchmarks/support/PlainPeers.h"
#include "tests/support/ControllerInspector.h"

#include "Control/SpectrumDiagnosticsController/private/SpectrumDiagnosticsController.h"

#include <cstdint>
#include <memory>

namespace bench {

/// Frequency parameters with which a sub-band scan has so many samples, from 1000 kHz up, 2000 kHz apart.
/// @param samples  1 to 2,000,000, which 32 bits of kHz have room for
constexpr RadioFrequencyParameters subBandOf(std::uint32_t samples)
{
    constexpr std::uint32_t rasterStep_kHz = 250;
    constexpr std::uint32_t rasterStepsOfASample = 8;
    return {18, {}, 0, 4000000000, rasterStep_kHz, 0, 0, {}, 0, samples * rasterStepsOfASample};
}

/// A channel whose peers do next to nothing, and its controller after one scan: the worker has begun, and there is room for
/// the samples. One thread at a time.
class Scanner {
public:
    /// @param channel  not 0
    /// @param samples  of its sub-band scan
    Scanner(std::uint32_t channel, std::uint32_t samples);

    /// @param peers  those of the channel
    Scanner(std::uint32_t channel, std::unique_ptr<PlainPeers> peers);

    /// Starts a sub-band scan, once the worker waits for one.
    void start();

    /// Waits until the scan has ended and the worker waits for the next. Sleeps while the sweep runs.
    void waitForEnd();

    SpectrumDiagnosticsController& controller() { return *m_controller; }

private:
    std::unique_ptr<PlainPeers> m_peers;
    std::unique_ptr<SpectrumDiagnosticsController> m_controller;
};

/// What a controller's sweeps are held against: sweeps over the peers of a channel, there being room for the samples.
class PlainSweep {
public:
    PlainSweep(std::uint32_t channel, std::uint32_t nrOfSamples);

    void run() { leastSweep(m_frequencyController, m_rssiHandler, m_nrOfSamples, m_shared); }
    void runBare() { bareLoop(m_frequencyController, m_rssiHandler, m_nrOfSamples, m_shared.samples); }

private:
    std::uint32_t m_nrOfSamples;
    PlainPeers m_peers;
    IFrequencyController& m_frequencyController;
    IRssiHandler& m_rssiHandler;
    SharedSweep m_shared;
};

} // namespace bench

#pragma once

/// The limits that the module is measured against: the least that does the same. They are a library of their own, compiled
/// as the module is, because a call into a library takes longer than one within a program.

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include "Platform/Host/DefaultSleepApi.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

class IFrequencyController;
class IRssiHandler;

namespace SoapySDR {
class Device;
}

#pragma GCC visibility push(default)

namespace bench {

/// Samples and progress that readers on other threads can ask for while a sweep goes on. They keep their room from one sweep
/// to the next.
struct SharedSweep {
    std::mutex guard; ///< of the samples
    std::vector<SDCResult> samples;
    std::atomic<std::int32_t> progress{0}; ///< percent
};

/// The least code that does the job of a sweep: tune, settle, read, append under the guard, store the progress.
void leastSweep(
    IFrequencyController& frequencyController, IRssiHandler& rssiHandler, std::uint32_t nrOfSamples, SharedSweep& shared);

/// The calls of a sweep and nothing else: nobody can look at the samples before its end.
void bareLoop(IFrequencyController& frequencyController, IRssiHandler& rssiHandler, std::uint32_t nrOfSamples,
    std::vector<SDCResult>& samples);

/// A sweep on the hardware abstraction of software-defined radio: set the frequency, read a level, append.
/// @param device  one whose sensor "RSSI" gives a number, or nothing for 0
void sweepOn(SoapySDR::Device& device, std::uint32_t nrOfSamples, std::vector<SDCResult>& samples);

/// A virtual call that loads an atomic, and one that asks the trace first whether function entries are written.
class VirtualLoad {
public:
    virtual ~VirtualLoad() = default;
    virtual std::int32_t load();
    virtual std::int32_t tracedLoad();

private:
    std::atomic<std::int32_t> m_value{0};
};

/// So many virtual calls.
void callTimes(std::uint32_t times, Util::SleepApi& callee);

/// So many trace calls of a level that is off. @return how often the argument of one was evaluated
std::uint32_t traceTimes(std::uint32_t times);

} // namespace bench

#pragma GCC visibility pop

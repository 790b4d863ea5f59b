#pragma once

/// The limits that the module is measured against: the least that does the same. They are a library of their own, compiled
/// as the module is, because a call into a library takes longer than one within a program.

#include "Control/SpectrumDiagnosticsController/ISpectrumDiagnosticsController.h"

#include "Platform/Host/DefaultSleepApi.h"

#include <atomic>
#include <cstdint>
#include <vector>

class IFrequencyController;
class IRssiHandler;

namespace SoapySDR {
class Device;
}

#pragma GCC visibility push(default)

namespace bench {

/// Tune, settle, read, append: the calls of a sweep and nothing else. The vector keeps its room from one to the next.
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

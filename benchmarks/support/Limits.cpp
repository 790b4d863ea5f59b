#include "benchmarks/support/Limits.h"

#include "Control/SpectrumDiagnosticsController/private/Trace.h"
#include "Platform/Radio/IFrequencyController.h"
#include "Platform/Radio/IRssiHandler.h"

#include <SoapySDR/Device.hpp>

#include <cstdlib>
#include <string>

namespace bench {

namespace {

constexpr std::uint32_t lowest_kHz = 1000;
constexpr std::uint32_t step_kHz = 2000;
constexpr std::uint32_t settle_ms = 300;

SDCResult measure(IFrequencyController& frequencyController, IRssiHandler& rssiHandler, std::uint32_t sample)
{
    const std::uint32_t frequency_kHz = lowest_kHz + sample * step_kHz;
    std::int32_t rssi = 0;
    frequencyController.setRxFrequency(frequency_kHz, true);
    Util::DefaultSleepApi::get().sleepMs(settle_ms);
    rssiHandler.readRssi(rssi);
    return {frequency_kHz, rssi};
}

} // namespace

void leastSweep(
    IFrequencyController& frequencyController, IRssiHandler& rssiHandler, std::uint32_t nrOfSamples, SharedSweep& shared)
{
    {
        const std::lock_guard<std::mutex> guard(shared.guard);
        shared.samples.clear();
    }
    for (std::uint32_t sample = 0; sample < nrOfSamples; ++sample) {
        const SDCResult result = measure(frequencyController, rssiHandler, sample);
        {
            const std::lock_guard<std::mutex> guard(shared.guard);
            shared.samples.push_back(result);
        }
        shared.progress.store(static_cast<std::int32_t>(100 * sample / nrOfSamples), std::memory_order_relaxed);
    }
}

void bareLoop(IFrequencyController& frequencyController, IRssiHandler& rssiHandler, std::uint32_t nrOfSamples,
    std::vector<SDCResult>& samples)
{
    samples.clear();
    for (std::uint32_t sample = 0; sample < nrOfSamples; ++sample) {
        samples.push_back(measure(frequencyController, rssiHandler, sample));
    }
}

void sweepOn(SoapySDR::Device& device, std::uint32_t nrOfSamples, std::vector<SDCResult>& samples)
{
    std::uint32_t frequency_kHz = lowest_kHz;
    samples.clear();
    for (std::uint32_t sample = 0; sample < nrOfSamples; ++sample) {
        device.setFrequency(SOAPY_SDR_RX, 0, 1e3 * frequency_kHz);
        const std::string level = device.readSensor(SOAPY_SDR_RX, 0, "RSSI");
        samples.push_back({frequency_kHz, static_cast<std::int32_t>(std::strtod(level.c_str(), nullptr))});
        frequency_kHz += step_kHz;
    }
}

std::int32_t VirtualLoad::load()
{
    return m_value;
}

std::int32_t VirtualLoad::tracedLoad()
{
    SDC_TRACE_ENTER(PLX_TRACE_LEVEL_ENTER, "m_value=" << m_value);
    return m_value;
}

void callTimes(std::uint32_t times, Util::SleepApi& callee)
{
    for (std::uint32_t call = 0; call < times; ++call) {
        callee.sleepMs(call);
    }
}

std::uint32_t traceTimes(std::uint32_t times)
{
    std::uint32_t evaluations = 0;
    for (std::uint32_t call = 0; call < times; ++call) {
        SDC_TRACE(PLX_TRACE_LEVEL_DETAIL, "Read RSSI " << ++evaluations);
    }
    return evaluations;
}

} // namespace bench

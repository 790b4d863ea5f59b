#include "apps/sdc/result/Sanity.h"

#include "apps/sdc/result/Floor.h"
#include "apps/sdc/result/ScanResult.h"

#include <fmt/format.h>

#include <cmath>

namespace sdc {

namespace {

// So many readings that are equal do not come about by chance.
constexpr std::size_t leastAllEqual = 4;
constexpr std::size_t leastStuck = 6;

// Nor do so many readings that lie so far below the receiver's noise.
constexpr std::size_t leastTooLow = 4;
constexpr double farBelow = 500.0;
constexpr double belowInAll = 200.0; ///< when it is all of them

/// 0.00 dBm is nothing that a receiver reads that saturates below it.
bool isRefused(const Sample& sample, const ReceiverData& receiver)
{
    return sample.rssi == 0 && receiver.saturation_dBm < 0.0;
}

} // namespace

std::vector<SampleFlag> SampleFlags::listed() const
{
    std::vector<SampleFlag> listed;
    for (std::size_t index = 0; index < sampleFlags.size(); ++index) {
        if (has(static_cast<SampleFlag>(index))) {
            listed.push_back(static_cast<SampleFlag>(index));
        }
    }
    return listed;
}

SampleFlags flagsOf(const Sample& sample, const Sample* before, const ReceiverData& receiver)
{
    SampleFlags flags;
    if (isRefused(sample, receiver)) {
        flags.set(SampleFlag::refused);
        return flags;
    }
    if (sample.rssi == lowestReading) {
        flags.set(SampleFlag::atFloor);
        return flags;
    }
    if (sample.rssi > receiver.saturation_dBm * 100.0) {
        flags.set(SampleFlag::aboveSaturation);
    }
    if (before != nullptr && before->rssi == sample.rssi) {
        flags.set(SampleFlag::repeated);
    }
    return flags;
}

bool isLevel(const Sample& sample, const ReceiverData& receiver)
{
    constexpr double far_dB = 10.0;
    return !isRefused(sample, receiver) && sample.rssi <= 100.0 * (receiver.saturation_dBm + far_dB);
}

std::vector<SDCResult> levelsIn(const Sweep& sweep, const ReceiverData& receiver)
{
    std::vector<SDCResult> levels;
    levels.reserve(sweep.samples.size());
    for (const Sample& sample : sweep.samples) {
        if (isLevel(sample, receiver)) {
            levels.push_back({sample.frequency_kHz, sample.rssi});
        }
    }
    return levels;
}

std::string sentenceOf(const Finding& finding)
{
    const std::string level = hundredths(finding.level) + " dBm";
    const std::string some = fmt::format("{} of {} readings", finding.readings, finding.of);
    switch (finding.oddity) {
    case Oddity::allEqual:
        return fmt::format("all {} readings are equal, {}: the receiver may be dead", finding.readings, level);
    case Oddity::tooLow:
        return fmt::format("{} are at the floor of {}, far below the receiver's own noise: it may be dead",
            finding.readings == finding.of ? fmt::format("all {} readings", finding.of) : some, level);
    case Oddity::stuck:
        return fmt::format("{} readings in a row are equal, {}: the receiver may be stuck", finding.readings, level);
    case Oddity::aboveSaturation:
        return fmt::format("{} are above {}, where the receiver saturates: levels there are higher than read", some, level);
    case Oddity::refused: return fmt::format("{} were refused by the radio and stand as {}", some, level);
    }
    return "";
}

void ReceiverCheck::add(const Sweep& sweep, const ReceiverData& receiver)
{
    m_quiet = quietReading(receiver);
    m_saturation = static_cast<std::int32_t>(std::lround(receiver.saturation_dBm * 100.0));
    for (const Sample& sample : sweep.samples) {
        addReading(sample, receiver);
    }
}

void ReceiverCheck::addReading(const Sample& sample, const ReceiverData& receiver)
{
    ++m_readings;
    const SampleFlags flags = flagsOf(sample, nullptr, receiver);
    m_atFloor += flags.has(SampleFlag::atFloor) ? 1U : 0U;
    m_aboveSaturation += flags.has(SampleFlag::aboveSaturation) ? 1U : 0U;
    if (flags.has(SampleFlag::refused)) {
        ++m_refused;
        return;
    }
    m_run = m_run.count > 0 && m_run.level == sample.rssi ? Run{sample.rssi, m_run.count + 1} : Run{sample.rssi, 1};
    m_longestRun = m_run.count > m_longestRun.count ? m_run : m_longestRun;
    if (m_run.level != lowestReading && m_run.count > m_longestRunAboveFloor.count) {
        m_longestRunAboveFloor = m_run;
    }
}

std::vector<Finding> ReceiverCheck::findings() const
{
    std::vector<Finding> findings;
    const bool isAllAtFloor = m_atFloor > 0 && m_atFloor + m_refused == m_readings;
    const std::size_t equal = m_longestRunAboveFloor.count;
    if (areAllEqual() && equal >= leastAllEqual) {
        findings.push_back({Oddity::allEqual, equal, m_readings, m_longestRunAboveFloor.level});
    }
    const double below = m_quiet - lowestReading;
    if (m_atFloor >= leastTooLow && below >= (isAllAtFloor ? belowInAll : farBelow)) {
        findings.push_back({Oddity::tooLow, m_atFloor, m_readings, lowestReading});
    }
    if (!areAllEqual() && equal >= leastStuck) {
        findings.push_back({Oddity::stuck, equal, m_readings, m_longestRunAboveFloor.level});
    }
    if (m_aboveSaturation > 0) {
        findings.push_back({Oddity::aboveSaturation, m_aboveSaturation, m_readings, m_saturation});
    }
    if (m_refused > 0) {
        findings.push_back({Oddity::refused, m_refused, m_readings, 0});
    }
    return findings;
}

bool ReceiverCheck::canTell() const
{
    return !(areAllEqual() && m_readings > 1) && m_longestRunAboveFloor.count < leastStuck;
}

} // namespace sdc

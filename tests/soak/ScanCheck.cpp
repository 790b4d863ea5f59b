#include "tests/soak/ScanCheck.h"

#include "tests/soak/RandomRadio.h"
#include "tests/soak/SoakFailure.h"

#include <algorithm>
#include <sstream>

namespace soak {

namespace {

using simulator::ScanPlan;
using simulator::SimulatedTerminal;

constexpr std::int32_t floor_cdBm = -9970;

/// What a scan has left behind.
struct Outcome {
    Outcome(const SimulatedTerminal& terminal, RadioChannel channel)
        : samples(terminal.samples(channel))
        , receiver_kHz(terminal.rxFrequency_kHz(channel))
        , status(terminal.controller(channel).getStatus())
        , progress(terminal.controller(channel).getProgress())
        , failure(terminal.workerFailure(channel))
    {
    }

    std::vector<SDCResult> samples;
    std::uint32_t receiver_kHz;
    ESDCStatus status;
    std::int32_t progress;
    std::optional<std::string> failure;
};

std::string describe(const ScanRecord& scan, const Outcome& outcome)
{
    std::ostringstream text;
    text << "channel " << static_cast<std::uint32_t>(scan.channel) << ", " << SDCCommand::toString(scan.start)
         << (scan.wasStopped ? ", stopped" : "") << ": " << outcome.samples.size() << " samples, receiver at "
         << outcome.receiver_kHz << " kHz, status " << SDCStatus::toString(outcome.status) << ", progress "
         << outcome.progress << ", " << outcome.failure.value_or("worker lives");
    return text.str();
}

std::string describe(const ExpectedSweep& expected)
{
    constexpr const char* endings[] = {"finished", "aborted", "stopped", "died"};
    return "expected " + std::to_string(expected.readings.size()) + " samples, receiver at "
        + std::to_string(expected.receiver_kHz) + " kHz, " + endings[static_cast<std::size_t>(expected.ending)];
}

bool hasPlannedFrequencies(const std::vector<SDCResult>& samples, const ScanPlan& plan)
{
    std::uint32_t frequency_kHz = plan.lowest_kHz;
    for (const SDCResult& sample : samples) {
        if (sample.frequency_kHz != frequency_kHz || sample.frequency_kHz > plan.highest_kHz) {
            return false;
        }
        frequency_kHz += plan.step_kHz;
    }
    return true;
}

bool hasExpectedReadings(const std::vector<SDCResult>& samples, const ExpectedSweep& expected)
{
    return std::ranges::equal(samples, expected.readings, [](const SDCResult& sample, const auto& reading) {
        return sample.rssi >= floor_cdBm && sample.rssi == reading.value_or(sample.rssi);
    });
}

bool isAs(const ExpectedSweep& expected, const Outcome& outcome)
{
    return hasExpectedReadings(outcome.samples, expected) && outcome.receiver_kHz == expected.receiver_kHz
        && outcome.failure.has_value() == (expected.ending == Ending::died);
}

ESDCStatus expectedStatus(const ScanRecord& scan, Ending ending)
{
    const bool isChannelScan = scan.start == SDC_CMD_CHANNEL_SCAN_START;
    if (scan.wasStopped || ending == Ending::aborted) {
        return SDC_STATUS_SCAN_NOT_STARTED;
    }
    if (ending == Ending::died) {
        return isChannelScan ? SDC_STATUS_CHANNEL_SCAN_ONGOING : SDC_STATUS_SUB_BAND_ONGOING;
    }
    return isChannelScan ? SDC_STATUS_CHANNEL_SCAN_FINISHED : SDC_STATUS_SUB_BAND_SCAN_FINISHED;
}

std::int32_t expectedProgress(std::size_t samples, const ScanPlan& plan)
{
    return samples == 0 ? 0 : 100 * (static_cast<std::int32_t>(samples) - 1) / plan.samples;
}

/// A stop is given in a settle delay, so it ends the sweep after that step, unless that step's reading throws.
ExpectedSweep expectedSweep(const ScanRecord& scan, const Outcome& outcome, const ScanPlan& plan, const ChannelModel& model)
{
    if (scan.wasStopped) {
        const ExpectedSweep stopped = model.sweep(plan, outcome.samples.size());
        if (!outcome.failure || isAs(stopped, outcome)) {
            return stopped;
        }
    }
    return model.sweep(plan, std::nullopt);
}

} // namespace

bool isSame(const std::vector<SDCResult>& left, const std::vector<SDCResult>& right)
{
    return std::ranges::equal(left, right, [](const SDCResult& one, const SDCResult& other) {
        return one.frequency_kHz == other.frequency_kHz && one.rssi == other.rssi;
    });
}

void checkScan(const SimulatedTerminal& terminal, const ScanRecord& scan, ChannelModel& model)
{
    const Outcome outcome(terminal, scan.channel);
    const std::string seen = describe(scan, outcome);
    require(!outcome.failure || outcome.failure->ends_with(": " + std::string(faultText)), seen);
    if (scan.diesAtOnce) {
        const bool isUntouched = isSame(outcome.samples, scan.samplesBefore) && outcome.receiver_kHz == model.receiver_kHz();
        require(outcome.failure && isUntouched, seen + "; expected a death before the first tuning");
        require(outcome.status == expectedStatus(scan, Ending::died) && outcome.progress == 0, seen);
        return;
    }
    const ScanPlan plan = terminal.plan(scan.channel).value();
    require(plan.rxFrequency_kHz == scan.configured_kHz, seen + "; to be put back elsewhere than the radio told");
    const ExpectedSweep expected = expectedSweep(scan, outcome, plan, model);
    require(isAs(expected, outcome), seen + "; " + describe(expected));
    require(hasPlannedFrequencies(outcome.samples, plan), seen + "; frequencies beside the plan");
    require(outcome.samples.size() <= static_cast<std::size_t>(plan.samples), seen + "; more samples than planned");
    require(!scan.wasStopped || outcome.failure || !outcome.samples.empty(), seen + "; stopped before its first sample");
    require(outcome.status == expectedStatus(scan, expected.ending), seen + "; not the status of that ending");
    const bool diedAfterStop = scan.wasStopped && outcome.failure; // the stop's 0, or moved once more by the step in hand
    require(diedAfterStop || outcome.progress == expectedProgress(outcome.samples.size(), plan),
        seen + "; not the progress of its samples");
    model.keep(expected);
}

} // namespace soak

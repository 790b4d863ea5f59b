#include "tests/soak/ScanCheck.h"

#include "tests/soak/RandomRadio.h"
#include "tests/soak/SoakFailure.h"

#include <algorithm>
#include <sstream>

namespace soak {

namespace {

using terminal::ScanPlan;
using terminal::Terminal;

constexpr std::int32_t floor_cdBm = -9970;

/// What a scan has left behind.
struct Outcome {
    Outcome(const Terminal& terminal, RadioChannel channel)
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

/// How a scan ended, as far as what it left tells: a tuning may be refused, and then there is no status of a finish.
ESDCStatus expectedStatus(const ScanRecord& scan, const Outcome& outcome, bool isComplete)
{
    const bool isChannelScan = scan.start == SDC_CMD_CHANNEL_SCAN_START;
    if (scan.wasStopped || (!outcome.failure && !isComplete)) {
        return SDC_STATUS_SCAN_NOT_STARTED;
    }
    if (outcome.failure) {
        return isChannelScan ? SDC_STATUS_CHANNEL_SCAN_ONGOING : SDC_STATUS_SUB_BAND_ONGOING;
    }
    return isChannelScan ? SDC_STATUS_CHANNEL_SCAN_FINISHED : SDC_STATUS_SUB_BAND_SCAN_FINISHED;
}

std::int32_t expectedProgress(std::size_t samples, const ScanPlan& plan)
{
    return samples == 0 ? 0 : 100 * (static_cast<std::int32_t>(samples) - 1) / plan.samples;
}

} // namespace

bool isSame(const std::vector<SDCResult>& left, const std::vector<SDCResult>& right)
{
    return std::ranges::equal(left, right, [](const SDCResult& one, const SDCResult& other) {
        return one.frequency_kHz == other.frequency_kHz && one.rssi == other.rssi;
    });
}

void checkScan(const Terminal& terminal, const ScanRecord& scan)
{
    const Outcome outcome(terminal, scan.channel);
    const std::string seen = describe(scan, outcome);
    require(!outcome.failure || outcome.failure->ends_with(": " + std::string(faultText)), seen);
    require(!outcome.failure || scan.mayGoWrong, seen + "; the worker died of nothing");
    if (outcome.failure && isSame(outcome.samples, scan.samplesBefore) && outcome.progress == 0) {
        require(
            outcome.status == expectedStatus(scan, outcome, false), seen); // died at once, before its samples were cleared
        return;
    }
    const ScanPlan plan = terminal.plan(scan.channel).value();
    const bool isComplete = outcome.samples.size() == static_cast<std::size_t>(plan.samples);
    require(plan.rxFrequency_kHz == scan.configured_kHz, seen + "; to be put back elsewhere than the radio told");
    require(hasPlannedFrequencies(outcome.samples, plan), seen + "; frequencies beside the plan");
    require(std::ranges::all_of(outcome.samples, [](const SDCResult& sample) { return sample.rssi >= floor_cdBm; }),
        seen + "; readings below the floor");
    require(outcome.samples.size() <= static_cast<std::size_t>(plan.samples), seen + "; more samples than planned");
    require(!scan.wasStopped || outcome.failure || !outcome.samples.empty(), seen + "; stopped before its first sample");
    require(outcome.status == expectedStatus(scan, outcome, isComplete), seen + "; not the status of that ending");
    const bool diedAfterStop = scan.wasStopped && outcome.failure; // the stop's 0, or moved once more by the step in hand
    require(diedAfterStop || outcome.progress == expectedProgress(outcome.samples.size(), plan),
        seen + "; not the progress of its samples");
    if (!scan.mayGoWrong) {
        require(isComplete || scan.wasStopped, seen + "; cut short by nothing");
        require(outcome.receiver_kHz == scan.configured_kHz, seen + "; receiver not put back");
    }
}

} // namespace soak

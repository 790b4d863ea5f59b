#include "apps/sdc/scan/Verdict.h"

#include "apps/sdc/result/Texts.h"
#include "support/Text.h"

namespace sdc {

namespace {

std::string at(std::uint32_t frequency_kHz)
{
    return megahertz(frequency_kHz) + " MHz";
}

/// What the trace says is quoted, so that it can be found there.
std::string seenAs(const std::string& traceText)
{
    return " (trace, level 1: \"" + traceText + "\")";
}

/// Samples are taken in order, so their number tells where the tuning failed.
std::string tuningFailure(const SweepFacts& facts)
{
    const auto steps = static_cast<std::uint32_t>(facts.taken);
    const std::uint32_t frequency_kHz = facts.plan.lowest_kHz + steps * facts.plan.step_kHz;
    return "tuning to " + at(frequency_kHz) + " failed after " + std::to_string(facts.taken) + " of "
        + std::to_string(facts.plan.samples) + " samples"
        + seenAs("Failed to set RX frequency " + std::to_string(frequency_kHz));
}

std::string restoreFailure(const SweepFacts& facts)
{
    return "the receiver was not put back: it stands at " + at(facts.rxAfter_kHz) + " instead of "
        + at(facts.configured_kHz);
}

/// What went wrong in the sweep itself; empty when nothing did.
std::string sweepFailure(const SweepFacts& facts)
{
    const bool isFinished =
        facts.status == SDC_STATUS_CHANNEL_SCAN_FINISHED || facts.status == SDC_STATUS_SUB_BAND_SCAN_FINISHED;
    if (facts.workerFailure) {
        return "an exception ended the controller's worker" + seenAs(support::shown(*facts.workerFailure, 300));
    }
    if (facts.isStopped) {
        return "";
    }
    if (!isFinished) {
        return tuningFailure(facts);
    }
    if (facts.taken != facts.plan.samples) {
        return "the sweep ended with " + std::to_string(facts.taken) + " of " + std::to_string(facts.plan.samples)
            + " samples";
    }
    return "";
}

} // namespace

Verdict judge(const SweepFacts& facts)
{
    std::string reason = facts.startFailure.empty() ? sweepFailure(facts) : facts.startFailure;
    if (facts.rxAfter_kHz != facts.configured_kHz) {
        reason += (reason.empty() ? "" : "; ") + restoreFailure(facts);
    }
    if (!reason.empty()) {
        return {Ending::failed, reason};
    }
    return {facts.isStopped ? Ending::stopped : Ending::complete, ""};
}

} // namespace sdc

// How a sweep ended, and the words for what went wrong.

#include "apps/sdc/scan/Lane.h"

#include <gtest/gtest.h>

namespace {

using sdc::Ending;
using sdc::SweepFacts;

constexpr std::int64_t planned = 13;
constexpr std::uint32_t configured_kHz = 19177500;
constexpr const char* noRestore = "the receiver was not put back: it stands at 19188.750 MHz instead of 19177.500 MHz";
constexpr const char* ended = "an exception ended the controller's worker (trace, level 1: \"Exception: no answer\")";

/// What is seen of a channel scan, and how it ended.
struct Row {
    const char* what;
    ESDCStatus status;
    std::int64_t taken;
    bool isStopped;
    const char* workerFailure; ///< null: there is none
    std::uint32_t rxAfter_kHz;
    Ending ending;
    std::string reason;
};

const Row rows[] = {
    {"all samples", SDC_STATUS_CHANNEL_SCAN_FINISHED, planned, false, nullptr, configured_kHz, Ending::complete, ""},
    {"all, sub-band", SDC_STATUS_SUB_BAND_SCAN_FINISHED, planned, false, nullptr, configured_kHz, Ending::complete, ""},
    {"no tuning", SDC_STATUS_SCAN_NOT_STARTED, 3, false, nullptr, configured_kHz, Ending::failed,
        "tuning to 19170.750 MHz failed after 3 of 13 samples (trace, level 1: \"Failed to set RX frequency 19170750\")"},
    {"too few", SDC_STATUS_CHANNEL_SCAN_FINISHED, 12, false, nullptr, configured_kHz, Ending::failed,
        "the sweep ended with 12 of 13 samples"},
    {"too many", SDC_STATUS_CHANNEL_SCAN_FINISHED, 14, false, nullptr, configured_kHz, Ending::failed,
        "the sweep ended with 14 of 13 samples"},
    {"not put back", SDC_STATUS_CHANNEL_SCAN_FINISHED, planned, false, nullptr, 19188750, Ending::failed, noRestore},
    {"nor after a stop", SDC_STATUS_SCAN_NOT_STARTED, 3, true, nullptr, 19188750, Ending::failed, noRestore},
    {"too few, not put back", SDC_STATUS_CHANNEL_SCAN_FINISHED, 12, false, nullptr, 19188750, Ending::failed,
        std::string("the sweep ended with 12 of 13 samples; ") + noRestore},
    {"exception", SDC_STATUS_CHANNEL_SCAN_ONGOING, 5, false, "Exception: no answer", configured_kHz, Ending::failed, ended},
    {"after a stop", SDC_STATUS_CHANNEL_SCAN_ONGOING, 5, true, "Exception: no answer", configured_kHz, Ending::failed,
        ended},
    {"stopped", SDC_STATUS_SCAN_NOT_STARTED, 3, true, nullptr, configured_kHz, Ending::stopped, ""},
};

SweepFacts factsOf(const Row& row)
{
    SweepFacts facts;
    facts.status = row.status;
    facts.plan.lowest_kHz = 19164750;
    facts.plan.step_kHz = 2000;
    facts.plan.samples = planned;
    facts.taken = row.taken;
    facts.isStopped = row.isStopped;
    facts.workerFailure = row.workerFailure == nullptr ? std::nullopt : std::optional<std::string>(row.workerFailure);
    facts.configured_kHz = configured_kHz;
    facts.rxAfter_kHz = row.rxAfter_kHz;
    return facts;
}

TEST(SweepEnd, followsFromWhatIsSeenOfTheSweep)
{
    for (const Row& row : rows) {
        const sdc::SweepEnd end = endOf(factsOf(row));
        EXPECT_EQ(end.ending, row.ending) << row.what;
        EXPECT_EQ(end.reason, row.reason) << row.what;
    }
}

TEST(SweepEnd, ofASweepThatDidNotStartIsTheReasonOfThatAlone)
{
    SweepFacts facts = factsOf(rows[2]);
    facts.taken = 0;
    facts.startFailure = "the controller refused the start";
    EXPECT_EQ(endOf(facts).ending, Ending::failed);
    EXPECT_EQ(endOf(facts).reason, "the controller refused the start");
}

} // namespace

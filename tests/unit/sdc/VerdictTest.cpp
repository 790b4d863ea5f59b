// How a sweep ended, and the words for what went wrong.

#include "apps/sdc/scan/Verdict.h"

#include <gtest/gtest.h>

namespace {

using sdc::Ending;
using sdc::SweepFacts;

/// A channel scan of 13 samples that went well.
SweepFacts complete()
{
    SweepFacts facts;
    facts.status = SDC_STATUS_CHANNEL_SCAN_FINISHED;
    facts.plan.lowest_kHz = 19164750;
    facts.plan.step_kHz = 2000;
    facts.plan.samples = 13;
    facts.taken = 13;
    facts.configured_kHz = 19177500;
    facts.rxAfter_kHz = 19177500;
    return facts;
}

void expectFailed(const SweepFacts& facts, const std::string& reason)
{
    const sdc::Verdict verdict = judge(facts);
    EXPECT_EQ(verdict.ending, Ending::failed);
    EXPECT_EQ(verdict.reason, reason);
}

TEST(Verdict, isCompleteForAFinishedScanOfEitherKindWithAllSamples)
{
    for (const ESDCStatus status : {SDC_STATUS_CHANNEL_SCAN_FINISHED, SDC_STATUS_SUB_BAND_SCAN_FINISHED}) {
        SweepFacts facts = complete();
        facts.status = status;
        EXPECT_EQ(judge(facts).ending, Ending::complete);
        EXPECT_EQ(judge(facts).reason, "");
    }
}

TEST(Verdict, namesTheFrequencyWhereTheTuningFailed)
{
    SweepFacts facts = complete();
    facts.status = SDC_STATUS_SCAN_NOT_STARTED;
    facts.taken = 3;
    expectFailed(facts,
        "tuning to 19170.750 MHz failed after 3 of 13 samples "
        "(trace, level 1: \"Failed to set RX frequency 19170750\")");
}

TEST(Verdict, tellsHowManySamplesAFinishedScanLacks)
{
    SweepFacts facts = complete();
    facts.taken = 12;
    expectFailed(facts, "the sweep ended with 12 of 13 samples");
    facts.taken = 14;
    expectFailed(facts, "the sweep ended with 14 of 13 samples");
}

TEST(Verdict, tellsWhereTheReceiverStandsThatWasNotPutBack)
{
    SweepFacts facts = complete();
    facts.rxAfter_kHz = 19188750;
    const std::string restore = "the receiver was not put back: it stands at 19188.750 MHz instead of 19177.500 MHz";
    expectFailed(facts, restore);
    facts.isStopped = true;
    expectFailed(facts, restore);
    facts.isStopped = false;
    facts.taken = 12;
    expectFailed(facts, "the sweep ended with 12 of 13 samples; " + restore);
}

TEST(Verdict, quotesTheExceptionThatEndedTheWorkerEvenAfterAStop)
{
    SweepFacts facts = complete();
    facts.status = SDC_STATUS_CHANNEL_SCAN_ONGOING;
    facts.taken = 5;
    facts.workerFailure = "Exception timerThread SpectDiagCtrl1: no answer";
    const std::string reason = "an exception ended the controller's worker "
                               "(trace, level 1: \"Exception timerThread SpectDiagCtrl1: no answer\")";
    expectFailed(facts, reason);
    facts.isStopped = true;
    expectFailed(facts, reason);
}

TEST(Verdict, ofASweepThatDidNotStartIsTheReasonOfThatAlone)
{
    SweepFacts facts = complete();
    facts.status = SDC_STATUS_SCAN_NOT_STARTED;
    facts.taken = 0;
    facts.startFailure = "the controller refused the start";
    expectFailed(facts, "the controller refused the start");
}

TEST(Verdict, isStoppedForAStopWithTheReceiverBack)
{
    SweepFacts facts = complete();
    facts.status = SDC_STATUS_SCAN_NOT_STARTED;
    facts.taken = 3;
    facts.isStopped = true;
    EXPECT_EQ(judge(facts).ending, Ending::stopped);
    EXPECT_EQ(judge(facts).reason, "");
}

} // namespace

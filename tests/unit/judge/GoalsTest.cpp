// What belongs to a goal, what counts, and what is met.

#include "tests/judge/Goals.h"
#include "tests/judge/Failures.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace {

using judge::Case;
using judge::Goal;
using judge::Occupant;
using judge::Outcome;
using judge::Share;
using sdc::FarEnd;
using sdc::Judgement;
using sdc::RasterState;

/// A link on which 12 dB lie over the floor, or nothing where that is no case of an interferer.
Outcome outcomeOf(FarEnd told, Case which, Judgement said)
{
    Outcome outcome;
    outcome.told = told;
    outcome.which = which;
    outcome.truth.channel.tunings = 1;
    outcome.truth.channel.over = which == Case::disturbed ? 1200 : 0;
    outcome.answer.judgement = said;
    return outcome;
}

Outcome disturbed(FarEnd told, Judgement said, std::int32_t over)
{
    Outcome outcome = outcomeOf(told, Case::disturbed, said);
    outcome.truth.channel.over = over;
    return outcome;
}

Outcome rasterOutcome(const judge::RasterTruth& truth, RasterState said)
{
    Outcome outcome;
    outcome.which = Case::clean;
    outcome.truth.raster = {truth};
    outcome.answer.raster = {{truth.offset, said}};
    return outcome;
}

std::string measured(const std::string& what, const std::vector<Outcome>& outcomes)
{
    for (const Goal& goal : judge::goals()) {
        if (goal.what == what) {
            const Share share = measure(goal, outcomes);
            return std::to_string(share.count) + " of " + std::to_string(share.all)
                + (isMet(goal, share) ? ", met" : ", missed");
        }
    }
    return "no such goal";
}

TEST(Goals, suspicionIsAnAlarm)
{
    EXPECT_TRUE(isAlarm(outcomeOf(FarEnd::muted, Case::clean, Judgement::suspected)));
    EXPECT_TRUE(isAlarm(outcomeOf(FarEnd::muted, Case::clean, Judgement::disturbed)));
    EXPECT_FALSE(isAlarm(outcomeOf(FarEnd::muted, Case::clean, Judgement::clear)));
    EXPECT_FALSE(isAlarm(outcomeOf(FarEnd::muted, Case::clean, Judgement::cannotTell)));
}

TEST(Goals, detectionCountsInterferersFromTheLevelOn)
{
    const std::vector<Outcome> outcomes{disturbed(FarEnd::muted, Judgement::disturbed, 1000),
        disturbed(FarEnd::muted, Judgement::clear, 999), disturbed(FarEnd::muted, Judgement::clear, 499),
        disturbed(FarEnd::on, Judgement::clear, 3000), outcomeOf(FarEnd::muted, Case::clean, Judgement::clear)};

    EXPECT_EQ(measured("muted: detection from 10 dB", outcomes), "1 of 1, met");
    EXPECT_EQ(measured("muted: detection from 5 dB", outcomes), "1 of 2, missed");
}

TEST(Goals, cannotTellIsNoMissWhereNeighboursCouldExplainTheReading)
{
    std::vector<Outcome> outcomes{disturbed(FarEnd::muted, Judgement::cannotTell, 1200)};
    EXPECT_EQ(measured("muted: detection from 10 dB", outcomes), "0 of 1, missed");
    EXPECT_EQ(measured("muted: \"cannot tell\" outside the next case", outcomes), "1 of 1, missed");

    outcomes.front().truth.channel.isExplainable = true;
    EXPECT_EQ(measured("muted: detection from 10 dB", outcomes), "0 of 0, missed");
    EXPECT_EQ(measured("muted: \"cannot tell\" outside the next case", outcomes), "0 of 0, missed");

    outcomes.front().answer.judgement = Judgement::clear;
    EXPECT_EQ(measured("muted: detection from 10 dB", outcomes), "0 of 1, missed");
}

TEST(Goals, falseAlarmsAreThoseWithoutAnInterfererAndOutsideTheNextCase)
{
    const std::vector<Outcome> outcomes{outcomeOf(FarEnd::muted, Case::clean, Judgement::suspected),
        outcomeOf(FarEnd::muted, Case::raised, Judgement::disturbed),
        outcomeOf(FarEnd::muted, Case::clean, Judgement::clear),
        outcomeOf(FarEnd::muted, Case::nextCase, Judgement::disturbed),
        outcomeOf(FarEnd::muted, Case::grazed, Judgement::disturbed),
        outcomeOf(FarEnd::muted, Case::dead, Judgement::disturbed), outcomeOf(FarEnd::on, Case::clean, Judgement::disturbed),
        outcomeOf(FarEnd::unknown, Case::clean, Judgement::disturbed)};

    EXPECT_EQ(measured("muted: false alarms", outcomes), "2 of 3, missed");
    EXPECT_EQ(measured("muted: alarms in the next case", outcomes), "1 of 1, missed");
    EXPECT_EQ(measured("on: false alarms", outcomes), "1 of 1, missed");
}

TEST(Goals, cannotTellIsCountedOutsideTheNextCase)
{
    const std::vector<Outcome> outcomes{outcomeOf(FarEnd::muted, Case::clean, Judgement::cannotTell),
        outcomeOf(FarEnd::muted, Case::clean, Judgement::clear),
        outcomeOf(FarEnd::muted, Case::nextCase, Judgement::cannotTell),
        outcomeOf(FarEnd::muted, Case::raised, Judgement::cannotTell),
        outcomeOf(FarEnd::muted, Case::disturbed, Judgement::disturbed)};

    EXPECT_EQ(measured("muted: \"cannot tell\" outside the next case", outcomes), "2 of 4, missed");
}

TEST(Goals, withTheFarEndOnOneClearIsTooMany)
{
    std::vector<Outcome> outcomes(1000, disturbed(FarEnd::on, Judgement::cannotTell, 1000));
    EXPECT_EQ(measured("on: \"clear\" with 10 dB", outcomes), "0 of 1000, met");

    outcomes.push_back(disturbed(FarEnd::on, Judgement::clear, 1000));
    EXPECT_EQ(measured("on: \"clear\" with 10 dB", outcomes), "1 of 1001, missed");
}

TEST(Goals, withTheFarEndOnEachInterfererBelongsToOneGoalAtMost)
{
    Outcome comesAndGoes = disturbed(FarEnd::on, Judgement::disturbed, 1000);
    comesAndGoes.truth.channel.tunings = 5;
    comesAndGoes.truth.channel.comesAndGoes = true;
    Outcome anotherShape = disturbed(FarEnd::on, Judgement::clear, 1000);
    anotherShape.truth.channel.tunings = 5;
    Outcome likeOwn = anotherShape;
    likeOwn.truth.channel.isShapedLikeOwn = true;
    Outcome fewSamples = anotherShape;
    fewSamples.truth.channel.tunings = 4;
    const std::vector<Outcome> outcomes{comesAndGoes, anotherShape, likeOwn, fewSamples};

    EXPECT_EQ(measured("on: detection from 10 dB, comes and goes, 3 sweeps", outcomes), "1 of 1, met");
    EXPECT_EQ(measured("on: detection from 10 dB, another shape, 5 samples", outcomes), "0 of 1, missed");
}

TEST(Goals, channelsOfTheRasterCountByWhatIsInThem)
{
    const judge::RasterTruth empty{.offset = 1, .isSeen = true, .occupant = Occupant::nobody};
    const judge::RasterTruth strong{.offset = -1, .isSeen = true, .occupant = Occupant::somebody, .over = 1000};
    const judge::RasterTruth weak{.offset = -1, .isSeen = true, .occupant = Occupant::somebody, .over = 999};
    const judge::RasterTruth unseen{.offset = 2, .isSeen = false, .occupant = Occupant::somebody, .over = 1000};
    const judge::RasterTruth fringe{.offset = 3, .isSeen = true, .occupant = Occupant::fringe};
    const std::vector<Outcome> outcomes{rasterOutcome(empty, RasterState::intermittent),
        rasterOutcome(empty, RasterState::unknown), rasterOutcome(strong, RasterState::occupied),
        rasterOutcome(strong, RasterState::unknown), rasterOutcome(weak, RasterState::free),
        rasterOutcome(unseen, RasterState::free), rasterOutcome(fringe, RasterState::unknown),
        rasterOutcome(fringe, RasterState::free)};

    EXPECT_EQ(measured("raster: empty called occupied", outcomes), "1 of 2, missed");
    EXPECT_EQ(measured("raster: occupied from 10 dB found", outcomes), "1 of 2, missed");
    EXPECT_EQ(measured("raster: occupied from 10 dB called free", outcomes), "1 of 3, missed");
    EXPECT_EQ(measured("raster: fringe from 5 dB called free", outcomes), "1 of 2, missed");
}

TEST(Goals, channelOfWhichNothingIsSaidIsUnknown)
{
    Outcome outcome = rasterOutcome({.offset = 1, .isSeen = true, .occupant = Occupant::nobody}, RasterState::occupied);
    outcome.answer.raster.front().offset = 2;

    EXPECT_EQ(stateOf(outcome.answer, 1), RasterState::unknown);
    EXPECT_EQ(measured("raster: empty called occupied", {outcome}), "0 of 1, met");
}

TEST(Goals, deadReceiversHaveNoRaster)
{
    Outcome outcome = rasterOutcome({.offset = 1, .isSeen = true, .occupant = Occupant::nobody}, RasterState::occupied);
    outcome.which = Case::dead;

    EXPECT_EQ(measured("raster: empty called occupied", {outcome}), "0 of 0, missed");
}

TEST(Goals, failuresTellTheLinksThatCountAgainstAGoal)
{
    Outcome missed = disturbed(FarEnd::muted, Judgement::clear, 1200);
    missed.seed = 17;
    missed.sweeps = 3;
    missed.truth.channel.kinds = {sdc::InterferenceKind::line};
    missed.answer.rule = "nothing stands out";
    Outcome found = disturbed(FarEnd::muted, Judgement::disturbed, 1200);
    found.seed = 18;
    std::ostringstream text;
    judge::writeFailures(text, {missed, found}, 1);

    EXPECT_NE(
        text.str().find("against \"muted: detection from 10 dB\"\n\n"
                        "  seed 17, 3 sweeps of the channel, far end muted\n"
                        "      is: 1 samples a sweep in the channel, floor 0.00 dB over the noise, 0.00 dBm is 12.00 dB "
                        "over the floor, line\n"
                        "      said: clear: nothing stands out\n"),
        std::string::npos)
        << text.str();
    EXPECT_EQ(text.str().find("seed 18"), std::string::npos);
}

} // namespace

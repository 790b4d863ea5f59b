// For every operation of every peer and of the sleep service, and every way it can go wrong: the first call does, then the
// second, and so on until a run meets no fault any more. The whole run is compared with what the controller must do.

#include "tests/property/Steps.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace {

using tests::Comparison;
using tests::Fault;
using tests::Misbehaviour;
using tests::Operation;
using tests::Step;
using tests::StepKind;

/// Both kinds of scan, a stop, refusals, a query, a scan after whatever went wrong, the end of the controller and a second
/// life.
const std::vector<Step> life{
    {StepKind::queryProperties, 0},
    {StepKind::startChannelScan, 0},
    {StepKind::endSettling, 0},
    {StepKind::startSubBandScan, 0},
    {StepKind::endSweep, 0},
    {StepKind::setFrequencies, 2},
    {StepKind::startSubBandScan, 0},
    {StepKind::endSettling, 0},
    {StepKind::endSettling, 0},
    {StepKind::stop, 0},
    {StepKind::endSettling, 0},
    {StepKind::phaseStop, 0},
    {StepKind::startChannelScan, 0},
    {StepKind::endSweep, 0},
    {StepKind::setUnit, 2},
    {StepKind::startChannelScan, 0},
    {StepKind::rebirth, 0},
    {StepKind::startSubBandScan, 0},
    {StepKind::endSweep, 0},
    {StepKind::stop, 0},
};

/// One life with one fault. @return whether the fault's call came
bool liveWith(const Fault& fault)
{
    Comparison comparison(fault);
    for (const Step& step : life) {
        const std::string difference = comparison.take(step);
        if (!difference.empty()) {
            ADD_FAILURE() << fault << ", at " << step << ":\n" << difference;
            return false;
        }
    }
    return comparison.hasStruck();
}

using Kind = std::tuple<Operation, Misbehaviour>;

class FaultCampaign : public testing::TestWithParam<Kind> {};

TEST_P(FaultCampaign, theNthCallGoesWrongForEveryN)
{
    Fault fault{std::get<0>(GetParam()), 1, std::get<1>(GetParam())};
    while (liveWith(fault)) {
        ++fault.nth;
        ASSERT_LT(fault.nth, 1000U);
    }
    EXPECT_GT(fault.nth, 2U) << "the life has too few calls of this operation";
}

constexpr auto throwing = {Misbehaviour::throwsStandard, Misbehaviour::throwsOther};
constexpr auto answering = {Misbehaviour::refuses, Misbehaviour::answersOddly};

INSTANTIATE_TEST_SUITE_P(EveryOperationThrows, FaultCampaign,
    testing::Combine(testing::Values(Operation::getChannelSpacing, Operation::getRxFrequency,
                         Operation::getFrequencyParameters, Operation::getUnitInfo, Operation::getProperties,
                         Operation::setRxFrequency, Operation::readRssi, Operation::getSleepService, Operation::sleepMs),
        testing::ValuesIn(throwing)));
INSTANTIATE_TEST_SUITE_P(WhatAnswersRefusesOrAnswersOddly, FaultCampaign,
    testing::Combine(
        testing::Values(Operation::getUnitInfo, Operation::getProperties, Operation::setRxFrequency, Operation::readRssi),
        testing::ValuesIn(answering)));

} // namespace

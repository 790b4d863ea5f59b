#pragma once

#include "simulator/radio/Emitters.h"
#include "tests/judge/trial/Scan.h"
#include "tests/judge/trial/Trial.h"
#include "tests/judge/truth/Truth.h"

#include <cstdint>
#include <initializer_list>

namespace tests {

constexpr double spacing_kHz = 28000.0;
constexpr double own_kHz = 18800000.0;

/// -174 dBm + 10 log10(28 MHz) + 5.5 dB: what the receiver reads of itself.
constexpr std::int32_t noise = -9403;

/// A link of 28 MHz channels in a filter of that width, without jitter, that settles within a delay and leaks nothing.
inline judge::Trial trialOf(std::initializer_list<simulator::Emitter> emitters)
{
    judge::Trial trial;
    trial.kind = sdc::ScanKind::subBand;
    trial.told = sdc::FarEnd::muted;
    simulator::Link link;
    link.unitTypeText = "4743 18G";
    link.frequencyParameters.frequencyBand_GHz = 18;
    link.frequencyParameters.minRxFrequency_kHz = 18700000;
    link.frequencyParameters.maxRxFrequency_kHz = 18900000;
    link.frequencyParameters.rxBaseFrequency_kHz = 18000000;
    link.frequencyParameters.frequencyStepSize_kHz = 250;
    link.frequencyParameters.stepLimitLow = 2800;
    link.frequencyParameters.stepLimitHigh = 3600;
    link.channelSpacing_kHz = 28000;
    link.rxFrequency_kHz = 18800000;
    link.filterWidth_kHz = spacing_kHz;
    link.noiseFigure_dB = 5.5;
    link.settlingTime_ms = 1.0;
    link.emitters = emitters;
    trial.scenario.channels.push_back({RadioChannel{1}, link});
    return trial;
}

inline simulator::Link& linkOf(judge::Trial& trial)
{
    return trial.scenario.channels.front().link;
}

/// A sample a second, read a second after the tuning: so many below the configured
/// frequency and above it. A scan of one sample has its own delay of five seconds.
inline judge::Course courseOf(std::uint32_t step_kHz, std::uint32_t below, std::uint32_t above, std::uint32_t sweeps)
{
    constexpr std::uint32_t configured_kHz = 18800000;
    judge::Course course;
    course.plan.rxFrequency_kHz = configured_kHz;
    course.plan.channelSpacing_kHz = 28000;
    course.plan.lowest_kHz = configured_kHz - below * step_kHz;
    course.plan.highest_kHz = configured_kHz + above * step_kHz;
    course.plan.step_kHz = step_kHz;
    course.plan.samples = static_cast<std::int32_t>(below + above + 1);
    course.plan.setRxWait_ms = 1000;
    course.plan.firstSetRxWait_ms = 1000;
    course.perSweep = below + above + 1;
    course.sweeps = sweeps;
    return course;
}

/// A carrier that a channel's filter takes in whole.
inline simulator::Carrier carrierAt(double centre_kHz, double level_dBm)
{
    return simulator::carrierInChannel(centre_kHz, level_dBm, spacing_kHz, 0.25, 0.98);
}

} // namespace tests
